// Socket rows: the addrinfo conversion both ways, the lookup's message
// buffer, the kept forms of inet_pton and fd_set, byte order, and what send
// and recv accept. The echo test (tests/echo_test.sh) runs a server and a
// client written in the language over loopback.
#include <gtest/gtest.h>

#include <sys/socket.h>

#include <cstring>
#include <string>
#include <vector>

#include "bindings/addrinfo.h"
#include "bindings/sockets.h"
#include "runtime/builtins.h"
#include "tests/unit/frontend/tree_dump.h"

namespace tarn {
namespace {

using testing::treeOf;

// Calls a builtin on its arguments, first argument first.
Term call(std::string_view name, std::vector<Term> args) {
  const Builtin* b = findBuiltin(name);
  EXPECT_NE(b, nullptr);
  Term chain = leaf(name);
  for (Term& a : args) chain = App(std::move(chain), std::move(a));
  return callBuiltin(*b, chain);
}

Term addressTerm(const void* p) { return int64ToTerm(int64_t(reinterpret_cast<intptr_t>(p))); }

TEST(Sockets, LookupGivesRecordsInTheLanguageLayoutAndTakesThemBack) {
  LanguageAddrinfo hints{};
  hints.flags = AI_NUMERICHOST | AI_CANONNAME;  // no name service needed
  hints.family = AF_INET;
  hints.socktype = SOCK_STREAM;
  LanguageAddrinfo* list = nullptr;
  Term code = call("getaddrinfo", {addressTerm("127.0.0.1"), addressTerm("4242"), addressTerm(&hints),
                                   addressTerm(&list)});
  ASSERT_EQ(treeOf(code), "0");
  ASSERT_NE(list, nullptr);
  // The fields where a program reads them: the length 8 bytes wide at 16,
  // the canonical name at 24, the address at 32.
  const auto* bytes = reinterpret_cast<const unsigned char*>(list);
  uint64_t addrlen;
  std::memcpy(&addrlen, bytes + 16, 8);
  EXPECT_EQ(addrlen, sizeof(sockaddr_in));
  const char* canon;
  std::memcpy(&canon, bytes + 24, 8);
  EXPECT_STREQ(canon, "127.0.0.1");
  sockaddr_in* sin;
  std::memcpy(&sin, bytes + 32, 8);
  EXPECT_EQ(sin->sin_family, AF_INET);
  EXPECT_EQ(ntohs(sin->sin_port), 4242);
  EXPECT_EQ(ntohl(sin->sin_addr.s_addr), 0x7f000001u);
  EXPECT_EQ(list->family, AF_INET);
  EXPECT_EQ(list->socktype, SOCK_STREAM);
  // Back to the host's layout before the host frees it (the sanitizer build
  // would see a bad free otherwise).
  EXPECT_EQ(treeOf(call("freeaddrinfo", {addressTerm(list)})), "I");
}

TEST(Sockets, ConversionSwapsThePointersAndWidensTheLength) {
  sockaddr_in sa{};
  char name[] = "host";
  addrinfo second{};
  addrinfo first{};
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
  EXPECT_EQ(b.addrlen, 28u);  // every record of the list
  listToHost(reinterpret_cast<LanguageAddrinfo*>(&first));
  EXPECT_EQ(first.ai_addrlen, 16u);
  EXPECT_EQ(first.ai_canonname, name);
  EXPECT_EQ(first.ai_addr, reinterpret_cast<sockaddr*>(&sa));
  EXPECT_EQ(second.ai_addrlen, 28u);
}

TEST(Sockets, MessagesShareOneWideBuffer) {
  Term a = call("gai_strerror", {int64ToTerm(EAI_NONAME)});
  Term b = call("gai_strerror", {int64ToTerm(EAI_AGAIN)});
  EXPECT_EQ(treeOf(a), treeOf(b));  // the same address, overwritten
  const auto* units = reinterpret_cast<const char16_t*>(intptr_t(termToInt64(b)));
  std::string message = gai_strerror(EAI_AGAIN);
  std::string widened;
  for (size_t i = 0; units[i] != 0; i++) widened += char(units[i]);
  EXPECT_EQ(widened, message);
  EXPECT_EQ(std::strlen(reinterpret_cast<const char*>(units)), 1u);  // strlen sees one byte
  EXPECT_EQ(treeOf(call("gai_strerror", {leaf("[x]")})), "Z");
}

TEST(Sockets, ByteOrderNarrowsThenSwaps) {
  EXPECT_EQ(treeOf(call("htons", {leaf("65536")})), "0");
  EXPECT_EQ(treeOf(call("htons", {leaf("258")})), "513");
  EXPECT_EQ(treeOf(call("htonl", {leaf("1")})), "16777216");
  EXPECT_EQ(treeOf(call("ntohl", {leaf("16777216")})), "1");
  EXPECT_EQ(treeOf(call("ntohs", {leaf("1")})), "256");
  EXPECT_EQ(treeOf(call("htonl", {leaf("003")})), "Z");  // a fraction is no host integer
}

TEST(Sockets, SendTakesTextsRecvOnlyAddresses) {
  int pair[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, pair), 0);
  // A bracket literal passes as its text, brackets included.
  EXPECT_EQ(treeOf(call("send", {int64ToTerm(pair[0]), leaf("[ab]"), leaf("4"), leaf("0")})), "4");
  char got[8] = {};
  ASSERT_EQ(::recv(pair[1], got, sizeof got, 0), 4);
  EXPECT_STREQ(got, "[ab]");
  EXPECT_EQ(treeOf(call("recv", {int64ToTerm(pair[1]), leaf("[ab]"), leaf("4"), leaf("0")})), "Z");
  EXPECT_EQ(treeOf(call("closesocket", {int64ToTerm(pair[0])})), "0");
  EXPECT_EQ(treeOf(call("closesocket", {int64ToTerm(pair[0])})), "01");  // -1: already closed
  ::close(pair[1]);
}

TEST(Sockets, InetPtonReadsItsFirstArgumentOnly) {
  // The first argument is family, text and destination at once: a buffer's
  // address is no family the host knows, so the host answers -1. The other
  // two arguments are neither tested nor passed.
  alignas(16) char buffer[16] = "1.2.3.4";
  EXPECT_EQ(treeOf(call("inet_pton", {addressTerm(buffer), realLeaf(1.0), realLeaf(2.0)})), "01");
  EXPECT_EQ(treeOf(call("inet_pton", {realLeaf(1.0), leaf("2"), leaf("3")})), "Z");
}

TEST(Sockets, FdSetInsertion) {
  LanguageFdSet set{};
  Term at = addressTerm(&set);
  EXPECT_EQ(treeOf(fdSetInsert(leaf("5"), at)), "I");
  EXPECT_EQ(treeOf(fdSetInsert(leaf("7"), at)), "I");
  EXPECT_EQ(treeOf(fdSetInsert(leaf("5"), at)), "I");  // already there
  EXPECT_EQ(set.count, 2u);
  EXPECT_EQ(set.sockets[0], 5u);
  EXPECT_EQ(set.sockets[1], 7u);
  for (int s = 100; s < 200; s++) fdSetInsert(int64ToTerm(s), at);
  EXPECT_EQ(set.count, 64u);  // full: the rest are dropped
  EXPECT_EQ(set.sockets[63], 161u);
  EXPECT_EQ(treeOf(fdSetInsert(leaf("[x]"), at)), "Z");
  EXPECT_EQ(treeOf(fdSetInsert(leaf("5"), realLeaf(0.0))), "Z");
}

TEST(SocketsDeathTest, FdSetHasNoArgumentsToRead) {
  EXPECT_DEATH(call("fd_set", {}), "ASSERTION FAILED");
}

}  // namespace
}  // namespace tarn
