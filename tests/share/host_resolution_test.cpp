#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "KVTShareFile.h"
#include "allowed_leaks.h"
#include "hooks.h"
#include "namespaces.h"
#include "share_fakes.h"
#include "temporary_directory.h"
#include "test_strings.h"

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#endif

namespace {

using Names = FakeNames::Names;

constexpr const char* kUntouched = "untouched";

struct Resolved {
  int result;
  KVTString address;
};

Resolved Resolve(const KVTString& host) {
  KVTShareFileInternal paths;
  Resolved resolved = {0, KVTString(kUntouched)};
  resolved.result = paths.ResolveHostAddress(host, resolved.address);
  return resolved;
}

TEST(ResolveHostAddress, ClearsTheAddressForTwoUnitsAndFewer) {
  const FakeNames names(Names{{"db", {"10.0.0.9"}}, {"", {"10.0.0.9"}}});
  for (const char* host : {"", "d", "db", "::", "\xE6\x96\x87\xE6\x96\x87"}) {
    const Resolved resolved = Resolve(host);
    EXPECT_EQ(resolved.result, 1) << host;
    EXPECT_EQ(resolved.address, "") << host;
  }
  EXPECT_TRUE(names.Asked().empty());
}

TEST(ResolveHostAddress, LooksUpThreeUnits) {
  const FakeNames names(Names{{"db1", {"10.0.0.9"}}});
  const Resolved resolved = Resolve("db1");
  EXPECT_EQ(resolved.result, 0);
  EXPECT_EQ(resolved.address, "10.0.0.9");
}

TEST(ResolveHostAddress, KeepsAnAddressAsItIsWrittenAndAsksNobody) {
  const FakeNames names({});
  for (const char* address : {"10.0.0.5", "::1", "FE80::0001",
                              "::ffff:10.0.0.5", "::1.2.3.4", "a.b.c.d"}) {
    const Resolved resolved = Resolve(address);
    EXPECT_EQ(resolved.result, 0) << address;
    EXPECT_EQ(resolved.address, address);
  }
  EXPECT_TRUE(names.Asked().empty());
}

TEST(ResolveHostAddress, TrimsBackslashesAndThenSlashes) {
  const FakeNames names(UsualNames());
  EXPECT_EQ(Resolve("\\10.0.0.5/").address, "10.0.0.5");
  EXPECT_EQ(Resolve("\\\\//fs1//\\\\").address, "10.0.0.5");
  EXPECT_EQ(Resolve("\\\\\\").result, 1);
  // The slashes keep the backslashes inside.
  EXPECT_EQ(Resolve("/\\fs1\\/").result, 1);
  EXPECT_EQ(names.Asked(), (std::vector<std::string>{"fs1", "", "\\fs1\\"}));
}

TEST(ResolveHostAddress, LeavesTheAddressAloneWhenTheLookUpFails) {
  const FakeNames names({});
  const Resolved resolved = Resolve("nohost");
  EXPECT_EQ(resolved.result, 1);
  EXPECT_EQ(resolved.address, kUntouched);
}

TEST(ResolveHostAddress, AsksForAnyFamilyAndNoService) {
  int asked = 0;
  const hooks::Scoped asking(hooks::onGetaddrinfo,
                             [&](const char* node, const char* service,
                                 const addrinfo* hints, addrinfo** result) {
                               ++asked;
                               EXPECT_STREQ(node, "h\xC3\xB6st");
                               EXPECT_EQ(service, nullptr);
                               addrinfo expected;
                               memset(&expected, 0, sizeof(expected));
                               expected.ai_socktype = SOCK_STREAM;
                               EXPECT_EQ(hints->ai_flags, expected.ai_flags);
                               EXPECT_EQ(hints->ai_family, AF_UNSPEC);
                               EXPECT_EQ(hints->ai_socktype, SOCK_STREAM);
                               EXPECT_EQ(hints->ai_protocol, 0);
                               EXPECT_EQ(hints->ai_addrlen, 0u);
                               EXPECT_EQ(hints->ai_addr, nullptr);
                               EXPECT_EQ(hints->ai_canonname, nullptr);
                               EXPECT_EQ(hints->ai_next, nullptr);
                               *result = nullptr;
                               return EAI_AGAIN;
                             });
  EXPECT_EQ(Resolve("h\xC3\xB6st").result, 1);
  EXPECT_EQ(asked, 1);
}

TEST(ResolveHostAddress, TakesTheFirstAnswerWhicheverFamilyItHas) {
  const FakeNames names(Names{{"four", {"10.0.0.1", "10.0.0.2", "fe80::1"}},
                              {"six", {"fe80::1", "fe80::2", "10.0.0.1"}}});
  const Resolved four = Resolve("four");
  EXPECT_EQ(four.result, 0);
  EXPECT_EQ(four.address, "10.0.0.1");
  const Resolved six = Resolve("six");
  EXPECT_EQ(six.result, 0);
  EXPECT_EQ(six.address, "fe80::1");
}

TEST(ResolveHostAddress, ClearsTheAddressForAnAnswerWithoutNodes) {
  const FakeNames names(Names{{"nothing", {}}});
  const Resolved resolved = Resolve("nothing");
  EXPECT_EQ(resolved.result, 1);
  EXPECT_EQ(resolved.address, "");
}

TEST(ResolveHostAddress, PassesOverNodesWithoutText) {
  const FakeNames names(Names{{"mixed", {"fe80::1", "fe80::2", "10.0.0.1"}}});
  int failed = 0;
  const hooks::Scoped failing(
      hooks::onInetNtop,
      [&](int family, const void*, char*, socklen_t size) -> const char* {
        EXPECT_EQ(family, AF_INET6);
        EXPECT_EQ(size, 46u);
        ++failed;
        return nullptr;
      });
  const Resolved resolved = Resolve("mixed");
  EXPECT_EQ(resolved.result, 0);
  EXPECT_EQ(resolved.address, "10.0.0.1");
  EXPECT_EQ(failed, 2);
}

TEST(ResolveHostAddress, ClearsTheAddressWhenNoNodeIsOfUse) {
  const FakeNames names(Names{{"useless", {"fe80::1", "fe80::2"}}});
  const hooks::Scoped failing(
      hooks::onInetNtop, [](int, const void*, char*, socklen_t) -> const char* {
        return nullptr;
      });
  const Resolved resolved = Resolve("useless");
  EXPECT_EQ(resolved.result, 1);
  EXPECT_EQ(resolved.address, "");
}

TEST(ResolveHostAddress, ChecksTheTextOnceMoreAndLooksAtNoOtherNode) {
  const FakeNames names(Names{{"odd", {"10.0.0.1", "fe80::1"}}});
  static char text[] = "no.address";
  const hooks::Scoped odd(hooks::onInetNtoa, [](in_addr) { return text; });
  const Resolved resolved = Resolve("odd");
  EXPECT_EQ(resolved.result, 1);
  EXPECT_EQ(resolved.address, "");
}

TEST(ResolveHostAddress, ReadsEveryOtherFamilyAsIPv6) {
  FakeNames names(Names{{"other", {"fe80::7"}}});
  const hooks::Scoped renaming(
      hooks::onGetaddrinfo, [answer = hooks::onGetaddrinfo](
                                const char* node, const char* service,
                                const addrinfo* hints, addrinfo** result) {
        const int failure = answer(node, service, hints, result);
        (*result)->ai_family = AF_UNIX;
        return failure;
      });
  const Resolved resolved = Resolve("other");
  EXPECT_EQ(resolved.result, 0);
  EXPECT_EQ(resolved.address, "fe80::7");
}

// Blocks of this size come from mmap(2) and go back to it at once.
constexpr std::size_t kMappedBlock = std::size_t{1} << 20;

bool IsAllocated(const void* block) {
#ifdef __SANITIZE_ADDRESS__
  return __asan_address_is_poisoned(block) == 0;
#else
  const auto page = reinterpret_cast<std::uintptr_t>(block) &
                    ~(static_cast<std::uintptr_t>(getpagesize()) - 1);
  unsigned char resident = 0;
  return mincore(reinterpret_cast<void*>(page), 1, &resident) == 0;
#endif
}

addrinfo* MakeMappedNode(addrinfo* next) {
  auto* node = static_cast<addrinfo*>(calloc(1, kMappedBlock));
  node->ai_family = AF_INET;
  node->ai_next = next;
  node->ai_addr = reinterpret_cast<sockaddr*>(node + 1);
  reinterpret_cast<sockaddr_in*>(node->ai_addr)->sin_addr.s_addr =
      htonl(INADDR_LOOPBACK);
  return node;
}

TEST(ResolveHostAddress, ReleasesTheHeadOfTheAnswerAlone) {
  // A fixed threshold, so that no earlier free(3) has raised it.
  mallopt(M_MMAP_THRESHOLD, 1 << 17);
  addrinfo* const third = MakeMappedNode(nullptr);
  addrinfo* const second = MakeMappedNode(third);
  addrinfo* const head = MakeMappedNode(second);
  const hooks::Scoped answering(
      hooks::onGetaddrinfo,
      [&](const char*, const char*, const addrinfo*, addrinfo** result) {
        *result = head;
        return 0;
      });
  ASSERT_TRUE(IsAllocated(head));
  EXPECT_EQ(Resolve("localhost").address, "127.0.0.1");
  EXPECT_FALSE(IsAllocated(head));
  ASSERT_TRUE(IsAllocated(second));
  ASSERT_TRUE(IsAllocated(third));
  free(second);
  free(third);
}

TEST(ResolveHostAddress, AsksTheSystem) {
  const TemporaryDirectory directory;
  WriteFile(directory.Path("hosts"),
            "10.20.30.40 only-four.test\nfe80::42 only-six.test\n"
            "10.20.30.41 twice.test\n10.20.30.42 twice.test\n");
  CoverWith(directory.Path("hosts"), "/etc/hosts");
  // All nodes but the first of each answer stay allocated.
  const AllowedLeaks nodes;
  EXPECT_EQ(Resolve("only-four.test").address, "10.20.30.40");
  EXPECT_EQ(Resolve("only-six.test").address, "fe80::42");
  EXPECT_EQ(Resolve("twice.test").address, "10.20.30.41");
  Uncover("/etc/hosts");
}

}  // namespace
