// The term printer: the edge cases worked by hand, and terms too deep or too
// long for a recursive printer. Random terms against the rules applied
// literally are in printer_reference_test.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "driver/stack.h"
#include "reduction/printer.h"

namespace tarn {
namespace {

Term vectorOf(std::initializer_list<Term> elements) {
  Term v = vectorLeaf(elements.size());
  size_t i = 0;
  for (const Term& e : elements) setElement(v, i++, e);
  return v;
}

Term W(std::string_view text) { return leaf(text); }

TEST(Printer, EdgeCases) {
  EXPECT_EQ(printTerm(W(")plus")), "()");  // markers print as an empty pair
  EXPECT_EQ(printTerm(App(W(")x"), W("y"))), "()y");
  EXPECT_EQ(printTerm(blobLeaf("[]")), "cape[[q][r]]");
  EXPECT_EQ(printTerm(blobLeaf("a\nb]c[")), "cape[a[p]b[r]c[q]]");
  EXPECT_EQ(printTerm(vectorLeaf(0)), "cray");
  EXPECT_EQ(printTerm(vectorOf({W("a"), W("b")})), "(/ (/ cray a) b)");
  EXPECT_EQ(printTerm(App(W("12"), W("[a]"))), "12[a]");
  EXPECT_EQ(printTerm(App(W("f"), App(W("[a]"), W("[b]")))), "(f [a][b])");
  // Two capitals side by side print with no space; words and numbers fuse
  // with their own class only.
  EXPECT_EQ(printTerm(App(W("B"), W("A"))), "BA");
  EXPECT_EQ(printTerm(App(W("C"), App(W("A"), W("B")))), "(C AB)");
  EXPECT_EQ(printTerm(App(W("f"), W("12"))), "f12");
  EXPECT_EQ(printTerm(App(W("1"), W("2"))), "(1 2)");
  EXPECT_EQ(printTerm(App2(W("f"), App(W("g"), W("x")), W("1"))), "(f (g x) 1)");
  // Reals by the host's "%e", infinities included.
  EXPECT_EQ(printTerm(realLeaf(-2e-300)), "real[-2.000000e-300]");
  EXPECT_EQ(printTerm(realLeaf(-INFINITY)), "real[-inf]");
  // A blob count of two digits, and bytes that hold ")" and NUL.
  std::string bytes(70, 'x');
  bytes[3] = ')';
  bytes[5] = '\0';
  EXPECT_EQ(printTerm(blobLeaf(bytes)), "cape[" + bytes + "]");
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
