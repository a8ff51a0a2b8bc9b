// Comparison: node identity before kinds for same and diff, kind letters
// across kinds, NaNs, texts as unsigned bytes, vectors element by element.
#include <cmath>

#include "numbers/operators.h"
#include "values.h"

namespace tarn {
namespace {

using testing::blob;
using testing::N;
using testing::real;
using testing::show;
using testing::sym;
using testing::text;
using testing::vec;
using Compare = testing::Values;

std::string less(const Term& x, const Term& y) { return text(valueLess(x, y)); }
std::string gteq(const Term& x, const Term& y) { return text(valueGreaterEq(x, y)); }
std::string same(const Term& x, const Term& y) { return text(valueSame(x, y)); }
std::string diff(const Term& x, const Term& y) { return text(valueDiff(x, y)); }

// The golden program comparisons.tarn prints the common cases; here the
// identity rules, texts as unsigned bytes and the orders a printed line
// can't pin down. Each row: less, gteq, same, diff.
TEST_F(Compare, IdentityRealsAndTexts) {
  Term f = sym('S'), nan = real(std::nan(""));
  const std::tuple<Term, Term, std::string_view> rows[] = {
      {N("[a]"), N("002"), "HKHK"},  // kind letters: u after o
      {f, f, "ZZKH"},                // one node, but no order for kind w
      {nan, nan, "HHKH"},            // one node is the same, yet not ordered
      {real(1), real(std::nan("")), "HHHK"},
      {real(0.0), real(-0.0), "HKKH"},
      {blob("a"), blob("\xff"), "KHHK"},
      {blob("\xff"), blob("a"), "HKHK"},
      {blob("ab"), blob("ab"), "HKKH"},
      {blob(""), blob(""), "HKKH"},
      {N("[ab]"), N("[b]"), "KHHK"},  // interiors "ab" and "b"
      {N("[]"), N("[a]"), "KHHK"},
      {App(N("[a]"), N("[b]")), N("[a[b]]"), "HKKH"}};  // data compares as its flattened text
  for (const auto& [x, y, want] : rows)
    EXPECT_EQ(less(x, y) + gteq(x, y) + same(x, y) + diff(x, y), want) << show(x) << " against " << show(y);
}

TEST_F(Compare, VectorsElementByElement) {
  Term v12 = vec({N("1"), N("2")}), v13 = vec({N("1"), N("3")}), v1 = vec({N("1")}), v10 = vec({N("1"), N("0")});
  Term f = sym('S'), slot = vec({Term()});
  // Each row: less, gteq, same, diff.
  // (Plain orders of vectors: the golden program comparisons.)
  const std::tuple<Term, Term, std::string_view> rows[] = {
      {v13, v12, "HKHK"}, {v1, v10, "KHHK"},
      {vec({N("9")}), vec({N("001")}), "KHHK"},  // kinds inside order as at the top
      // An empty slot reads as a fresh Z: no answer, even against another one.
      {slot, v1, "ZZZZ"}, {slot, vec({Term()}), "ZZZZ"}, {vec({N("1"), Term()}), vec({N("1"), Term()}), "ZZZZ"},
      // A function shared by both vectors is skipped as one node.
      {vec({f, N("2")}), vec({f, N("2")}), "HKKH"}, {vec({f, N("2")}), vec({f, N("3")}), "KHHK"},
      {vec({sym('S')}), vec({sym('S')}), "ZZZZ"}};
  for (const auto& [x, y, want] : rows)
    EXPECT_EQ(less(x, y) + gteq(x, y) + same(x, y) + diff(x, y), want) << show(x) << " against " << show(y);
}

}  // namespace
}  // namespace tarn
