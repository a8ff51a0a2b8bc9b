// The structure check with its messages, the comma rule, normalisation, and
// the three splitting helpers.
#include <gtest/gtest.h>

#include "frontend/scan.h"
#include "terms/texts.h"

namespace tarn {
namespace {

struct Checked {
  bool ok;
  Report report;
  long position = -1;
};

Checked check(std::string_view text) {
  Checked c;
  c.ok = checkStructure(text, c.report, c.position);
  return c;
}

// The golden programs in tests/programs/scan print the common reports whole;
// here the rest of the cases, and the position handed back.
TEST(Scan, BracketMessages) {
  // Text, message: the kind named is the offending byte's; the innermost
  // open bracket is reported; parentheses are inert inside a literal.
  const std::pair<std::string, std::string_view> cases[] = {
      {"[[]", "Dangling left-bracket at [_____]."},
      {"(a(", "Dangling left-parenthesis at [____b]."},
      {"((a)", "Dangling left-parenthesis at [_____]."},
      {"x{(y})", "'(' at [____b] doesn't fit '}' at [____d]."}};
  for (const auto& [text, say] : cases) {
    Checked c = check(text);
    EXPECT_FALSE(c.ok);
    EXPECT_EQ(c.report.say, say) << text;
    EXPECT_EQ(c.report.tag, "match");
    EXPECT_EQ(c.report.vip, say.substr(say.find('[') + 1, 5));
    EXPECT_EQ(positionText(c.position), c.report.vip);
  }
  Checked c = check("(]");
  EXPECT_EQ(c.report.vip + " " + c.report.tip, "_____ ____a");
  EXPECT_EQ(c.position, 0);
}

TEST(Scan, SoundStructures) {
  for (std::string_view t : {"", "[)]", "(a[)]b)", "{[}]}", "[a\n(b\n]", "f(a,b)", "1,2,3", "a{x,y}b",
                             "((a,b))", "f(a)(b,c)", "[f](a,b)", "{(a,b)}", "([,])", "(a),(b)", "x!(a,b)"})
    EXPECT_TRUE(check(t).ok) << t;
}

TEST(Scan, CommaRule) {
  // White space and operators before "(" leave nothing to call; a nested
  // group is judged by the byte before it.
  const std::pair<std::string_view, long> cases[] = {{"x=(a,b)", 4}, {"g\n(a,b)", 4}, {"(a,(b,c))", 5}, {"(a,b)(c)", 2}};
  for (auto [text, position] : cases) {
    Checked c = check(text);
    EXPECT_EQ(c.report.tag, "comma") << text;
    EXPECT_EQ(c.position, position) << text;
  }
}

TEST(Scan, Normalise) {
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"a  b", "a b"}, {"a \n b", "a\nb"}, {"a\n\n  b", "a\nb"}, {"a + b", "a+b"},
      {"a +\n b", "a+b"}, {"( a )", "(a)"}, {"{ a }", "{a}"}, {"a {b} c", "a{b}c"}, {"f (x)\n(y)", "f (x)\n(y)"},
      {"  \n ", ""}, {"", ""}, {"\n x \n", "x"}, {"a , b", "a,b"}, {"x\\ y", "x\\y"},
      // Literals keep their white space, and the space before one stays.
      {"f [ a  b\n c ]", "f [ a  b\n c ]"}, {"[a [ ]]  x", "[a [ ]] x"},
      // Bytes that are no operators keep their neighbours apart.
      {"a ! b", "a ! b"}, {"a $ ~b", "a $ ~b"}, {"a\t b", "a\t b"}};
  for (auto [text, want] : rows) EXPECT_EQ(normalise(text), want) << text;
}

TEST(Scan, Helpers) {
  // Both ways, a literal's inner parenthesis inert; a plain byte is its own match.
  for (auto [from, to] : {std::pair{0, 6}, {6, 0}, {2, 4}, {4, 2}, {1, 1}})
    EXPECT_EQ(matchBracket("(a[)]b)", from), to) << from;
  EXPECT_EQ(matchBracket("{a(b)}", 0), 5);  // "(" and "{" count alike
  EXPECT_EQ(matchBracket("[[(]]", 0), 4);
  EXPECT_DEATH((void)matchBracket("(a", 0), "ASSERTION FAILED");

  EXPECT_EQ(splitPoints("a,b(c,d),[e,f],g", ","), (std::vector<long>{1, 8, 14}));
  EXPECT_EQ(splitPoints("", ","), std::vector<long>{});
  EXPECT_EQ(splitPoints("a+b-c", "+-"), (std::vector<long>{1, 3}));

  // (Random sound texts hold splitPoints and findOutside to each other in
  // scan_fuzz_test.cpp.)
  EXPECT_EQ(findOutside(0, "({a,[,]}),b", ","), 9);
  EXPECT_EQ(findOutside(2, "a,b,c", ","), 3);
  EXPECT_EQ(findOutside(0, "(a,b)", ","), -1);
}

}  // namespace
}  // namespace tarn
