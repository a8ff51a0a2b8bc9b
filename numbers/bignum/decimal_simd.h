// Vector kernels for the decimal limbs (AVX2), chosen at run time.
//
// Contract: call a kernel only when `vectorKernelsOn()` is true; the scalar
// code is the fallback and gives the same results. Chunks are eight digits,
// most significant first, and chunk j of a text pairs with the limb
// `limbsEnd[-1 - j]`: the text runs from the top limb down. Kernels work on
// groups of four chunks; callers do any rest with the scalar code.
#pragma once

#include <cstddef>

#include "numbers/bignum/decimal_limbs.h"

namespace tarn {

// True when the processor has AVX2 and FMA and the kernels are not switched
// off.
bool vectorKernelsOn();
// Switches the vector kernels off (or back on where the processor has them),
// so that tests can run the scalar code on the same machine.
void useVectorKernels(bool on);

// Reads 4 * groups chunks. Returns false when a byte is no digit (the limbs
// are then meaningless).
bool parseChunksAvx2(const char* text, size_t groups, Limb* limbsEnd);
// Writes 4 * groups chunks.
void writeChunksAvx2(char* text, const Limb* limbsEnd, size_t groups);

// r[0, 4 groups) = a * m + carry, m below 2^21, carry at most m (limbs in
// their usual order), and the carry out of the top. A limb may come out as
// exactly 10^8 (`full` is then set): the caller carries those on. r may be a.
uint64_t mulSmallAvx2(Limb* r, const Limb* a, size_t groups, Limb m, uint64_t carry, bool& full);

// r[0, na + nb) = a * b (or a * a when square, b being a) by the transform
// with three 30-bit primes; for na + nb - 1 up to 2^24 (`nttAvx2Fits`).
bool nttAvx2Fits(size_t na, size_t nb);
void mulNttAvx2(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb, bool square);

}  // namespace tarn
