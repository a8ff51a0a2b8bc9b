// Numbs and doubles. To a double: truncation, a NaN for values out of range,
// and the system's own bit order for subnormals. From a double: exact, with
// -1 standing for the doubles that have no exact value.
#include <bit>

#include "terms/failure.h"
#include "numbers/dyadic.h"
#include "numbers/model.h"
#include "numbers/numb.h"

namespace tarn {

namespace {

constexpr uint64_t kOutOfRange = 0x7FF9000000000000ull;  // a quiet NaN
constexpr uint64_t kFractionMask = (uint64_t(1) << 52) - 1;

// Bits [from, from+count) of n as a number, count <= 64; `from` may be
// negative, reading zeros below bit 0.
uint64_t bitField(const Natural& n, int64_t from, unsigned count) {
  uint64_t v = from >= 0 ? natLow(natShiftRight(n, size_t(from))) : natLow(n) << (-from);
  return count == 64 ? v : v & ((uint64_t(1) << count) - 1);
}

uint64_t reverseLow(uint64_t v, unsigned width) {
  uint64_t r = 0;
  for (unsigned i = 0; i < width; i++) r |= ((v >> i) & 1) << (width - 1 - i);
  return r;
}

}  // namespace

// Zero gives 0.0. With e the top bit index: e >= 1024 or e < -1074 give the
// NaN 0x7FF9000000000000; e >= -1022 is a normal double whose 52 stored bits
// are the next lower bit indices, truncated; below that the exponent field
// is 0 and the bits e-1, e-2, ..., e-c (c = e + 1075) go to mantissa
// positions 52-c, 53-c, ..., 51: ascending position for falling weight.
double numbToReal(const BitString& fixed) {
  if (numbIsZero(fixed)) return 0.0;
  Dyadic d = dyadicFromFixed(fixed);
  if (dyadicIsZero(d)) [[unlikely]]
    internalFailure("rakerank");
  int64_t e = dyadicTop(d);
  if (e >= 1024 || e < -1074) return std::bit_cast<double>(kOutOfRange);
  // Mantissa bit of index i is bit i - exp; the top bit e is bit len - 1.
  int64_t len = int64_t(natBitLength(d.mant));
  uint64_t bits;
  if (e >= -1022) {
    uint64_t top53 = bitField(d.mant, len - 53, 53);
    bits = (uint64_t(e + 1023) << 52) | (top53 & kFractionMask);
  } else {
    unsigned c = unsigned(e + 1075);  // 1 to 52
    uint64_t below = bitField(d.mant, len - 1 - int64_t(c), c);  // indices e-c .. e-1
    bits = reverseLow(below, c) << (52 - c);
  }
  if (!d.plus) bits |= uint64_t(1) << 63;
  return std::bit_cast<double>(bits);
}

double numbToReal(const Term& numb) {
  TARN_ASSERT(isNumbForm(numb));
  return numbToReal(numbBits(numb));
}

// 0.0 gives zero; -0.0 and every pattern with exponent field 0x7FF give -1.
// Normal: (2^52 + fraction) * 2^(f - 1075); subnormal: fraction * 2^-1074.
BitString realToNumbBits(double v) {
  uint64_t b = std::bit_cast<uint64_t>(v);
  if (b == 0) return BitString(1, '\1');
  uint64_t field = (b >> 52) & 0x7FF;
  if (b == (uint64_t(1) << 63) || field == 0x7FF) return BitString(1, '\2');
  uint64_t fraction = b & kFractionMask;
  Dyadic d;
  if (field != 0) {
    d = dyadicOf(true, natOf(fraction | (uint64_t(1) << 52)), int64_t(field) - 1075);
  } else {
    if (fraction == 0) [[unlikely]]
      internalFailure("why?");
    d = dyadicOf(true, natOf(fraction), -1074);
  }
  d.plus = (b >> 63) == 0;
  return fixedFromDyadic(d);
}

Term realToNumb(double v) { return numbFromBits(realToNumbBits(v)); }

}  // namespace tarn
