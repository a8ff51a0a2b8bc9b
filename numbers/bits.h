// Bit strings: the working form of a number's list of truth values.
//
// A `BitString` is a byte string read as one unsigned integer, byte 0 lowest
// and bit 0 of each byte lowest. List element n is bit n; the top set bit is
// a sentinel that ends the list and is no element. Trailing zero bytes carry
// no meaning. The empty list is the one byte 1; the empty string has no list.
//
// Number texts and bit strings (the two spellings of one list):
//   hint text "y" (y > 0)  <->  4y + 3        "0y" (negative)  <->  4y + 1
//   "0" <-> 3,  "00" <-> 2
//   numb text "00" + z zeros + digits of y  <->  bit z+1 set, y's bits from z+2
// Conversions between decimal text and bits are subquadratic, so that numbers
// of a hundred thousand digits convert in a fraction of a second.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

using BitString = std::string;

// Decodes a number text (non-empty; fatal assertion otherwise).
BitString bitsFromText(std::string_view text);
// Encodes a bit string of at least one element (value 2 or more after
// stripping trailing zero bytes; fatal assertion otherwise).
std::string textFromBits(const BitString& bits);

// Primitives.
bool getBit(const BitString& b, size_t i);            // beyond the end reads 0
void setBit(BitString& b, size_t i, bool v = true);   // setting grows by zero bytes
size_t bitLength(const BitString& b);                 // top set bit index + 1; 0 if all zero
void stripZeros(BitString& b);                        // drops trailing zero bytes
bool isAllZero(const BitString& b);
// The bit string of an unsigned value (bit 0 lowest), no sentinel added, no
// trailing zero byte (so zero gives the empty string).
BitString bitsOfValue(uint64_t v);
// The value shifted right by one bit (the first list element dropped, or a
// numb's fixed form from its bits), and shifted left by one bit.
BitString halved(const BitString& b);
BitString doubled(const BitString& b);

}  // namespace tarn
