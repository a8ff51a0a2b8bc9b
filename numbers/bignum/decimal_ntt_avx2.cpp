// Long products by the number-theoretic transform, eight lanes at a time
// (AVX2): the same plan as decimal_ntt.cpp, with three primes below 2^30
// instead of two near 2^62, so that a lane's product fits the 32 x 32 -> 64
// bit vector multiplication.
//
// The product coefficients (below n 10^16 < 2^85) are found modulo
// 754974721, 469762049 and 167772161, whose product exceeds 2^85, and joined
// by Garner's method. Values are kept lazily in [0, 2p) or [0, 4p) (4p < 2^32)
// with Montgomery multiplication, R = 2^32. Stages on blocks of eight or more
// work on whole vectors; the three smallest stages shuffle inside a vector.
// Lengths are powers of two up to 2^24.
#include <immintrin.h>

#include <cstring>
#include <vector>

#include "terms/failure.h"
#include "numbers/bignum/decimal_limbs.h"
#include "numbers/bignum/decimal_simd.h"

namespace tarn {

namespace {

using u32 = uint32_t;
using u64 = uint64_t;
using u128 = unsigned __int128;

constexpr size_t kMaxLength = size_t(1) << 24;
constexpr u64 kP0 = 754974721, kP1 = 469762049, kP2 = 167772161;  // c 2^k + 1, k >= 24

constexpr u64 powModConst(u64 b, u64 e, u64 p) {
  u64 r = 1;
  for (b %= p; e; e >>= 1, b = b * b % p)
    if (e & 1) r = r * b % p;
  return r;
}

struct Prime32 {
  u32 p;
  u32 negInv;  // -p^-1 mod 2^32
  u32 r2;      // R^2 mod p
  u32 generator;
  // Twiddles in Montgomery form, reduced to [0, p): entry half + j of a
  // stage on blocks of 2 half holds w^j, w a primitive (2 half)-th root of
  // unity (forward) or its inverse (inverse).
  std::vector<u32> forward, inverse;
};

// (a b / R) mod p in [0, 2p), for a b < p R.
inline u32 montMul(u32 a, u32 b, const Prime32& pr) {
  u64 t = u64(a) * b;
  u32 m = u32(t) * pr.negInv;
  return u32((t + u64(m) * pr.p) >> 32);
}

inline u32 reduce(u32 x, u32 bound) { return x >= bound ? x - bound : x; }

u32 powMod(u64 b, u64 e, u32 p) {
  u64 r = 1;
  b %= p;
  for (; e; e >>= 1, b = b * b % p)
    if (e & 1) r = r * b % p;
  return u32(r);
}

inline u32 toMont(u32 x, const Prime32& pr) { return reduce(montMul(x, pr.r2, pr), pr.p); }

Prime32 makePrime(u32 p, u32 generator) {
  Prime32 pr;
  pr.p = p;
  pr.generator = generator;
  u32 inv = p;  // Newton's iteration for p^-1 mod 2^32
  for (int i = 0; i < 5; i++) inv *= 2 - p * inv;
  TARN_ASSERT(inv * p == 1);
  pr.negInv = 0 - inv;
  u64 r = (u64(1) << 32) % p;
  pr.r2 = u32(r * r % p);
  pr.forward.assign(1, 0);
  pr.inverse.assign(1, 0);
  return pr;
}

Prime32& primeAt(int k) {
  static Prime32 primes[3] = {makePrime(u32(kP0), 11), makePrime(u32(kP1), 3), makePrime(u32(kP2), 3)};
  return primes[k];
}

// The powers 1, w, w^2, ... in Montgomery form; every stage's table is the
// largest stage's table read with a stride, so only that one is powered.
void ensureTwiddles(Prime32& pr, size_t n) {
  if (pr.forward.size() >= n) return;
  pr.forward.assign(n, 0);
  pr.inverse.assign(n, 0);
  const size_t top = n / 2;  // entries of the largest stage
  u32 w = toMont(powMod(pr.generator, (pr.p - 1) / n, pr.p), pr);
  u32 wi = toMont(powMod(powMod(pr.generator, (pr.p - 1) / n, pr.p), pr.p - 2, pr.p), pr);
  u32 f = toMont(1, pr), g = f;
  for (size_t j = 0; j < top; j++) {
    pr.forward[top + j] = f;
    pr.inverse[top + j] = g;
    f = reduce(montMul(f, w, pr), pr.p);
    g = reduce(montMul(g, wi, pr), pr.p);
  }
  for (size_t half = top / 2; half >= 1; half /= 2) {
    size_t stride = top / half;
    for (size_t j = 0; j < half; j++) {
      pr.forward[half + j] = pr.forward[top + j * stride];
      pr.inverse[half + j] = pr.inverse[top + j * stride];
    }
  }
}

// ---- Vector arithmetic -------------------------------------------------------------

struct Lanes {
  __m256i p, p2, negInv;
};

// Montgomery products of eight lanes: the even and the odd lanes go through
// the 32 x 32 -> 64 multiplication separately and meet again at the end.
__attribute__((target("avx2"))) inline __m256i montMulV(__m256i a, __m256i b, const Lanes& l) {
  __m256i te = _mm256_mul_epu32(a, b);
  __m256i to = _mm256_mul_epu32(_mm256_srli_epi64(a, 32), _mm256_srli_epi64(b, 32));
  __m256i me = _mm256_mul_epu32(te, l.negInv);
  __m256i mo = _mm256_mul_epu32(to, l.negInv);
  te = _mm256_add_epi64(te, _mm256_mul_epu32(me, l.p));
  to = _mm256_add_epi64(to, _mm256_mul_epu32(mo, l.p));
  return _mm256_blend_epi32(_mm256_srli_epi64(te, 32), to, 0xAA);
}

// x from [0, 4p) to [0, 2p): below 2p, x - 2p wraps and the minimum keeps x.
__attribute__((target("avx2"))) inline __m256i reduce2p(__m256i x, const Lanes& l) {
  return _mm256_min_epu32(x, _mm256_sub_epi32(x, l.p2));
}

__attribute__((target("avx2"))) inline __m256i load(const u32* p) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
__attribute__((target("avx2"))) inline void store(u32* p, __m256i v) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
}

// Forward transform (decimation in frequency), [0, 2p) in and out, output
// in bit-reversed order. Butterfly: (x, y) -> (x + y, (x - y) w).
__attribute__((target("avx2"))) void forwardNtt(u32* a, size_t n, const Prime32& pr) {
  const Lanes l{_mm256_set1_epi32(int(pr.p)), _mm256_set1_epi32(int(2 * pr.p)),
                _mm256_set1_epi32(int(pr.negInv))};
  for (size_t half = n / 2; half >= 8; half /= 2) {
    const u32* w = pr.forward.data() + half;
    for (size_t start = 0; start < n; start += 2 * half) {
      u32* x = a + start;
      u32* y = x + half;
      for (size_t j = 0; j < half; j += 8) {
        __m256i u = load(x + j), v = load(y + j);
        store(x + j, reduce2p(_mm256_add_epi32(u, v), l));
        store(y + j, montMulV(_mm256_add_epi32(_mm256_sub_epi32(u, v), l.p2), load(w + j), l));
      }
    }
  }
  // Blocks of 8, 4 and 2 inside each vector: pair the lanes by shuffles,
  // compute both results everywhere, keep the right one per lane.
  const u32* f = pr.forward.data();
  const __m256i w4 = _mm256_setr_epi32(int(f[4]), int(f[5]), int(f[6]), int(f[7]), int(f[4]), int(f[5]),
                                       int(f[6]), int(f[7]));
  const __m256i w2 = _mm256_setr_epi32(int(f[2]), int(f[3]), int(f[2]), int(f[3]), int(f[2]), int(f[3]),
                                       int(f[2]), int(f[3]));
  for (size_t i = 0; i < n; i += 8) {
    __m256i v = load(a + i);
    __m256i lo = _mm256_permute2x128_si256(v, v, 0x00), hi = _mm256_permute2x128_si256(v, v, 0x11);
    v = _mm256_blend_epi32(reduce2p(_mm256_add_epi32(lo, hi), l),
                           montMulV(_mm256_add_epi32(_mm256_sub_epi32(lo, hi), l.p2), w4, l), 0xF0);
    lo = _mm256_shuffle_epi32(v, 0x44), hi = _mm256_shuffle_epi32(v, 0xEE);
    v = _mm256_blend_epi32(reduce2p(_mm256_add_epi32(lo, hi), l),
                           montMulV(_mm256_add_epi32(_mm256_sub_epi32(lo, hi), l.p2), w2, l), 0xCC);
    lo = _mm256_shuffle_epi32(v, 0xA0), hi = _mm256_shuffle_epi32(v, 0xF5);
    v = _mm256_blend_epi32(reduce2p(_mm256_add_epi32(lo, hi), l),
                           reduce2p(_mm256_add_epi32(_mm256_sub_epi32(lo, hi), l.p2), l), 0xAA);
    store(a + i, v);
  }
}

// Inverse transform without the division by n (decimation in time):
// bit-reversed in, natural out, values below 4p in and out.
// Butterfly: (x, y) -> (x + y w, x - y w).
__attribute__((target("avx2"))) void inverseNtt(u32* a, size_t n, const Prime32& pr) {
  const Lanes l{_mm256_set1_epi32(int(pr.p)), _mm256_set1_epi32(int(2 * pr.p)),
                _mm256_set1_epi32(int(pr.negInv))};
  const u32* f = pr.inverse.data();
  const __m256i w4 = _mm256_setr_epi32(int(f[4]), int(f[5]), int(f[6]), int(f[7]), int(f[4]), int(f[5]),
                                       int(f[6]), int(f[7]));
  const __m256i w2 = _mm256_setr_epi32(int(f[2]), int(f[3]), int(f[2]), int(f[3]), int(f[2]), int(f[3]),
                                       int(f[2]), int(f[3]));
  for (size_t i = 0; i < n; i += 8) {
    __m256i v = load(a + i);
    __m256i x = reduce2p(_mm256_shuffle_epi32(v, 0xA0), l), t = reduce2p(_mm256_shuffle_epi32(v, 0xF5), l);
    v = _mm256_blend_epi32(_mm256_add_epi32(x, t), _mm256_add_epi32(_mm256_sub_epi32(x, t), l.p2), 0xAA);
    x = reduce2p(_mm256_shuffle_epi32(v, 0x44), l);
    t = montMulV(_mm256_shuffle_epi32(v, 0xEE), w2, l);
    v = _mm256_blend_epi32(_mm256_add_epi32(x, t), _mm256_add_epi32(_mm256_sub_epi32(x, t), l.p2), 0xCC);
    x = reduce2p(_mm256_permute2x128_si256(v, v, 0x00), l);
    t = montMulV(_mm256_permute2x128_si256(v, v, 0x11), w4, l);
    v = _mm256_blend_epi32(_mm256_add_epi32(x, t), _mm256_add_epi32(_mm256_sub_epi32(x, t), l.p2), 0xF0);
    store(a + i, v);
  }
  for (size_t half = 8; half < n; half *= 2) {
    const u32* w = pr.inverse.data() + half;
    for (size_t start = 0; start < n; start += 2 * half) {
      u32* x = a + start;
      u32* y = x + half;
      for (size_t j = 0; j < half; j += 8) {
        __m256i u = reduce2p(load(x + j), l);
        __m256i t = montMulV(load(y + j), load(w + j), l);
        store(x + j, _mm256_add_epi32(u, t));
        store(y + j, _mm256_add_epi32(_mm256_sub_epi32(u, t), l.p2));
      }
    }
  }
}

// Pointwise a = a b / R (b may be a).
__attribute__((target("avx2"))) void pointwise(u32* a, const u32* b, size_t n, const Prime32& pr) {
  const Lanes l{_mm256_set1_epi32(int(pr.p)), _mm256_set1_epi32(int(2 * pr.p)),
                _mm256_set1_epi32(int(pr.negInv))};
  for (size_t i = 0; i < n; i += 8) store(a + i, montMulV(load(a + i), load(b + i), l));
}

// The factor n^-1 R^2 undoes both the transform's length and the pointwise
// products' 1/R; the results are reduced to [0, p).
__attribute__((target("avx2"))) void scaleToResidues(u32* a, size_t n, const Prime32& pr) {
  const Lanes l{_mm256_set1_epi32(int(pr.p)), _mm256_set1_epi32(int(2 * pr.p)),
                _mm256_set1_epi32(int(pr.negInv))};
  u32 nInv = powMod(n % pr.p, pr.p - 2, pr.p);
  const __m256i scale = _mm256_set1_epi32(int(toMont(toMont(nInv, pr), pr)));
  const __m256i p = l.p;
  for (size_t i = 0; i < n; i += 8) {
    __m256i v = montMulV(load(a + i), scale, l);
    store(a + i, _mm256_min_epu32(v, _mm256_sub_epi32(v, p)));
  }
}

// The coefficients modulo one prime, in [0, p).
void residues(std::vector<u32>& fa, std::vector<u32>& fb, const Limb* a, size_t na, const Limb* b,
              size_t nb, size_t n, bool square, Prime32& pr) {
  ensureTwiddles(pr, n);
  fa.assign(n, 0);
  std::memcpy(fa.data(), a, na * sizeof(Limb));  // limbs are below every prime
  forwardNtt(fa.data(), n, pr);
  if (square) {
    pointwise(fa.data(), fa.data(), n, pr);
  } else {
    fb.assign(n, 0);
    std::memcpy(fb.data(), b, nb * sizeof(Limb));
    forwardNtt(fb.data(), n, pr);
    pointwise(fa.data(), fb.data(), n, pr);
  }
  inverseNtt(fa.data(), n, pr);
  scaleToResidues(fa.data(), n, pr);
}

// Garner: x = c0 + p0 t1 + p0 p1 t2 from the three residues, then the carry
// into base 10^8.
void joinAndCarry(Limb* r, size_t nr, const std::vector<u32>& c0, const std::vector<u32>& c1,
                  const std::vector<u32>& c2) {
  // Constants, so that every reduction below is a multiplication.
  constexpr u64 inv01 = powModConst(kP0, kP1 - 2, kP1);             // p0^-1 mod p1
  constexpr u64 inv012 = powModConst(kP0 * kP1 % kP2, kP2 - 2, kP2);  // (p0 p1)^-1 mod p2
  constexpr u64 p01 = kP0 * kP1;
  u64 carry = 0;
  const size_t n = c0.size();
  for (size_t k = 0; k < nr; k++) {
    u64 x0 = k < n ? c0[k] : 0, x1 = k < n ? c1[k] : 0, x2 = k < n ? c2[k] : 0;
    u64 t1 = (x1 + kP1 - x0 % kP1) * inv01 % kP1;
    u64 v = x0 + kP0 * t1;  // below p0 p1 < 2^59
    u64 t2 = (x2 + kP2 - v % kP2) * inv012 % kP2;
    u128 x = u128(p01) * t2 + v + carry;  // below 2^87
    // Split by 10^8 with two 64-bit divisions.
    u64 hi = u64(x >> 32);
    u64 q1 = hi / kLimbBase, r1 = hi - q1 * kLimbBase;
    u64 y = (r1 << 32) | u64(x & 0xffffffffu);
    u64 q0 = y / kLimbBase;
    r[k] = Limb(y - q0 * kLimbBase);
    carry = (q1 << 32) + q0;
  }
  TARN_ASSERT(carry == 0);
}

}  // namespace

bool nttAvx2Fits(size_t na, size_t nb) { return na + nb - 1 <= kMaxLength; }

void mulNttAvx2(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb, bool square) {
  const size_t nr = na + nb;
  size_t n = 8;
  while (n < nr - 1) n *= 2;
  TARN_ASSERT(n <= kMaxLength);
  std::vector<u32> c0, c1, c2, scratch;
  residues(c0, scratch, a, na, b, nb, n, square, primeAt(0));
  residues(c1, scratch, a, na, b, nb, n, square, primeAt(1));
  residues(c2, scratch, a, na, b, nb, n, square, primeAt(2));
  joinAndCarry(r, nr, c0, c1, c2);
}

}  // namespace tarn
