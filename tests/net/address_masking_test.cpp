#include <gtest/gtest.h>

#include "KVTFileUtil.h"
#include "test_strings.h"

namespace {

struct MaskCase {
  const char* name;
  const char* text;
  const char* masked;
};

void PrintTo(const MaskCase& c, std::ostream* out) { *out << c.name; }

const MaskCase kMasks[] = {
    {"IPV4", "192.168.1.2", "XXX.XXX.1.2"},
    {"IPV4OfDigits", "1.2.3.4", "X.X.3.4"},
    {"IPV4OfLetters", "a.b.c.d", "X.X.c.d"},
    {"IPV6", "2001:db8:1:2:3:4:5:6", "XXXX:XXX:X:X:3:4:5:6"},
    {"Loopback", "::1", "::X"},
    {"AllZeroIPV6", "::", "::"},
    {"LinkLocal", "fe80::1", "XXXX::X"},
    {"ThreeColonsMaskEverythingElse", "::ffff:1.2.3.4", "::XXXX:XXXXXXX"},
    {"IPV6OfTypeNeither", "::1.2.3.4", "::XXXXXXX"},
    {"FourColonsStopTheMask", "1:2:3::4", "X:X:X::4"},
    {"HostName", "host.domain", "host.domain"},
    {"IPV4TooLarge", "256.1.1.1", "256.1.1.1"},
    {"IPV6WithZone", "fe80::1%eth0", "fe80::1%eth0"},
    {"Empty", "", ""},
};

class MaskTable : public testing::TestWithParam<MaskCase> {};

TEST_P(MaskTable, HidesTheLeadingParts) {
  EXPECT_EQ(KVTFileUtil::MaskIP(FromUtf8(GetParam().text)),
            FromUtf8(GetParam().masked));
}

INSTANTIATE_TEST_SUITE_P(, MaskTable, testing::ValuesIn(kMasks),
                         [](const auto& test) { return test.param.name; });

TEST(Mask, LeavesTheCallersTextAlone) {
  const KVTString address = FromUtf8("1.2.3.4");
  KVTFileUtil::MaskIP(address);
  EXPECT_EQ(address, FromUtf8("1.2.3.4"));
}

}  // namespace
