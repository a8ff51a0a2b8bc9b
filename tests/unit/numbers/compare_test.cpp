// Comparison: kinds ordered by their letters, values within a kind, node
// identity before kinds for same and diff, NaNs, the numb order's flag rule
// and window, texts as unsigned bytes, vectors element by element.
#include <cmath>

#include "numbers/operators.h"
#include "values.h"

namespace tarn {
namespace {

using testing::blob;
using testing::N;
using testing::real;
using testing::sym;
using testing::text;
using testing::vec;
using Compare = testing::Values;

std::string less(const Term& x, const Term& y) { return text(valueLess(x, y)); }
std::string gteq(const Term& x, const Term& y) { return text(valueGreaterEq(x, y)); }
std::string same(const Term& x, const Term& y) { return text(valueSame(x, y)); }
std::string diff(const Term& x, const Term& y) { return text(valueDiff(x, y)); }

TEST_F(Compare, IntegersByValue) {
  EXPECT_EQ(less(N("1"), N("2")), "K");
  EXPECT_EQ(less(N("03"), N("02")), "K");
  EXPECT_EQ(less(N("01"), N("0")), "K");
  EXPECT_EQ(less(N("0"), N("0")), "H");
  EXPECT_EQ(gteq(N("0"), N("0")), "K");
  EXPECT_EQ(less(N("100"), N("20")), "H");
  EXPECT_EQ(same(N("12"), N("12")), "K");
  EXPECT_EQ(diff(N("12"), N("012")), "K");
}

TEST_F(Compare, KindsOrderByTheirLetters) {
  EXPECT_EQ(less(blob("zz"), real(-1e300)), "K");  // a before e
  EXPECT_EQ(less(real(1e300), N("0")), "K");       // e before i
  EXPECT_EQ(less(N("5"), N("000")), "K");          // i before o
  EXPECT_EQ(gteq(N("000"), N("5")), "K");          // the numb -1 against 5
  EXPECT_EQ(less(N("000"), N("5")), "H");
  EXPECT_EQ(less(vec({}), N("[]")), "K");          // k before u
  EXPECT_EQ(gteq(N("[a]"), N("002")), "K");
  // No promotion: the integer 1 and the numb 1 are different values.
  EXPECT_EQ(same(N("1"), N("001")), "H");
  EXPECT_EQ(diff(N("1"), N("001")), "K");
  EXPECT_EQ(same(real(1), N("1")), "H");
}

TEST_F(Compare, AnythingElseHasNoAnswerButIdentity) {
  Term f = sym('S');
  EXPECT_EQ(less(f, N("1")), "Z");
  EXPECT_EQ(gteq(N("1"), f), "Z");
  EXPECT_EQ(less(f, f), "Z");
  EXPECT_EQ(same(f, f), "K");  // one shared node, whatever its kind
  EXPECT_EQ(diff(f, f), "H");
  EXPECT_EQ(same(f, sym('S')), "Z");
  EXPECT_EQ(diff(sym('K'), N("1")), "Z");
}

TEST_F(Compare, RealsAndNaN) {
  Term nan = real(std::nan(""));
  EXPECT_EQ(same(nan, nan), "K");
  EXPECT_EQ(diff(nan, nan), "H");
  EXPECT_EQ(same(nan, real(std::nan(""))), "H");
  EXPECT_EQ(diff(nan, real(std::nan(""))), "K");
  EXPECT_EQ(less(nan, real(1)), "H");
  EXPECT_EQ(gteq(nan, real(1)), "H");
  EXPECT_EQ(gteq(real(1), nan), "H");
  EXPECT_EQ(same(real(0.0), real(-0.0)), "K");
  EXPECT_EQ(diff(real(0.0), real(-0.0)), "H");
  EXPECT_EQ(less(real(-0.5), real(0.25)), "K");
  EXPECT_EQ(gteq(real(0.25), real(0.25)), "K");
}

// The flag (list element 2) decides first; equal flags walk a window that
// does not reach every bit, and signs are not looked at there.
TEST_F(Compare, NumbOrderByFlagThenWindow) {
  EXPECT_EQ(less(N("002"), N("001")), "K");  // 0.5 < 1
  EXPECT_EQ(less(N("001"), N("002")), "H");
  EXPECT_EQ(less(N("003"), N("004")), "H");  // 1.5 < 2 is false
  EXPECT_EQ(less(N("004"), N("003")), "K");
  EXPECT_EQ(less(N("001"), N("000")), "H");  // 1 and -1: no difference seen
  EXPECT_EQ(less(N("000"), N("001")), "H");
  EXPECT_EQ(gteq(N("001"), N("000")), "K");
  EXPECT_EQ(gteq(N("000"), N("001")), "K");
  EXPECT_EQ(same(N("001"), N("000")), "H");  // equality reads the texts
  EXPECT_EQ(same(N("003"), N("003")), "K");
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
  EXPECT_EQ(less(vec({N("1"), N("2")}), vec({N("1"), N("3")})), "K");
  EXPECT_EQ(gteq(vec({N("1"), N("2")}), vec({N("1"), N("3")})), "H");
  EXPECT_EQ(gteq(vec({N("1"), N("3")}), vec({N("1"), N("2")})), "K");
  EXPECT_EQ(less(vec({N("1")}), vec({N("1"), N("0")})), "K");
  EXPECT_EQ(gteq(vec({N("1")}), vec({N("1"), N("0")})), "H");
  EXPECT_EQ(gteq(vec({N("1"), N("2")}), vec({N("1"), N("2")})), "K");
  EXPECT_EQ(same(vec({N("1"), N("2")}), vec({N("1"), N("2")})), "K");
  EXPECT_EQ(same(vec({N("1")}), vec({N("1"), N("2")})), "H");
  EXPECT_EQ(diff(vec({N("1")}), vec({N("1"), N("2")})), "K");
  EXPECT_EQ(diff(vec({N("1"), N("2")}), vec({N("1"), N("5")})), "K");
  // Kinds inside vectors order as at the top.
  EXPECT_EQ(less(vec({N("9")}), vec({N("001")})), "K");
  // An empty slot reads as a fresh Z: no answer, even against another one.
  EXPECT_EQ(less(vec({Term()}), vec({N("1")})), "Z");
  EXPECT_EQ(same(vec({Term()}), vec({Term()})), "Z");
  EXPECT_EQ(diff(vec({N("1"), Term()}), vec({N("1"), Term()})), "Z");
  EXPECT_EQ(gteq(vec({Term()}), vec({N("1")})), "Z");
  // A function shared by both vectors is skipped as one node.
  Term f = sym('S');
  EXPECT_EQ(same(vec({f, N("2")}), vec({f, N("2")})), "K");
  EXPECT_EQ(less(vec({f, N("2")}), vec({f, N("3")})), "K");
  EXPECT_EQ(same(vec({sym('S')}), vec({sym('S')})), "Z");
}

}  // namespace
}  // namespace tarn
