// Number texts <-> bit strings, and the binary naturals underneath, checked
// against simple reference routines. (The lists of small numbers are printed
// by the golden program bitlists.)
#include <gtest/gtest.h>

#include <random>

#include "numbers/bignum/binary.h"
#include "numbers/bits.h"

namespace tarn {
namespace {

// Reference decimal -> little-endian bytes: multiply by 10 and add, per digit.
BitString refFromDecimal(std::string_view digits) {
  std::vector<unsigned> bytes;
  for (char c : digits) {
    unsigned carry = unsigned(c - '0');
    for (unsigned& b : bytes) {
      unsigned v = b * 10 + carry;
      b = v & 0xff;
      carry = v >> 8;
    }
    while (carry) {
      bytes.push_back(carry & 0xff);
      carry >>= 8;
    }
  }
  BitString out;
  for (unsigned b : bytes) out.push_back(char(b));
  return out;
}

// Reference bytes -> decimal: divide by 10 from the top, per digit.
std::string refDecimal(BitString bytes) {
  std::string digits;
  stripZeros(bytes);
  while (!bytes.empty()) {
    unsigned rem = 0;
    for (size_t i = bytes.size(); i-- > 0;) {
      unsigned v = rem * 256 + static_cast<unsigned char>(bytes[i]);
      bytes[i] = char(v / 10);
      rem = v % 10;
    }
    digits.push_back(char('0' + rem));
    stripZeros(bytes);
  }
  if (digits.empty()) return "0";
  return std::string(digits.rbegin(), digits.rend());
}

// y * 2^shift + low, by the primitives.
BitString refPlace(const BitString& y, size_t shift, uint64_t low) {
  BitString out;
  for (size_t i = 0; i < y.size() * 8; i++)
    if (getBit(y, i)) setBit(out, i + shift);
  for (size_t i = 0; i < 64; i++)
    if ((low >> i) & 1) setBit(out, i);
  return out;
}

std::string randomDigits(std::mt19937_64& rng, size_t n) {
  std::string s(1, char('1' + rng() % 9));
  while (s.size() < n) s.push_back(char('0' + rng() % 10));
  return s;
}

// Every form of text, at lengths around the word size and the split
// thresholds, against the reference conversion.
TEST(Bits, LongTextsMatchTheReference) {
  std::mt19937_64 rng(7);
  for (size_t len : {1, 18, 19, 20, 38, 39, 40, 400, 912, 913, 1500, 2600, 4000}) {
    std::string y = randomDigits(rng, len);
    BitString ref = refFromDecimal(y);
    EXPECT_EQ(bitsFromText(y), refPlace(ref, 2, 3)) << len;
    EXPECT_EQ(bitsFromText("0" + y), refPlace(ref, 2, 1)) << len;
    size_t z = rng() % 70;
    std::string numb = "00" + std::string(z, '0') + y;
    BitString expect = refPlace(ref, z + 2, 0);
    setBit(expect, z + 1);
    EXPECT_EQ(bitsFromText(numb), expect) << len << " z " << z;
    EXPECT_EQ(textFromBits(expect), numb);
    EXPECT_EQ(textFromBits(refPlace(ref, 2, 3)), y);
    EXPECT_EQ(textFromBits(refPlace(ref, 2, 1)), "0" + y);
    EXPECT_EQ(natDecimal(natFromBytes(ref)), refDecimal(ref));
  }
}

// Powers of ten at the split points (long runs of zeros in the low halves)
// and runs of nines (remainders just below the divisor), up to four levels
// of splitting.
TEST(Bits, SplitBoundariesRoundTrip) {
  for (size_t n : {2431, 2432, 2433, 4863, 4864, 9728, 19456, 38912}) {
    std::string ten = "1" + std::string(n, '0'), nines(n, '9');
    EXPECT_EQ(textFromBits(bitsFromText(ten)), ten) << n;
    EXPECT_EQ(textFromBits(bitsFromText(nines)), nines) << n;
    EXPECT_EQ(natDecimal(natAdd(natFromDecimal(nines), natOf(1))), ten) << n;
  }
}

// ---- Binary naturals ---------------------------------------------------------------

// Limbs drawn from values that exercise carries and the quotient estimate.
Natural randomNatural(std::mt19937_64& rng, size_t limbs) {
  static const Limb edge[] = {0, 1, ~Limb(0), Limb(1) << 63, (Limb(1) << 63) - 1};
  Natural n;
  for (size_t i = 0; i < limbs; i++) n.limbs.push_back(rng() % 3 ? rng() : edge[rng() % 5]);
  if (!n.limbs.empty() && n.limbs.back() == 0) n.limbs.back() = 1;
  return n;
}

Natural refMul(const Natural& a, const Natural& b) {
  std::vector<Limb> r(a.limbs.size() + b.limbs.size() + 1, 0);
  for (size_t i = 0; i < a.limbs.size(); i++) {
    unsigned __int128 carry = 0;
    for (size_t j = 0; j < b.limbs.size(); j++) {
      unsigned __int128 p = (unsigned __int128)a.limbs[i] * b.limbs[j] + r[i + j] + carry;
      r[i + j] = Limb(p);
      carry = p >> 64;
    }
    for (size_t k = i + b.limbs.size(); carry; k++) {
      unsigned __int128 s = (unsigned __int128)r[k] + carry;
      r[k] = Limb(s);
      carry = s >> 64;
    }
  }
  while (!r.empty() && r.back() == 0) r.pop_back();
  return Natural{r};
}

TEST(Binary, ProductsAndQuotientsAgreeWithReference) {
  std::mt19937_64 rng(3);
  const size_t sizes[] = {1, 2, 5, 31, 32, 33, 64, 65, 100, 150, 301};
  for (size_t an : sizes) {
    for (size_t bn : sizes) {
      Natural a = randomNatural(rng, an), b = randomNatural(rng, bn);
      Natural p = natMul(a, b);
      ASSERT_EQ(natCompare(p, refMul(a, b)), 0) << an << "x" << bn;
      Natural q, r;
      natDivide(p, b, &q, &r);
      EXPECT_EQ(natCompare(q, a), 0);
      EXPECT_TRUE(natIsZero(r));
      Natural c = natAdd(p, randomNatural(rng, bn > 1 ? bn - 1 : 0));
      natDivide(c, b, &q, &r);
      EXPECT_LT(natCompare(r, b), 0);
      EXPECT_EQ(natCompare(natAdd(natMul(q, b), r), c), 0) << an << "/" << bn;
    }
  }
  // A quotient limb whose estimate survives the two-limb test and still is
  // one too large, so the divisor must be added back.
  Natural u{{0, 0, Limb(1) << 63, (Limb(1) << 63) - 1}}, v{{1, 0, Limb(1) << 63}};
  Natural q, r;
  natDivide(u, v, &q, &r);
  EXPECT_EQ(natDecimal(q), "18446744073709551614");
  EXPECT_EQ(natCompare(natAdd(natMul(q, v), r), u), 0);
  EXPECT_LT(natCompare(r, v), 0);
}

TEST(Binary, ShiftsReversalAndBits) {
  Natural a = natFromDecimal("340282366920938463463374607431768211457");  // 2^128 + 1
  EXPECT_EQ(natBitLength(a), 129u);
  EXPECT_EQ(natDecimal(natShiftRight(a, 128)), "1");
  EXPECT_EQ(natDecimal(natLowBits(a, 128)), "1");
  EXPECT_EQ(natDecimal(natShiftLeft(natOf(3), 65)), "110680464442257309696");
  EXPECT_EQ(natTrailingZeros(natShiftLeft(natOf(6), 100)), 101u);
  EXPECT_EQ(natDecimal(natReverseBits(natOf(0b1101), 6)), "44");  // 001101 -> 101100
  EXPECT_EQ(natDecimal(natReverseBits(a, 129)), natDecimal(a));  // a palindrome
  EXPECT_EQ(natCompare(natReverseBits(natShiftLeft(natOf(1), 200), 201), natOf(1)), 0);
  EXPECT_EQ(natDecimal(natSub(a, natOf(2))), "340282366920938463463374607431768211455");
  EXPECT_EQ(natDecimal(Natural{}), "0");
  EXPECT_EQ(natDecimal(natFromDecimal("000000000000000000000000000123")), "123");
}

}  // namespace
}  // namespace tarn
