// Normalisation and the three splitting helpers. The structure check's
// messages and positions are the golden programs in tests/programs/scan, and
// random texts through all of it are scan_fuzz_test.cpp's.
#include <gtest/gtest.h>

#include "frontend/scan.h"
#include "terms/texts.h"

namespace tarn {
namespace {

TEST(Scan, Normalise) {
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"a  b", "a b"}, {"a\n\n  b", "a\nb"}, {"a +\n b", "a+b"}, {"( a )", "(a)"}, {"a {b} c", "a{b}c"},
      {"f (x)\n(y)", "f (x)\n(y)"}, {"  \n ", ""}, {"\n x \n", "x"}, {"a , b", "a,b"},
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
