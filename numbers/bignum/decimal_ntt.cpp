// Long products by the number-theoretic transform.
//
// The limbs are the coefficients of two polynomials; their product's
// coefficients (each below n * 10^16) are found modulo two primes near 2^62
// by cyclic convolution of a power-of-two length, joined by the Chinese
// remainder theorem (exact, since the true coefficient is far below the
// product of the primes), and carried back into base 10^8.
//
// Arithmetic modulo p is Montgomery's with R = 2^64. Values are kept lazily
// in [0, 2p) or [0, 4p), which 64 bits hold since p < 2^62 (Harvey's
// butterflies); only the final values are reduced to [0, p). The forward
// transform is decimation in frequency (natural order in, bit-reversed out)
// and the inverse is decimation in time (bit-reversed in, natural out), so no
// reordering pass is needed.
#include <cstring>
#include <vector>

#include "terms/failure.h"
#include "numbers/bignum/decimal_limbs.h"
#include "numbers/bignum/decimal_simd.h"

namespace tarn {

namespace {

using u64 = uint64_t;
using u128 = unsigned __int128;

struct Prime {
  u64 p;
  u64 pinv;  // p^-1 mod 2^64
  u64 r2;    // R^2 mod p
  u64 generator;
  // Twiddles in Montgomery form, reduced to [0, p): for a stage on blocks of
  // length len = 2 * half, entry half + j holds w^j, w a primitive len-th
  // root (forward) or its inverse (inverse). The entries of a stage do not
  // depend on the transform length, so one table serves every length up to
  // its size.
  std::vector<u64> forward, inverse;
};

// (a b / R) mod p, lazily in (0, 2p). Needs a b < p R: a < 4p with b < p,
// or a, b < 2p. The low halves of a b and m p agree by the choice of m, so
// the difference of the high halves is exact.
inline u64 montMul(u64 a, u64 b, u64 p, u64 pinv) {
  u128 t = u128(a) * b;
  u64 m = u64(t) * pinv;
  u64 mp = u64((u128(m) * p) >> 64);
  return u64(t >> 64) - mp + p;
}

inline u64 reduceOnce(u64 x, u64 bound) { return x >= bound ? x - bound : x; }

u64 powMod(u64 b, u64 e, u64 p) {
  u64 r = 1;
  b %= p;
  while (e) {
    if (e & 1) r = u64(u128(r) * b % p);
    b = u64(u128(b) * b % p);
    e >>= 1;
  }
  return r;
}

Prime makePrime(u64 p, u64 generator) {
  Prime pr;
  pr.p = p;
  pr.generator = generator;
  u64 inv = p;  // Newton's iteration for the inverse modulo 2^64
  for (int i = 0; i < 6; i++) inv *= 2 - p * inv;
  TARN_ASSERT(inv * p == 1);
  pr.pinv = inv;
  u64 r = u64((u128(1) << 64) % p);
  pr.r2 = u64(u128(r) * r % p);
  pr.forward.assign(1, 0);
  pr.inverse.assign(1, 0);
  return pr;
}

// Both primes are c * 2^32 + 1 in [2^61, 2^62), so any power-of-two length up
// to 2^32 has its roots of unity.
Prime& primeAt(int k) {
  static Prime primes[2] = {makePrime(4611685941117976577ull, 3),
                            makePrime(4611685692009873409ull, 19)};
  return primes[k];
}

inline u64 toMont(u64 x, const Prime& pr) {
  return reduceOnce(montMul(x, pr.r2, pr.p, pr.pinv), pr.p);
}

// Grows the twiddle tables of a prime to serve length n.
void ensureTwiddles(Prime& pr, size_t n) {
  size_t have = pr.forward.size();
  if (have >= n) return;
  pr.forward.resize(n);
  pr.inverse.resize(n);
  for (size_t half = have / 2 == 0 ? 1 : have; half < n; half *= 2) {
    size_t len = 2 * half;
    u64 w = powMod(pr.generator, (pr.p - 1) / len, pr.p);
    u64 wi = powMod(w, pr.p - 2, pr.p);
    u64 wm = toMont(w, pr), wim = toMont(wi, pr);
    u64 one = toMont(1, pr);
    u64 f = one, g = one;
    for (size_t j = 0; j < half; j++) {
      pr.forward[half + j] = f;
      pr.inverse[half + j] = g;
      f = reduceOnce(montMul(f, wm, pr.p, pr.pinv), pr.p);
      g = reduceOnce(montMul(g, wim, pr.p, pr.pinv), pr.p);
    }
  }
}

// Forward transform, values in [0, 2p) in and out; output in bit-reversed
// order. Butterfly: (x, y) -> (x + y, (x - y) w).
void forwardNtt(u64* a, size_t n, const Prime& pr) {
  const u64 p = pr.p, p2 = 2 * p, pinv = pr.pinv;
  for (size_t half = n / 2; half >= 1; half /= 2) {
    const u64* w = pr.forward.data() + half;
    for (size_t start = 0; start < n; start += 2 * half) {
      u64* x = a + start;
      u64* y = x + half;
      for (size_t j = 0; j < half; j++) {
        u64 u = x[j], v = y[j];
        x[j] = reduceOnce(u + v, p2);
        y[j] = montMul(u - v + p2, w[j], p, pinv);
      }
    }
  }
}

// Inverse transform without the division by n: bit-reversed in, natural out,
// values below 4p in and out. Butterfly: (x, y) -> (x + y w, x - y w).
void inverseNtt(u64* a, size_t n, const Prime& pr) {
  const u64 p = pr.p, p2 = 2 * p, pinv = pr.pinv;
  for (size_t half = 1; half < n; half *= 2) {
    const u64* w = pr.inverse.data() + half;
    for (size_t start = 0; start < n; start += 2 * half) {
      u64* x = a + start;
      u64* y = x + half;
      for (size_t j = 0; j < half; j++) {
        u64 u = reduceOnce(x[j], p2);
        u64 t = montMul(y[j], w[j], p, pinv);
        x[j] = u + t;
        y[j] = u - t + p2;
      }
    }
  }
}

// The cyclic convolution of a and b (or of a with itself) modulo one prime,
// reduced to [0, p) and with the factor 1/n and Montgomery's 1/R taken out.
void convolve(std::vector<u64>& fa, std::vector<u64>& fb, const Limb* a, size_t na,
              const Limb* b, size_t nb, size_t n, bool square, Prime& pr) {
  ensureTwiddles(pr, n);
  fa.assign(n, 0);
  for (size_t i = 0; i < na; i++) fa[i] = a[i];
  forwardNtt(fa.data(), n, pr);
  const u64 p = pr.p, pinv = pr.pinv;
  if (square) {
    for (size_t i = 0; i < n; i++) fa[i] = montMul(fa[i], fa[i], p, pinv);
  } else {
    fb.assign(n, 0);
    for (size_t i = 0; i < nb; i++) fb[i] = b[i];
    forwardNtt(fb.data(), n, pr);
    for (size_t i = 0; i < n; i++) fa[i] = montMul(fa[i], fb[i], p, pinv);
  }
  inverseNtt(fa.data(), n, pr);
  // The pointwise products carry a factor 1/R; n^-1 R^2 in Montgomery form
  // undoes it together with the length.
  u64 nInv = powMod(n % p, p - 2, p);
  u64 scale = toMont(toMont(nInv, pr), pr);
  for (size_t i = 0; i < n; i++) {
    u64 v = montMul(fa[i], scale, p, pinv);
    fa[i] = reduceOnce(v, p);
  }
}

// c1 mod p1 and c2 mod p2 back to the coefficient c1 + p1 t, then base 10^8.
void joinAndCarry(Limb* r, size_t nr, const std::vector<u64>& c1, const std::vector<u64>& c2) {
  const Prime& q1 = primeAt(0);
  const Prime& q2 = primeAt(1);
  const u64 p1 = q1.p, p2 = q2.p;
  u64 inv = toMont(powMod(p1 % p2, p2 - 2, p2), q2);  // p1^-1 mod p2, Montgomery form
  u128 carry = 0;
  for (size_t k = 0; k < nr; k++) {
    // The last product limb has no coefficient of its own (only the carry)
    // when the length is exactly na + nb - 1.
    u64 x1 = k < c1.size() ? c1[k] : 0, x2 = k < c2.size() ? c2[k] : 0;
    u64 d = x2 + p2 - reduceOnce(x1, p2);  // p1 < 2 p2, so one step reduces x1
    u64 t = reduceOnce(montMul(d, inv, p2, q2.pinv), p2);
    u128 v = u128(x1) + u128(p1) * t + carry;
    // v is below 2^96: split by 10^8 with two 64-bit divisions.
    u64 hi = u64(v >> 32);
    u64 q1d = hi / kLimbBase, r1 = hi - q1d * kLimbBase;
    u64 y = (r1 << 32) | u64(v & 0xffffffffu);
    u64 q0 = y / kLimbBase;
    r[k] = Limb(y - q0 * kLimbBase);
    carry = (u128(q1d) << 32) + q0;
  }
  TARN_ASSERT(carry == 0);
}

void multiply(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb, bool square) {
  size_t nr = na + nb;
  size_t n = 1;
  while (n < nr - 1) n *= 2;
  TARN_ASSERT(n <= (size_t(1) << 32));
  std::vector<u64> c1, c2, scratch;
  convolve(c1, scratch, a, na, b, nb, n, square, primeAt(0));
  convolve(c2, scratch, a, na, b, nb, n, square, primeAt(1));
  joinAndCarry(r, nr, c1, c2);
}

}  // namespace

void natMulNtt(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb) {
  if (na == 0 || nb == 0) {
    if (na + nb) std::memset(r, 0, (na + nb) * sizeof(Limb));
    return;
  }
  if (vectorKernelsOn() && nttAvx2Fits(na, nb)) mulNttAvx2(r, a, na, b, nb, false);
  else multiply(r, a, na, b, nb, false);
}

void natSqrNtt(Limb* r, const Limb* a, size_t n) {
  if (n == 0) return;
  if (vectorKernelsOn() && nttAvx2Fits(n, n)) mulNttAvx2(r, a, n, a, n, true);
  else multiply(r, a, n, a, n, true);
}

}  // namespace tarn
