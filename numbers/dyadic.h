// Dyadic values: the working form of the binary fraction arithmetic.
//
// A numb's fixed form interleaves its integer and fraction bits (bit index i
// at position 2i+1 for i >= 0 and -2i below 0; position 0 is the sign, set
// for plus). Arithmetic does not walk those positions bit by bit: it reads a
// fixed form once into sign, odd mantissa and exponent, works on binary
// naturals, and writes the result back once.
//
// Invariant: `mant` is odd, or zero with `exp` 0. The value is
// (plus ? 1 : -1) * mant * 2^exp; `plus` is the fixed form's bit 0 as it was
// read, so a zero may carry either sign until the arithmetic sets it.
#pragma once

#include <cstdint>

#include "numbers/bignum/binary.h"
#include "numbers/bits.h"

namespace tarn {

struct Dyadic {
  bool plus = true;
  Natural mant;
  int64_t exp = 0;
};

// Reads a fixed form (any byte length; trailing zero bytes allowed).
Dyadic dyadicFromFixed(const BitString& fixed);
// Writes a fixed form with no trailing zero byte; bit 0 is `plus`, so a zero
// with plus clear gives the all-zero (empty) string.
BitString fixedFromDyadic(const Dyadic& d);

// The value of sign, mantissa and exponent, normalised.
Dyadic dyadicOf(bool plus, Natural mant, int64_t exp);
inline bool dyadicIsZero(const Dyadic& d) { return natIsZero(d.mant); }
// Index of the top set bit (weight 2^index); the value must not be zero.
int64_t dyadicTop(const Dyadic& d);

// Magnitude arithmetic: the signs of the arguments are ignored and results
// are plus.
int dyadicCompare(const Dyadic& a, const Dyadic& b);  // of |a| and |b|
Dyadic dyadicAdd(const Dyadic& a, const Dyadic& b);
Dyadic dyadicSub(const Dyadic& a, const Dyadic& b);    // |b| <= |a|
Dyadic dyadicMul(const Dyadic& a, const Dyadic& b);
Dyadic dyadicMod(const Dyadic& a, const Dyadic& b);    // |a| mod |b|, b not zero

}  // namespace tarn
