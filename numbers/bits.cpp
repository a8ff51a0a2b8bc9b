// Bit string primitives and the two spellings of a number: decimal text and
// bit string. Values that fit in one machine word take a direct path; longer
// ones go through the binary naturals of bignum/binary.h.
#include "numbers/bits.h"

#include <cstring>

#include "terms/failure.h"
#include "numbers/bignum/binary.h"

namespace tarn {

namespace {

// The string without its trailing zero bytes, as a view.
std::string_view stripped(const BitString& b) {
  size_t n = b.size();
  while (n && b[n - 1] == '\0') n--;
  return {b.data(), n};
}

// The value of a string of at most 8 bytes.
uint64_t wordOf(std::string_view b) {
  uint64_t v = 0;
  std::memcpy(&v, b.data(), b.size());  // little-endian host
  return v;
}

// Digits of an unsigned word.
std::string decimalOf(uint64_t v) { return std::to_string(v); }

// The decimal digits of the string's value shifted right by `shift` bits.
std::string decimalShifted(std::string_view b, size_t shift) {
  if (b.size() <= 8) return decimalOf(wordOf(b) >> shift);
  return natDecimal(natShiftRight(natFromBytes(b), shift));
}

// Reads a decimal magnitude (no sign byte) with `low` bits placed below it:
// the result is y * 2^shift + low, low below 2^shift.
BitString placeDigits(std::string_view digits, size_t shift, uint64_t low) {
  // Up to 18 digits and a shift of 2 fit in one word with room to spare.
  if (digits.size() <= 18 && shift <= 2) {
    uint64_t y = 0;
    for (char c : digits) {
      TARN_ASSERT(c >= '0' && c <= '9');
      y = y * 10 + uint64_t(c - '0');
    }
    return bitsOfValue((y << shift) | low);
  }
  BitString out = natBytes(natShiftLeft(natFromDecimal(digits), shift));
  for (size_t i = 0; i < shift; i++) {
    if ((low >> i) & 1) setBit(out, i);
  }
  return out;
}

}  // namespace

// ---- Primitives -----------------------------------------------------------------

bool getBit(const BitString& b, size_t i) {
  size_t byte = i / 8;
  return byte < b.size() && ((static_cast<unsigned char>(b[byte]) >> (i % 8)) & 1);
}

void setBit(BitString& b, size_t i, bool v) {
  size_t byte = i / 8;
  if (byte >= b.size()) {
    if (!v) return;  // a bit beyond the end already reads 0
    b.resize(byte + 1, '\0');
  }
  unsigned char mask = static_cast<unsigned char>(1u << (i % 8));
  unsigned char cur = static_cast<unsigned char>(b[byte]);
  b[byte] = static_cast<char>(v ? (cur | mask) : (cur & ~mask));
}

size_t bitLength(const BitString& b) {
  std::string_view s = stripped(b);
  if (s.empty()) return 0;
  unsigned top = static_cast<unsigned char>(s.back());
  return (s.size() - 1) * 8 + (32 - size_t(__builtin_clz(top)));
}

void stripZeros(BitString& b) { b.resize(stripped(b).size()); }

bool isAllZero(const BitString& b) { return stripped(b).empty(); }

BitString bitsOfValue(uint64_t v) {
  BitString out(8, '\0');
  std::memcpy(out.data(), &v, 8);
  stripZeros(out);
  return out;
}

// ---- Number texts -----------------------------------------------------------------

// "0" is 3 and "00" is 2. A hint text y is 4y+3, its negative "0y" is 4y+1.
// A numb text "00", z more zeros and the digits of y has bit z+1 set and y's
// bits from z+2 upward; with no digits, bit z+1 alone.
BitString bitsFromText(std::string_view text) {
  TARN_ASSERT(!text.empty());
  if (text == "0") return BitString(1, '\3');
  if (text == "00") return BitString(1, '\2');
  if (text[0] != '0') return placeDigits(text, 2, 3);
  if (text[1] != '0') return placeDigits(text.substr(1), 2, 1);
  size_t i = 2;
  while (i < text.size() && text[i] == '0') i++;
  size_t z = i - 2;
  if (i == text.size()) {
    BitString out;
    setBit(out, z + 1);
    return out;
  }
  if (z + 2 <= 2) return placeDigits(text.substr(i), z + 2, uint64_t(1) << (z + 1));
  BitString out = natBytes(natShiftLeft(natFromDecimal(text.substr(i)), z + 2));
  setBit(out, z + 1);
  return out;
}

// The inverse of bitsFromText. Bit 0 set: a hint, y = value / 4, and a "0"
// in front when bit 1 is clear. Bit 0 clear: a numb; its lowest set bit j
// gives j-1 zeros after "00", and unless j is the top bit, the digits of the
// value shifted right by j+1 follow.
std::string textFromBits(const BitString& bits) {
  std::string_view b = stripped(bits);
  TARN_ASSERT(!b.empty() && !(b.size() == 1 && b[0] == '\1'));
  unsigned char low = static_cast<unsigned char>(b[0]);
  if (b.size() == 1 && low == 2) return "00";
  if (b.size() == 1 && low == 3) return "0";
  if (low & 1) {
    std::string digits = decimalShifted(b, 2);
    return (low & 2) ? digits : "0" + digits;
  }
  size_t j = 0;
  while (b[j / 8] == '\0') j += 8;
  j += size_t(__builtin_ctz(static_cast<unsigned char>(b[j / 8])));
  std::string text = "00";
  text.append(j - 1, '0');
  if (j + 1 == bitLength(bits)) return text;
  return text + decimalShifted(b, j + 1);
}

BitString halved(const BitString& b) {
  BitString r(b.size(), '\0');
  for (size_t i = 0; i < b.size(); i++) {
    unsigned lo = static_cast<unsigned char>(b[i]) >> 1;
    unsigned hi = i + 1 < b.size() ? (static_cast<unsigned char>(b[i + 1]) << 7) & 0xff : 0;
    r[i] = char(lo | hi);
  }
  return r;
}

BitString doubled(const BitString& b) {
  BitString r;
  r.reserve(b.size() + 1);
  unsigned carry = 0;
  for (char c : b) {
    unsigned v = static_cast<unsigned char>(c);
    r.push_back(char(((v << 1) | carry) & 0xff));
    carry = v >> 7;
  }
  if (carry) r.push_back(char(carry));
  return r;
}

}  // namespace tarn
