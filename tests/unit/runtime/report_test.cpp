// Coloured bytes, short names and excerpts. The banner, its fields in order,
// is printed whole by the golden programs, and a report's text form travels
// whole (or cut, when unbalanced) in the road programs.
#include <gtest/gtest.h>

#include "runtime/report.h"
#include "terms/texts.h"

namespace tarn {
namespace {

constexpr std::string_view kRed = "\033[31m", kGreen = "\033[32m", kPlain = "\033[m";

TEST(Report, ShowBytesColoursAndGlyphs) {
  auto s = [](std::string_view a, std::string_view b = {}, std::string_view c = {},
              std::string_view d = {}, std::string_view e = {}) {
    return std::string(a) + std::string(b) + std::string(c) + std::string(d) + std::string(e);
  };
  // A run of one class shares its colour; a change of class switches it.
  EXPECT_EQ(showBytes(std::string_view("\0\xc8\xff", 3)), s(kGreen, "J", kRed, "H", s(kGreen, "]", kPlain)));
  EXPECT_EQ(showBytes("\x01\x02 "), s(kGreen, "AB ", kPlain));
  EXPECT_EQ(showBytes("a\nb"), s("a", kGreen, ",", kPlain, "b"));
  EXPECT_DEATH((void)showBytes("a\xa0"), "ASSERTION FAILED");
}

// Apart from byte 160, the rendering reads the byte table backwards: class 1
// red, class 2 green, class 3 plain, with the table's glyph (a space shows as
// itself).
TEST(Report, ShowBytesAgreesWithTheByteTable) {
  for (int b = 0; b < 256; b++) {
    if (b == 160) continue;
    std::string shown = showBytes(std::string(1, char(b)));
    int index = tableIndexOf(static_cast<unsigned char>(b));
    int cls = byteClass[size_t(index)];
    std::string glyph = b == ' ' ? " " : std::string(1, byteGlyph[size_t(index)]);
    std::string want = cls == 3 ? glyph
                       : cls == 1 ? std::string(kRed) + glyph + std::string(kPlain)
                                  : std::string(kGreen) + glyph + std::string(kPlain);
    EXPECT_EQ(shown, want) << "byte " << b;
  }
}

TEST(Report, ShortNames) {
  const std::pair<std::string, std::string> rows[] = {
      {"abcde", "abcde \""}, {"[+]xy", "[+]xy \""}, {"abcd", "abcd"}, {"abcdef", "abcdef"}, {"", ""},
      {std::string(72, 'x'), std::string(72, 'x')}, {std::string(73, 'x'), std::string(69, 'x') + "..."}};
  for (const auto& [name, want] : rows) EXPECT_EQ(shortName(name), want) << name;
}

TEST(Report, ExcerptsStayBalancedWithinTheLimit) {
  EXPECT_EQ(excerpt(std::string(100, '(')), std::string(36, '(') + std::string(36, ')'));
  EXPECT_EQ(excerpt(std::string(100, 'a')), std::string(72, 'a'));
  EXPECT_EQ(excerpt(std::string(70, 'a') + "(b)"), std::string(70, 'a') + "()");
  EXPECT_EQ(excerpt(std::string(71, 'a') + "(b)"), std::string(71, 'a'));
  EXPECT_EQ(excerpt(std::string(69, 'a') + "(b)"), std::string(69, 'a') + "(b)");
  // Inside a literal parentheses are plain bytes and only "[" needs room.
  EXPECT_EQ(excerpt("[" + std::string(100, '(')), "[" + std::string(70, '(') + "]");
  EXPECT_EQ(excerpt("a[b(c]d"), "a[b(c]d");
  EXPECT_EQ(excerpt("f(x[y"), "f(x[y])");
  // Braces count in excerpt, not in excerptPlain.
  EXPECT_EQ(excerpt("{a(b"), "{a(b)}");
  EXPECT_EQ(excerptPlain("{a(b"), "{a(b)");
  EXPECT_EQ(excerpt("(a}"), "(a}");
  EXPECT_EQ(excerptPlain("(a}"), "(a})");
  // A closer with nothing open is copied like any byte.
  EXPECT_EQ(excerpt("a)b]c}"), "a)b]c}");
  EXPECT_EQ(excerpt(""), "");
}

}  // namespace
}  // namespace tarn
