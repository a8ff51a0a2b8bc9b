// Binary naturals: limb arithmetic, Karatsuba multiplication and Knuth
// division. Decimal conversion lives in radix.cpp.
//
// The raw routines work on limb arrays (pointer and length) so that the
// recursive multiplication can write into parts of one result buffer; the
// public functions wrap them and normalise.
#include "numbers/bignum/binary.h"

#include <algorithm>
#include <cstring>

#include "terms/failure.h"

namespace tarn {

namespace {

using Wide = unsigned __int128;

// Below this many limbs in the shorter operand, schoolbook multiplication
// beats Karatsuba's extra additions.
constexpr size_t kKaratsubaLimbs = 32;

void trim(std::vector<Limb>& v) {
  while (!v.empty() && v.back() == 0) v.pop_back();
}

Natural normalised(std::vector<Limb> v) {
  trim(v);
  return Natural{std::move(v)};
}

// r[0..n) = a[0..n) + b[0..n); returns the carry out.
Limb addSame(Limb* r, const Limb* a, const Limb* b, size_t n) {
  Limb carry = 0;
  for (size_t i = 0; i < n; i++) {
    Wide s = Wide(a[i]) + b[i] + carry;
    r[i] = Limb(s);
    carry = Limb(s >> 64);
  }
  return carry;
}

// r[0..an) = a[0..an) + b[0..bn) with an >= bn; returns the carry out.
Limb addMixed(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
  Limb carry = addSame(r, a, b, bn);
  for (size_t i = bn; i < an; i++) {
    Limb s = a[i] + carry;
    carry = s < carry;
    r[i] = s;
  }
  return carry;
}

// r[0..rn) += a[0..an) with rn >= an; returns the carry out of r's top.
Limb addInPlace(Limb* r, size_t rn, const Limb* a, size_t an) {
  Limb carry = 0;
  size_t i = 0;
  for (; i < an; i++) {
    Wide s = Wide(r[i]) + a[i] + carry;
    r[i] = Limb(s);
    carry = Limb(s >> 64);
  }
  for (; carry && i < rn; i++) {
    r[i] += 1;
    carry = r[i] == 0;
  }
  return carry;
}

// r[0..rn) -= a[0..an) with rn >= an; returns the borrow out of r's top.
Limb subInPlace(Limb* r, size_t rn, const Limb* a, size_t an) {
  Limb borrow = 0;
  size_t i = 0;
  for (; i < an; i++) {
    Limb x = r[i];
    Limb d = x - a[i];
    Limb b1 = x < a[i];
    r[i] = d - borrow;
    borrow = b1 | (d < borrow);
  }
  for (; borrow && i < rn; i++) {
    borrow = r[i] == 0;
    r[i] -= 1;
  }
  return borrow;
}

// r[0..n) += a[0..n) * m; returns the limb that carries out.
Limb mulAddRow(Limb* r, const Limb* a, size_t n, Limb m) {
  Limb carry = 0;
  for (size_t i = 0; i < n; i++) {
    Wide p = Wide(a[i]) * m + r[i] + carry;
    r[i] = Limb(p);
    carry = Limb(p >> 64);
  }
  return carry;
}

// r[0..an+bn) = a * b, schoolbook.
void mulSchool(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
  std::fill(r, r + an + bn, 0);
  for (size_t j = 0; j < bn; j++) r[an + j] = mulAddRow(r + j, a, an, b[j]);
}

// r[0..an+bn) = a * b for an >= bn >= 1. Karatsuba splits both operands at
// h limbs: a*b = z2 B^2h + (z1 - z0 - z2) B^h + z0 with z1 = (a0+a1)(b0+b1).
void mulRec(Limb* r, const Limb* a, size_t an, const Limb* b, size_t bn) {
  if (bn < kKaratsubaLimbs) {
    mulSchool(r, a, an, b, bn);
    return;
  }
  size_t h = (an + 1) / 2;
  if (bn <= h) {
    // Unbalanced: cut a into pieces of bn limbs and add each product at its
    // offset, so every recursive product is balanced.
    std::fill(r, r + an + bn, 0);
    std::vector<Limb> t(2 * bn);
    for (size_t off = 0; off < an; off += bn) {
      size_t len = std::min(bn, an - off);
      if (len == bn) {
        mulRec(t.data(), a + off, len, b, bn);
      } else {
        mulRec(t.data(), b, bn, a + off, len);
      }
      Limb c = addInPlace(r + off, an + bn - off, t.data(), len + bn);
      TARN_ASSERT(c == 0);
    }
    return;
  }
  size_t a1n = an - h, b1n = bn - h;  // 1 <= b1n <= a1n <= h
  mulRec(r, a, h, b, h);                   // z0 in r[0..2h)
  mulRec(r + 2 * h, a + h, a1n, b + h, b1n);  // z2 in r[2h..an+bn)
  std::vector<Limb> sa(h + 1), sb(h + 1);
  sa[h] = addMixed(sa.data(), a, h, a + h, a1n);
  sb[h] = addMixed(sb.data(), b, h, b + h, b1n);
  size_t san = h + (sa[h] != 0), sbn = h + (sb[h] != 0);
  std::vector<Limb> z1(san + sbn);
  if (san >= sbn) {
    mulRec(z1.data(), sa.data(), san, sb.data(), sbn);
  } else {
    mulRec(z1.data(), sb.data(), sbn, sa.data(), san);
  }
  // The middle term a0*b1 + a1*b0 is never negative.
  Limb borrow = subInPlace(z1.data(), z1.size(), r, 2 * h);
  borrow |= subInPlace(z1.data(), z1.size(), r + 2 * h, a1n + b1n);
  TARN_ASSERT(borrow == 0);
  trim(z1);
  Limb c = addInPlace(r + h, an + bn - h, z1.data(), z1.size());
  TARN_ASSERT(c == 0);
}

// Short division in place by one limb; returns the remainder.
Limb divideBySmall(std::vector<Limb>& a, Limb d) {
  Limb rem = 0;
  for (size_t i = a.size(); i-- > 0;) {
    Wide cur = (Wide(rem) << 64) | a[i];
    a[i] = Limb(cur / d);
    rem = Limb(cur % d);
  }
  return rem;
}

// Knuth's algorithm D: u (m limbs) divided by v (n limbs), m >= n >= 2, top
// limb of v non-zero. q gets m-n+1 limbs, r gets n limbs.
void divideLong(const Limb* u, size_t m, const Limb* v, size_t n, Limb* q, Limb* r) {
  // Normalise so that the divisor's top bit is set: the estimate of each
  // quotient limb from the two top limbs is then at most 2 too large.
  int s = __builtin_clzll(v[n - 1]);
  std::vector<Limb> vn(n), un(m + 1);
  for (size_t i = n - 1; i > 0; i--) vn[i] = (v[i] << s) | (s ? v[i - 1] >> (64 - s) : 0);
  vn[0] = v[0] << s;
  un[m] = s ? u[m - 1] >> (64 - s) : 0;
  for (size_t i = m - 1; i > 0; i--) un[i] = (u[i] << s) | (s ? u[i - 1] >> (64 - s) : 0);
  un[0] = u[0] << s;

  const Wide base = Wide(1) << 64;
  for (size_t j = m - n + 1; j-- > 0;) {
    Wide num = (Wide(un[j + n]) << 64) | un[j + n - 1];
    Wide qhat = num / vn[n - 1];
    Wide rhat = num - qhat * vn[n - 1];
    while (qhat >= base || qhat * vn[n - 2] > ((rhat << 64) | un[j + n - 2])) {
      qhat--;
      rhat += vn[n - 1];
      if (rhat >= base) break;
    }
    // Multiply and subtract qhat * vn from un[j..j+n].
    Limb carry = 0, borrow = 0;
    for (size_t i = 0; i < n; i++) {
      Wide p = qhat * vn[i] + carry;
      carry = Limb(p >> 64);
      Limb lo = Limb(p);
      Limb x = un[i + j];
      Limb d = x - lo;
      Limb b1 = x < lo;
      un[i + j] = d - borrow;
      borrow = b1 | (d < borrow);
    }
    Wide top = un[j + n];
    Wide take = Wide(carry) + borrow;
    un[j + n] = Limb(top - take);
    if (top < take) {
      // The estimate was one too large: add the divisor back once.
      qhat--;
      Limb c = addSame(&un[j], &un[j], vn.data(), n);
      un[j + n] += c;
    }
    q[j] = Limb(qhat);
  }
  if (r) {
    for (size_t i = 0; i < n; i++) r[i] = (un[i] >> s) | (s ? un[i + 1] << (64 - s) : 0);
  }
}

Limb reverse64(Limb x) {
  x = ((x >> 1) & 0x5555555555555555ull) | ((x & 0x5555555555555555ull) << 1);
  x = ((x >> 2) & 0x3333333333333333ull) | ((x & 0x3333333333333333ull) << 2);
  x = ((x >> 4) & 0x0F0F0F0F0F0F0F0Full) | ((x & 0x0F0F0F0F0F0F0F0Full) << 4);
  return __builtin_bswap64(x);
}

}  // namespace

// ---- Construction and inspection --------------------------------------------

Natural natOf(uint64_t v) {
  Natural n;
  if (v) n.limbs.push_back(v);
  return n;
}

Natural natFromBytes(std::string_view bytes) {
  std::vector<Limb> v((bytes.size() + 7) / 8, 0);
  size_t whole = bytes.size() / 8;
  for (size_t i = 0; i < whole; i++) std::memcpy(&v[i], bytes.data() + 8 * i, 8);  // little-endian host
  for (size_t i = whole * 8; i < bytes.size(); i++) {
    v[whole] |= Limb(static_cast<unsigned char>(bytes[i])) << (8 * (i % 8));
  }
  return normalised(std::move(v));
}

std::string natBytes(const Natural& n) {
  std::string out(n.limbs.size() * 8, '\0');
  if (!out.empty()) std::memcpy(out.data(), n.limbs.data(), out.size());
  while (!out.empty() && out.back() == '\0') out.pop_back();
  return out;
}

size_t natBitLength(const Natural& n) {
  if (n.limbs.empty()) return 0;
  return n.limbs.size() * 64 - size_t(__builtin_clzll(n.limbs.back()));
}

size_t natTrailingZeros(const Natural& n) {
  TARN_ASSERT(!n.limbs.empty());
  size_t i = 0;
  while (n.limbs[i] == 0) i++;
  return i * 64 + size_t(__builtin_ctzll(n.limbs[i]));
}

bool natBit(const Natural& n, size_t i) {
  size_t w = i / 64;
  return w < n.limbs.size() && ((n.limbs[w] >> (i % 64)) & 1);
}

// ---- Arithmetic ---------------------------------------------------------------

int natCompare(const Natural& a, const Natural& b) {
  if (a.limbs.size() != b.limbs.size()) return a.limbs.size() < b.limbs.size() ? -1 : 1;
  for (size_t i = a.limbs.size(); i-- > 0;) {
    if (a.limbs[i] != b.limbs[i]) return a.limbs[i] < b.limbs[i] ? -1 : 1;
  }
  return 0;
}

Natural natAdd(const Natural& a, const Natural& b) {
  const Natural& x = a.limbs.size() >= b.limbs.size() ? a : b;
  const Natural& y = a.limbs.size() >= b.limbs.size() ? b : a;
  std::vector<Limb> r(x.limbs.size() + 1);
  r[x.limbs.size()] = addMixed(r.data(), x.limbs.data(), x.limbs.size(), y.limbs.data(), y.limbs.size());
  return normalised(std::move(r));
}

Natural natSub(const Natural& a, const Natural& b) {
  TARN_ASSERT(natCompare(a, b) >= 0);
  std::vector<Limb> r = a.limbs;
  Limb borrow = subInPlace(r.data(), r.size(), b.limbs.data(), b.limbs.size());
  TARN_ASSERT(borrow == 0);
  return normalised(std::move(r));
}

Natural natMul(const Natural& a, const Natural& b) {
  if (a.limbs.empty() || b.limbs.empty()) return Natural{};
  const Natural& x = a.limbs.size() >= b.limbs.size() ? a : b;
  const Natural& y = a.limbs.size() >= b.limbs.size() ? b : a;
  std::vector<Limb> r(x.limbs.size() + y.limbs.size());
  mulRec(r.data(), x.limbs.data(), x.limbs.size(), y.limbs.data(), y.limbs.size());
  return normalised(std::move(r));
}

Natural natShiftLeft(const Natural& a, size_t count) {
  if (a.limbs.empty()) return Natural{};
  size_t words = count / 64;
  unsigned bits = unsigned(count % 64);
  std::vector<Limb> r(a.limbs.size() + words + 1, 0);
  for (size_t i = 0; i < a.limbs.size(); i++) {
    r[i + words] |= a.limbs[i] << bits;
    if (bits) r[i + words + 1] = a.limbs[i] >> (64 - bits);
  }
  return normalised(std::move(r));
}

Natural natShiftRight(const Natural& a, size_t count) {
  size_t words = count / 64;
  if (words >= a.limbs.size()) return Natural{};
  unsigned bits = unsigned(count % 64);
  size_t n = a.limbs.size() - words;
  std::vector<Limb> r(n);
  for (size_t i = 0; i < n; i++) {
    r[i] = a.limbs[i + words] >> bits;
    if (bits && i + words + 1 < a.limbs.size()) r[i] |= a.limbs[i + words + 1] << (64 - bits);
  }
  return normalised(std::move(r));
}

Natural natLowBits(const Natural& a, size_t count) {
  size_t words = (count + 63) / 64;
  if (words >= a.limbs.size() + 1) return a;
  std::vector<Limb> r(a.limbs.begin(), a.limbs.begin() + std::min(words, a.limbs.size()));
  if (count % 64 && r.size() == words) r.back() &= (Limb(1) << (count % 64)) - 1;
  return normalised(std::move(r));
}

Natural natReverseBits(const Natural& a, size_t width) {
  if (width == 0) return Natural{};
  Natural low = natLowBits(a, width);
  size_t words = (width + 63) / 64;
  std::vector<Limb> r(words, 0);
  for (size_t j = 0; j < low.limbs.size(); j++) r[words - 1 - j] = reverse64(low.limbs[j]);
  // The reversal of `words` whole limbs puts bit i at words*64-1-i: shift the
  // surplus away.
  return natShiftRight(normalised(std::move(r)), words * 64 - width);
}

void natDivide(const Natural& a, const Natural& b, Natural* quotient, Natural* remainder) {
  TARN_ASSERT(!b.limbs.empty());
  if (natCompare(a, b) < 0) {
    if (remainder) *remainder = a;
    if (quotient) *quotient = Natural{};
    return;
  }
  if (b.limbs.size() == 1) {
    std::vector<Limb> q = a.limbs;
    Limb rem = divideBySmall(q, b.limbs[0]);
    if (quotient) *quotient = normalised(std::move(q));
    if (remainder) *remainder = natOf(rem);
    return;
  }
  size_t m = a.limbs.size(), n = b.limbs.size();
  std::vector<Limb> q(m - n + 1), r(n);
  divideLong(a.limbs.data(), m, b.limbs.data(), n, q.data(), r.data());
  if (quotient) *quotient = normalised(std::move(q));
  if (remainder) *remainder = normalised(std::move(r));
}

}  // namespace tarn
