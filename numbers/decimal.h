// Exact integer arithmetic on hint texts: the integer core behind the
// arithmetic and comparison builtins.
//
// Contract: every text argument is a canonical hint text (`isNumberText`,
// digits only; anything else is a fatal assertion) and every text result is
// one: "0" for zero, the digits with no leading zero for a positive value,
// "0" and the digits of the magnitude for a negative value ("05" is -5). The
// arguments are borrowed views (typically the text of a number leaf); results
// are new strings owned by the caller, ready for `leaf`. Division and
// remainder by zero have no result and answer false; nothing else fails.
//
// Inside, texts become arrays of base-10^8 limbs (decimal_limbs.h): linear
// conversion, Karatsuba and number-theoretic-transform products, Newton
// division. Operands that fit in a machine word never leave it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

// Non-empty, and either the first byte is 1-9, or it is "0" and the second
// byte (if any) is not "0". Only the first two bytes are looked at.
bool isNumberText(std::string_view text);

// ---- Machine-word fast path ---------------------------------------------------
// The value of a hint text that fits in int64; false (value untouched) when it
// does not. Texts of up to 18 digits always fit.
bool smallHintValue(std::string_view text, int64_t& value);
// Writes the hint text of v into out (room for 20 bytes) and returns its
// length. INT64_MIN gives "09223372036854775808".
size_t writeSmallHint(int64_t v, char* out);
std::string smallHintText(int64_t v);

// ---- Operations -----------------------------------------------------------------
// x + y and x - y.
std::string hintAddText(std::string_view x, std::string_view y);
std::string hintSubText(std::string_view x, std::string_view y);
// x * y.
std::string hintMulText(std::string_view x, std::string_view y);
// Floor division: the quotient rounds toward minus infinity (-7 over 2 is -4,
// 7 over -2 is -4). False on a zero divisor.
bool hintOverText(std::string_view x, std::string_view y, std::string& quotient);
// Never-negative remainder r = |x| mod |y| when the signs agree, otherwise
// |y| - r (or 0 when r is 0), zero counting as positive: -7,3 -> 2;
// 7,-3 -> 2; -7,-3 -> 1; 6,-3 -> 0. It is not the remainder of the floor
// division when y is negative. False on a zero divisor.
bool hintCentText(std::string_view x, std::string_view y, std::string& remainder);
// Both of the above from one division (false on a zero divisor).
bool hintOverCentText(std::string_view x, std::string_view y, std::string& quotient,
                      std::string& remainder);
// base ^ exponent. A negative exponent gives "0" for every base (1 and -1
// too); exponent 0 gives "1" for every base (0 too); a negative base to an
// odd exponent is negative. A result too large for any memory ends the
// program at once, as exhaustion of memory does.
std::string hintPowaText(std::string_view base, std::string_view exponent);
// The magnitude halved (truncated), the sign kept: -3 gives -1, 1 gives 0.
std::string hintHalfText(std::string_view x);
// -x.
std::string hintOppositeText(std::string_view x);
// By value: -1, 0 or 1.
int hintCompareText(std::string_view x, std::string_view y);
inline bool hintLessText(std::string_view x, std::string_view y) { return hintCompareText(x, y) < 0; }
inline bool hintGreaterEqText(std::string_view x, std::string_view y) {
  return hintCompareText(x, y) >= 0;
}

}  // namespace tarn
