// Comparison: node identity before kinds for same and diff, kind letters
// across kinds, NaNs, texts as unsigned bytes, vectors element by element.
// The golden program comparisons.tarn prints the common cases.
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

// Most cross-kind cases are printed by the golden program; here the
// identity rules and the orders a printed line can't pin down.
TEST_F(Compare, IdentityAndKindOrder) {
  EXPECT_EQ(less(blob("zz"), real(-1e300)), "K");  // kind letters, not values
  EXPECT_EQ(less(real(1e300), N("0")), "K");
  EXPECT_EQ(gteq(N("[a]"), N("002")), "K");
  EXPECT_EQ(same(real(1), N("1")), "H");
  Term f = sym('S');
  EXPECT_EQ(less(f, f), "Z");  // one node, but no order for kind w
  EXPECT_EQ(diff(f, f), "H");
  EXPECT_EQ(diff(sym('K'), N("1")), "Z");
}

TEST_F(Compare, RealsAndNaN) {
  Term nan = real(std::nan(""));
  EXPECT_EQ(same(nan, nan), "K");
  EXPECT_EQ(diff(nan, nan), "H");
  EXPECT_EQ(same(nan, real(std::nan(""))), "H");
  EXPECT_EQ(gteq(real(1), nan), "H");
  EXPECT_EQ(same(real(0.0), real(-0.0)), "K");
  EXPECT_EQ(diff(real(0.0), real(-0.0)), "H");
}

TEST_F(Compare, TextsAsUnsignedBytes) {
  EXPECT_EQ(less(blob("ab"), blob("abc")), "K");
  EXPECT_EQ(less(blob("a"), blob("\xff")), "K");
  EXPECT_EQ(less(blob("\xff"), blob("a")), "H");
  EXPECT_EQ(gteq(blob("ab"), blob("ab")), "K");
  EXPECT_EQ(same(blob("ab"), blob("ab")), "K");
  EXPECT_EQ(diff(blob(""), blob("")), "H");
  EXPECT_EQ(less(N("[b]"), N("[ab]")), "H");  // interiors "b" and "ab"
  EXPECT_EQ(less(N("[ab]"), N("[b]")), "K");
  EXPECT_EQ(gteq(N("[]"), N("[a]")), "H");
  // An application of data compares as its flattened text.
  EXPECT_EQ(same(App(N("[a]"), N("[b]")), N("[a[b]]")), "K");
}

TEST_F(Compare, VectorsElementByElement) {
  Term v12 = vec({N("1"), N("2")}), v13 = vec({N("1"), N("3")}), v1 = vec({N("1")}), v10 = vec({N("1"), N("0")});
  Term f = sym('S'), slot = vec({Term()});
  // Each row: less, gteq, same, diff.
  const std::tuple<Term, Term, std::string_view> rows[] = {
      {v12, v13, "KHHK"}, {v13, v12, "HKHK"}, {v1, v10, "KHHK"}, {v12, vec({N("1"), N("2")}), "HKKH"},
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
