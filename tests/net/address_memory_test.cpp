// The address checks when memory runs out.

#include <gtest/gtest.h>

#include <cstddef>
#include <new>

#include "KVTFileUtil.h"
#include "hooks.h"
#include "test_strings.h"

namespace {

// The first request is the copy of the argument, the next the conversion.  A
// text of eight units and more needs memory for both.
bool IsValidIPV6WhenMemoryRunsOut(const char* text, std::size_t times) {
  const KVTString address = FromUtf8(text);
  const hooks::FailingAllocator failing(1, 0, times);
  const bool valid = KVTFileUtil::IsValidIPV6Address(address);
  EXPECT_GE(failing.Refused(), 1u);
  return valid;
}

struct SecondParserCase {
  const char* name;
  const char* text;
  bool first;   // what inet_pton says
  bool second;  // what the parser behind it says
};

void PrintTo(const SecondParserCase& c, std::ostream* out) { *out << c.name; }

const SecondParserCase kSecondParser[] = {
    {"EightGroups", "2001:db8:1:2:3:4:5:6", true, true},
    {"OneEmptyGroup", "1:2:3:4::6:7:8", true, true},
    {"EmptyGroupsOnlyTheSecondTakes", "1::3:4::6:7:8", false, true},
    {"SevenEmptyGroupsAndOneFull", ":::::::8", false, true},
    {"SevenGroups", "1:2:3:4:5:6:7", false, false},
    {"NineGroups", "1:2:3:4:5:6:7:8:9", false, false},
    {"TrailingColon", "1:2:3:4:5:6:7:8:", false, false},
    {"ShortForm", "2001:db8::1", true, false},
    {"EmbeddedQuad", "::ffff:1.2.3.4", true, false},
    {"EightGroupsAndAQuad", "1:2:3:4:5:6:7:1.2.3.4", false, false},
    {"GroupTooLong", "12345:2:3:4:5:6:7:8", false, false},
    {"NoHexadecimalDigit", "g:2:3:4:5:6:7:8", false, false},
    {"EndsInEmptyGroup", "1:2:3:4:5:6:7:", false, false},
};

class SecondParserTable : public testing::TestWithParam<SecondParserCase> {};

TEST_P(SecondParserTable, IsNotAskedWhileMemoryLasts) {
  EXPECT_EQ(KVTFileUtil::IsValidIPV6Address(FromUtf8(GetParam().text)),
            GetParam().first);
}

TEST_P(SecondParserTable, DecidesWhenTheConversionFailedOnce) {
  EXPECT_EQ(IsValidIPV6WhenMemoryRunsOut(GetParam().text, 1),
            GetParam().second);
}

TEST_P(SecondParserTable, SaysFalseWhenTheConversionFailsAgain) {
  EXPECT_FALSE(IsValidIPV6WhenMemoryRunsOut(GetParam().text, 2));
}

INSTANTIATE_TEST_SUITE_P(, SecondParserTable, testing::ValuesIn(kSecondParser),
                         [](const auto& test) { return test.param.name; });

// Wherever in the call memory runs out, no exception leaves it.
TEST(IPV6Address, LetsNoExceptionOut) {
  const KVTString address = FromUtf8("2001:db8:1:2:3:4:5:6");
  for (std::size_t granted = 1; granted < 20; ++granted) {
    const hooks::FailingAllocator failing(granted);
    EXPECT_NO_THROW(KVTFileUtil::IsValidIPV6Address(address));
  }
}

// IsValidIPV6Address alone holds the failure back.
TEST(OtherAddressChecks, LetTheFailureOut) {
  const KVTString address = FromUtf8("192.168.101.102");
  {
    const hooks::FailingAllocator failing(1);
    EXPECT_THROW(KVTFileUtil::IsValidIPV4Address(address), std::bad_alloc);
  }
  {
    const hooks::FailingAllocator failing(1);
    EXPECT_THROW(KVTFileUtil::IsValidHostNameAddress(address), std::bad_alloc);
  }
  {
    const hooks::FailingAllocator failing(1);
    EXPECT_THROW(KVTFileUtil::GetAddressType(address), std::bad_alloc);
  }
  {
    const hooks::FailingAllocator failing(1);
    EXPECT_THROW(KVTFileUtil::MaskIP(address), std::bad_alloc);
  }
}

}  // namespace
