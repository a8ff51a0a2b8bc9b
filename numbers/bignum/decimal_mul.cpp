// Products of magnitudes: schoolbook for short operands, Karatsuba for medium
// ones, the number-theoretic transform (decimal_ntt.cpp) for long ones, and
// powers by squaring on top of them.
#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "terms/failure.h"
#include "numbers/bignum/decimal_limbs.h"
#include "numbers/bignum/decimal_simd.h"

namespace tarn {

namespace {

// Columns of limb products are summed in 64 bits; this many products of two
// limbs (each below 10^16) always fit, with room for the carry.
constexpr size_t kColumnLimit = 1024;

void zeroLimbs(Limb* r, size_t n) {
  if (n) std::memset(r, 0, n * sizeof(Limb));
}

// Turns column sums into limbs: r[k] = (acc[k] + carry) mod 10^8.
void carryColumns(Limb* r, const uint64_t* acc, size_t n) {
  uint64_t carry = 0;
  for (size_t k = 0; k < n; k++) {
    uint64_t t = acc[k] + carry;
    carry = t / kLimbBase;
    r[k] = Limb(t - carry * kLimbBase);
  }
  TARN_ASSERT(carry == 0);
}

// A scratch array of 64-bit columns, on the stack when small.
class Columns {
 public:
  explicit Columns(size_t n) : heap_(n > kStack ? new uint64_t[n] : nullptr) {
    std::memset(data(), 0, n * sizeof(uint64_t));
  }
  uint64_t* data() { return heap_ ? heap_.get() : stack_; }

 private:
  static constexpr size_t kStack = 256;
  uint64_t stack_[kStack];
  std::unique_ptr<uint64_t[]> heap_;
};

// Schoolbook with nb <= kColumnLimit, na >= nb >= 1.
void mulColumns(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb) {
  Columns cols(na + nb);
  uint64_t* __restrict acc = cols.data();
  for (size_t i = 0; i < na; i++) {
    uint64_t ai = a[i];
    uint64_t* __restrict row = acc + i;
    for (size_t j = 0; j < nb; j++) row[j] += ai * b[j];
  }
  carryColumns(r, acc, na + nb);
}

// Schoolbook square, n <= kColumnLimit: the cross products once, doubled,
// then the squares on the diagonal.
void sqrColumns(Limb* r, const Limb* a, size_t n) {
  Columns cols(2 * n);
  uint64_t* __restrict acc = cols.data();
  for (size_t i = 0; i < n; i++) {
    uint64_t ai = a[i];
    uint64_t* __restrict row = acc + 2 * i + 1;
    const Limb* rest = a + i + 1;
    for (size_t j = 0; j + i + 1 < n; j++) row[j] += ai * rest[j];
  }
  for (size_t k = 0; k < 2 * n; k++) acc[k] *= 2;
  for (size_t i = 0; i < n; i++) acc[2 * i] += uint64_t(a[i]) * a[i];
  carryColumns(r, acc, 2 * n);
}

// ---- Karatsuba ----------------------------------------------------------------
// With a = a1 B^h + a0 and b = b1 B^h + b0:
//   a b = a1 b1 B^2h + ((a0 + a1)(b0 + b1) - a0 b0 - a1 b1) B^h + a0 b0.
// The half sums take one extra limb (0 or 1), so the middle product is of
// size hh + 1. Balanced operands of n limbs; r gets 2n limbs.

size_t karatsubaScratch(size_t n) {
  size_t total = 0;
  while (n >= kKaratsubaMinLimbs) {
    size_t hh = n - n / 2;
    total += 4 * (hh + 1);
    n = hh + 1;
  }
  return total;
}

template <bool kSquare>
void karatsuba(Limb* r, const Limb* a, const Limb* b, size_t n, Limb* ws) {
  if (n < kKaratsubaMinLimbs) {
    if constexpr (kSquare) sqrColumns(r, a, n);
    else mulColumns(r, a, n, b, n);
    return;
  }
  size_t h = n / 2, hh = n - h;  // low half h limbs, high half hh >= h
  karatsuba<kSquare>(r, a, b, h, ws);                   // a0 b0 -> r[0, 2h)
  karatsuba<kSquare>(r + 2 * h, a + h, b + h, hh, ws);  // a1 b1 -> r[2h, 2n)
  Limb* sa = ws;
  Limb* sb = ws + (hh + 1);
  Limb* mid = ws + 2 * (hh + 1);
  Limb* next = ws + 4 * (hh + 1);
  sa[hh] = natAdd(sa, a + h, hh, a, h);
  if constexpr (!kSquare) sb[hh] = natAdd(sb, b + h, hh, b, h);
  karatsuba<kSquare>(mid, sa, kSquare ? sa : sb, hh + 1, next);
  size_t midLen = 2 * (hh + 1);
  // mid - a0 b0 - a1 b1 = a0 b1 + a1 b0: never negative.
  Limb borrow = natSub(mid, mid, midLen, r, 2 * h);
  borrow += natSub(mid, mid, midLen, r + 2 * h, 2 * hh);
  TARN_ASSERT(borrow == 0);
  midLen = natLength(mid, midLen);
  Limb carry = natAdd(r + h, r + h, 2 * n - h, mid, midLen);
  TARN_ASSERT(carry == 0);
}

}  // namespace

size_t nttMinLimbs() { return vectorKernelsOn() ? kNttMinLimbsVector : kNttMinLimbsScalar; }

void natMulSchoolbook(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb) {
  if (na < nb) std::swap(a, b), std::swap(na, nb);
  zeroLimbs(r, na + nb);
  if (nb == 0) return;
  if (nb <= kColumnLimit) {
    mulColumns(r, a, na, b, nb);
    return;
  }
  // Longer operands: blocks of b, each product added in at its offset.
  Limbs part(na + kColumnLimit);
  for (size_t off = 0; off < nb; off += kColumnLimit) {
    size_t len = std::min(kColumnLimit, nb - off);
    mulColumns(part.data(), a, na, b + off, len);
    Limb carry = natAdd(r + off, r + off, na + nb - off, part.data(), na + len);
    TARN_ASSERT(carry == 0);
  }
}

void natMulKaratsuba(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb) {
  if (na < nb) std::swap(a, b), std::swap(na, nb);
  if (nb < kKaratsubaMinLimbs) {
    natMulSchoolbook(r, a, na, b, nb);
    return;
  }
  if (na == nb) {
    Limbs ws(karatsubaScratch(nb));
    karatsuba<false>(r, a, b, nb, ws.data());
    return;
  }
  // Unbalanced: slices of a as long as b, each product added at its offset.
  zeroLimbs(r, na + nb);
  Limbs part(2 * nb);
  Limbs ws(karatsubaScratch(nb));
  for (size_t off = 0; off < na; off += nb) {
    size_t len = std::min(nb, na - off);
    if (len == nb) karatsuba<false>(part.data(), a + off, b, nb, ws.data());
    else natMulKaratsuba(part.data(), b, nb, a + off, len);
    Limb carry = natAdd(r + off, r + off, na + nb - off, part.data(), nb + len);
    TARN_ASSERT(carry == 0);
  }
}

void natMul(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb) {
  size_t total = na + nb;
  na = natLength(a, na);
  nb = natLength(b, nb);
  if (na < nb) std::swap(a, b), std::swap(na, nb);
  zeroLimbs(r + na + nb, total - na - nb);
  if (nb == 0) {
    zeroLimbs(r, na);
    return;
  }
  if (nb == 1) {
    r[na] = natMulSmall(r, a, na, b[0]);
    return;
  }
  if (nb < kKaratsubaMinLimbs) mulColumns(r, a, na, b, nb);
  else if (nb < nttMinLimbs()) natMulKaratsuba(r, a, na, b, nb);
  else natMulNtt(r, a, na, b, nb);
}

void natSqr(Limb* r, const Limb* a, size_t n) {
  size_t total = 2 * n;
  n = natLength(a, n);
  zeroLimbs(r + 2 * n, total - 2 * n);
  if (n == 0) return;
  if (n < kKaratsubaMinLimbs) {
    sqrColumns(r, a, n);
  } else if (n < nttMinLimbs()) {
    Limbs ws(karatsubaScratch(n));
    karatsuba<true>(r, a, a, n, ws.data());
  } else {
    natSqrNtt(r, a, n);
  }
}

Limbs mulLimbs(const Limbs& a, const Limbs& b) {
  Limbs r(a.size() + b.size());
  natMul(r.data(), a.data(), a.size(), b.data(), b.size());
  r.trim();
  return r;
}

Limbs sqrLimbs(const Limbs& a) {
  Limbs r(2 * a.size());
  natSqr(r.data(), a.data(), a.size());
  r.trim();
  return r;
}

Limbs powLimbs(const Limbs& base, uint64_t e) {
  TARN_ASSERT(e >= 1);
  // Left to right over the bits of e: square, and multiply by the base where
  // the bit is set. A one-limb base multiplies in linear time.
  Limbs r(base.data(), base.size());
  int top = 63 - __builtin_clzll(e);
  for (int bit = top - 1; bit >= 0; bit--) {
    r = sqrLimbs(r);
    if ((e >> bit) & 1) {
      if (base.size() == 1) {
        size_t n = r.size();
        r.resize(n + 1);
        r[n] = natMulSmall(r.data(), r.data(), n, base[0]);
        r.trim();
      } else {
        r = mulLimbs(r, base);
      }
    }
  }
  return r;
}

}  // namespace tarn
