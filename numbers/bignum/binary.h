// Binary natural numbers: the big-integer core under the number conversions
// and the binary fraction arithmetic.
//
// Invariant: a `Natural` holds its value in 64-bit limbs, least significant
// first, with no zero limb at the top; zero is the empty limb vector. Every
// function below returns a normalised value and leaves its arguments alone;
// values are plain records, copied and moved freely, owned by whoever holds
// them.
//
// Speed: multiplication is schoolbook below a threshold and Karatsuba above
// it; division is Knuth's long division on limbs. Decimal conversion splits
// the number in halves by powers 10^(19*2^k) above a threshold (dividing by
// the large powers through their reciprocals) and runs a simple limb loop
// below it, so a number of a hundred thousand digits converts in tens of
// milliseconds while a short one costs one or two limb steps.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

using Limb = uint64_t;

struct Natural {
  std::vector<Limb> limbs;  // least significant first; no zero limb on top
};

// ---- Construction and inspection --------------------------------------------
Natural natOf(uint64_t v);
// The little-endian byte string read as a number (trailing zero bytes allowed).
Natural natFromBytes(std::string_view bytes);
// The minimal little-endian bytes of the value: no zero byte on top, and the
// empty string for zero.
std::string natBytes(const Natural& n);
inline bool natIsZero(const Natural& n) { return n.limbs.empty(); }
size_t natBitLength(const Natural& n);    // 0 for zero
size_t natTrailingZeros(const Natural& n);  // zero is a fatal assertion
bool natBit(const Natural& n, size_t i);
// The low 64 bits.
inline uint64_t natLow(const Natural& n) { return n.limbs.empty() ? 0 : n.limbs[0]; }

// ---- Arithmetic ---------------------------------------------------------------
int natCompare(const Natural& a, const Natural& b);  // -1, 0, 1
Natural natAdd(const Natural& a, const Natural& b);
// a - b; b above a is a fatal assertion.
Natural natSub(const Natural& a, const Natural& b);
Natural natMul(const Natural& a, const Natural& b);
Natural natShiftLeft(const Natural& a, size_t count);
Natural natShiftRight(const Natural& a, size_t count);
// a mod 2^count.
Natural natLowBits(const Natural& a, size_t count);
// The bits of a's low `width` bits in reverse order: bit i goes to width-1-i.
Natural natReverseBits(const Natural& a, size_t width);
// Quotient and remainder; a zero divisor is a fatal assertion. Either output
// may be null when it is not wanted.
void natDivide(const Natural& a, const Natural& b, Natural* quotient, Natural* remainder);

// ---- Decimal ------------------------------------------------------------------
// Digits "0"-"9" only (a non-digit is a fatal assertion); leading zeros allowed;
// the empty text is zero.
Natural natFromDecimal(std::string_view digits);
// Decimal digits without leading zeros; "0" for zero.
std::string natDecimal(const Natural& n);

}  // namespace tarn
