// The operations on hint texts: signs and edge rules here, magnitudes in the
// limb kernels. Every operation first tries the machine-word path, since
// nearly all numbers a program meets are short.
#include "numbers/bignum/decimal.h"

#include <cmath>
#include <cstring>

#include "terms/failure.h"
#include "numbers/bignum/decimal_limbs.h"

namespace tarn {

namespace {

using u128 = unsigned __int128;

// Magnitudes of up to this many digits are below 10^18 and add, subtract and
// divide inside int64; two of them multiply inside 128 bits.
constexpr size_t kSmallDigits = 18;

// A hint text split into its sign and the digits of its magnitude ("0" for
// zero, which counts as positive, as the operators' sign tests read it).
struct Hint {
  bool negative;
  std::string_view digits;
  bool isZero() const { return digits.size() == 1 && digits[0] == '0'; }
  bool isSmall() const { return digits.size() <= kSmallDigits; }
};

Hint hintOf(std::string_view text) {
  TARN_ASSERT(isNumberText(text));
  if (text.size() > 1 && text[0] == '0') return {true, text.substr(1)};
  return {false, text};
}

// The value of at most 19 digits (the caller keeps it below 2^64).
uint64_t smallMagnitude(std::string_view digits) {
  uint64_t v = 0;
  for (char c : digits) {
    unsigned d = unsigned(static_cast<unsigned char>(c)) - '0';
    TARN_ASSERT(d <= 9);
    v = v * 10 + d;
  }
  return v;
}

// Digits of v, written backwards ending at `end`; returns the first byte.
char* writeBackwards(uint64_t v, char* end) {
  static const char kPairs[] =
      "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
      "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
      "8081828384858687888990919293949596979899";
  while (v >= 100) {
    unsigned pair = unsigned(v % 100);
    v /= 100;
    end -= 2;
    std::memcpy(end, kPairs + 2 * pair, 2);
  }
  if (v >= 10) {
    end -= 2;
    std::memcpy(end, kPairs + 2 * v, 2);
  } else {
    *--end = char('0' + v);
  }
  return end;
}

// Digits of v (below 10^38), written backwards ending at `end`.
char* writeWideBackwards(u128 v, char* end) {
  if (v >> 64 == 0) return writeBackwards(uint64_t(v), end);
  constexpr uint64_t kTen19 = 10000000000000000000ull;
  char* p = writeBackwards(uint64_t(v % kTen19), end);
  while (p > end - 19) *--p = '0';
  return writeBackwards(uint64_t(v / kTen19), p);
}

// A result before it is written out: its sign and its magnitude in one of
// three forms, plus zeros to append (powers of a base ending in zeros).
struct Result {
  enum class Form { kWide, kLimbs, kDigits };
  Form form = Form::kWide;
  bool negative = false;
  u128 wide = 0;            // kWide
  Limbs limbs;              // kLimbs, not necessarily normalized
  std::string_view digits;  // kDigits: a magnitude taken from an operand
  size_t zeros = 0;
};

Result wideResult(bool negative, u128 magnitude) {
  Result r;
  r.negative = negative;
  r.wide = magnitude;
  return r;
}

Result limbsResult(bool negative, Limbs&& magnitude) {
  Result r;
  r.form = Result::Form::kLimbs;
  r.negative = negative;
  r.limbs = std::move(magnitude);
  return r;
}

// Writes a result into the sink: the length first (a zero magnitude has no
// sign and no appended zeros), then the text in place.
void emit(const Result& r, TextSink out) {
  char buf[48];
  char* end = buf + sizeof buf;
  const char* wideText = nullptr;
  size_t count = 0, n = 0;
  bool zero = false;
  switch (r.form) {
    case Result::Form::kWide:
      wideText = writeWideBackwards(r.wide, end);
      count = size_t(end - wideText);
      zero = r.wide == 0;
      break;
    case Result::Form::kLimbs:
      n = natLength(r.limbs.data(), r.limbs.size());
      count = digitCount(r.limbs.data(), n);
      zero = n == 0;
      break;
    case Result::Form::kDigits:
      count = r.digits.size();
      zero = r.digits == "0";
      break;
  }
  const bool sign = r.negative && !zero;
  const size_t zeros = zero ? 0 : r.zeros;
  char* p = out.room(out.context, size_t(sign) + count + zeros);
  if (sign) *p++ = '0';
  if (r.form == Result::Form::kWide) std::memcpy(p, wideText, count);
  else if (r.form == Result::Form::kLimbs) writeDigits(p, r.limbs.data(), n);
  else std::memcpy(p, r.digits.data(), count);
  if (zeros) std::memset(p + count, '0', zeros);
}

std::string textOf(const Result& r) {
  if (r.form == Result::Form::kWide && r.zeros == 0) {
    // The common short result, built in place.
    char buf[48];
    char* end = buf + sizeof buf;
    char* p = writeWideBackwards(r.wide, end);
    if (r.negative && r.wide != 0) *--p = '0';
    return std::string(p, size_t(end - p));
  }
  std::string s;
  emit(r, stringSink(s));
  return s;
}

Limbs limbsOf(const Hint& h) { return limbsFromDigits(h.digits); }

// Compares two magnitudes given by their digits (no leading zeros).
int compareDigits(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  int c = std::memcmp(a.data(), b.data(), a.size());
  return (c > 0) - (c < 0);
}

// x + y with y's sign given separately (subtraction flips it).
Result addOf(const Hint& x, bool yNegative, std::string_view yDigits) {
  Hint y{yNegative, yDigits};
  if (y.isZero()) y.negative = false;
  if (x.isSmall() && y.isSmall()) {
    int64_t a = int64_t(smallMagnitude(x.digits)), b = int64_t(smallMagnitude(y.digits));
    int64_t s = (x.negative ? -a : a) + (y.negative ? -b : b);  // |s| < 2 * 10^18
    return wideResult(s < 0, u128(s < 0 ? -s : s));
  }
  Limbs a = limbsOf(x), b = limbsOf(y);
  if (x.negative == y.negative) {
    // Same signs: the magnitudes add, the sign stays.
    const Limbs& big = a.size() >= b.size() ? a : b;
    const Limbs& small = a.size() >= b.size() ? b : a;
    Limbs sum(big.size() + 1);
    sum[big.size()] = natAdd(sum.data(), big.data(), big.size(), small.data(), small.size());
    return limbsResult(x.negative, std::move(sum));
  }
  // Opposite signs: the smaller magnitude comes off the larger, whose sign
  // wins; equal magnitudes give zero.
  int c = natCompare(a.data(), a.size(), b.data(), b.size());
  if (c == 0) return wideResult(false, 0);
  const Limbs& big = c > 0 ? a : b;
  const Limbs& small = c > 0 ? b : a;
  Limbs diff(big.size());
  natSub(diff.data(), big.data(), big.size(), small.data(), small.size());
  return limbsResult(c > 0 ? x.negative : y.negative, std::move(diff));
}

Result mulOf(std::string_view x, std::string_view y) {
  Hint a = hintOf(x), b = hintOf(y);
  if (a.isZero() || b.isZero()) return wideResult(false, 0);
  bool negative = a.negative != b.negative;
  if (a.isSmall() && b.isSmall()) return wideResult(negative, u128(smallMagnitude(a.digits)) * smallMagnitude(b.digits));
  // One factor of a single limb: a linear pass over the other.
  if (b.digits.size() > a.digits.size()) std::swap(a, b);
  if (b.digits.size() <= size_t(kLimbDigits)) {
    Limbs m = limbsFromDigits(a.digits, 1);
    size_t n = m.size();
    m.resize(n + 1);
    m[n] = natMulSmall(m.data(), m.data(), n, Limb(smallMagnitude(b.digits)));
    return limbsResult(negative, std::move(m));
  }
  return limbsResult(negative, mulLimbs(limbsOf(a), limbsOf(b)));
}

// Magnitude quotient and remainder, with the rounding and remainder rules of
// the two operators applied by the callers.
struct Division {
  bool small;
  uint64_t q, r;    // when small
  Limbs ql, rl;     // otherwise
};

Division divideMagnitudes(const Hint& x, const Hint& y) {
  Division d{};
  if (x.isSmall() && y.isSmall()) {
    uint64_t a = smallMagnitude(x.digits), b = smallMagnitude(y.digits);
    d.small = true;
    d.q = a / b;
    d.r = a % b;
    return d;
  }
  Limbs a = limbsOf(x), b = limbsOf(y);
  natDivMod(a.data(), a.size(), b.data(), b.size(), &d.ql, &d.rl);
  return d;
}

// Floor quotient: the magnitude rounds up when the signs differ and the
// division leaves a remainder; the result is negative when the signs differ.
// Takes d's quotient limbs.
Result overOf(const Hint& x, const Hint& y, Division& d) {
  bool differ = x.negative != y.negative;
  if (d.small) return wideResult(differ, d.q + (differ && d.r != 0 ? 1 : 0));
  if (differ && !d.rl.empty()) {
    size_t n = d.ql.size();
    d.ql.resize(n + 1);
    d.ql[n] = 0;
    Limb one = 1;
    natAdd(d.ql.data(), d.ql.data(), n + 1, &one, 1);
  }
  return limbsResult(differ, std::move(d.ql));
}

// Never-negative remainder: r for equal signs, |y| - r for differing signs
// (0 when r is 0). May take d's remainder limbs.
Result centOf(const Hint& x, const Hint& y, Division& d) {
  bool differ = x.negative != y.negative;
  if (d.small) return wideResult(false, !differ || d.r == 0 ? d.r : smallMagnitude(y.digits) - d.r);
  if (!differ || d.rl.empty()) return limbsResult(false, std::move(d.rl));
  Limbs b = limbsOf(y);
  natSub(b.data(), b.data(), b.size(), d.rl.data(), d.rl.size());
  return limbsResult(false, std::move(b));
}

// A power of more than 10^13 digits cannot be held by any memory: asking for
// one ends the program at once, as the exhaustion of memory would later.
constexpr double kMaxPowerLog10 = 13;

// log10 of a magnitude, from its leading digits and its length.
double approxLog10(std::string_view digits) {
  size_t lead = digits.size() < 17 ? digits.size() : 17;
  return std::log10(double(smallMagnitude(digits.substr(0, lead)))) + double(digits.size() - lead);
}

Result powaOf(std::string_view base, std::string_view exponent) {
  Hint b = hintOf(base), e = hintOf(exponent);
  // x^-n is 0 for every x, x^0 is 1 for every x (0 too).
  if (e.negative) return wideResult(false, 0);
  if (e.isZero()) return wideResult(false, 1);
  bool odd = (e.digits.back() - '0') % 2 == 1;
  bool negative = b.negative && odd;
  if (b.isZero()) return wideResult(false, 0);
  if (b.digits == "1") return wideResult(negative, 1);
  // Trailing zeros of the base come out as zeros appended to the power of
  // the rest: (m 10^z)^e = m^e 10^(z e).
  size_t zeros = 0;
  std::string_view m = b.digits;
  while (m.back() == '0') m.remove_suffix(1), zeros++;
  double logDigits = approxLog10(e.digits) + std::log10(approxLog10(m) + double(zeros));
  if (logDigits > kMaxPowerLog10) TARN_FAIL();  // no memory could hold the result
  uint64_t n = smallMagnitude(e.digits);  // below 10^14 here
  Result r = m == "1" ? wideResult(negative, 1) : limbsResult(negative, powLimbs(limbsFromDigits(m), n));
  r.zeros = zeros * n;
  return r;
}

Result halfOf(std::string_view x) {
  Hint h = hintOf(x);
  if (h.isSmall()) return wideResult(h.negative, smallMagnitude(h.digits) / 2);
  Limbs a = limbsOf(h);
  natDivSmall(a.data(), a.data(), a.size(), 2);
  return limbsResult(h.negative, std::move(a));
}

Result oppositeOf(std::string_view x) {
  Hint h = hintOf(x);
  Result r;
  r.form = Result::Form::kDigits;
  r.negative = !h.negative;
  r.digits = h.digits;
  return r;
}

}  // namespace

bool isNumberText(std::string_view text) {
  if (text.empty()) return false;
  unsigned char c = static_cast<unsigned char>(text[0]);
  if (c >= '1' && c <= '9') return true;
  return c == '0' && (text.size() == 1 || text[1] != '0');
}

TextSink stringSink(std::string& s) {
  auto room = [](void* context, size_t n) {
    auto* str = static_cast<std::string*>(context);
    str->resize(n);
    return str->data();
  };
  return {room, &s};
}

bool smallHintValue(std::string_view text, int64_t& value) {
  Hint h = hintOf(text);
  if (h.digits.size() > 19) return false;
  if (h.digits.size() == 19) {
    // 19 digits fit when at most 2^63 - 1 (2^63 for a negative value).
    int c = compareDigits(h.digits, h.negative ? "9223372036854775808" : "9223372036854775807");
    if (c > 0) return false;
  }
  uint64_t m = smallMagnitude(h.digits);
  value = h.negative ? int64_t(0 - m) : int64_t(m);
  return true;
}

size_t writeSmallHint(int64_t v, char* out) {
  char buf[24];
  char* end = buf + sizeof buf;
  uint64_t m = v < 0 ? 0 - uint64_t(v) : uint64_t(v);
  char* p = writeBackwards(m, end);
  if (v < 0) *--p = '0';
  size_t n = size_t(end - p);
  std::memcpy(out, p, n);
  return n;
}

std::string smallHintText(int64_t v) {
  char buf[24];
  return std::string(buf, writeSmallHint(v, buf));
}

void hintAddInto(std::string_view x, std::string_view y, TextSink out) {
  Hint b = hintOf(y);
  emit(addOf(hintOf(x), b.negative, b.digits), out);
}

void hintSubInto(std::string_view x, std::string_view y, TextSink out) {
  Hint b = hintOf(y);
  emit(addOf(hintOf(x), !b.negative, b.digits), out);
}

void hintMulInto(std::string_view x, std::string_view y, TextSink out) { emit(mulOf(x, y), out); }

bool hintOverInto(std::string_view x, std::string_view y, TextSink out) {
  Hint a = hintOf(x), b = hintOf(y);
  if (b.isZero()) return false;
  Division d = divideMagnitudes(a, b);
  emit(overOf(a, b, d), out);
  return true;
}

bool hintCentInto(std::string_view x, std::string_view y, TextSink out) {
  Hint a = hintOf(x), b = hintOf(y);
  if (b.isZero()) return false;
  Division d = divideMagnitudes(a, b);
  emit(centOf(a, b, d), out);
  return true;
}

bool hintOverCentInto(std::string_view x, std::string_view y, TextSink quotient, TextSink remainder) {
  Hint a = hintOf(x), b = hintOf(y);
  if (b.isZero()) return false;
  Division d = divideMagnitudes(a, b);
  // The quotient takes d's quotient limbs and reads the remainder, which
  // the remainder's result may then take.
  Result q = overOf(a, b, d);
  Result r = centOf(a, b, d);
  emit(q, quotient);
  emit(r, remainder);
  return true;
}

void hintPowaInto(std::string_view base, std::string_view exponent, TextSink out) {
  emit(powaOf(base, exponent), out);
}

void hintHalfInto(std::string_view x, TextSink out) { emit(halfOf(x), out); }

void hintOppositeInto(std::string_view x, TextSink out) { emit(oppositeOf(x), out); }

int hintCompareText(std::string_view x, std::string_view y) {
  Hint a = hintOf(x), b = hintOf(y);
  if (a.negative != b.negative) return a.negative ? -1 : 1;
  int c = compareDigits(a.digits, b.digits);
  return a.negative ? -c : c;
}

std::string hintAddText(std::string_view x, std::string_view y) {
  Hint b = hintOf(y);
  return textOf(addOf(hintOf(x), b.negative, b.digits));
}

std::string hintSubText(std::string_view x, std::string_view y) {
  Hint b = hintOf(y);
  return textOf(addOf(hintOf(x), !b.negative, b.digits));
}

std::string hintMulText(std::string_view x, std::string_view y) { return textOf(mulOf(x, y)); }

bool hintOverText(std::string_view x, std::string_view y, std::string& quotient) {
  Hint a = hintOf(x), b = hintOf(y);
  if (b.isZero()) return false;
  Division d = divideMagnitudes(a, b);
  quotient = textOf(overOf(a, b, d));
  return true;
}

bool hintCentText(std::string_view x, std::string_view y, std::string& remainder) {
  Hint a = hintOf(x), b = hintOf(y);
  if (b.isZero()) return false;
  Division d = divideMagnitudes(a, b);
  remainder = textOf(centOf(a, b, d));
  return true;
}

bool hintOverCentText(std::string_view x, std::string_view y, std::string& quotient,
                      std::string& remainder) {
  return hintOverCentInto(x, y, stringSink(quotient), stringSink(remainder));
}

std::string hintPowaText(std::string_view base, std::string_view exponent) {
  return textOf(powaOf(base, exponent));
}

std::string hintHalfText(std::string_view x) { return textOf(halfOf(x)); }

std::string hintOppositeText(std::string_view x) { return textOf(oppositeOf(x)); }

}  // namespace tarn
