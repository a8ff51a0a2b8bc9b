// Decimal text <-> binary naturals.
//
// Both directions work in chunks of 19 digits (10^19 is the largest power of
// ten below 2^64). Short numbers take a limb loop, quadratic but cheap. Long
// ones are split in halves at a power 10^(19*2^k): from text, the two halves
// are converted and joined by one (Karatsuba) multiplication; to text, one
// division by the power gives the high and low halves, and the low half is
// padded with zeros to its exact width. Divisions by the large powers use
// each power's reciprocal (Barrett), so a level of the split costs two
// multiplications instead of a long division; the reciprocal of 10^(19*2^k)
// is refined from the square of the one below it by one Newton step.
#include <algorithm>

#include "terms/failure.h"
#include "numbers/bignum/binary.h"

namespace tarn {

namespace {

constexpr size_t kChunkDigits = 19;
constexpr Limb kChunkBase = 10000000000000000000ull;  // 10^19
// Below these sizes the limb loops are faster than splitting.
constexpr size_t kSmallDigits = 19 * 48;
constexpr size_t kSmallLimbs = 40;

// The value of a run of at most 19 digits.
Limb chunkValue(std::string_view d) {
  Limb v = 0;
  for (char c : d) {
    TARN_ASSERT(c >= '0' && c <= '9');
    v = v * 10 + Limb(c - '0');
  }
  return v;
}

// Divisors of fewer limbs are divided by Knuth's long division.
constexpr size_t kBarrettLimbs = 100;

// 10^(19 * 2^k) with its bit length L and, once asked for, its reciprocal
// floor(2^(2L) / power). Kept for the process (one thread).
struct SplitPower {
  Natural power;
  size_t bits = 0;
  Natural reciprocal;  // empty until first needed
};

std::vector<SplitPower>& splitPowers() {
  static std::vector<SplitPower> powers;
  return powers;
}

const SplitPower& splitPowerEntry(size_t k) {
  std::vector<SplitPower>& powers = splitPowers();
  if (powers.empty()) powers.push_back({natOf(kChunkBase), 64, {}});
  while (powers.size() <= k) {
    Natural next = natMul(powers.back().power, powers.back().power);
    size_t bits = natBitLength(next);
    powers.push_back({std::move(next), bits, {}});
  }
  return powers[k];
}

const Natural& splitPower(size_t k) { return splitPowerEntry(k).power; }

// floor(2^(2L) / P_k). Small powers divide directly. A large one starts from
// the square of the reciprocal of P_(k-1) (P_k is that power's square), whose
// relative error is about 2^(1-L/2); one Newton step X += X(2^2L - P X)/2^2L
// squares the error, leaving a few units, which the final loop removes.
const Natural& reciprocalOf(size_t k) {
  const SplitPower& entry = splitPowerEntry(k);
  if (!natIsZero(entry.reciprocal)) return entry.reciprocal;
  const Natural& p = entry.power;
  size_t twoL = 2 * entry.bits;
  Natural top = natShiftLeft(natOf(1), twoL);
  Natural x;
  if (p.limbs.size() < kBarrettLimbs || k == 0) {
    natDivide(top, p, &x, nullptr);
  } else {
    const Natural& below = reciprocalOf(k - 1);
    size_t belowBits = splitPowerEntry(k - 1).bits;
    x = natShiftRight(natMul(below, below), 4 * belowBits - twoL);
    Natural px = natMul(p, x);
    if (natCompare(px, top) <= 0) {
      x = natAdd(x, natShiftRight(natMul(x, natSub(top, px)), twoL));
    } else {
      x = natSub(x, natShiftRight(natMul(x, natSub(px, top)), twoL));
    }
    // Exact: the largest x with p * x <= 2^(2L).
    px = natMul(p, x);
    while (natCompare(px, top) > 0) {
      x = natSub(x, natOf(1));
      px = natSub(px, p);
    }
    Natural rest = natSub(top, px);
    while (natCompare(rest, p) >= 0) {
      x = natAdd(x, natOf(1));
      rest = natSub(rest, p);
    }
  }
  splitPowers()[k].reciprocal = std::move(x);
  return splitPowers()[k].reciprocal;
}

// n = q * P_k + r for n < 2^(2L). Barrett: with m the reciprocal,
// floor(floor(n / 2^(L-1)) * m / 2^(L+1)) falls short of q by at most 2.
void divideByPower(const Natural& n, size_t k, Natural* q, Natural* r) {
  const SplitPower& entry = splitPowerEntry(k);
  if (entry.power.limbs.size() < kBarrettLimbs) {
    natDivide(n, entry.power, q, r);
    return;
  }
  const Natural& m = reciprocalOf(k);
  size_t bits = entry.bits;
  TARN_ASSERT(natBitLength(n) <= 2 * bits);
  *q = natShiftRight(natMul(natShiftRight(n, bits - 1), m), bits + 1);
  *r = natSub(n, natMul(*q, entry.power));
  while (natCompare(*r, entry.power) >= 0) {
    *r = natSub(*r, entry.power);
    *q = natAdd(*q, natOf(1));
  }
}

// n = n * m + add, in place.
void mulAddSmall(std::vector<Limb>& n, Limb m, Limb add) {
  unsigned __int128 carry = add;
  for (Limb& limb : n) {
    unsigned __int128 p = (unsigned __int128)limb * m + carry;
    limb = Limb(p);
    carry = p >> 64;
  }
  if (carry) n.push_back(Limb(carry));
}

Natural fromDecimalSmall(std::string_view d) {
  std::vector<Limb> n;
  size_t first = d.size() % kChunkDigits;
  if (first == 0) first = std::min(kChunkDigits, d.size());
  mulAddSmall(n, 1, chunkValue(d.substr(0, first)));
  for (size_t i = first; i < d.size(); i += kChunkDigits) {
    mulAddSmall(n, kChunkBase, chunkValue(d.substr(i, kChunkDigits)));
  }
  while (!n.empty() && n.back() == 0) n.pop_back();
  return Natural{std::move(n)};
}

Natural fromDecimalRec(std::string_view d) {
  if (d.size() <= kSmallDigits) return fromDecimalSmall(d);
  // The low part is the largest 19*2^k digits that leave a non-empty high part.
  size_t k = 0;
  while (kChunkDigits << (k + 1) < d.size()) k++;
  size_t lowDigits = kChunkDigits << k;
  Natural high = fromDecimalRec(d.substr(0, d.size() - lowDigits));
  Natural low = fromDecimalRec(d.substr(d.size() - lowDigits));
  return natAdd(natMul(high, splitPower(k)), low);
}

// Appends the digits of n, padded with leading zeros to `width` digits when
// width is not 0 (n is then known to be below 10^width).
void decimalSmall(const Natural& n, size_t width, std::string& out) {
  std::vector<Limb> work = n.limbs;
  std::vector<Limb> chunks;  // 19-digit groups, least significant first
  while (!work.empty()) {
    unsigned __int128 rem = 0;
    for (size_t i = work.size(); i-- > 0;) {
      unsigned __int128 cur = (rem << 64) | work[i];
      work[i] = Limb(cur / kChunkBase);
      rem = cur % kChunkBase;
    }
    chunks.push_back(Limb(rem));
    while (!work.empty() && work.back() == 0) work.pop_back();
  }
  std::string digits;
  char buf[24];
  for (size_t i = chunks.size(); i-- > 0;) {
    Limb c = chunks[i];
    int len = 0;
    do {
      buf[len++] = char('0' + c % 10);
      c /= 10;
    } while (c);
    // Inner chunks are written with all 19 digits.
    if (i + 1 != chunks.size()) {
      while (len < int(kChunkDigits)) buf[len++] = '0';
    }
    while (len) digits.push_back(buf[--len]);
  }
  if (width > digits.size()) out.append(width - digits.size(), '0');
  out += digits;
}

void decimalRec(const Natural& n, size_t width, std::string& out) {
  if (n.limbs.size() <= kSmallLimbs) {
    decimalSmall(n, width, out);
    return;
  }
  // Split at the smallest power P with n < 2^(2L), L the bit length of P:
  // n is then at least P, and quotient and remainder are about half of n.
  size_t bits = natBitLength(n);
  size_t k = 0;
  while (2 * splitPowerEntry(k).bits < bits) k++;
  size_t lowDigits = kChunkDigits << k;
  Natural q, r;
  divideByPower(n, k, &q, &r);
  if (width) {
    TARN_ASSERT(width >= lowDigits);
    decimalRec(q, width - lowDigits, out);
  } else if (natIsZero(q)) {
    decimalRec(r, 0, out);  // no high half: the low half leads, unpadded
    return;
  } else {
    decimalRec(q, 0, out);
  }
  decimalRec(r, lowDigits, out);
}

}  // namespace

Natural natFromDecimal(std::string_view digits) {
  if (digits.size() <= kChunkDigits) return natOf(chunkValue(digits));
  return fromDecimalRec(digits);
}

std::string natDecimal(const Natural& n) {
  if (n.limbs.empty()) return std::string(1, '0');
  if (n.limbs.size() == 1) return std::to_string(n.limbs[0]);
  std::string out;
  decimalRec(n, 0, out);
  return out;
}

}  // namespace tarn
