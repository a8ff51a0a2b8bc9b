// Random tests: the hint text operations against 128-bit integer arithmetic
// for operands of up to 36 digits, the vector kernels against the scalar
// ones, and the product and division algorithms against each other at sizes
// around their cut-overs. (tests/numbers/decimal_vs_python.py checks every
// operation at every size against python3's decimal module.)
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "numbers/decimal.h"
#include "numbers/decimal_limbs.h"
#include "numbers/decimal_simd.h"

namespace tarn {
namespace {

#ifdef TARN_SANITIZE
constexpr int kScale = 8;  // the sanitizer build runs an eighth of the cases
#else
constexpr int kScale = 1;
#endif

// ---- Reference: 128-bit integers ------------------------------------------------
// Operands of up to 36 digits are plain __int128 values, so the operators'
// rules can be written out directly: floor division, the never-negative
// remainder (zero counting as positive), the power rules.

using i128 = __int128;

i128 valueOf(std::string_view t) {
  bool negative = t.size() > 1 && t[0] == '0';
  i128 v = 0;
  for (char c : negative ? t.substr(1) : t) v = v * 10 + (c - '0');
  return negative ? -v : v;
}

std::string textOf(i128 v) {
  if (v == 0) return "0";
  std::string digits;
  for (i128 m = v < 0 ? -v : v; m > 0; m /= 10) digits.insert(digits.begin(), char('0' + int(m % 10)));
  return v < 0 ? "0" + digits : digits;
}

bool plus(std::string_view t) { return t == "0" || t[0] != '0'; }

std::string refOver(std::string_view x, std::string_view y) {
  i128 a = valueOf(x), b = valueOf(y);
  if (b == 0) return "Z";
  i128 q = a / b;  // truncated; floor moves it down when a remainder is left with mixed signs
  if (a % b != 0 && (a < 0) != (b < 0)) q--;
  return textOf(q);
}

std::string refCent(std::string_view x, std::string_view y) {
  i128 a = valueOf(x), b = valueOf(y);
  if (b == 0) return "Z";
  i128 r = (a < 0 ? -a : a) % (b < 0 ? -b : b);
  if (plus(x) == plus(y) || r == 0) return textOf(r);
  return textOf((b < 0 ? -b : b) - r);
}

std::string refPowa(std::string_view x, std::string_view y) {
  i128 b = valueOf(x), e = valueOf(y), r = 1;
  if (e < 0) return "0";
  for (i128 k = 0; k < e; k++) r *= b;
  return textOf(r);
}

// ---- Operands ---------------------------------------------------------------------

class Operands {
 public:
  explicit Operands(uint64_t seed) : rng_(seed) {}

  size_t below(size_t n) { return size_t(rng_() % n); }

  // A magnitude of exactly len digits: random, or one of the shapes that
  // stress carries and quotient estimates (runs of 9s and 0s, powers of ten
  // and their neighbours, limb-sized blocks).
  std::string magnitude(size_t len) {
    std::string s(len, '0');
    switch (below(8)) {
      case 0:
        std::fill(s.begin(), s.end(), '9');
        break;
      case 1:
        s[0] = '1';
        if (len > 1 && below(2)) s[len - 1] = char('1' + below(9));
        break;
      case 2:
        for (size_t i = 0; i < len; i += 8) {
          char c = below(2) ? '9' : '0';
          for (size_t k = i; k < std::min(len, i + 8); k++) s[k] = c;
        }
        break;
      case 3:
        s[0] = char('1' + below(9));
        for (size_t i = 1; i < len; i++) s[i] = below(4) ? '9' : char('0' + below(10));
        break;
      default:
        for (char& c : s) c = char('0' + below(10));
        break;
    }
    if (s[0] == '0') s[0] = char('1' + below(9));
    return s;
  }

  // A hint text of about len digits, either sign, sometimes zero.
  std::string hint(size_t len) {
    if (below(40) == 0) return "0";
    std::string m = magnitude(len);
    return below(2) ? "0" + m : m;
  }

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

std::string over(std::string_view x, std::string_view y) {
  std::string q;
  return hintOverText(x, y, q) ? q : "Z";
}
std::string cent(std::string_view x, std::string_view y) {
  std::string r;
  return hintCentText(x, y, r) ? r : "Z";
}

TEST(DecimalRandom, OperandsUpTo36DigitsMatch128BitArithmetic) {
  // Up to 18 digits the machine-word path answers, beyond it the limbs.
  Operands gen(1);
  for (int i = 0; i < 6000 / kScale; i++) {
    size_t lx = 1 + gen.below(36), ly = 1 + gen.below(i % 3 ? 36 : lx);
    std::string x = gen.hint(lx), y = gen.hint(ly);
    SCOPED_TRACE("x=" + x + " y=" + y);
    i128 a = valueOf(x), b = valueOf(y);
    EXPECT_EQ(hintAddText(x, y), textOf(a + b));
    EXPECT_EQ(hintSubText(x, y), textOf(a - b));
    if (lx + ly <= 37) {
      EXPECT_EQ(hintMulText(x, y), textOf(a * b));
    }
    EXPECT_EQ(over(x, y), refOver(x, y));
    EXPECT_EQ(cent(x, y), refCent(x, y));
    EXPECT_EQ(hintCompareText(x, y), (a > b) - (a < b));
    EXPECT_EQ(hintHalfText(x), textOf(plus(x) ? a / 2 : -(-a / 2)));
    EXPECT_EQ(hintOppositeText(x), textOf(-a));
    std::string q, r;
    if (hintOverCentText(x, y, q, r)) {
      EXPECT_EQ(q, refOver(x, y));
      EXPECT_EQ(r, refCent(x, y));
    }
  }
  for (int i = 0; i < 600 / kScale; i++) {
    std::string b = gen.hint(1 + gen.below(3)), e = std::to_string(gen.below(40));
    if (gen.below(8) == 0 && e != "0") e = "0" + e;
    if (valueOf(e) > 0 && (b.size() - !plus(b)) * size_t(valueOf(e)) > 36) continue;  // 128 bits
    EXPECT_EQ(hintPowaText(b, e), refPowa(b, e)) << b << " ^ " << e;
  }
}

// Runs a block with the vector kernels off, so the scalar text conversion
// and small products are checked on machines that have the vector ones.
class ScalarKernels {
 public:
  ScalarKernels() { useVectorKernels(false); }
  ~ScalarKernels() { useVectorKernels(true); }
};

TEST(DecimalRandom, ScalarAndVectorKernelsAgree) {
  Operands gen(8);
  for (int i = 0; i < 600 / kScale; i++) {
    // Lengths around the groups of 32 digits and the one-limb factors.
    std::string x = gen.hint(1 + gen.below(300)), y = gen.hint(1 + gen.below(i % 2 ? 8 : 120));
    std::string sum = hintAddText(x, y), prod = hintMulText(x, y), q, r;
    bool divides = hintOverCentText(x, y, q, r);
    {
      ScalarKernels scalar;
      EXPECT_EQ(hintAddText(x, y), sum);
      EXPECT_EQ(hintMulText(x, y), prod);
      std::string q2, r2;
      EXPECT_EQ(hintOverCentText(x, y, q2, r2), divides);
      EXPECT_EQ(q2, q);
      EXPECT_EQ(r2, r);
    }
  }
}

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
      ScalarKernels scalar;
      EXPECT_EQ(hintMulText(x, std::to_string(m)), text) << offset;
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
