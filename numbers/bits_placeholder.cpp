// PLACEHOLDER: simple quadratic bit string conversions, to be replaced by the
// fast implementation in numbers/bits.cpp (delete this file then).
#include <algorithm>

#include "driver/failure.h"
#include "numbers/bits.h"
#include "terms/term.h"

namespace tarn {

bool getBit(const BitString& b, size_t i) {
  return i / 8 < b.size() && ((static_cast<unsigned char>(b[i / 8]) >> (i % 8)) & 1);
}
void setBit(BitString& b, size_t i, bool v) {
  if (i / 8 >= b.size()) {
    if (!v) return;
    b.resize(i / 8 + 1, '\0');
  }
  unsigned char c = static_cast<unsigned char>(b[i / 8]);
  c = v ? (c | (1u << (i % 8))) : (c & ~(1u << (i % 8)));
  b[i / 8] = static_cast<char>(c);
}
size_t bitLength(const BitString& b) {
  for (size_t i = b.size(); i-- > 0;) {
    unsigned char c = static_cast<unsigned char>(b[i]);
    if (c) return i * 8 + (32 - size_t(__builtin_clz(c)));
  }
  return 0;
}
void stripZeros(BitString& b) {
  while (!b.empty() && b.back() == 0) b.pop_back();
}
bool isAllZero(const BitString& b) {
  return std::all_of(b.begin(), b.end(), [](char c) { return c == 0; });
}
BitString bitsOfValue(uint64_t v) {
  BitString b;
  while (v) {
    b.push_back(char(v & 0xff));
    v >>= 8;
  }
  return b;
}

namespace {

// y * 10 + d over a little-endian byte string.
void mulAdd(BitString& b, unsigned mul, unsigned add) {
  unsigned carry = add;
  for (char& ch : b) {
    unsigned v = static_cast<unsigned char>(ch) * mul + carry;
    ch = char(v & 0xff);
    carry = v >> 8;
  }
  while (carry) {
    b.push_back(char(carry & 0xff));
    carry >>= 8;
  }
}
BitString decimalBits(std::string_view digits) {
  BitString b;
  for (char c : digits) mulAdd(b, 10, unsigned(c - '0'));
  return b;
}
std::string decimalText(BitString b) {
  stripZeros(b);
  if (b.empty()) return "0";
  std::string out;
  while (!b.empty()) {
    unsigned rem = 0;
    for (size_t i = b.size(); i-- > 0;) {
      unsigned v = (rem << 8) | static_cast<unsigned char>(b[i]);
      b[i] = char(v / 10);
      rem = v % 10;
    }
    out.push_back(char('0' + rem));
    stripZeros(b);
  }
  std::reverse(out.begin(), out.end());
  return out;
}
BitString shiftedLeft(const BitString& b, size_t n) {
  BitString r;
  for (size_t i = 0, len = bitLength(b); i < len; i++)
    if (getBit(b, i)) setBit(r, i + n);
  return r;
}
BitString shiftedRight(const BitString& b, size_t n) {
  BitString r;
  for (size_t i = n, len = bitLength(b); i < len; i++)
    if (getBit(b, i)) setBit(r, i - n);
  return r;
}

}  // namespace

BitString bitsFromText(std::string_view text) {
  TARN_ASSERT(!text.empty());
  if (text == "0") return BitString(1, char(3));
  if (text == "00") return BitString(1, char(2));
  if (text.size() >= 2 && text[0] == '0' && text[1] == '0') {
    size_t z = 0;
    while (2 + z < text.size() && text[2 + z] == '0') z++;
    BitString r;
    setBit(r, z + 1);
    std::string_view rest = text.substr(2 + z);
    if (!rest.empty()) {
      BitString y = shiftedLeft(decimalBits(rest), z + 2);
      for (size_t i = 0, len = bitLength(y); i < len; i++)
        if (getBit(y, i)) setBit(r, i);
    }
    return r;
  }
  if (text[0] != '0') {
    BitString y = decimalBits(text);
    mulAdd(y, 4, 3);
    return y;
  }
  BitString r = bitsFromText(text.substr(1));
  setBit(r, 1, false);
  stripZeros(r);
  return r;
}

std::string textFromBits(const BitString& bits) {
  BitString b = bits;
  stripZeros(b);
  TARN_ASSERT(!b.empty() && !(b.size() == 1 && b[0] == 1));
  if (b.size() == 1 && b[0] == 2) return "00";
  if (b.size() == 1 && b[0] == 3) return "0";
  if (getBit(b, 0)) {
    std::string digits = decimalText(shiftedRight(b, 2));
    return getBit(b, 1) ? digits : "0" + digits;
  }
  size_t j = 1;
  while (!getBit(b, j)) j++;
  size_t z = j - 1;
  if (j + 1 == bitLength(b)) return "00" + std::string(z, '0');
  return "00" + std::string(z, '0') + decimalText(shiftedRight(b, j + 1));
}

}  // namespace tarn
