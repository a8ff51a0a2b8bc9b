// Dyadic values: reading and writing the interleaved fixed form, and exact
// magnitude arithmetic on mantissa and exponent.
#include "numbers/dyadic.h"

#include <algorithm>
#include <cstring>

#include "terms/failure.h"

namespace tarn {

namespace {

// The 32 even-numbered bits of a word, packed into the low half.
uint64_t compactEven(uint64_t x) {
  x &= 0x5555555555555555ull;
  x = (x | (x >> 1)) & 0x3333333333333333ull;
  x = (x | (x >> 2)) & 0x0F0F0F0F0F0F0F0Full;
  x = (x | (x >> 4)) & 0x00FF00FF00FF00FFull;
  x = (x | (x >> 8)) & 0x0000FFFF0000FFFFull;
  x = (x | (x >> 16)) & 0x00000000FFFFFFFFull;
  return x;
}

// The inverse: the low 32 bits of x spread to the even-numbered bits.
uint64_t spreadEven(uint64_t x) {
  x &= 0x00000000FFFFFFFFull;
  x = (x | (x << 16)) & 0x0000FFFF0000FFFFull;
  x = (x | (x << 8)) & 0x00FF00FF00FF00FFull;
  x = (x | (x << 4)) & 0x0F0F0F0F0F0F0F0Full;
  x = (x | (x << 2)) & 0x3333333333333333ull;
  x = (x | (x << 1)) & 0x5555555555555555ull;
  return x;
}

// The low `width` bits of v in reverse order (1 <= width <= 64).
uint64_t reverseLow(uint64_t v, unsigned width) {
  v = ((v >> 1) & 0x5555555555555555ull) | ((v & 0x5555555555555555ull) << 1);
  v = ((v >> 2) & 0x3333333333333333ull) | ((v & 0x3333333333333333ull) << 2);
  v = ((v >> 4) & 0x0F0F0F0F0F0F0F0Full) | ((v & 0x0F0F0F0F0F0F0F0Full) << 4);
  return __builtin_bswap64(v) >> (64 - width);
}

// Normalises to an odd mantissa (or zero with exponent 0).
Dyadic normalised(Natural mant, int64_t exp) {
  Dyadic d;
  if (natIsZero(mant)) return d;
  size_t tz = natTrailingZeros(mant);
  d.mant = tz ? natShiftRight(mant, tz) : std::move(mant);
  d.exp = exp + int64_t(tz);
  return d;
}

// Both mantissas brought to the smaller exponent.
struct Aligned {
  Natural a, b;
  int64_t exp;
};
Aligned align(const Dyadic& x, const Dyadic& y) {
  if (natIsZero(x.mant)) return {Natural{}, y.mant, y.exp};
  if (natIsZero(y.mant)) return {x.mant, Natural{}, x.exp};
  int64_t e = std::min(x.exp, y.exp);
  return {natShiftLeft(x.mant, size_t(x.exp - e)), natShiftLeft(y.mant, size_t(y.exp - e)), e};
}

}  // namespace

// Odd positions 2i+1 hold the integer bits i; even positions 2i (i >= 1)
// hold the fraction bits of weight 2^-i, so the fraction read from the even
// positions is bit-reversed: with k the last fraction bit, fraction bit i is
// bit k-i of the mantissa's low k bits.
Dyadic dyadicFromFixed(const BitString& fixed) {
  if (fixed.size() <= 8) {
    // One word: 32 integer bits and 31 fraction bits, so the whole value
    // times 2^k fits in a word.
    uint64_t w = 0;
    std::memcpy(&w, fixed.data(), fixed.size());
    uint64_t integer = compactEven(w >> 1), fraction = compactEven(w) & ~uint64_t(1);
    if (fraction == 0) return dyadicOf(w & 1, natOf(integer), 0);
    unsigned k = 63 - unsigned(__builtin_clzll(fraction));
    uint64_t low = reverseLow(fraction, k + 1);
    return dyadicOf(w & 1, natOf((integer << k) | low), -int64_t(k));
  }
  size_t words = (fixed.size() + 7) / 8;
  std::vector<uint64_t> w(words, 0);
  if (!fixed.empty()) std::memcpy(w.data(), fixed.data(), fixed.size());  // little-endian host
  size_t limbs = (words + 1) / 2;
  std::vector<Limb> odd(limbs, 0), even(limbs, 0);
  for (size_t j = 0; j < words; j++) {
    unsigned shift = (j % 2) ? 32 : 0;
    odd[j / 2] |= compactEven(w[j] >> 1) << shift;
    even[j / 2] |= compactEven(w[j]) << shift;
  }
  bool plus = !even.empty() && (even[0] & 1);
  if (!even.empty()) even[0] &= ~Limb(1);  // the sign is no fraction bit
  Natural integer = natFromBytes(std::string_view(reinterpret_cast<const char*>(odd.data()), odd.size() * 8));
  Natural fraction = natFromBytes(std::string_view(reinterpret_cast<const char*>(even.data()), even.size() * 8));
  Dyadic d;
  if (natIsZero(fraction)) {
    d = normalised(std::move(integer), 0);
  } else {
    size_t k = natBitLength(fraction) - 1;
    Natural low = natReverseBits(fraction, k + 1);
    d = normalised(natAdd(natShiftLeft(integer, k), low), -int64_t(k));
  }
  d.plus = plus;
  return d;
}

BitString fixedFromDyadic(const Dyadic& d) {
  if (d.mant.limbs.size() <= 1) {
    // One word when the integer bits and the fraction bits fit in 32 each.
    uint64_t m = natLow(d.mant);
    int64_t len = m ? 64 - __builtin_clzll(m) : 0;
    uint64_t integer = 0, fraction = 0;
    bool fits = false;
    if (m == 0) {
      fits = true;
    } else if (d.exp >= 0) {
      fits = len + d.exp <= 32;
      if (fits) integer = m << d.exp;
    } else if (d.exp > -32 && len + d.exp <= 32) {
      unsigned k = unsigned(-d.exp);
      fits = true;
      integer = m >> k;
      fraction = reverseLow(m & ((uint64_t(1) << k) - 1), k + 1);
    }
    if (fits) {
      uint64_t w = spreadEven(fraction) | (spreadEven(integer) << 1) | (d.plus ? 1 : 0);
      return bitsOfValue(w);
    }
  }
  Natural integer, fraction;
  if (!natIsZero(d.mant)) {
    if (d.exp >= 0) {
      integer = natShiftLeft(d.mant, size_t(d.exp));
    } else {
      size_t k = size_t(-d.exp);
      integer = natShiftRight(d.mant, k);
      fraction = natReverseBits(natLowBits(d.mant, k), k + 1);
    }
  }
  size_t limbs = std::max(integer.limbs.size(), fraction.limbs.size());
  if (limbs == 0) limbs = 1;  // room for the sign
  std::vector<uint64_t> w(2 * limbs, 0);
  for (size_t j = 0; j < 2 * limbs; j++) {
    unsigned shift = (j % 2) ? 32 : 0;
    Limb i = j / 2 < integer.limbs.size() ? integer.limbs[j / 2] >> shift : 0;
    Limb f = j / 2 < fraction.limbs.size() ? fraction.limbs[j / 2] >> shift : 0;
    w[j] = spreadEven(f) | (spreadEven(i) << 1);
  }
  if (d.plus) w[0] |= 1;
  BitString out(w.size() * 8, '\0');
  std::memcpy(out.data(), w.data(), out.size());
  stripZeros(out);
  return out;
}

Dyadic dyadicOf(bool plus, Natural mant, int64_t exp) {
  Dyadic d = normalised(std::move(mant), exp);
  d.plus = plus;
  return d;
}

int64_t dyadicTop(const Dyadic& d) {
  TARN_ASSERT(!natIsZero(d.mant));
  return int64_t(natBitLength(d.mant)) - 1 + d.exp;
}

int dyadicCompare(const Dyadic& a, const Dyadic& b) {
  bool za = natIsZero(a.mant), zb = natIsZero(b.mant);
  if (za || zb) return za == zb ? 0 : (za ? -1 : 1);
  int64_t ta = dyadicTop(a), tb = dyadicTop(b);
  if (ta != tb) return ta < tb ? -1 : 1;
  Aligned al = align(a, b);
  return natCompare(al.a, al.b);
}

Dyadic dyadicAdd(const Dyadic& a, const Dyadic& b) {
  Aligned al = align(a, b);
  return normalised(natAdd(al.a, al.b), al.exp);
}

Dyadic dyadicSub(const Dyadic& a, const Dyadic& b) {
  Aligned al = align(a, b);
  return normalised(natSub(al.a, al.b), al.exp);
}

Dyadic dyadicMul(const Dyadic& a, const Dyadic& b) {
  if (natIsZero(a.mant) || natIsZero(b.mant)) return Dyadic{};
  // Odd times odd is odd: no normalisation needed.
  Dyadic d;
  d.mant = natMul(a.mant, b.mant);
  // Exponents this large come only from repeated squaring, and no text in
  // memory could ever hold the result: memory is exhausted.
  if (__builtin_add_overflow(a.exp, b.exp, &d.exp)) TARN_FAIL();
  return d;
}

Dyadic dyadicMod(const Dyadic& a, const Dyadic& b) {
  TARN_ASSERT(!natIsZero(b.mant));
  if (dyadicCompare(a, b) < 0) return normalised(a.mant, a.exp);
  Aligned al = align(a, b);
  Natural r;
  natDivide(al.a, al.b, nullptr, &r);
  return normalised(std::move(r), al.exp);
}

}  // namespace tarn
