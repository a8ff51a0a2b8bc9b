// The maths family: the 32-bit labs, the portable random sequence, and the
// rows whose first test keeps the host from being called.
#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "bindings/maths.h"
#include "numbers/model.h"
#include "tests/unit/bindings/calls.h"

namespace tarn {
namespace {

using testing::address;
using testing::call;
using testing::text;

TEST(MathsRows, AbsAndLabs) {
  // value, abs, labs: labs answers for the low 32 bits, negated in 32 bits.
  const int64_t kMin64 = INT64_MIN;
  const std::tuple<int64_t, int64_t, int64_t> rows[] = {
      {-5, 5, 5},
      {5, 5, 5},
      {0, 0, 0},
      {(int64_t(1) << 32) - 5, (int64_t(1) << 32) - 5, 5},
      {(int64_t(1) << 32) + 7, (int64_t(1) << 32) + 7, 7},
      {int64_t(1) << 32, int64_t(1) << 32, 0},
      {0xffffffffll, 0xffffffffll, 1},
      {-2147483648ll, 2147483648ll, -2147483648ll},
      {2147483648ll, 2147483648ll, -2147483648ll},
      {-2147483647ll, 2147483647ll, 2147483647ll},
      {kMin64, kMin64, 0},
      {kMin64 + 1, INT64_MAX, 1},
  };
  for (auto [v, a, l] : rows) {
    EXPECT_EQ(termToInt64(call("abs", {int64ToTerm(v)})), a) << v;
    EXPECT_EQ(termToInt64(call("labs", {int64ToTerm(v)})), l) << v;
  }
  EXPECT_EQ(text(call("labs", {realLeaf(-5)})), "Z");
}

TEST(MathsRows, RandFollowsThePortableSequence) {
  // The first ten values after srand 1, as the original host's generator
  // gives them, and the first after srand 0 ((2531011 >> 16) & 0x7fff).
  const int first[] = {41, 18467, 6334, 26500, 19169, 15724, 11478, 29358, 26962, 24464};
  EXPECT_EQ(text(call("srand", {int64ToTerm(1)})), "I");
  for (int want : first) EXPECT_EQ(termToInt64(call("rand", {})), want);
  call("srand", {int64ToTerm(0)});
  EXPECT_EQ(termToInt64(call("rand", {})), 38);
  // The seed is the low 32 bits.
  call("srand", {int64ToTerm((int64_t(1) << 32) + 1)});
  EXPECT_EQ(termToInt64(call("rand", {})), 41);
  EXPECT_EQ(text(call("rand_max", {})), "32767");
  // Every value stays within rand_max over a long run.
  for (int i = 0; i < 1000; i++) EXPECT_LE(termToInt64(call("rand", {})), 32767);
}

TEST(MathsRows, RealsOnlyAndFirstTestFirst) {
  errno = 0;
  EXPECT_EQ(text(call("acos", {int64ToTerm(1)})), "Z");
  EXPECT_EQ(realValue(call("acos", {realLeaf(1)})), 0.0);
  EXPECT_TRUE(std::isnan(realValue(call("acos", {realLeaf(2)}))));
  EXPECT_EQ(errno, EDOM);
  // frexp of a non-real leaves the exponent's address alone.
  int32_t exponent[2] = {-7, -7};
  EXPECT_EQ(text(call("frexp", {int64ToTerm(8), address(exponent)})), "Z");
  EXPECT_EQ(exponent[0], -7);
  // The host writes exactly the 32-bit exponent.
  EXPECT_EQ(realValue(call("frexp", {realLeaf(8), address(exponent)})), 0.5);
  EXPECT_EQ(exponent[0], 4);
  EXPECT_EQ(exponent[1], -7);
  double whole = 0;
  EXPECT_EQ(realValue(call("modf", {realLeaf(-2.75), address(&whole)})), -0.75);
  EXPECT_EQ(whole, -2.0);
  EXPECT_EQ(realValue(call("ldexp", {realLeaf(3), int64ToTerm(4)})), 48.0);
  EXPECT_EQ(text(call("ldexp", {realLeaf(3), realLeaf(4)})), "Z");
  EXPECT_EQ(realValue(call("pow", {realLeaf(2), realLeaf(-1)})), 0.5);
  EXPECT_EQ(text(call("pow", {realLeaf(2), int64ToTerm(2)})), "Z");
  // fabs clears the sign bit, of a NaN too.
  EXPECT_FALSE(std::signbit(realValue(call("fabs", {realLeaf(-std::nan(""))}))));
  EXPECT_FALSE(std::signbit(realValue(call("fabs", {realLeaf(-0.0)}))));
}

}  // namespace
}  // namespace tarn
