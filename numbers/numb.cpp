// Binary fraction arithmetic on fixed forms: signs, magnitudes, the traced
// addition `both`, products and the never-negative remainder.
//
// Each operation reads its fixed forms once into dyadic values (sign, odd
// mantissa, exponent), computes exactly on binary naturals and writes one
// fixed form back, so a product is one Karatsuba multiplication and a
// remainder one long division.
#include <sys/stat.h>

#include "runtime/files.h"
#include "terms/failure.h"
#include "numbers/dyadic.h"
#include "numbers/numb.h"

namespace tarn {

namespace {

BitString zeroFixed() { return BitString(1, '\1'); }

// A magnitude result: zero is the value 1, anything else has bit 0 set.
BitString magnitudeOf(Dyadic d) {
  d.plus = true;
  return fixedFromDyadic(d);
}

// A signed result; zero is always the plus zero, the value 1.
BitString signedOf(Dyadic d, bool plus) {
  d.plus = plus || dyadicIsZero(d);
  return fixedFromDyadic(d);
}

// Every numb addition and subtraction leaves one line in the trace file.
// "/tmp" is made first in case it is missing; that result does not matter.
void traceBoth(bool sx, bool sy) {
  (void)::mkdir("/tmp", 0777);
  const char line[] = {'j', 'j', 'a', 'a', sx ? '1' : '0', sy ? '1' : '0', '\n'};
  appendFile("/tmp/both.bug", std::string_view(line, sizeof line));
}

}  // namespace

// ---- Fixed form -------------------------------------------------------------------

bool getIndex(const BitString& x, int64_t i) { return getBit(x, bitPosition(i)); }

bool numbIsZero(const BitString& x) { return getBit(x, 0) && bitLength(x) == 1; }

bool numbSign(const BitString& x) { return getBit(x, 0); }

BitString numbOpposite(const BitString& x) {
  if (numbIsZero(x)) return zeroFixed();
  BitString out = x;
  setBit(out, 0, !numbSign(x));
  stripZeros(out);
  return out;
}

BitString numbWithSign(bool sign, const BitString& x) {
  if (numbIsZero(x)) return zeroFixed();
  BitString out = x;
  setBit(out, 0, sign);
  stripZeros(out);
  return out;
}

// ---- Magnitudes ----------------------------------------------------------------------

bool isMagnitude(const BitString& a) { return getBit(a, 0); }

bool magnitudeIsZero(const BitString& a) { return bitLength(a) <= 1; }

bool magnitudeLess(const BitString& a, const BitString& b) {
  TARN_ASSERT(isMagnitude(a) && isMagnitude(b));
  return dyadicCompare(dyadicFromFixed(a), dyadicFromFixed(b)) < 0;
}

BitString magnitudeAdd(const BitString& a, const BitString& b) {
  TARN_ASSERT(isMagnitude(a) && isMagnitude(b));
  BitString out;
  if (magnitudeIsZero(a)) {
    out = b;
  } else if (magnitudeIsZero(b)) {
    out = a;
  } else {
    // The walk that sums bit by bit starts from an empty string and never
    // touches the sign position.
    Dyadic sum = dyadicAdd(dyadicFromFixed(a), dyadicFromFixed(b));
    sum.plus = false;
    out = fixedFromDyadic(sum);
  }
  stripZeros(out);
  return out;
}

BitString magnitudeSub(const BitString& a, const BitString& b) {
  TARN_ASSERT(isMagnitude(a) && isMagnitude(b));
  Dyadic da = dyadicFromFixed(a), db = dyadicFromFixed(b);
  TARN_ASSERT(dyadicCompare(db, da) <= 0);
  return magnitudeOf(dyadicSub(da, db));
}

BitString magnitudeShift(const BitString& a, int64_t count) {
  TARN_ASSERT(isMagnitude(a));
  Dyadic d = dyadicFromFixed(a);
  if (!dyadicIsZero(d)) d.exp += count;
  return magnitudeOf(std::move(d));
}

BitString magnitudeMul(const BitString& a, const BitString& b) {
  TARN_ASSERT(isMagnitude(a) && isMagnitude(b));
  return magnitudeOf(dyadicMul(dyadicFromFixed(a), dyadicFromFixed(b)));
}

int64_t magnitudeTop(const BitString& a) {
  TARN_ASSERT(isMagnitude(a));
  if (magnitudeIsZero(a)) [[unlikely]]
    internalFailure("rakerank");
  return dyadicTop(dyadicFromFixed(a));
}

// ---- Signed arithmetic -------------------------------------------------------------------

// x + y: unlike signs subtract the smaller magnitude from the larger and take
// the larger one's sign; like signs add. Traced on every call.
BitString both(const BitString& x, const BitString& y) {
  bool sx = numbSign(x), sy = numbSign(y);
  traceBoth(sx, sy);
  Dyadic a = dyadicFromFixed(x), b = dyadicFromFixed(y);
  if (sx == sy) return signedOf(dyadicAdd(a, b), sx);
  if (dyadicCompare(a, b) < 0) return signedOf(dyadicSub(b, a), sy);
  return signedOf(dyadicSub(a, b), sx);
}

// x * y: a zero operand gives zero (the plus zero, also for a negative
// operand); otherwise plus exactly when the signs agree.
BitString numbTimes(const BitString& x, const BitString& y) {
  if (numbIsZero(x) || numbIsZero(y)) return zeroFixed();
  return signedOf(dyadicMul(dyadicFromFixed(x), dyadicFromFixed(y)), numbSign(x) == numbSign(y));
}

// r = |x| mod |y|. Like signs give r; unlike signs give |y| - r, or zero for
// r = 0. The result is never negative.
BitString numbRemainder(const BitString& x, const BitString& y) {
  Dyadic a = dyadicFromFixed(x), b = dyadicFromFixed(y);
  TARN_ASSERT(!dyadicIsZero(b));
  Dyadic r = dyadicMod(a, b);
  if (numbSign(x) == numbSign(y) || dyadicIsZero(r)) return magnitudeOf(std::move(r));
  return magnitudeOf(dyadicSub(b, r));
}

}  // namespace tarn
