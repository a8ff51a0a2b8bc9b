// Binary fraction arithmetic: exact addition, subtraction, multiplication,
// remainder and whole powers of numbs, their order, and their conversions to
// and from doubles.
//
// Fixed form (the working value): a numb's bit string divided by 2. Bit 0 is
// the sign, set for plus; bit index i (weight 2^i) sits at position
// bitPosition(i): 2i+1 for i >= 0, -2i for i < 0. The top set bit is the
// value's last set bit; zero is the one value 1 (bit 0 alone). A magnitude is
// a fixed form with bit 0 set. Functions take their arguments borrowed and
// return new strings; results carry no trailing zero bytes.
//
// Every addition and subtraction of numbs (`both`) appends the line
// "jjaa" <sign x> <sign y> "\n" to the file "/tmp/both.bug"; nothing else
// writes or reads it.
//
// The Term operations apply isNumbForm to their numb arguments (a fatal
// assertion on failure) and return number leaves, or the leaf "Z" where a
// result does not exist.
#pragma once

#include <cstdint>

#include "numbers/bits.h"
#include "terms/term.h"

namespace tarn {

// ---- Fixed form ---------------------------------------------------------------
// The position of signed bit index i.
inline uint64_t bitPosition(int64_t i) {
  return i >= 0 ? 2 * uint64_t(i) + 1 : 2 * (0 - uint64_t(i));
}
// Bit index i of x (0 beyond the string); i = 0 is the units bit, not the sign.
bool getIndex(const BitString& x, int64_t i);
bool numbIsZero(const BitString& x);  // bit 0 set and no other bit
bool numbSign(const BitString& x);    // bit 0: true for plus
// The value 1 for zero, otherwise x with its sign flipped / set to `sign`.
BitString numbOpposite(const BitString& x);
BitString numbWithSign(bool sign, const BitString& x);

// ---- Magnitudes (arguments must have bit 0 set: fatal assertion) ------------
bool isMagnitude(const BitString& a);
bool magnitudeIsZero(const BitString& a);  // no bit above bit 0
bool magnitudeLess(const BitString& a, const BitString& b);
// The sum carries no sign bit of its own (bit 0 clear) unless an operand is
// zero, when the other operand is returned; numbWithSign provides the sign.
BitString magnitudeAdd(const BitString& a, const BitString& b);
BitString magnitudeSub(const BitString& a, const BitString& b);  // b <= a
BitString magnitudeShift(const BitString& a, int64_t count);     // a * 2^count
BitString magnitudeMul(const BitString& a, const BitString& b);  // zero gives 1
// Index of the top set bit; a zero magnitude is the internal failure "rakerank".
int64_t magnitudeTop(const BitString& a);

// ---- Signed arithmetic on fixed forms ------------------------------------------
// x + y, exact; appends the trace line.
BitString both(const BitString& x, const BitString& y);
// x * y, exact; a zero operand gives zero.
BitString numbTimes(const BitString& x, const BitString& y);
// |x| mod |y| when the signs agree, otherwise |y| - (|x| mod |y|), and zero
// for a zero remainder: never negative (5.5 % 2 = 1.5, -5.5 % 2 = 0.5,
// 5.5 % -2 = 0.5). A zero y is a fatal assertion.
BitString numbRemainder(const BitString& x, const BitString& y);

// ---- Term operations ------------------------------------------------------------
Term numbPlus(const Term& x, const Term& y);  // both(x, y)
Term numbDash(const Term& x, const Term& y);  // both(x, -y)
Term numbMult(const Term& x, const Term& y);
Term numbCent(const Term& x, const Term& y);  // zero y gives "Z"
// Base a numb, exponent a hint. Base "004" (the leaf, 2) is exact for any
// exponent whose list has fewer than 61 elements ("Z" beyond). Any other base:
// a negative exponent gives "Z", zero gives "00", and otherwise the
// accumulator is squared once per halving of the exponent and multiplied by
// the base whenever the exponent's leading decimal digit is odd: exponent 5
// gives a^6, 6 gives a^5, 12 gives a^13.
Term numbPowa(const Term& base, const Term& exponent);
// The odd test of numbPowa: for a leaf, whether the leading digit of the
// magnitude is odd ("0" is not); for a cell spelling, the magnitude's lowest
// bit by the list's third element.
bool numbOdd(const Term& e);

// ---- Order ------------------------------------------------------------------------
// List element 2 of the numb (the units bit), the end of the list counting
// as 1 there; false for a list of fewer than 2 elements.
bool numbFlag(const Term& t);
// Unequal flags: y's flag. Equal flags: the most significant differing bit
// index within the window +-(2m-1), m the larger byte length of the two
// numbs' lists, decides as flag(x) xor y's bit xor 1; no difference there
// (signs are not looked at) gives false. So "003" < "004" is false and
// "004" < "003" true.
bool numbLess(const Term& x, const Term& y);

// ---- Doubles ------------------------------------------------------------------------
// Truncating conversion; values whose top bit index is 1024 or more or below
// -1074 give the NaN 0x7FF9000000000000. Subnormal results store the bits
// below the top one in ascending mantissa positions.
double numbToReal(const BitString& fixed);
double numbToReal(const Term& numb);
// Exact; -0.0, infinities and NaNs give -1 ("000"), 0.0 gives "00".
BitString realToNumbBits(double v);
Term realToNumb(double v);

}  // namespace tarn
