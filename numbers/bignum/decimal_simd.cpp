// AVX2 text conversion: 32 digits <-> four limbs per step.
//
// Reading multiplies adjacent lanes by 10, 100 and 10^4 and adds them
// (multiply-add instructions), doubling the digits per lane each time.
// Writing splits every limb into halves of four digits, then each half into
// pairs and each pair into digits, with multiply-high by reciprocals that are
// exact for the lane's range.
#include "numbers/bignum/decimal_simd.h"

#include <immintrin.h>

namespace tarn {

namespace {

bool hardwareHasAvx2() {
  static const bool has = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
  return has;
}

bool kernelsWanted = true;

}  // namespace

bool vectorKernelsOn() { return kernelsWanted && hardwareHasAvx2(); }

void useVectorKernels(bool on) { kernelsWanted = on; }

__attribute__((target("avx2"))) bool parseChunksAvx2(const char* text, size_t groups, Limb* limbsEnd) {
  const __m256i zero = _mm256_set1_epi8('0');
  const __m256i nine = _mm256_set1_epi8(9);
  const __m256i tens = _mm256_set1_epi16(0x010A);       // bytes 10, 1
  const __m256i hundreds = _mm256_set1_epi32(0x00010064);  // words 100, 1
  const __m256i myriads = _mm256_set1_epi32(0x00012710);   // words 10000, 1
  // Lanes 5, 4, 1, 0 hold chunks 3, 2, 1, 0; the limbs run the other way.
  const __m256i order = _mm256_setr_epi32(5, 4, 1, 0, 5, 4, 1, 0);
  __m256i bad = _mm256_setzero_si256();
  for (size_t g = 0; g < groups; g++, text += 32, limbsEnd -= 4) {
    __m256i d = _mm256_sub_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(text)), zero);
    bad = _mm256_or_si256(bad, _mm256_subs_epu8(d, nine));  // non-zero for a byte above 9
    __m256i pairs = _mm256_maddubs_epi16(d, tens);
    __m256i quads = _mm256_madd_epi16(pairs, hundreds);
    __m256i packed = _mm256_packus_epi32(quads, quads);
    __m256i eights = _mm256_madd_epi16(packed, myriads);
    __m256i limbs = _mm256_permutevar8x32_epi32(eights, order);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(limbsEnd - 4), _mm256_castsi256_si128(limbs));
  }
  return _mm256_testz_si256(bad, bad) != 0;
}

__attribute__((target("avx2"))) void writeChunksAvx2(char* text, const Limb* limbsEnd, size_t groups) {
  const __m256i perMyriad = _mm256_set1_epi64x(109951163);  // ceil(2^40 / 10^4)
  const __m256i myriad = _mm256_set1_epi64x(10000);
  const __m256i perHundred = _mm256_set1_epi16(5243);  // (x * 5243) >> 19 = x / 100 below 10^4
  const __m256i hundred = _mm256_set1_epi16(100);
  const __m256i perTen = _mm256_set1_epi16(6554);  // (x * 6554) >> 16 = x / 10 below 100
  const __m256i ten = _mm256_set1_epi16(10);
  const __m256i zero = _mm256_set1_epi8('0');
  // Hidden from the optimizer, which would otherwise spell the two 16-bit
  // multiplications as longer chains of shifts and additions.
  __m256i hundredOpaque = hundred, tenOpaque = ten;
  asm("" : "+x"(hundredOpaque), "+x"(tenOpaque));
  for (size_t g = 0; g < groups; g++, text += 32, limbsEnd -= 4) {
    __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(limbsEnd - 4));
    v = _mm_shuffle_epi32(v, 0x1B);  // the top limb first
    __m256i wide = _mm256_cvtepu32_epi64(v);
    __m256i high = _mm256_srli_epi64(_mm256_mul_epu32(wide, perMyriad), 40);
    __m256i low = _mm256_sub_epi64(wide, _mm256_mul_epu32(high, myriad));
    // 32-bit lanes: high half, low half of each limb; then each copied into
    // both 16-bit halves of its lane.
    __m256i halves = _mm256_or_si256(high, _mm256_slli_epi64(low, 32));
    __m256i twice = _mm256_or_si256(halves, _mm256_slli_epi32(halves, 16));
    __m256i q = _mm256_srli_epi16(_mm256_mulhi_epu16(twice, perHundred), 3);
    __m256i r = _mm256_sub_epi16(twice, _mm256_mullo_epi16(q, hundredOpaque));
    __m256i pairs = _mm256_blend_epi16(q, r, 0xAA);  // even lanes x / 100, odd lanes x % 100
    __m256i t = _mm256_mulhi_epu16(pairs, perTen);
    __m256i o = _mm256_sub_epi16(pairs, _mm256_mullo_epi16(t, tenOpaque));
    __m256i digits = _mm256_or_si256(t, _mm256_slli_epi16(o, 8));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(text), _mm256_add_epi8(digits, zero));
  }
}

// Four limbs at a time, for m below 2^21 (so products stay below 2^48 and
// every step is exact in double precision). Each product p = a m splits into
// high = floor(p / 10^8) and low = p - high 10^8: p 10^-8 is within 10^-9 of
// the true quotient, whose fraction is 0 or at least 10^-8, so a bias of
// 4 10^-9 makes the floor exact. A limb of the result is low plus the high
// part of the limb below, plus a carry of 0 or 1 from that sum one limb
// further down. Those carries are taken from the sums alone, which is exact
// unless a sum of exactly 10^8 - 1 receives one: that limb comes out as 10^8
// and the caller carries it on (`full` is set).
__attribute__((target("avx2,fma"))) uint64_t mulSmallAvx2(Limb* r, const Limb* a, size_t groups, Limb m,
                                                            uint64_t carry, bool& full) {
  const __m256d md = _mm256_set1_pd(double(m));
  const __m256d perBase = _mm256_set1_pd(1e-8);
  const __m256d bias = _mm256_set1_pd(4e-9);
  const __m256d base = _mm256_set1_pd(double(kLimbBase));
  const __m256d one = _mm256_set1_pd(1.0);
  // Lane 0 of these holds what comes in from the group below: the high part
  // and the carry of its top lane.
  __m256d highIn = _mm256_set_pd(0, 0, 0, double(carry));
  __m256d carryIn = _mm256_setzero_pd();
  __m256d reached = _mm256_setzero_pd();
  for (size_t g = 0; g < groups; g++, a += 4, r += 4) {
    __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a));
    __m256d p = _mm256_mul_pd(_mm256_cvtepi32_pd(v), md);
    __m256d high = _mm256_floor_pd(_mm256_fmadd_pd(p, perBase, bias));
    __m256d low = _mm256_fnmadd_pd(high, base, p);
    // Lane k gets the high part of lane k - 1 (lanes rotated by one).
    __m256d rotated = _mm256_permute4x64_pd(high, 0x93);
    __m256d sum = _mm256_add_pd(low, _mm256_blend_pd(rotated, highIn, 0x1));
    __m256d over = _mm256_cmp_pd(sum, base, _CMP_GE_OQ);
    sum = _mm256_sub_pd(sum, _mm256_and_pd(over, base));
    __m256d carriesRotated = _mm256_permute4x64_pd(_mm256_and_pd(over, one), 0x93);
    __m256d out = _mm256_add_pd(sum, _mm256_blend_pd(carriesRotated, carryIn, 0x1));
    reached = _mm256_or_pd(reached, _mm256_cmp_pd(out, base, _CMP_EQ_OQ));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(r), _mm256_cvttpd_epi32(out));
    highIn = rotated;
    carryIn = carriesRotated;
  }
  full = _mm256_movemask_pd(reached) != 0;
  return uint64_t(_mm256_cvtsd_f64(highIn)) + uint64_t(_mm256_cvtsd_f64(carryIn));
}

}  // namespace tarn
