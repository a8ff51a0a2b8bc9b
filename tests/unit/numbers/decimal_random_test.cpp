// Random differential tests of the hint text arithmetic against a plain
// digit-by-digit implementation (one decimal digit a byte, schoolbook
// products, long division by trying multiples), and of the fast product and
// division algorithms against each other at sizes around their cut-overs.
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

// ---- Reference: magnitudes as digit strings, least significant first ----------

using Digits = std::string;

int digitAt(const Digits& d, size_t i) { return i < d.size() ? d[i] - '0' : 0; }

Digits digitsOf(std::string_view text) {
  size_t skip = 0;
  while (skip < text.size() && text[skip] == '0') skip++;
  return Digits(text.rbegin(), text.rend() - long(skip));
}

std::string textOfDigits(const Digits& d) {
  size_t n = d.size();
  while (n > 0 && d[n - 1] == '0') n--;
  if (n == 0) return "0";
  return std::string(d.rend() - long(n), d.rend());
}

std::string withSign(bool plus, const std::string& m) { return m == "0" || plus ? m : "0" + m; }

bool digitsLess(const Digits& a, const Digits& b) {
  for (size_t i = std::max(a.size(), b.size()); i-- > 0;)
    if (digitAt(a, i) != digitAt(b, i)) return digitAt(a, i) < digitAt(b, i);
  return false;
}

bool digitsIsZero(const Digits& d) { return textOfDigits(d) == "0"; }

Digits digitsAdd(const Digits& a, const Digits& b) {
  Digits r;
  int carry = 0;
  for (size_t i = 0; i < std::max(a.size(), b.size()); i++) {
    int v = digitAt(a, i) + digitAt(b, i) + carry;
    r.push_back(char('0' + v % 10));
    carry = v / 10;
  }
  if (carry) r.push_back('1');
  return r;
}

Digits digitsSub(const Digits& a, const Digits& b) {
  Digits r;
  int borrow = 0;
  for (size_t i = 0; i < a.size(); i++) {
    int v = digitAt(a, i) - digitAt(b, i) - borrow;
    borrow = v < 0;
    r.push_back(char('0' + (v < 0 ? v + 10 : v)));
  }
  EXPECT_EQ(borrow, 0);
  return r;
}

Digits digitsTimesDigit(int c, const Digits& b) {
  Digits r;
  int carry = 0;
  for (char ch : b) {
    int v = c * (ch - '0') + carry;
    r.push_back(char('0' + v % 10));
    carry = v / 10;
  }
  if (carry) r.push_back(char('0' + carry));
  return r;
}

// Schoolbook: every digit product added into its column, then the carries.
Digits digitsMul(const Digits& a, const Digits& b) {
  std::vector<uint32_t> cols(a.size() + b.size() + 1, 0);
  for (size_t i = 0; i < a.size(); i++)
    for (size_t j = 0; j < b.size(); j++) cols[i + j] += uint32_t((a[i] - '0') * (b[j] - '0'));
  Digits r;
  uint64_t carry = 0;
  for (uint32_t c : cols) {
    carry += c;
    r.push_back(char('0' + carry % 10));
    carry /= 10;
  }
  return r;
}

// Long division: each quotient digit is the largest c whose multiple c b
// does not exceed the running remainder. The remainder is left in *rest.
Digits digitsDivide(bool truncate, const Digits& a, const Digits& b, Digits* rest = nullptr) {
  Digits multiples[10];
  for (int c = 0; c < 10; c++) multiples[c] = digitsTimesDigit(c, b);
  Digits r, q;
  for (size_t pos = a.size(); pos-- > 0;) {
    r.insert(r.begin(), a[pos]);
    int digit = 9;
    for (int c = 1; c <= 9; c++) {
      if (digitsLess(r, multiples[c])) {
        digit = c - 1;
        break;
      }
    }
    if (!(q.empty() && digit == 0)) q.insert(q.begin(), char('0' + digit));
    r = digitsSub(r, multiples[digit]);
    while (!r.empty() && r.back() == '0') r.pop_back();  // high zeros only cost time
  }
  if (rest) *rest = r;
  if (!truncate && !digitsIsZero(r)) return digitsAdd(q, "1");
  return q;
}

Digits digitsPower(const Digits& base, const Digits& e) {
  if (digitsIsZero(e)) return "1";
  if (textOfDigits(e) == "1") return base;
  Digits h = digitsPower(base, digitsDivide(true, e, "2"));
  Digits t = digitsMul(h, h);
  bool even = e.empty() || (e[0] - '0') % 2 == 0;
  return even ? t : digitsMul(base, t);
}

bool signOf(std::string_view t) { return t == "0" || t[0] != '0'; }
std::string magnitudeOf(std::string_view t) { return std::string(signOf(t) ? t : t.substr(1)); }

std::string refAdd(std::string_view x, std::string_view y) {
  bool sx = signOf(x), sy = signOf(y);
  Digits a = digitsOf(x), b = digitsOf(y);
  if (sx == sy) return withSign(sx, textOfDigits(digitsAdd(a, b)));
  if (digitsLess(a, b)) return withSign(sy, textOfDigits(digitsSub(b, a)));
  return withSign(sx, textOfDigits(digitsSub(a, b)));
}

std::string refOpposite(std::string_view x) {
  if (x == "0") return "0";
  return signOf(x) ? "0" + std::string(x) : std::string(x.substr(1));
}

std::string refHalf(std::string_view x) {
  if (x == "0") return "0";
  return withSign(signOf(x), textOfDigits(digitsDivide(true, digitsOf(x), "2")));
}

// The product written into one buffer, big-endian, as a product leaf is.
std::string refMult(std::string_view x, std::string_view y) {
  if (x == "0" || y == "0") return "0";
  bool minus = signOf(x) != signOf(y);
  std::string a = magnitudeOf(x), b = magnitudeOf(y);
  size_t len = a.size() + b.size() + (minus ? 1 : 0);
  std::string buf(len, '0');
  for (size_t j = b.size(); j-- > 0;) {
    long pos = long(len) - 1 - long(b.size() - 1 - j);
    int carry = 0;
    for (size_t i = a.size(); i-- > 0; pos--) {
      int v = (buf[size_t(pos)] - '0') + (a[i] - '0') * (b[j] - '0') + carry;
      buf[size_t(pos)] = char('0' + v % 10);
      carry = v / 10;
    }
    buf[size_t(pos)] = char('0' + carry);
  }
  if ((minus && buf[1] == '0') || (!minus && buf[0] == '0')) buf.erase(0, 1);
  return buf;
}

std::string refOver(std::string_view x, std::string_view y) {
  bool sx = signOf(x), sy = signOf(y);
  if (y == "0") return "Z";
  std::string q = textOfDigits(digitsDivide(sx == sy, digitsOf(x), digitsOf(y)));
  return sx == sy || q == "0" ? q : "0" + q;
}

std::string refCent(std::string_view x, std::string_view y) {
  if (y == "0") return "Z";
  Digits r;
  digitsDivide(true, digitsOf(x), digitsOf(y), &r);
  if (signOf(x) == signOf(y) || digitsIsZero(r)) return textOfDigits(r);
  return textOfDigits(digitsSub(digitsOf(y), r));
}

std::string refPowa(std::string_view x, std::string_view y) {
  if (!signOf(y)) return "0";
  if (y == "0") return "1";
  std::string r = textOfDigits(digitsPower(digitsOf(x), digitsOf(y)));
  bool odd = (y.back() - '0') % 2 == 1;
  return !signOf(x) && odd ? "0" + r : r;
}

bool refLess(std::string_view x, std::string_view y) {
  bool sx = signOf(x), sy = signOf(y);
  if (sx != sy) return sy;
  return sx ? digitsLess(digitsOf(x), digitsOf(y)) : digitsLess(digitsOf(y), digitsOf(x));
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

// Every operation on one pair, against the reference.
void checkPair(const std::string& x, const std::string& y) {
  SCOPED_TRACE("x=" + x.substr(0, 60) + " y=" + y.substr(0, 60));
  EXPECT_EQ(hintAddText(x, y), refAdd(x, y));
  EXPECT_EQ(hintSubText(x, y), refAdd(x, refOpposite(y)));
  EXPECT_EQ(hintMulText(x, y), refMult(x, y));
  EXPECT_EQ(over(x, y), refOver(x, y));
  EXPECT_EQ(cent(x, y), refCent(x, y));
  EXPECT_EQ(hintLessText(x, y), refLess(x, y));
  EXPECT_EQ(hintGreaterEqText(x, y), !refLess(x, y));
  EXPECT_EQ(hintHalfText(x), refHalf(x));
  EXPECT_EQ(hintOppositeText(x), refOpposite(x));
  std::string q, r;
  if (hintOverCentText(x, y, q, r)) {
    EXPECT_EQ(q, refOver(x, y));
    EXPECT_EQ(r, refCent(x, y));
  }
}

TEST(DecimalRandom, ShortOperandsAllOperations) {
  Operands gen(1);
  for (int i = 0; i < 4000 / kScale; i++) {
    std::string x = gen.hint(1 + gen.below(45)), y = gen.hint(1 + gen.below(45));
    checkPair(x, y);
    if (i % 8 == 0) checkPair(x, x);
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
    EXPECT_EQ(prod, refMult(x, y));
  }
}

TEST(DecimalRandom, SmallFactorCarryChains) {
  // Limbs (low to high) 50000000, 33333333, 33333333 times 3: the middle sum
  // reaches 10^8 and the top one is 10^8 - 1 when that carry arrives, so a
  // carry runs through two limbs. Repeated at every offset within a group.
  for (size_t offset = 0; offset < 8; offset++) {
    std::string x = "1";
    for (int k = 0; k < 12; k++) x += "3333333333333333" "50000000" + std::string(8 * offset, '7');
    for (const char* m : {"3", "03", "6"}) {
      SCOPED_TRACE(std::to_string(offset) + " " + m);
      EXPECT_EQ(hintMulText(x, m), refMult(x, m));
      ScalarKernels scalar;
      EXPECT_EQ(hintMulText(x, m), refMult(x, m));
    }
  }
}

TEST(DecimalRandom, MediumOperandsAcrossCutOvers) {
  // Karatsuba from 40 limbs (320 digits); Newton division when divisor and
  // quotient both reach 150 limbs (1200 digits).
  Operands gen(2);
  for (int i = 0; i < 60 / kScale; i++) {
    size_t lx = 200 + gen.below(1600), ly = 1 + gen.below(lx);
    if (i % 3 == 0) ly = lx - gen.below(10);
    std::string x = gen.hint(lx), y = gen.hint(ly);
    checkPair(x, y);
  }
  for (int i = 0; i < 12 / kScale + 1; i++) {
    size_t ly = 1210 + gen.below(300), lx = 2 * ly + 20 + gen.below(200);
    std::string x = gen.hint(lx), y = gen.hint(ly);
    SCOPED_TRACE(i);
    EXPECT_EQ(over(x, y), refOver(x, y));
    EXPECT_EQ(cent(x, y), refCent(x, y));
  }
}

TEST(DecimalRandom, LongProductsThroughText) {
  // The transform takes over at 160 limbs (1280 digits) with the vector
  // kernels, at 700 limbs (5600 digits) without.
  Operands gen(3);
  for (int i = 0; i < 3; i++) {
    size_t lx = (6000 + gen.below(1000)) / kScale, ly = (5700 + gen.below(2000)) / kScale;
    std::string x = gen.hint(lx), y = gen.hint(ly);
    EXPECT_EQ(hintMulText(x, y), refMult(x, y));
  }
}

TEST(DecimalRandom, Powers) {
  Operands gen(4);
  for (int i = 0; i < 300 / kScale; i++) {
    std::string b = gen.hint(1 + gen.below(i < 200 ? 4 : 30));
    std::string e = std::to_string(gen.below(i < 200 ? 70 : 25));
    if (gen.below(10) == 0) e = "0" + e;
    if (e == "00") e = "0";
    SCOPED_TRACE(b + " ^ " + e);
    EXPECT_EQ(hintPowaText(b, e), refPowa(b, e));
  }
  // Long powers, where the squarings go through Karatsuba and the transform.
  for (const char* b : {"7", "012", "999", "123456789", "100", "02000"}) {
    for (const char* e : {"517", "2999", "3001"}) {
      SCOPED_TRACE(std::string(b) + " ^ " + e);
      if (kScale > 1 && std::string(e) != "517") continue;
      EXPECT_EQ(hintPowaText(b, e), refPowa(b, e));
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

bool same(const Limbs& a, const Limbs& b) {
  return natCompare(a.data(), a.size(), b.data(), b.size()) == 0 && a.size() == b.size();
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
      EXPECT_TRUE(same(sq, sqRef) && same(sqNtt, sqRef)) << vector;
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
    EXPECT_TRUE(same(qk, qn) && same(rk, rn));
    EXPECT_TRUE(same(qk, q) && same(rk, r));
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
      EXPECT_TRUE(same(q, qk) && same(r, rk));
      expectDivision(a, b, q, r);
    }
  }
}

}  // namespace
}  // namespace tarn
