// Socket rows: the addrinfo conversion both ways, the lookup's message
// buffer, and the kept forms of inet_pton and fd_set. Byte order, the rows'
// Z answers and fd_set's missing arguments are golden programs in
// tests/programs/sockets; the echo test (tests/echo_test.sh) runs a server
// and a client written in the language over loopback.
#include <gtest/gtest.h>

#include <sys/socket.h>

#include <cstring>
#include <string>

#include "bindings/addrinfo.h"
#include "bindings/sockets.h"
#include "tests/unit/bindings/call.h"

namespace tarn {
namespace {

using testing::address;
using testing::callNamed;
using testing::num;
using testing::text;

TEST(Sockets, LookupGivesRecordsInTheLanguageLayoutAndTakesThemBack) {
  LanguageAddrinfo hints{};
  hints.flags = AI_NUMERICHOST | AI_CANONNAME;  // no name service needed
  hints.family = AF_INET;
  hints.socktype = SOCK_STREAM;
  LanguageAddrinfo* list = nullptr;
  ASSERT_EQ(text(callNamed("getaddrinfo", address("127.0.0.1"), address("4242"), address(&hints), address(&list))),
            "0");
  ASSERT_NE(list, nullptr);
  // The fields where a program reads them: the length 8 bytes wide at 16,
  // the canonical name at 24, the address at 32.
  const auto* bytes = reinterpret_cast<const unsigned char*>(list);
  uint64_t addrlen;
  const char* canon;
  sockaddr_in* sin;
  std::memcpy(&addrlen, bytes + 16, 8);
  std::memcpy(&canon, bytes + 24, 8);
  std::memcpy(&sin, bytes + 32, 8);
  EXPECT_EQ(addrlen, sizeof(sockaddr_in));
  EXPECT_STREQ(canon, "127.0.0.1");
  EXPECT_EQ(sin->sin_family, AF_INET);
  EXPECT_EQ(ntohs(sin->sin_port), 4242);
  EXPECT_EQ(ntohl(sin->sin_addr.s_addr), 0x7f000001u);
  EXPECT_EQ(list->family, AF_INET);
  EXPECT_EQ(list->socktype, SOCK_STREAM);
  // Back to the host's layout before the host frees it (the sanitizer build
  // would see a bad free otherwise).
  EXPECT_EQ(text(callNamed("freeaddrinfo", address(list))), "I");
}

TEST(Sockets, ConversionSwapsThePointersAndWidensTheLengthOfEveryRecord) {
  sockaddr_in sa{};
  char name[] = "host";
  addrinfo second{}, first{};
  first.ai_family = AF_INET;
  first.ai_addrlen = 16;
  first.ai_addr = reinterpret_cast<sockaddr*>(&sa);
  first.ai_canonname = name;
  first.ai_next = &second;
  second.ai_addrlen = 28;
  listToLanguage(&first);
  LanguageAddrinfo a, b;
  std::memcpy(&a, &first, sizeof a);
  std::memcpy(&b, &second, sizeof b);
  EXPECT_EQ(a.addrlen, 16u);
  EXPECT_EQ(a.canonname, name);
  EXPECT_EQ(a.addr, reinterpret_cast<sockaddr*>(&sa));
  EXPECT_EQ(a.next, reinterpret_cast<LanguageAddrinfo*>(&second));
  EXPECT_EQ(b.addrlen, 28u);
  // (Back to the host's layout: freeaddrinfo in the lookup test above.)
}

TEST(Sockets, MessagesShareOneWideBuffer) {
  Term a = callNamed("gai_strerror", num(EAI_NONAME));
  Term b = callNamed("gai_strerror", num(EAI_AGAIN));
  EXPECT_EQ(text(a), text(b));  // the same address, overwritten
  const auto* units = reinterpret_cast<const char16_t*>(intptr_t(termToInt64(b)));
  std::string widened;
  for (size_t i = 0; units[i] != 0; i++) widened += char(units[i]);
  EXPECT_EQ(widened, gai_strerror(EAI_AGAIN));
  EXPECT_EQ(std::strlen(reinterpret_cast<const char*>(units)), 1u);  // strlen sees one byte
}

TEST(Sockets, InetPtonReadsItsFirstArgumentOnly) {
  // The first argument is family, text and destination at once: a buffer's
  // address is no family the host knows, so the host answers -1. The other
  // two arguments are neither tested nor passed.
  alignas(16) char buffer[16] = "1.2.3.4";
  EXPECT_EQ(text(callNamed("inet_pton", address(buffer), realLeaf(1.0), realLeaf(2.0))), "01");
}

TEST(Sockets, FdSetInsertion) {
  LanguageFdSet set{};
  Term at = address(&set);
  for (const char* s : {"5", "7", "5"}) EXPECT_EQ(text(fdSetInsert(leaf(s), at)), "I");  // 5 only once
  EXPECT_EQ(set.count, 2u);
  EXPECT_EQ(set.sockets[0], 5u);
  EXPECT_EQ(set.sockets[1], 7u);
  for (int s = 100; s < 200; s++) fdSetInsert(num(s), at);
  EXPECT_EQ(set.count, 64u);  // full: the rest are dropped
  EXPECT_EQ(set.sockets[63], 161u);
  EXPECT_EQ(text(fdSetInsert(leaf("[x]"), at)), "Z");
  EXPECT_EQ(text(fdSetInsert(leaf("5"), realLeaf(0.0))), "Z");
}

}  // namespace
}  // namespace tarn
