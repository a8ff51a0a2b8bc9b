// The expression grammar, shown through the exact trees it builds. Inputs are
// written already normalised, as the parser receives them.
#include <gtest/gtest.h>

#include <string>

#include "driver/stack.h"
#include "frontend/grammar.h"
#include "reduction/printer.h"
#include "tests/unit/frontend/tree_dump.h"

namespace tarn {
namespace {

using testing::treeOf;

std::string parsed(std::string_view text) { return treeOf(parseExpression(text)); }

TEST(Grammar, RightGroupingLevels) {
  EXPECT_EQ(parsed("a;b;c"), "(([;] a) (([;] b) c))");
  EXPECT_EQ(parsed("a\\b\\c"), "(([\\] a) (([\\] b) c))");
  EXPECT_EQ(parsed("a&b|c"), "(([&] a) (([|] b) c))");
  EXPECT_EQ(parsed("a=b<c>d#e"), "(([=] a) (([<] b) (([>] c) (([#] d) e))))");
  EXPECT_EQ(parsed("2^3^2"), "(([^] 2) (([^] 3) 2))");
}

TEST(Grammar, LeftGroupingLevels) {
  EXPECT_EQ(parsed("a?b?c"), "(([?] (([?] a) b)) c)");
  EXPECT_EQ(parsed("a@b@c"), "(([@] (([@] a) b)) c)");
  EXPECT_EQ(parsed("a b c"), "((a b) c)");
  EXPECT_EQ(parsed("8-3-2"), "(([-] (([-] 8) 3)) 2)");
  EXPECT_EQ(parsed("a+b:c.d"), "(([.] (([:] (([+] a) b)) c)) d)");
  EXPECT_EQ(parsed("a*b/c%d'e"), "((['] (([%] (([/] (([*] a) b)) c)) d)) e)");
}

TEST(Grammar, LevelOrderLoosestFirst) {
  EXPECT_EQ(parsed("1+2*3"), "(([+] 1) (([*] 2) 3))");
  EXPECT_EQ(parsed("f x+1"), "(f (([+] x) 1))");
  EXPECT_EQ(parsed("a*b c"), "((([*] a) b) c)");
  EXPECT_EQ(parsed("a b=c"), "(([=] (a b)) c)");
  // One operator of every infix level, loosest on the left, then on the right.
  EXPECT_EQ(parsed("a;b?c&d=e@f+g*h^i"),
            "(([;] a) (([?] b) (([&] c) (([=] d) (([@] e) (([+] f) (([*] g) (([^] h) i))))))))");
  EXPECT_EQ(parsed("a^b*c+d@e=f&g?h;i"),
            "(([;] (([?] (([&] (([=] (([@] (([+] (([*] (([^] a) b)) c)) d)) e)) f)) g)) h)) i)");
  EXPECT_EQ(parsed("x\\y"), "(([\\] x) y)");
  EXPECT_EQ(parsed("a\\b\\c"), "(([\\] a) (([\\] b) c))");
}

TEST(Grammar, SpaceAgainstAt) {
  EXPECT_EQ(parsed("a@b"), "(([@] a) b)");
  EXPECT_EQ(parsed("a b"), "(a b)");
  EXPECT_EQ(parsed("a b(c)"), "(a (b c))");
}

TEST(Grammar, NewlineSwapsItsOperands) {
  EXPECT_EQ(parsed("a\nb"), "(b a)");
  EXPECT_EQ(parsed("a\nb\nc"), "(c (b a))");
  EXPECT_EQ(parsed("(a\nb)"), "(b a)");
  EXPECT_EQ(parsed("f\ng x"), "((g x) f)");
  EXPECT_EQ(parsed("a?b\nc"), "(c (([?] a) b))");
}

TEST(Grammar, Wings) {
  EXPECT_EQ(parsed("a{x,y}b"), "((([{] a) (([,] x) y)) b)");
  EXPECT_EQ(parsed("a{x,y,z}b"), "((([{] a) (([,] x) (([,] y) z))) b)");
  EXPECT_EQ(parsed("x{w}y"), "((([{] x) w) y)");
  EXPECT_EQ(parsed("x{}y"), "((([{] x) [}]) y)");
  EXPECT_EQ(parsed("{w}y"), "((([{] [}]) w) y)");
  // A wing's pieces are whole expressions, and wings group to the right among
  // the other level-1 operators.
  EXPECT_EQ(parsed("a\\x{1+2,f y}x;z"),
            "(([\\] a) ((([{] x) (([,] (([+] 1) 2)) (f y))) (([;] x) z)))");
  EXPECT_EQ(parsed("p{a}q{b}r"), "((([{] p) a) ((([{] q) b) r))");
}

TEST(Grammar, EmptyTextsAreTheBraceLeaf) {
  EXPECT_EQ(parsed(""), "[}]");
  EXPECT_EQ(parsed("()"), "[}]");
  EXPECT_EQ(parsed("f()"), "(f [}])");
  EXPECT_EQ(parsed("f(a,)"), "((f a) [}])");
  EXPECT_EQ(parsed("a;"), "(([;] a) [}])");
  EXPECT_EQ(parsed("+"), "(([+] [}]) [}])");
  EXPECT_EQ(parsed("!"), "([!] [}])");
}

TEST(Grammar, UnaryPrefixAndPostfix) {
  EXPECT_EQ(parsed("x!"), parsed("!x"));
  EXPECT_EQ(parsed("!x"), "([!] x)");
  EXPECT_EQ(parsed("~x"), "([~] x)");
  EXPECT_EQ(parsed("\"x"), "([\"] x)");
  EXPECT_EQ(parsed("$x"), "([$] x)");
  EXPECT_EQ(parsed("`x"), "([`] x)");
  EXPECT_EQ(parsed("x!~"), "([~] ([!] x))");
  EXPECT_EQ(parsed("!~x"), "([!] ([~] x))");
  EXPECT_EQ(parsed("!x~"), "([~] ([!] x))");  // postfix is taken first
  EXPECT_EQ(parsed("!a+~b"), "(([+] ([!] a)) ([~] b))");
}

TEST(Grammar, TightOperatorChain) {
  EXPECT_EQ(parsed("f~x!y"), "((f ([~] x)) ([!] y))");
  EXPECT_EQ(parsed("f~!x"), "(f ([~] ([!] x)))");
  EXPECT_EQ(parsed("$f~x"), "([$] (f ([~] x)))");
  EXPECT_EQ(parsed("f~(a!)b"), "(f ([~] (([!] a) b)))");
  EXPECT_EQ(parsed("S~KK"), "(S ([~] (K K)))");
}

TEST(Grammar, TightCallChain) {
  EXPECT_EQ(parsed("SKK"), "((S K) K)");
  EXPECT_EQ(parsed("Va b"), "((V a) b)");
  EXPECT_EQ(parsed("AbC"), "((A b) C)");
  EXPECT_EQ(parsed("ab1"), "(ab 1)");
  EXPECT_EQ(parsed("ab12"), "(ab 12)");
  EXPECT_EQ(parsed("12ab"), "(12 ab)");
  EXPECT_EQ(parsed("a_b1_c"), "((a_b 1) _c)");
  EXPECT_EQ(parsed("f(a,b)c"), "(((f a) b) c)");
  EXPECT_EQ(parsed("f(g(a,b),c)"), "((f ((g a) b)) c)");
  EXPECT_EQ(parsed("f(g(x),[lit])"), "((f (g x)) [lit])");
  EXPECT_EQ(parsed("K(x)(y)"), "((K x) y)");
  EXPECT_EQ(parsed("(f)(x)"), "(f x)");
  EXPECT_EQ(parsed("(S)K"), "(S K)");
  EXPECT_EQ(parsed("f(a b,c+d)"), "((f (a b)) (([+] c) d))");
}

TEST(Grammar, LiteralsAreWholeLeaves) {
  EXPECT_EQ(parsed("[a b]c"), "([a b] c)");
  EXPECT_EQ(parsed("[a][b]"), "([a] [b])");
  EXPECT_EQ(parsed("a[b]"), "(a [b])");
  EXPECT_EQ(parsed("[(]x"), "([(] x)");  // a parenthesis in a literal is inert
  EXPECT_EQ(parsed("[[a]b]"), "[[a]b]");
  EXPECT_EQ(parsed("f([,],[\n])"), "((f [,]) [\n])");
  Term lit = parseExpression("[a b]c").left();
  EXPECT_EQ(textOf(lit), "[a b]");
  EXPECT_EQ(lit.node()->size(), 5u);
}

TEST(Grammar, AtomsOfOddBytes) {
  // A word keeps a stray comma behind it as part of its leaf.
  EXPECT_EQ(parsed("((a,b))"), "(a, b)");
  // Capitals, control and high bytes are elements of their own.
  EXPECT_EQ(parsed("x\x7f\x01y"), "(((x [\x7f]) [\x01]) y)");
  // The byte 0 reads as the empty vector.
  Term t = parseExpression(std::string_view("f\0", 2));
  ASSERT_TRUE(t.isApp());
  EXPECT_EQ(textOf(t.left()), "f");
  EXPECT_EQ(t.right().first(), '\n');
  EXPECT_EQ(t.right().node()->size(), 0u);
  EXPECT_EQ(treeOf(parseExpression(std::string_view("\0", 1))), "cray");
}

TEST(Grammar, StrayCommaBehindAOneByteElementStops) {
  // The comma is no element boundary, so "S," is one element of two bytes
  // that is no word or number: the atom level's fatal assertion. The bracket
  // check lets "f((S,x))" through, since the inner parenthesis follows "(".
  EXPECT_DEATH(parseExpression("(S,x)"), "ASSERTION FAILED");
  EXPECT_DEATH(parseExpression("f((\xff,x))"), "ASSERTION FAILED");
}

TEST(Grammar, NumbersAndWordsAreLeavesOfTheirText) {
  Term n = parseExpression("1234");
  ASSERT_TRUE(n.isLeaf());
  EXPECT_EQ(textOf(n), "1234");
  EXPECT_EQ(n.node()->size(), 4u);
  EXPECT_EQ(textOf(parseExpression("plus_one")), "plus_one");
}

// Walks down a chain of right children and counts the depth.
size_t rightDepth(const Term& t) {
  size_t depth = 0;
  const Term* p = &t;
  while (p->isApp()) {
    p = &p->right();
    depth++;
  }
  return depth;
}

TEST(Grammar, DeepNestingParses) {
  runWithLargeStack([] {
    constexpr int kDepth = 10000;
    std::string parens = std::string(kDepth, '(') + "a" + std::string(kDepth, ')');
    Term t = parseExpression(parens);
    EXPECT_TRUE(t.isLeaf());
    EXPECT_EQ(textOf(t), "a");

    std::string calls;
    for (int i = 0; i < kDepth; i++) calls += "f(";
    calls += "x" + std::string(kDepth, ')');
    Term c = parseExpression(calls);
    EXPECT_EQ(rightDepth(c), size_t(kDepth));

    std::string mixed;
    for (int i = 0; i < kDepth; i++) mixed += "!(a+";
    mixed += "b" + std::string(kDepth, ')');
    Term m = parseExpression(mixed);
    EXPECT_EQ(rightDepth(m), size_t(2 * kDepth));
  });
}

TEST(Grammar, LongFlatTextsParse) {
  std::string sum = "a";
  for (int i = 0; i < 100000; i++) sum += "+a";
  Term t = parseExpression(sum);
  // Left grouping: the chain goes down the left side.
  size_t depth = 0;
  for (const Term* p = &t; p->isApp(); p = &p->left().right()) depth++;
  EXPECT_EQ(depth, 100000u);
  std::string s = printTerm(t);
  EXPECT_EQ(s.substr(0, 10), "(+ (+ (+ (");
}

}  // namespace
}  // namespace tarn
