// The term printer: leaf forms, the five application rules, and terms too
// deep or too long for a recursive printer.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "driver/stack.h"
#include "reduction/printer.h"
#include "terms/alphabet.h"

namespace tarn {
namespace {

Term realLeaf(double v) {
  std::string text(9, ' ');
  std::memcpy(text.data() + 1, &v, sizeof v);
  return leaf(text);
}

Term blobLeaf(std::string_view bytes) {
  return leaf("(" + alphabetNumber(bytes.size()) + ")" + std::string(bytes));
}

Term vectorOf(std::initializer_list<Term> elements) {
  Term v = vectorLeaf(elements.size());
  size_t i = 0;
  for (const Term& e : elements) setElement(v, i++, e);
  return v;
}

Term W(std::string_view text) { return leaf(text); }

TEST(Printer, PlainLeavesPrintTheirText) {
  EXPECT_EQ(printTerm(W("plus_one")), "plus_one");
  EXPECT_EQ(printTerm(W("1234")), "1234");
  EXPECT_EQ(printTerm(W("[a b]")), "[a b]");
  EXPECT_EQ(printTerm(leafByte('+')), "+");
  EXPECT_EQ(printTerm(leafByte('}')), "}");
}

TEST(Printer, MarkersPrintAsAnEmptyPair) {
  EXPECT_EQ(printTerm(W(")plus")), "()");
  EXPECT_EQ(printTerm(W("]['[x]]")), "()");
  EXPECT_EQ(printTerm(leafByte(')')), "()");
  EXPECT_EQ(printTerm(emptyLeaf()), "()");
  // A marker is no parenthesised list: what follows it is not merged in.
  EXPECT_EQ(printTerm(App(W(")x"), W("y"))), "()y");
  EXPECT_EQ(printTerm(App(W("f"), W(")x"))), "(f ())");
}

TEST(Printer, RealsAndBlobs) {
  EXPECT_EQ(printTerm(realLeaf(1.5)), "real[1.500000e+00]");
  EXPECT_EQ(printTerm(realLeaf(-2e-300)), "real[-2.000000e-300]");
  EXPECT_EQ(printTerm(realLeaf(INFINITY)), "real[inf]");
  EXPECT_EQ(printTerm(realLeaf(-INFINITY)), "real[-inf]");
  EXPECT_EQ(printTerm(blobLeaf("[]")), "cape[[q][r]]");
  EXPECT_EQ(printTerm(blobLeaf("a\nb]c[")), "cape[a[p]b[r]c[q]]");
  EXPECT_EQ(printTerm(W("()")), "cape[]");  // a blob with an empty count
  // A count of two digits, and bytes that hold ")" and NUL.
  std::string bytes(70, 'x');
  bytes[3] = ')';
  bytes[5] = '\0';
  std::string want = "cape[" + bytes + "]";
  EXPECT_EQ(printTerm(blobLeaf(bytes)), want);
}

TEST(Printer, Vectors) {
  EXPECT_EQ(printTerm(vectorLeaf(0)), "cray");
  EXPECT_EQ(printTerm(vectorOf({W("a"), W("b")})), "(/ (/ cray a) b)");
  EXPECT_EQ(printTerm(vectorLeaf(2)), "(/ (/ cray Z) Z)");  // empty slots
  EXPECT_EQ(printTerm(vectorOf({vectorOf({W("x")}), App(W("f"), W("x"))})),
            "(/ (/ cray (/ cray x)) (f x))");
  // A vector is a parenthesised list to the rules around it.
  EXPECT_EQ(printTerm(App(vectorOf({W("a")}), W("y"))), "(/ cray a y)");
  EXPECT_EQ(printTerm(App(W("f"), vectorOf({W("a")}))), "(f (/ cray a))");
  EXPECT_EQ(printTerm(App(W("f"), vectorLeaf(0))), "(f cray)");
  EXPECT_EQ(printTerm(App(W("K"), vectorLeaf(0))), "Kcray");
}

TEST(Printer, ParenthesisedListsStayFlat) {
  EXPECT_EQ(printTerm(App(W("f"), W("x"))), "(f x)");
  EXPECT_EQ(printTerm(App2(W("f"), W("x"), W("y"))), "(f x y)");
  EXPECT_EQ(printTerm(App(W("f"), App(W("g"), W("x")))), "(f (g x))");
  EXPECT_EQ(printTerm(App2(W("f"), App(W("g"), W("x")), W("1"))), "(f (g x) 1)");
  Term shared = App(W("f"), W("f"));
  EXPECT_EQ(printTerm(App(shared, shared)), "(f f (f f))");
}

TEST(Printer, WhenTextsMayTouch) {
  // Capitals and other single bytes sit side by side.
  EXPECT_EQ(printTerm(App(W("B"), W("A"))), "BA");
  EXPECT_EQ(printTerm(App2(W("S"), W("K"), W("K"))), "SKK");
  EXPECT_EQ(printTerm(App(W("K"), W("x"))), "Kx");
  EXPECT_EQ(printTerm(App(W("x"), W("K"))), "xK");
  EXPECT_EQ(printTerm(App(leafByte('\\'), W("a"))), "\\a");
  // A text of several bytes that is not one class is enclosed, and so is one
  // that starts with a byte that is no letter or digit.
  EXPECT_EQ(printTerm(App(W("C"), App(W("A"), W("B")))), "(C AB)");
  EXPECT_EQ(printTerm(App(W("f"), App(W("g"), W("1")))), "(f g1)");
  EXPECT_EQ(printTerm(App2(leafByte('+'), W("1"), W("2"))), "(+1 2)");
  EXPECT_EQ(printTerm(App2(leafByte('\\'), W("a"), W("b"))), "(\\a b)");
  // Words and numbers fuse with their own class only.
  EXPECT_EQ(printTerm(App(W("f"), W("1"))), "f1");
  EXPECT_EQ(printTerm(App(W("f"), W("12"))), "f12");
  EXPECT_EQ(printTerm(App(W("1"), W("x"))), "1x");
  EXPECT_EQ(printTerm(App(W("1"), W("2"))), "(1 2)");
  EXPECT_EQ(printTerm(App(W("ab"), W("cd"))), "(ab cd)");
  EXPECT_EQ(printTerm(App(W("_"), W("a"))), "(_ a)");
  // Reals and blobs mix classes.
  EXPECT_EQ(printTerm(App(W("f"), realLeaf(1))), "(f real[1.000000e+00])");
  EXPECT_EQ(printTerm(App(realLeaf(1), W("x"))), "real[1.000000e+00]x");
  EXPECT_EQ(printTerm(App(W("K"), W("()"))), "(K cape[])");
}

TEST(Printer, BalancedLiteralsSitSideBySide) {
  EXPECT_EQ(printTerm(App(W("12"), W("[a]"))), "12[a]");
  EXPECT_EQ(printTerm(App(W("f"), W("[[a]b]"))), "f[[a]b]");
  EXPECT_EQ(printTerm(App(W("[a]"), W("[b]"))), "[a][b]");
  // Two literals side by side are no longer one bracket group.
  EXPECT_EQ(printTerm(App(W("f"), App(W("[a]"), W("[b]")))), "(f [a][b])");
  EXPECT_EQ(printTerm(App(W("f"), W("[a]b"))), "(f [a]b)");
  EXPECT_EQ(printTerm(App(W("f"), W("[]"))), "f[]");
}

TEST(Printer, DeepAndLongTerms) {
  runWithLargeStack([] {
    constexpr size_t n = 1000000;
    Term chain = W("f");
    for (size_t i = 0; i < n; i++) chain = App(std::move(chain), W("x"));
    std::string s = printTerm(chain);
    ASSERT_EQ(s.size(), 3 + 2 * n);
    EXPECT_EQ(s.substr(0, 6), "(f x x");
    EXPECT_EQ(s.substr(s.size() - 4), "x x)");

    // A list of a million cells nests to the right: (JK (JK ... JKK)).
    Term list = W("K");
    for (size_t i = 0; i < n; i++) list = App2(W("J"), W("K"), std::move(list));
    std::string l = printTerm(list);
    ASSERT_EQ(l.size(), 4 * (n - 1) + 3 + (n - 1));
    EXPECT_EQ(l.substr(0, 12), "(JK (JK (JK ");
    EXPECT_EQ(l.substr(4 * (n - 1), 6), "JKK)))");

    Term nested = vectorLeaf(0);
    for (size_t i = 0; i < 100000; i++) nested = vectorOf({nested});
    std::string v = printTerm(nested);
    EXPECT_EQ(v.size(), 100000 * 9 + 4);
    EXPECT_EQ(v.substr(0, 18), "(/ cray (/ cray (/");
  });
}

}  // namespace
}  // namespace tarn
