// The decimal core's inner algorithms against each other: a carry chain of the
// small-factor kernels, and the product and division algorithms on random
// limbs at sizes around their cut-overs. (The operations' results, with the
// vector and the scalar kernels, are checked at every size against python3's
// decimal module in tests/numbers/decimal_vs_python.py.)
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "numbers/bignum/decimal.h"
#include "numbers/bignum/decimal_limbs.h"
#include "numbers/bignum/decimal_simd.h"

namespace tarn {
namespace {

#ifdef TARN_SANITIZE
constexpr int kScale = 8;  // the sanitizer build runs an eighth of the cases
#else
constexpr int kScale = 1;
#endif

// Random limbs below 10^8, of shapes that stress carries and quotient
// estimates.
class Operands {
 public:
  explicit Operands(uint64_t seed) : rng_(seed) {}

  size_t below(size_t n) { return size_t(rng_() % n); }

  // Limbs below 10^8, random or runs of 99999999 and 0, top limb non-zero.
  Limbs limbs(size_t n) {
    Limbs a(n);
    int shape = int(below(4));
    for (size_t i = 0; i < n; i++) {
      if (shape == 0) a[i] = kLimbBase - 1;
      else if (shape == 1) a[i] = below(3) == 0 ? Limb(below(kLimbBase)) : (below(2) ? kLimbBase - 1 : 0);
      else a[i] = Limb(below(kLimbBase));
    }
    if (n) {
      int top = int(below(4));
      a[n - 1] = top == 0 ? 1 : top == 1 ? kLimbBase / 2 : top == 2 ? kLimbBase / 2 - 1 : Limb(1 + below(kLimbBase - 1));
    }
    return a;
  }

 private:
  std::mt19937_64 rng_;
};

TEST(DecimalRandom, SmallFactorCarryChains) {
  // Limbs (low to high) 50000000, 33333333, 33333333 times 3: the middle sum
  // reaches 10^8 and the top one is 10^8 - 1 when that carry arrives, so a
  // carry runs through two limbs. Repeated at every offset within a group;
  // the vector and the scalar products must agree with the schoolbook one.
  for (size_t offset = 0; offset < 8; offset++) {
    std::string x = "1";
    for (int k = 0; k < 12; k++) x += "3333333333333333" "50000000" + std::string(8 * offset, '7');
    Limbs a = limbsFromDigits(x);
    for (Limb m : {3u, 6u}) {
      Limbs want(a.size() + 1);
      natMulSchoolbook(want.data(), a.data(), a.size(), &m, 1);
      std::string text(digitCount(want.data(), want.size()), '?');
      writeDigits(text.data(), want.data(), want.size());
      EXPECT_EQ(hintMulText(x, std::to_string(m)), text) << offset;
      EXPECT_EQ(hintMulText("0" + x, std::to_string(m)), "0" + text) << offset;
      useVectorKernels(false);
      EXPECT_EQ(hintMulText(x, std::to_string(m)), text) << offset;
      useVectorKernels(true);
    }
  }
}

// ---- The algorithms against each other -------------------------------------------

Limbs product(void (*mul)(Limb*, const Limb*, size_t, const Limb*, size_t), const Limbs& a,
              const Limbs& b) {
  Limbs r(a.size() + b.size());
  mul(r.data(), a.data(), a.size(), b.data(), b.size());
  r.trim();
  return r;
}

// Equal arrays, or a failure message with both dumps.
::testing::AssertionResult same(const Limbs& a, const Limbs& b) {
  if (a.size() == b.size() && natCompare(a.data(), a.size(), b.data(), b.size()) == 0)
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << limbsDump(a.data(), a.size()) << " vs "
                                       << limbsDump(b.data(), b.size());
}

TEST(DecimalAlgorithms, ProductsAgree) {
  Operands gen(5);
  const size_t sizes[][2] = {{1, 1},     {39, 39},    {40, 40},     {41, 17},    {80, 80},
                             {81, 80},   {150, 40},   {159, 159},   {160, 160},  {161, 5},
                             {699, 699}, {700, 700},  {701, 3},     {1000, 999}, {1500, 1499},
                             {2100, 700}, {3000, 2900}, {5000, 60}, {8, 8}};
  for (auto [na, nb] : sizes) {
    if (kScale > 1 && na > 1600) continue;
    SCOPED_TRACE(std::to_string(na) + "x" + std::to_string(nb));
    Limbs a = gen.limbs(na), b = gen.limbs(nb);
    Limbs school = product(natMulSchoolbook, a, b);
    EXPECT_TRUE(same(school, product(natMulKaratsuba, a, b)));
    Limbs sqRef(2 * na);
    natMulSchoolbook(sqRef.data(), a.data(), na, a.data(), na);
    sqRef.trim();
    // Both transforms (three 30-bit primes in vectors, two 62-bit primes).
    for (bool vector : {true, false}) {
      useVectorKernels(vector);
      EXPECT_TRUE(same(school, product(natMulNtt, a, b))) << vector;
      EXPECT_TRUE(same(school, product(natMul, a, b))) << vector;
      Limbs sq(2 * na), sqNtt(2 * na);
      natSqr(sq.data(), a.data(), na);
      natSqrNtt(sqNtt.data(), a.data(), na);
      sq.trim(), sqNtt.trim();
      EXPECT_TRUE(same(sq, sqRef)) << vector;
      EXPECT_TRUE(same(sqNtt, sqRef)) << vector;
    }
    useVectorKernels(true);
  }
}

// q b + r == a and r < b.
void expectDivision(const Limbs& a, const Limbs& b, const Limbs& q, const Limbs& r) {
  EXPECT_LT(natCompare(r.data(), r.size(), b.data(), b.size()), 0);
  Limbs back = product(natMul, q, b);
  back.resize(std::max(back.size(), r.size()) + 1);
  back[back.size() - 1] = 0;
  natAdd(back.data(), back.data(), back.size(), r.data(), r.size());
  back.trim();
  EXPECT_TRUE(same(back, a));
}

TEST(DecimalAlgorithms, DivisionsAgree) {
  Operands gen(6);
  const size_t sizes[][2] = {{2, 2},      {9, 2},      {300, 150},  {301, 151},  {600, 300},
                             {1000, 170}, {1000, 700}, {1000, 998}, {2000, 1000}, {2001, 1000},
                             {3000, 1100}, {3000, 400}, {5000, 2600}};
  for (auto [na, nb] : sizes) {
    if (kScale > 1 && na > 1000) continue;
    SCOPED_TRACE(std::to_string(na) + "/" + std::to_string(nb));
    Limbs a = gen.limbs(na), b = gen.limbs(nb);
    Limbs qk, rk, qn, rn, q, r;
    natDivModKnuth(a.data(), na, b.data(), nb, &qk, &rk);
    natDivModNewton(a.data(), na, b.data(), nb, &qn, &rn);
    natDivMod(a.data(), na, b.data(), nb, &q, &r);
    expectDivision(a, b, qk, rk);
    EXPECT_TRUE(same(qk, qn));
    EXPECT_TRUE(same(rk, rn));
    EXPECT_TRUE(same(qk, q));
    EXPECT_TRUE(same(rk, r));
  }
  // Quotients just below a power of the base, and exact multiples: the
  // estimates sit at the edge of their error bounds.
  for (size_t nb : {size_t(2), size_t(160), size_t(900)}) {
    if (kScale > 1 && nb > 200) continue;
    Limbs b = gen.limbs(nb);
    Limbs m = gen.limbs(nb + 5);
    Limbs a = product(natMul, b, m);
    Limbs q, r;
    natDivMod(a.data(), a.size(), b.data(), b.size(), &q, &r);
    EXPECT_TRUE(same(q, m));
    EXPECT_TRUE(r.empty());
    Limb one = 1;
    natSub(a.data(), a.data(), a.size(), &one, 1);
    a.trim();
    natDivMod(a.data(), a.size(), b.data(), b.size(), &q, &r);
    expectDivision(a, b, q, r);
  }
}

TEST(DecimalAlgorithms, ShortQuotientEstimates) {
  // A quotient shorter than the divisor is estimated from truncated operands.
  // A divisor whose dropped limbs are all 99999999 makes the truncated
  // divisor smallest against the true one, so the estimate overshoots most.
  Operands gen(7);
  const size_t sizes[][2] = {{700, 160}, {900, 300}, {400, 152}};
  for (auto [nb, qlen] : sizes) {
    for (int round = 0; round < 6 / kScale + 1; round++) {
      Limbs b(nb);
      for (size_t i = 0; i < nb; i++) b[i] = kLimbBase - 1;
      b[nb - 1] = Limb(1 + gen.below(3));
      if (round % 2) b[nb - 2] = Limb(gen.below(kLimbBase));
      Limbs m = gen.limbs(qlen);
      for (size_t i = qlen - 3; i < qlen; i++) m[i] = kLimbBase - 1 - Limb(gen.below(2));
      Limbs a = product(natMul, b, m);
      // Plus a remainder: none, the largest, or a random one.
      Limbs extra = round % 3 == 0 ? Limbs() : round % 3 == 1 ? Limbs(b.data(), nb) : gen.limbs(nb - 1);
      if (round % 3 == 1) {
        Limb one = 1;
        natSub(extra.data(), extra.data(), extra.size(), &one, 1);
      }
      a.resize(a.size() + 1);
      a[a.size() - 1] = 0;
      natAdd(a.data(), a.data(), a.size(), extra.data(), extra.size());
      a.trim();
      Limbs q, r, qk, rk;
      natDivMod(a.data(), a.size(), b.data(), nb, &q, &r);
      natDivModKnuth(a.data(), a.size(), b.data(), nb, &qk, &rk);
      EXPECT_TRUE(same(q, m));
      EXPECT_TRUE(same(q, qk));
      EXPECT_TRUE(same(r, rk));
      expectDivision(a, b, q, r);
    }
  }
}

}  // namespace
}  // namespace tarn
