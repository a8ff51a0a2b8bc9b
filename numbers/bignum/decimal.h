// Exact integer arithmetic on hint texts: the integer core behind the
// arithmetic and comparison builtins.
//
// Contract: every text argument is a canonical hint text (`isNumberText`,
// digits only; anything else is a fatal assertion) and every text result is
// one: "0" for zero, the digits with no leading zero for a positive value,
// "0" and the digits of the magnitude for a negative value ("05" is -5). The
// arguments are borrowed views (typically the text of a number leaf). Each
// operation comes in two forms: `...Text` returns a new string owned by the
// caller; `...Into` writes the result into storage that the caller provides
// through a `TextSink`, once the exact length is known, so that a long
// result can be written straight into its leaf without a copy. Division and
// remainder by zero have no result and answer false (the sink is then not
// used); nothing else fails.
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

// Where a result text goes: `room(context, n)` is called once, with the
// exact length, and returns n writable bytes that stay valid until the
// operation returns; the operation fills all of them.
struct TextSink {
  char* (*room)(void* context, size_t n);
  void* context;
};
// A sink that resizes the string to the result's length.
TextSink stringSink(std::string& s);

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
void hintAddInto(std::string_view x, std::string_view y, TextSink out);
void hintSubInto(std::string_view x, std::string_view y, TextSink out);
// x * y.
void hintMulInto(std::string_view x, std::string_view y, TextSink out);
// Floor division: the quotient rounds toward minus infinity (-7 over 2 is -4,
// 7 over -2 is -4). False on a zero divisor.
bool hintOverInto(std::string_view x, std::string_view y, TextSink out);
// Never-negative remainder r = |x| mod |y| when the signs agree, otherwise
// |y| - r (or 0 when r is 0), zero counting as positive: -7,3 -> 2;
// 7,-3 -> 2; -7,-3 -> 1; 6,-3 -> 0. It is not the remainder of the floor
// division when y is negative. False on a zero divisor.
bool hintCentInto(std::string_view x, std::string_view y, TextSink out);
// Both of the above from one division (false on a zero divisor).
bool hintOverCentInto(std::string_view x, std::string_view y, TextSink quotient, TextSink remainder);
// base ^ exponent. A negative exponent gives "0" for every base (1 and -1
// too); exponent 0 gives "1" for every base (0 too); a negative base to an
// odd exponent is negative. A result too large for any memory ends the
// program at once, as exhaustion of memory does.
void hintPowaInto(std::string_view base, std::string_view exponent, TextSink out);
// The magnitude halved (truncated), the sign kept: -3 gives -1, 1 gives 0.
void hintHalfInto(std::string_view x, TextSink out);
// -x.
void hintOppositeInto(std::string_view x, TextSink out);
// By value: -1, 0 or 1.
int hintCompareText(std::string_view x, std::string_view y);
inline bool hintLessText(std::string_view x, std::string_view y) { return hintCompareText(x, y) < 0; }
inline bool hintGreaterEqText(std::string_view x, std::string_view y) {
  return hintCompareText(x, y) >= 0;
}

// The same operations returning strings.
std::string hintAddText(std::string_view x, std::string_view y);
std::string hintSubText(std::string_view x, std::string_view y);
std::string hintMulText(std::string_view x, std::string_view y);
bool hintOverText(std::string_view x, std::string_view y, std::string& quotient);
bool hintCentText(std::string_view x, std::string_view y, std::string& remainder);
bool hintOverCentText(std::string_view x, std::string_view y, std::string& quotient,
                      std::string& remainder);
std::string hintPowaText(std::string_view base, std::string_view exponent);
std::string hintHalfText(std::string_view x);
std::string hintOppositeText(std::string_view x);

}  // namespace tarn
