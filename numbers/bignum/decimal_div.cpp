// Division of magnitudes: a = q b + r, 0 <= r < b (truncating; the sign
// rules live in decimal.cpp).
//
// One-limb divisors divide limb by limb. Long division by limbs (Knuth's
// algorithm D) serves while the divisor or the quotient is short, since its
// cost is their product. Beyond that the quotient comes from a Newton
// reciprocal of the divisor, which costs a few long products; a quotient much
// shorter than the divisor is first estimated from the top limbs alone.
// Every approximate quotient is settled by a final exact check against the
// remainder, so the approximations only need bounded error, never exactness.
#include <algorithm>
#include <cstring>

#include "terms/failure.h"
#include "numbers/bignum/decimal_limbs.h"

namespace tarn {

namespace {

using u64 = uint64_t;

Limbs copyTrimmed(const Limb* a, size_t n) {
  Limbs r(a, natLength(a, n));
  return r;
}

// The limbs of a from index `from` up (a divided by B^from, truncated).
Limbs shiftDown(const Limbs& a, size_t from) {
  if (from >= a.size()) return Limbs();
  return copyTrimmed(a.data() + from, a.size() - from);
}

// a -= b where a >= b; a stays normalized.
void subInPlace(Limbs& a, const Limbs& b) {
  Limb borrow = natSub(a.data(), a.data(), a.size(), b.data(), b.size());
  TARN_ASSERT(borrow == 0);
  a.trim();
}

// a += 1.
void increment(Limbs& a) {
  size_t n = a.size();
  a.resize(n + 1);
  a[n] = 0;
  Limb one = 1;
  natAdd(a.data(), a.data(), n + 1, &one, 1);
  a.trim();
}

// a -= 1 for a >= 1.
void decrement(Limbs& a) {
  Limb one = 1;
  Limb borrow = natSub(a.data(), a.data(), a.size(), &one, 1);
  TARN_ASSERT(borrow == 0);
  a.trim();
}

bool isLess(const Limbs& a, const Limbs& b) {
  return natCompare(a.data(), a.size(), b.data(), b.size()) < 0;
}

// ---- Long division ----------------------------------------------------------------
// Normalized a (na >= nb) and b (nb >= 2). Both are first scaled by
// f = B / (top + 1) so that the divisor's top limb is at least B / 2; then
// each quotient limb estimated from the top two limbs is at most two too
// large, and the test against the second divisor limb removes nearly all of
// that before the multiply-subtract.
void divKnuth(const Limb* a, size_t na, const Limb* b, size_t nb, Limbs* q, Limbs* r) {
  const Limb f = kLimbBase / (b[nb - 1] + 1);
  Limbs u(na + 1), v(nb);
  u[na] = natMulSmall(u.data(), a, na, f);
  Limb over = natMulSmall(v.data(), b, nb, f);
  TARN_ASSERT(over == 0);
  const u64 vTop = v[nb - 1], vNext = v[nb - 2];
  Limbs quo(na - nb + 1);
  for (size_t j = na - nb + 1; j-- > 0;) {
    u64 num = u64(u[j + nb]) * kLimbBase + u[j + nb - 1];
    u64 qhat = num / vTop, rhat = num - qhat * vTop;
    while (qhat >= kLimbBase || qhat * vNext > rhat * kLimbBase + u[j + nb - 2]) {
      qhat--;
      rhat += vTop;
      if (rhat >= kLimbBase) break;
    }
    if (qhat >= kLimbBase) qhat = kLimbBase - 1;  // the true limb is below B
    // u[j, j + nb] -= qhat v
    u64 carry = 0;
    int64_t borrow = 0;
    for (size_t i = 0; i < nb; i++) {
      u64 p = qhat * v[i] + carry;
      carry = p / kLimbBase;
      int64_t t = int64_t(u[i + j]) - int64_t(p - carry * kLimbBase) - borrow;
      borrow = t < 0;
      u[i + j] = Limb(t < 0 ? t + kLimbBase : t);
    }
    int64_t top = int64_t(u[j + nb]) - int64_t(carry) - borrow;
    // A negative top means qhat was too large: add v back (at most twice).
    for (int k = 0; top < 0; k++) {
      TARN_ASSERT(k < 2);
      qhat--;
      top += natAdd(u.data() + j, u.data() + j, nb, v.data(), nb);
    }
    u[j + nb] = Limb(top);
    quo[j] = Limb(qhat);
  }
  quo.trim();
  *q = std::move(quo);
  Limb rest = natDivSmall(u.data(), u.data(), nb, f);
  TARN_ASSERT(rest == 0);
  u.resize(nb);
  u.trim();
  *r = std::move(u);
}

// ---- Newton reciprocal ---------------------------------------------------------------
// For a normalized d of n limbs (top limb at least B / 2), V with
//   B^2n / d - 2 < V <= B^2n / d.
// From the reciprocal Vh of the top h limbs (2h >= n + 1) one Newton step
//   X1 = X0 + X0 (B^2n - d X0) / B^2n,   X0 = Vh B^k, k = n - h,
// roughly doubles the correct limbs. Newton's step never overshoots 1/d, and
// every truncation below rounds down, so V stays at or below B^2n / d; the
// squared error of X0 is far below one unit, so V is within 1 + 2/B of it.
Limbs reciprocal(const Limb* d, size_t n) {
  if (n < kNewtonMinLimbs) {
    Limbs num(2 * n + 1);
    num.clear();
    num[2 * n] = 1;
    Limbs q, r;
    divKnuth(num.data(), num.size(), d, n, &q, &r);
    return q;
  }
  const size_t h = (n + 2) / 2, k = n - h;
  Limbs vh = reciprocal(d + k, h);
  // F = B^(n+h) - d Vh, so that B^2n - d X0 = F B^k.
  Limbs p(n + vh.size());
  natMul(p.data(), d, n, vh.data(), vh.size());
  p.trim();
  const size_t top = n + h;
  bool negative = p.size() > top;  // d Vh > B^(n+h), unless exactly equal
  Limbs f;
  if (negative) {
    f = Limbs(p.data(), p.size());
    Limb one = 1;
    natSub(f.data() + top, f.data() + top, f.size() - top, &one, 1);  // minus B^(n+h)
    f.trim();
    negative = !f.empty();
  } else {
    // B^(n+h) - p = (B^(n+h) - 1 - p) + 1, limb by limb.
    f = Limbs(top + 1);
    for (size_t i = 0; i < top; i++) f[i] = kLimbBase - 1 - (i < p.size() ? p[i] : 0);
    f[top] = 0;
    Limb one = 1;
    natAdd(f.data(), f.data(), top + 1, &one, 1);
    f.trim();
  }
  // Et = floor(F / B^(h-1)), then Delta = floor(Vh Et / B^(h+1)); both
  // floors round toward minus infinity, so a negative F rounds its magnitude
  // up.
  Limbs et = shiftDown(f, h - 1);
  if (negative && natLength(f.data(), std::min(f.size(), h - 1)) != 0) increment(et);
  Limbs prod = mulLimbs(vh, et);
  Limbs delta = shiftDown(prod, h + 1);
  if (negative && natLength(prod.data(), std::min(prod.size(), h + 1)) != 0) increment(delta);
  // X1 = Vh B^k +- Delta
  Limbs x(k + vh.size() + 1);
  std::memset(x.data(), 0, k * sizeof(Limb));
  std::memcpy(x.data() + k, vh.data(), vh.size() * sizeof(Limb));
  x[k + vh.size()] = 0;
  TARN_ASSERT(delta.size() <= x.size());
  if (negative) {
    Limb borrow = natSub(x.data(), x.data(), x.size(), delta.data(), delta.size());
    TARN_ASSERT(borrow == 0);
  } else {
    Limb carry = natAdd(x.data(), x.data(), x.size(), delta.data(), delta.size());
    TARN_ASSERT(carry == 0);
  }
  x.trim();
  return x;
}

// One block: u < d B^n, d normalized of n limbs, v its reciprocal. The
// estimate floor(floor(u / B^(n-1)) v / B^(n+1)) is at most the quotient and
// at most three below it.
void divideBlock(const Limbs& u, const Limbs& d, const Limbs& v, Limbs* q, Limbs* r) {
  const size_t n = d.size();
  Limbs ut = shiftDown(u, n - 1);
  Limbs qe = shiftDown(mulLimbs(ut, v), n + 1);
  Limbs rem = copyTrimmed(u.data(), u.size());
  subInPlace(rem, mulLimbs(qe, d));
  for (int k = 0; !isLess(rem, d); k++) {
    TARN_ASSERT(k < 4);
    subInPlace(rem, d);
    increment(qe);
  }
  *q = std::move(qe);
  *r = std::move(rem);
}

// Division with the reciprocal of the whole divisor: the dividend is taken
// from the top in blocks of n limbs, each block divided with the same
// reciprocal (the first partial remainder is the top n - 1 limbs, which is
// below d). A short last block costs only a linear amount.
void divNewtonBlocks(const Limb* a, size_t na, const Limb* b, size_t nb, Limbs* q, Limbs* r) {
  const Limb f = kLimbBase / (b[nb - 1] + 1);
  Limbs d(nb), an(na + 1);
  Limb over = natMulSmall(d.data(), b, nb, f);
  TARN_ASSERT(over == 0);
  an[na] = natMulSmall(an.data(), a, na, f);
  an.trim();
  Limbs v = reciprocal(d.data(), nb);
  size_t pos = an.size() - (nb - 1);
  Limbs rem = copyTrimmed(an.data() + pos, nb - 1);
  Limbs quo(pos);
  quo.clear();
  while (pos > 0) {
    size_t len = std::min(nb, pos), lo = pos - len;
    // u = rem B^len + the block
    Limbs u(len + rem.size());
    std::memcpy(u.data(), an.data() + lo, len * sizeof(Limb));
    if (!rem.empty()) std::memcpy(u.data() + len, rem.data(), rem.size() * sizeof(Limb));
    u.trim();
    Limbs qb;
    divideBlock(u, d, v, &qb, &rem);
    TARN_ASSERT(qb.size() <= len);
    if (!qb.empty()) std::memcpy(quo.data() + lo, qb.data(), qb.size() * sizeof(Limb));
    pos = lo;
  }
  quo.trim();
  *q = std::move(quo);
  Limb rest = natDivSmall(rem.data(), rem.data(), rem.size(), f);
  TARN_ASSERT(rest == 0);
  rem.trim();
  *r = std::move(rem);
}

// A quotient of qlen limbs, shorter than the divisor by two limbs or more:
// the top 2 qlen limbs of a divided by the top qlen + 1 limbs of b give an
// estimate Q'. Truncating a and b by the same t limbs keeps a' >= Q b', so
// Q' is never below the quotient Q, and since b' has qlen + 1 limbs while
// Q < B^qlen, it is at most two above; the exact product settles it.
void divShortQuotient(const Limb* a, size_t na, const Limb* b, size_t nb, Limbs* q, Limbs* r) {
  const size_t qlen = na - nb + 1, drop = nb - qlen - 1;
  Limbs qe, unused;
  natDivMod(a + drop, na - drop, b + drop, nb - drop, &qe, &unused);
  Limbs bb = copyTrimmed(b, nb);
  Limbs p = mulLimbs(qe, bb);
  Limbs aa = copyTrimmed(a, na);
  for (int k = 0; isLess(aa, p); k++) {
    TARN_ASSERT(k < 2);
    subInPlace(p, bb);
    decrement(qe);
  }
  subInPlace(aa, p);
  TARN_ASSERT(isLess(aa, bb));
  *q = std::move(qe);
  *r = std::move(aa);
}

// Trims both operands; when the dividend is below the divisor the quotient
// is zero and the remainder the dividend, and the division is done.
bool smallDividend(const Limb* a, size_t& na, const Limb* b, size_t& nb, size_t minDivisor, Limbs* q,
                   Limbs* r) {
  na = natLength(a, na);
  nb = natLength(b, nb);
  TARN_ASSERT(nb >= minDivisor);
  if (na >= nb && natCompare(a, na, b, nb) >= 0) return false;
  *q = Limbs();
  *r = copyTrimmed(a, na);
  return true;
}

}  // namespace

void natDivModKnuth(const Limb* a, size_t na, const Limb* b, size_t nb, Limbs* q, Limbs* r) {
  if (smallDividend(a, na, b, nb, 2, q, r)) return;
  divKnuth(a, na, b, nb, q, r);
}

void natDivModNewton(const Limb* a, size_t na, const Limb* b, size_t nb, Limbs* q, Limbs* r) {
  if (smallDividend(a, na, b, nb, 2, q, r)) return;
  divNewtonBlocks(a, na, b, nb, q, r);
}

void natDivMod(const Limb* a, size_t na, const Limb* b, size_t nb, Limbs* q, Limbs* r) {
  if (smallDividend(a, na, b, nb, 1, q, r)) return;
  if (nb == 1) {
    Limbs quo(na);
    Limb rest = natDivSmall(quo.data(), a, na, b[0]);
    quo.trim();
    *q = std::move(quo);
    *r = rest ? Limbs(&rest, 1) : Limbs();
    return;
  }
  const size_t qlen = na - nb + 1;
  if (std::min(qlen, nb) < kNewtonMinLimbs) divKnuth(a, na, b, nb, q, r);
  else if (qlen + 1 < nb) divShortQuotient(a, na, b, nb, q, r);
  else divNewtonBlocks(a, na, b, nb, q, r);
}

}  // namespace tarn
