// The limb array, decimal text <-> limbs, and the linear kernels.
//
// Text conversion is the cost every operation pays on both ends, so it works
// eight digits at a time inside one 64-bit word (three multiplications to
// read, four to write) instead of digit by digit.
#include "numbers/bignum/decimal_limbs.h"

#include <cstdlib>
#include <cstring>

#include "terms/failure.h"
#include "numbers/bignum/decimal_simd.h"

namespace tarn {

// ---- Limbs ----------------------------------------------------------------------

namespace {

Limb* allocLimbs(size_t n) {
  if (n == 0) return nullptr;
  TARN_ASSERT(n < (size_t(1) << 60));
  void* p = std::malloc(n * sizeof(Limb));
  if (!p) TARN_FAIL();  // exhaustion of memory ends the program
  return static_cast<Limb*>(p);
}

}  // namespace

Limbs::Limbs(size_t n) : p_(allocLimbs(n)), n_(n), cap_(n) {}

Limbs::Limbs(const Limb* from, size_t n) : Limbs(n) {
  if (n) std::memcpy(p_, from, n * sizeof(Limb));
}

Limbs& Limbs::operator=(Limbs&& o) noexcept {
  if (this != &o) {
    std::free(p_);
    p_ = o.p_, n_ = o.n_, cap_ = o.cap_;
    o.p_ = nullptr, o.n_ = o.cap_ = 0;
  }
  return *this;
}

Limbs::~Limbs() { std::free(p_); }

void Limbs::resize(size_t n) {
  if (n > cap_) {
    Limb* q = allocLimbs(n);
    if (n_) std::memcpy(q, p_, n_ * sizeof(Limb));
    std::free(p_);
    p_ = q;
    cap_ = n;
  }
  n_ = n;
}

void Limbs::clear() {
  if (n_) std::memset(p_, 0, n_ * sizeof(Limb));
}

void Limbs::trim() { n_ = natLength(p_, n_); }

// ---- Text ---------------------------------------------------------------------

namespace {

constexpr uint64_t kZeroBytes = 0x3030303030303030ull;

// Eight digits, the first at the lowest address, to their value. Bytes that
// are no digit set high bits in `bad`: after the subtraction such a byte is
// 0x80 or more, or reaches 0x80 when 0x76 is added (the lowest bad byte is
// always seen, since valid bytes below it neither borrow nor carry).
inline uint32_t parse8(const char* p, uint64_t& bad) {
  uint64_t v;
  std::memcpy(&v, p, 8);
  v -= kZeroBytes;
  bad |= (v | (v + 0x7676767676767676ull)) & 0x8080808080808080ull;
  v = (v * 10 + (v >> 8)) & 0x00FF00FF00FF00FFull;       // pairs of digits
  v = (v * 100 + (v >> 16)) & 0x0000FFFF0000FFFFull;     // groups of four
  return uint32_t((v * 10000 + (v >> 32)) & 0xFFFFFFFFull);  // all eight
}

// A value below 10^8 as eight digits, most significant at the lowest address.
// The two halves of four digits sit in 32-bit lanes, then pairs in 16-bit
// lanes, then single digits in bytes; each split divides every lane at once
// by a multiply-and-shift that is exact for the lane's range.
inline void write8(char* out, uint32_t x) {
  uint64_t v = uint64_t(x / 10000) | (uint64_t(x % 10000) << 32);
  uint64_t hundreds = ((v * 10486) >> 20) & 0x0000007F0000007Full;  // lane / 100
  v = hundreds | ((v - hundreds * 100) << 16);
  uint64_t tens = ((v * 103) >> 10) & 0x000F000F000F000Full;  // lane / 10
  v = tens | ((v - tens * 10) << 8);
  v += kZeroBytes;
  std::memcpy(out, &v, 8);
}

inline int digitsOfLimb(Limb x) {
  int d = 1;
  while (x >= 10) x /= 10, d++;
  return d;
}

}  // namespace

Limbs limbsFromDigits(std::string_view digits, size_t spare) {
  size_t len = digits.size();
  size_t n = (len + kLimbDigits - 1) / kLimbDigits;
  Limbs r(n + spare);
  r.resize(n);
  if (len == 0) return r;
  const char* p = digits.data();
  // The top limb takes the 1 to 8 leading digits.
  size_t top = len - kLimbDigits * (n - 1);
  Limb v = 0;
  for (size_t i = 0; i < top; i++) {
    unsigned d = unsigned(static_cast<unsigned char>(p[i])) - '0';
    TARN_ASSERT(d <= 9);
    v = v * 10 + d;
  }
  r[n - 1] = v;
  // The other limbs take eight digits each, four at a time when the vector
  // kernels are there.
  uint64_t bad = 0;
  const char* q = p + top;
  size_t i = n - 1;
  if (vectorKernelsOn() && i >= 4) {
    size_t groups = i / 4;
    if (!parseChunksAvx2(q, groups, r.data() + i)) bad = 1;
    q += 32 * groups;
    i -= 4 * groups;
  }
  for (; i-- > 0; q += kLimbDigits) r[i] = parse8(q, bad);
  TARN_ASSERT(bad == 0);
  r.trim();
  return r;
}

size_t digitCount(const Limb* a, size_t n) {
  n = natLength(a, n);
  if (n == 0) return 1;
  return kLimbDigits * (n - 1) + size_t(digitsOfLimb(a[n - 1]));
}

void writeDigits(char* out, const Limb* a, size_t n) {
  n = natLength(a, n);
  if (n == 0) {
    out[0] = '0';
    return;
  }
  char top[8];
  write8(top, a[n - 1]);
  int d = digitsOfLimb(a[n - 1]);
  std::memcpy(out, top + 8 - d, size_t(d));
  out += d;
  size_t i = n - 1;
  if (vectorKernelsOn() && i >= 4) {
    size_t groups = i / 4;
    writeChunksAvx2(out, a + i, groups);
    out += 32 * groups;
    i -= 4 * groups;
  }
  for (; i-- > 0; out += kLimbDigits) write8(out, a[i]);
}

std::string limbsDump(const Limb* a, size_t n) {
  std::string s = "[" + std::to_string(n) + " limbs]";
  char buf[9] = {};
  for (size_t k = n; k-- > 0;) {
    if (n > 8 && k == n - 5) {
      s += " ...";
      k = 3;
    }
    write8(buf, a[k]);
    s += k + 1 == n ? " " : "|";
    s += buf;
  }
  return s;
}

// ---- Linear kernels -------------------------------------------------------------

size_t natLength(const Limb* a, size_t n) {
  while (n > 0 && a[n - 1] == 0) n--;
  return n;
}

int natCompare(const Limb* a, size_t na, const Limb* b, size_t nb) {
  na = natLength(a, na);
  nb = natLength(b, nb);
  if (na != nb) return na < nb ? -1 : 1;
  for (size_t i = na; i-- > 0;)
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  return 0;
}

Limb natAdd(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb) {
  TARN_ASSERT(na >= nb);
  Limb carry = 0;
  size_t i = 0;
  for (; i < nb; i++) {
    Limb s = a[i] + b[i] + carry;  // below 2 * 10^8: no overflow
    carry = s >= kLimbBase;
    r[i] = carry ? s - kLimbBase : s;
  }
  for (; i < na && carry; i++) {
    Limb s = a[i] + 1;
    carry = s == kLimbBase;
    r[i] = carry ? 0 : s;
  }
  if (r != a && i < na) std::memcpy(r + i, a + i, (na - i) * sizeof(Limb));
  return carry;
}

Limb natSub(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb) {
  TARN_ASSERT(na >= nb);
  Limb borrow = 0;
  size_t i = 0;
  for (; i < nb; i++) {
    int64_t s = int64_t(a[i]) - b[i] - borrow;
    borrow = s < 0;
    r[i] = Limb(borrow ? s + kLimbBase : s);
  }
  for (; i < na && borrow; i++) {
    borrow = a[i] == 0;
    r[i] = borrow ? kLimbBase - 1 : a[i] - 1;
  }
  if (r != a && i < na) std::memcpy(r + i, a + i, (na - i) * sizeof(Limb));
  return borrow;
}

Limb natMulSmall(Limb* r, const Limb* a, size_t n, Limb m) {
  TARN_ASSERT(m < kLimbBase);
  uint64_t carry = 0;
  size_t i = 0;
  if (m < (1u << 21) && n >= 8 && vectorKernelsOn()) {
    size_t groups = n / 4;
    bool full = false;
    carry = mulSmallAvx2(r, a, groups, m, 0, full);
    i = 4 * groups;
    if (full) [[unlikely]] {
      // Limbs of exactly 10^8 carry into the next one up.
      for (size_t k = 0; k < i; k++) {
        if (r[k] != kLimbBase) continue;
        r[k] = 0;
        if (k + 1 < i) r[k + 1]++;
        else carry++;
      }
    }
  }
  for (; i < n; i++) {
    uint64_t t = uint64_t(a[i]) * m + carry;  // below 10^16
    carry = t / kLimbBase;
    r[i] = Limb(t - carry * kLimbBase);
  }
  return Limb(carry);  // below m
}

Limb natDivSmall(Limb* q, const Limb* a, size_t n, Limb d) {
  TARN_ASSERT(d >= 1 && d < kLimbBase);
  uint64_t rem = 0;
  for (size_t i = n; i-- > 0;) {
    uint64_t cur = rem * kLimbBase + a[i];
    q[i] = Limb(cur / d);
    rem = cur % d;
  }
  return Limb(rem);
}

}  // namespace tarn
