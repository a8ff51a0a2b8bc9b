// Decimal limbs: the working form of integer magnitudes inside the decimal
// arithmetic (decimal.h is the text-level face of this module).
//
// Invariant: a magnitude is a little-endian array of limbs in base 10^8, every
// limb below 10^8. A normalized magnitude has no zero top limb, so zero is the
// empty array. Base 10^8 makes the text conversion linear (eight digits a
// limb, no carries) and lets products of limbs accumulate in 64 bits: a
// column of up to 1844 limb products cannot overflow.
//
// Ownership: `Limbs` owns its array. The kernels (`nat...`) take raw
// (pointer, length) ranges that the caller owns; an output range must not
// overlap an input range unless the kernel says it may. Inputs of the kernels
// need not be normalized unless stated. Allocation failure ends the program
// (as for nodes): there is no partial result.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

using Limb = uint32_t;
inline constexpr Limb kLimbBase = 100000000;  // 10^8
inline constexpr int kLimbDigits = 8;

// An owned limb array. Limbs added by construction or growth are
// uninitialised; moving leaves the source empty.
class Limbs {
 public:
  Limbs() noexcept = default;
  explicit Limbs(size_t n);
  Limbs(const Limb* from, size_t n);  // a copy of a range
  Limbs(Limbs&& o) noexcept : p_(o.p_), n_(o.n_), cap_(o.cap_) { o.p_ = nullptr, o.n_ = o.cap_ = 0; }
  Limbs& operator=(Limbs&& o) noexcept;
  Limbs(const Limbs&) = delete;
  Limbs& operator=(const Limbs&) = delete;
  ~Limbs();

  size_t size() const { return n_; }
  bool empty() const { return n_ == 0; }
  Limb* data() { return p_; }
  const Limb* data() const { return p_; }
  Limb& operator[](size_t i) { return p_[i]; }
  Limb operator[](size_t i) const { return p_[i]; }

  // Keeps the first min(n, size) limbs; new limbs are uninitialised.
  void resize(size_t n);
  // Sets every limb to zero.
  void clear();
  // Drops zero top limbs.
  void trim();

 private:
  Limb* p_ = nullptr;
  size_t n_ = 0;
  size_t cap_ = 0;
};

// ---- Text ---------------------------------------------------------------------
// Digits, most significant first, to a normalized magnitude, with room for
// `spare` more limbs. A leading zero digit is allowed; a byte that is no
// digit is a fatal assertion.
Limbs limbsFromDigits(std::string_view digits, size_t spare = 0);
// Number of decimal digits of a normalized magnitude (1 for zero).
size_t digitCount(const Limb* a, size_t n);
// Writes exactly digitCount(a, n) digits, most significant first ("0" for
// zero). `out` must have room for them.
void writeDigits(char* out, const Limb* a, size_t n);

// A debugging dump: the limb count, then the limbs from the top, eight
// digits each, separated by "|"; long arrays show their first and last four
// limbs around "...". For test messages.
std::string limbsDump(const Limb* a, size_t n);

// ---- Linear kernels -------------------------------------------------------------
size_t natLength(const Limb* a, size_t n);  // length without zero top limbs
// Compares by value; the ranges need not be normalized. Returns -1, 0 or 1.
int natCompare(const Limb* a, size_t na, const Limb* b, size_t nb);
// r[0, na) = a + b, na >= nb; returns the carry (0 or 1). r may be a.
Limb natAdd(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb);
// r[0, na) = a - b, na >= nb; returns the borrow (0 or 1). r may be a.
Limb natSub(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb);
// r[0, n) = a * m, m below 10^8; returns the top limb. r may be a.
Limb natMulSmall(Limb* r, const Limb* a, size_t n, Limb m);
// q[0, n) = a / d, d in [1, 10^8); returns the remainder. q may be a.
Limb natDivSmall(Limb* q, const Limb* a, size_t n, Limb d);

// ---- Products -------------------------------------------------------------------
// r[0, na + nb) = a * b. r must not overlap a or b. Chooses schoolbook,
// Karatsuba or the number-theoretic transform by size.
void natMul(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb);
// r[0, 2n) = a * a, same rules.
void natSqr(Limb* r, const Limb* a, size_t n);
// The single algorithms, for tests and benchmarks (same contract as natMul).
void natMulSchoolbook(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb);
void natMulKaratsuba(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb);
void natMulNtt(Limb* r, const Limb* a, size_t na, const Limb* b, size_t nb);
void natSqrNtt(Limb* r, const Limb* a, size_t n);

// Size cut-overs, in limbs of the shorter operand. The transform takes over
// much earlier when the vector kernels are there.
inline constexpr size_t kKaratsubaMinLimbs = 40;
inline constexpr size_t kNttMinLimbsVector = 160;
inline constexpr size_t kNttMinLimbsScalar = 700;
size_t nttMinLimbs();

// ---- Division ---------------------------------------------------------------
// Floor division of magnitudes: a = q * b + r with 0 <= r < b. b must be
// non-zero; inputs need not be normalized; q and r come out normalized.
void natDivMod(const Limb* a, size_t na, const Limb* b, size_t nb, Limbs* q, Limbs* r);
// The single algorithms, for tests (same contract; b of two limbs or more).
void natDivModKnuth(const Limb* a, size_t na, const Limb* b, size_t nb, Limbs* q, Limbs* r);
void natDivModNewton(const Limb* a, size_t na, const Limb* b, size_t nb, Limbs* q, Limbs* r);

// Below this divisor length (or quotient length) long division by limbs is
// used; from it on, division by a Newton reciprocal.
inline constexpr size_t kNewtonMinLimbs = 150;

// ---- Owned helpers ------------------------------------------------------------
Limbs mulLimbs(const Limbs& a, const Limbs& b);  // normalized product
Limbs sqrLimbs(const Limbs& a);
// base^e for e >= 1, by squaring.
Limbs powLimbs(const Limbs& base, uint64_t e);

}  // namespace tarn
