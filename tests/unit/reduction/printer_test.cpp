// The term printer: the cases the random terms of printer_reference_test.cpp
// never make, and terms too long or too deep for a recursive printer (a deep
// right spine is printed by a program in tests/depth).
#include <gtest/gtest.h>

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
  // Reals by the host's "%e", with a three-digit exponent.
  EXPECT_EQ(printTerm(realLeaf(-2e-300)), "real[-2.000000e-300]");
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

    Term nested = vectorLeaf(0);
    for (size_t i = 0; i < 100000; i++) nested = vectorOf({nested});
    std::string v = printTerm(nested);
    EXPECT_EQ(v.size(), 100000 * 9 + 4);
    EXPECT_EQ(v.substr(0, 18), "(/ cray (/ cray (/");
  });
}

}  // namespace
}  // namespace tarn
