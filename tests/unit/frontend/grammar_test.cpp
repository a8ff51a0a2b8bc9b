// The expression grammar, shown through the exact trees it builds. Inputs are
// written already normalised, as the parser receives them.
#include <gtest/gtest.h>

#include <string>

#include "driver/stack.h"
#include "frontend/grammar.h"
#include "tests/unit/frontend/tree_dump.h"

namespace tarn {
namespace {

using testing::treeOf;

std::string parsed(std::string_view text) { return treeOf(parseExpression(text)); }

// The worked examples and edge cases, and the order of the levels; random
// texts against a plain transcription of the levels are in
// grammar_reference_test.cpp.
TEST(Grammar, TreesOfTheLevels) {
  const std::pair<std::string_view, std::string_view> rows[] = {
      // Grouping direction.
      {"a;b;c", "(([;] a) (([;] b) c))"},
      {"8-3-2", "(([-] (([-] 8) 3)) 2)"},
      // Level order: one operator of every infix level, loosest on the left,
      // then on the right; space between comparison and arithmetic.
      {"a;b?c&d=e@f+g*h^i",
       "(([;] a) (([?] b) (([&] c) (([=] d) (([@] e) (([+] f) (([*] g) (([^] h) i))))))))"},
      {"a^b*c+d@e=f&g?h;i",
       "(([;] (([?] (([&] (([=] (([@] (([+] (([*] (([^] a) b)) c)) d)) e)) f)) g)) h)) i)"},
      {"f x+1", "(f (([+] x) 1))"},
      {"a*b c", "((([*] a) b) c)"},
      {"a b(c)", "(a (b c))"},
      // A newline swaps its operands.
      {"a\nb", "(b a)"},
      // Wings: pieces are whole expressions; wings group to the right.
      {"a{x,y}b", "((([{] a) (([,] x) y)) b)"},
      {"a\\x{1+2,f y}x;z", "(([\\] a) ((([{] x) (([,] (([+] 1) 2)) (f y))) (([;] x) z)))"},
      // Empty texts are the brace leaf.
      {"", "[}]"},
      {"!", "([!] [}])"},
      // Unary operators: prefix and postfix alike.
      {"!x", "([!] x)"},
      {"f~x!y", "((f ([~] x)) ([!] y))"},  // a tight operator chain
      // Tight call chains: element boundaries and argument lists.
      {"SKK", "((S K) K)"},
      {"f(a,b)c", "(((f a) b) c)"},
      {"f(g(x),[lit])", "((f (g x)) [lit])"},
      // Literals are whole leaves, spaces kept.
      {"[a b]c", "([a b] c)"},
      // A word keeps a stray comma as part of its leaf; capitals, control and
      // high bytes are elements of their own.
      {"((a,b))", "(a, b)"},
      {"x\x7f\x01y", "(((x [\x7f]) [\x01]) y)"},
  };
  for (auto [text, tree] : rows) EXPECT_EQ(parsed(text), tree) << text;
}

TEST(Grammar, TheNulByteIsTheEmptyVector) {
  Term t = parseExpression(std::string_view("f\0", 2));
  EXPECT_EQ(treeOf(t), "(f cray)");
  EXPECT_EQ(t.right().node()->size(), 0u);
  EXPECT_EQ(textOf(parseExpression("[a b]c").left()), "[a b]");
}

TEST(Grammar, StrayCommaBehindAOneByteElementStops) {
  // The comma is no element boundary, so "S," is one element of two bytes
  // that is no word or number: the atom level's fatal assertion. The bracket
  // check lets "f((S,x))" through, since the inner parenthesis follows "(".
  EXPECT_DEATH(parseExpression("(S,x)"), "ASSERTION FAILED");
  EXPECT_DEATH(parseExpression("f((\xff,x))"), "ASSERTION FAILED");
}

// The depth of a chain of right children.
size_t depthOf(const Term& t) {
  size_t depth = 0;
  for (const Term* p = &t; p->isApp(); p = &p->right()) depth++;
  return depth;
}

// Deep argument lists and unary chains; nested parentheses and long left and
// right spines are programs in tests/depth.
TEST(Grammar, DeepCallsAndUnaryChainsParse) {
  runWithLargeStack([] {
    constexpr int kDepth = 10000;
    std::string calls, mixed;
    for (int i = 0; i < kDepth; i++) calls += "f(", mixed += "!(a+";
    EXPECT_EQ(depthOf(parseExpression(calls + "x" + std::string(kDepth, ')'))), size_t(kDepth));
    EXPECT_EQ(depthOf(parseExpression(mixed + "b" + std::string(kDepth, ')'))), size_t(2 * kDepth));
  });
}

}  // namespace
}  // namespace tarn
