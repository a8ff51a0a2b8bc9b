// The string family: the system's own loops, the character classes outside
// the byte range, strtod's end, strerror's numbers and the two unusable rows.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "bindings/strings.h"
#include "numbers/model.h"
#include "tests/unit/bindings/calls.h"

namespace tarn {
namespace {

using testing::address;
using testing::call;
using testing::text;
Term blob(std::string_view bytes) { return blobLeaf(bytes); }

TEST(StringRows, StrcmpIsNormalisedAndUnsigned) {
  // a, b, answer: bytes compare as unsigned values, the first difference
  // answers -1 or 1 whatever its size, and the end of both answers 0.
  const std::tuple<std::string_view, std::string_view, std::string_view> rows[] = {
      {"a", "b", "01"}, {"b", "a", "1"}, {"a", "z", "01"}, {"abc", "abc", "0"}, {"ab", "abc", "01"},
      {"abc", "ab", "1"}, {"\xff", "a", "1"}, {"a", "\x80", "01"}, {"", "", "0"}};
  for (auto [a, b, want] : rows) EXPECT_EQ(text(call("strcmp", {blob(a), blob(b)})), want) << a << " " << b;
  // A literal is compared with its brackets: "[" (91) sorts before "a".
  EXPECT_EQ(text(call("strcmp", {leaf("[a]"), blob("a")})), "01");
  EXPECT_EQ(text(call("strcmp", {leaf("[a]"), leaf("[a]")})), "0");
  EXPECT_EQ(text(call("strcmp", {realLeaf(1), blob("a")})), "Z");
}

TEST(StringRows, CopyAndAppendWriteThroughTheNul) {
  char buffer[16];
  std::memset(buffer, 'x', sizeof buffer);
  Term dest = address(buffer);
  EXPECT_EQ(text(call("strcpy", {dest, leaf("[ab]")})), text(dest));
  EXPECT_STREQ(buffer, "[ab]");
  EXPECT_EQ(buffer[5], 'x');
  EXPECT_EQ(text(call("strcat", {dest, blob("cd")})), text(dest));
  EXPECT_STREQ(buffer, "[ab]cd");
  EXPECT_EQ(buffer[7], 'x');
  // The destination must be an integer; a failed test writes nothing.
  EXPECT_EQ(text(call("strcpy", {leaf("[ab]"), blob("cd")})), "Z");
  EXPECT_EQ(text(call("strcat", {blob("ab"), blob("cd")})), "Z");
  EXPECT_EQ(text(call("strcpy", {dest, realLeaf(1)})), "Z");
  EXPECT_STREQ(buffer, "[ab]cd");
  // strncpy takes integers only, and pads with NULs up to its count.
  EXPECT_EQ(text(call("strncpy", {dest, blob("zz"), int64ToTerm(4)})), "Z");
  std::string source = "zz";
  call("strncpy", {dest, address(source.c_str()), int64ToTerm(4)});
  EXPECT_EQ(std::string(buffer, 7), std::string("zz\0\0cd\0", 7));
}

TEST(StringRows, CharacterClassesEndWithTheHostsTables) {
  // Values outside -128..255 are in no class; the conversion keeps the low
  // 32 bits, and isascii reads those unsigned.
  const std::tuple<std::string_view, int64_t, char> rows[] = {
      {"isalpha", 65 + (int64_t(1) << 32), 'K'}, {"isalpha", 1 << 20, 'H'}, {"isalpha", -129, 'H'},
      {"isprint", -1, 'H'}, {"isascii", -1, 'H'}, {"isascii", int64_t(1) << 32, 'K'},
      {"isascii", (int64_t(1) << 32) - 1, 'H'}};
  for (auto [name, value, want] : rows)
    EXPECT_EQ(text(call(name, {int64ToTerm(value)})), std::string(1, want)) << name << " " << value;
}

TEST(StringRows, StrtodStoresWhereItStopped) {
  const char* end = nullptr;
  std::string source = "1.5e3xyz";
  EXPECT_EQ(realValue(call("strtod", {address(source.c_str()), address(&end)})), 1500.0);
  EXPECT_EQ(end, source.c_str() + 5);
  EXPECT_EQ(text(call("strtod", {blobLeaf("1"), realLeaf(0)})), "Z");
}

TEST(StringRows, StrerrorTakesTheLanguagesNumbers) {
  EXPECT_STREQ(reinterpret_cast<const char*>(termToInt64(call("strerror", {int64ToTerm(2)}))), std::strerror(ENOENT));
  // 140 is the language's EWOULDBLOCK: the host's message for EAGAIN.
  EXPECT_STREQ(reinterpret_cast<const char*>(termToInt64(call("strerror", {int64ToTerm(140)}))), std::strerror(EAGAIN));
  EXPECT_STREQ(reinterpret_cast<const char*>(termToInt64(call("strerror", {int64ToTerm(128)}))),
               std::strerror(ENOTSOCK));
}

TEST(StringRowsDeathTest, StrtolAndStrtoulReadAThirdArgumentThatIsNotThere) {
  EXPECT_EQ(findBuiltin("strtol")->arity, 2);
  EXPECT_EQ(findBuiltin("strtoul")->arity, 2);
  EXPECT_DEATH(call("strtol", {blob("12"), int64ToTerm(0)}), "ASSERTION FAILED:strings.cpp");
  EXPECT_DEATH(call("strtoul", {blob("12"), int64ToTerm(0)}), "ASSERTION FAILED:strings.cpp");
}

}  // namespace
}  // namespace tarn
