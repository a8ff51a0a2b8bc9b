// Names, the byte table, bracket codes, the shorthand and the bracket-tree
// operations.
#include <gtest/gtest.h>

#include <set>

#include "terms/alphabet.h"
#include "terms/texts.h"

namespace tarn {
namespace {

// The lists that the bytes "a" (table entry 54) and 0 (entry 19) stand for:
// bracketCode(199) and bracketCode(164), worked out along the square shells.
constexpr std::string_view kListOfA = "[[[]][[][]][[]]]";
constexpr std::string_view kListOfNul = "[[[[]][[]]][[][]][][]]";

TEST(Texts, NameShapes) {
  for (std::string_view yes : {"+", "plus_one", "_", "Z", "\x01", "\x7f", "\xff", "{", ","})
    EXPECT_TRUE(isName(yes)) << yes;
  for (std::string_view no : {"", "plus1", "Ab", "0", " ", "[", ")", "[+]", "++"}) EXPECT_FALSE(isName(no)) << no;
  for (std::string_view yes : {"[+]", "[\\]", "[{]", "[,]", "plus_one", "A", "\x05", "\x80"})
    EXPECT_TRUE(isDefinableName(yes)) << yes;
  for (std::string_view no : {"+", "{", "", "[A]", "[[]", "[+", "plus1", "[ab]"})
    EXPECT_FALSE(isDefinableName(no)) << no;
  EXPECT_TRUE(plainName("[+]") == "+" && plainName("[\\]") == "\\" && plainName("plus") == "plus");
  EXPECT_DEATH((void)plainName("+"), "ASSERTION FAILED");
  EXPECT_TRUE(isLocalLetter("a") && isLocalLetter("z"));
  for (std::string_view no : {"ab", "A", "_", ""}) EXPECT_FALSE(isLocalLetter(no)) << no;
}

TEST(Texts, ByteTablePairs) {
  struct Pair {
    uint8_t cls;
    unsigned char glyph;
    int byte;
  };
  // The class-2 code at its edges, then classes 1 and 3. (The report's
  // rendering reads the whole table backwards: report_test.cpp.)
  const Pair pairs[] = {{2, 'J', 0},   {2, 'j', 0},    {2, ',', 10},  {2, 'K', 11},  {2, '~', 127},
                        {2, '!', 128}, {2, '\\', 143}, {2, ']', 255}, {1, 'A', 193}, {3, '[', '['}};
  for (const Pair& p : pairs) EXPECT_EQ(byteOfPair(p.cls, p.glyph), p.byte) << p.glyph;
  // Table entries at some run boundaries: index, byte.
  const int entries[][2] = {{0, 151}, {52, 32}, {145, '_' + 128}, {239, 31}, {246, '['}, {255, 150}};
  for (const auto& e : entries) EXPECT_EQ(tableByte(e[0]), e[1]) << e[0];
  // Every byte is denoted exactly once.
  std::set<int> seen;
  for (int i = 0; i < 256; i++) {
    seen.insert(tableByte(i));
    EXPECT_EQ(tableIndexOf(tableByte(i)), i);
  }
  EXPECT_EQ(seen.size(), 256u);
  EXPECT_DEATH(byteOfPair(2, ' '), "ASSERTION FAILED");
}

TEST(Texts, BracketCodesAndTheShorthand) {
  const std::string_view first[] = {"[]", "[[]]", "[[][]]", "[[[]]]", "[[[]][]]", "[[][][]]"};
  for (int n = 0; n < 6; n++) EXPECT_EQ(bracketCode(n), first[n]) << n;
  EXPECT_EQ(bracketCode(199), kListOfA);
  EXPECT_EQ(bracketCode(164), kListOfNul);
  // The numbering is one-to-one, and every code is a balanced list.
  std::set<std::string_view> codes;
  for (int n = 0; n <= 676; n++) {
    std::string_view c = bracketCode(n);
    codes.insert(c);
    long depth = 0;
    for (size_t i = 0; i < c.size(); i++) {
      depth += c[i] == '[' ? 1 : -1;
      ASSERT_TRUE(depth > 0 || i + 1 == c.size()) << n;
    }
    EXPECT_EQ(depth, 0);
  }
  EXPECT_EQ(codes.size(), 677u);
  EXPECT_DEATH((void)bracketCode(677), "ASSERTION FAILED");

  // Byte b stands for the code of its table entry plus 145, both ways.
  EXPECT_EQ(shorthandText('a'), kListOfA);
  EXPECT_EQ(shorthandText(0), kListOfNul);
  EXPECT_TRUE(shorthandText('[').empty() && shorthandText(']').empty());
  for (std::string_view none : {std::string_view("[]"), std::string_view("a"), bracketCode(144), bracketCode(401)})
    EXPECT_EQ(shorthandByte(none), -1) << none;
  for (int b = 0; b < 256; b++) {
    if (b == '[' || b == ']') continue;
    std::string_view text = shorthandText(static_cast<unsigned char>(b));
    EXPECT_EQ(text, bracketCode(tableIndexOf(static_cast<unsigned char>(b)) + 145));
    EXPECT_EQ(shorthandByte(text), b);
  }
}

TEST(Texts, BracketLeftRightAndJoin) {
  // text, left, right: a one-byte last element comes out as its list.
  const std::string_view splits[][3] = {{"[[a][b]]", "[[a]]", "[b]"},
                                        {"[xa]", "[x]", kListOfA},
                                        {"[a]", "[]", kListOfA},
                                        {"[[]]", "[]", "[]"},
                                        {"[x[[]a]]", "[x]", "[[]a]"},
                                        {"[ab c]", "[ab ]", shorthandText('c')},
                                        {std::string_view("[a\0]", 4), "[a]", kListOfNul}};
  for (const auto& s : splits) {
    EXPECT_EQ(bracketLeftText(s[0]), s[1]) << s[0];
    EXPECT_EQ(bracketRightText(s[0]), s[2]) << s[0];
    // Joining the parts gives the text back, shorthand included.
    EXPECT_EQ(bracketJoin(s[1], s[2]), s[0]) << s[0];
  }
  EXPECT_EQ(bracketJoin("[]", "[]"), "[[]]");
  EXPECT_EQ(bracketJoin("[a]", "[b]"), "[a[b]]");

  // On terms: an application gives its children, a leaf its parts as leaves.
  Term l = leaf("[x]"), r = leaf("[y]");
  Term pair = App(l, r);
  EXPECT_TRUE(bracketLeft(pair).same(l));
  EXPECT_TRUE(bracketRight(pair).same(r));
  Term right = bracketRight(leaf("[xa]"));
  EXPECT_EQ(textOf(bracketLeft(leaf("[xa]"))), "[x]");
  EXPECT_EQ(textOf(right), kListOfA);
  EXPECT_EQ(right.node()->size(), kListOfA.size());  // a proper bracket leaf
}

TEST(Texts, FlattenJoinsChildrenAtAnyDepth) {
  EXPECT_EQ(flatten(leaf("[ab]")), "[ab]");
  EXPECT_EQ(flatten(App(leaf("[x]"), leaf(kListOfA))), "[xa]");
  EXPECT_EQ(flatten(App(App(leaf("[]"), leaf("[x]")), leaf("[]"))), "[[x][]]");
  // A right part that flattens to a shorthand list is contracted too; a
  // nested list that is no key stays as it is.
  std::string keyLeft = bracketLeftText(kListOfA), keyRight = bracketRightText(kListOfA);
  EXPECT_EQ(flatten(App(leaf("[x]"), App(leaf(keyLeft), leaf(keyRight)))), "[xa]");
  EXPECT_EQ(flatten(App(leaf("[]"), App(leaf("[]"), leaf(kListOfA)))), "[[a]]");

  // A million characters appended one by one, and a tree nested a hundred
  // thousand deep on the right.
  constexpr int kLong = 1000000, kDeep = 100000;
  Term list = leaf("[]");
  Term a = leaf(kListOfA);
  for (int i = 0; i < kLong; i++) list = App(std::move(list), a);
  EXPECT_EQ(flatten(list), "[" + std::string(kLong, 'a') + "]");
  Term nest = leaf("[]");
  for (int i = 0; i < kDeep; i++) nest = App(leaf("[]"), std::move(nest));
  EXPECT_EQ(flatten(nest), std::string(kDeep + 1, '[') + std::string(kDeep + 1, ']'));
}

}  // namespace
}  // namespace tarn
