// The numb operations on Terms: the four arithmetic operations, the power
// with its own squaring schedule, and the order test `numbLess`.
#include <string>

#include "terms/failure.h"
#include "numbers/dyadic.h"
#include "numbers/model.h"
#include "numbers/numb.h"

namespace tarn {

namespace {

Term noAnswer() { return leafByte('Z'); }

// A list cell (J b rest) with b the leaf H or K.
bool isListCell(const Term& t) {
  if (!t.isApp() || !t.left().isApp() || !isByteLeaf(t.left().left(), 'J')) return false;
  const Term& b = t.left().right();
  return isByteLeaf(b, 'H') || isByteLeaf(b, 'K');
}
bool cellElement(const Term& t) { return isByteLeaf(t.left().right(), 'K'); }

bool isDigitLeaf(const Term& t) { return t.isLeaf() && isDigit(t.first()); }

bool isOddDigit(unsigned char c) { return c == '1' || c == '3' || c == '5' || c == '7' || c == '9'; }

// ---- The exponent as a decimal hint text ----------------------------------------------

bool textIsNegative(std::string_view e) { return e.size() > 1 && e[0] == '0'; }

std::string_view textMagnitude(std::string_view e) { return textIsNegative(e) ? e.substr(1) : e; }

// Whether 1 is less than the hint e: a negative e never is; otherwise its
// magnitude (no leading zeros) must have two digits or a digit above 1.
bool oneIsLess(std::string_view e) {
  if (textIsNegative(e)) return false;
  return e.size() > 1 || e[0] > '1';
}

// The hint halved by magnitude, keeping the sign ("0" for a zero result):
// -3 gives -1 and 1 gives 0.
std::string hintHalfText(std::string_view e) {
  std::string_view mag = textMagnitude(e);
  std::string half;
  unsigned carry = 0;
  for (char c : mag) {
    unsigned cur = carry * 10 + unsigned(c - '0');
    if (!half.empty() || cur / 2) half.push_back(char('0' + cur / 2));
    carry = cur % 2;
  }
  if (half.empty()) return "0";
  return textIsNegative(e) ? "0" + half : half;
}

// numbOdd on a leaf's text: the leading digit of the magnitude.
bool oddText(std::string_view e) {
  if (e == "0") return false;
  unsigned char c = static_cast<unsigned char>(e[0]);
  if (c == '0' && e.size() > 1) c = static_cast<unsigned char>(e[1]);
  return isOddDigit(c);
}

// The same test on a word exponent: its leading decimal digit.
bool oddWord(uint64_t e) {
  while (e >= 10) e /= 10;
  return e % 2 == 1;
}

// x * y with numbTimes' signs: zero is plus, otherwise plus when they agree.
Dyadic timesSigned(const Dyadic& x, const Dyadic& y) {
  Dyadic r = dyadicMul(x, y);
  r.plus = dyadicIsZero(r) || x.plus == y.plus;
  return r;
}

// The number of list elements of a hint term that passed the exponent walk,
// saturated at 61 (only "61 or more" matters).
size_t listLengthUpTo61(const Term& e) {
  size_t cells = 0;
  const Term* t = &e;
  for (; t->isApp() && cells < 61; t = &t->right()) cells++;
  if (cells >= 61 || isByteLeaf(*t, 'K')) return cells;
  std::string_view text = textOf(*t);
  // A number text of more than 64 bytes spells a list of more than 61
  // elements, whatever its form.
  if (text.size() > 64) return 61;
  return cells + bitLength(bitsFromText(text)) - 1;
}

// The power loop on a decimal exponent text: square, multiply by the
// base when the leading digit is odd, halve, while 1 is less than e.
Dyadic powerByText(const Dyadic& base, const Term& exponent, std::string e) {
  Dyadic acc = base;
  bool first = true;
  while (oneIsLess(e)) {
    acc = timesSigned(acc, acc);
    if (first ? numbOdd(exponent) : oddText(e)) acc = timesSigned(acc, base);
    e = hintHalfText(e);
    first = false;
  }
  return acc;
}

}  // namespace

// ---- Arithmetic ------------------------------------------------------------------------

Term numbPlus(const Term& x, const Term& y) {
  TARN_ASSERT(isNumbForm(x) && isNumbForm(y));
  return numbFromBits(both(numbBits(x), numbBits(y)));
}

Term numbDash(const Term& x, const Term& y) {
  TARN_ASSERT(isNumbForm(x) && isNumbForm(y));
  return numbFromBits(both(numbBits(x), numbOpposite(numbBits(y))));
}

Term numbMult(const Term& x, const Term& y) {
  TARN_ASSERT(isNumbForm(x) && isNumbForm(y));
  return numbFromBits(numbTimes(numbBits(x), numbBits(y)));
}

Term numbCent(const Term& x, const Term& y) {
  TARN_ASSERT(isNumbForm(x) && isNumbForm(y));
  BitString by = numbBits(y);
  if (numbIsZero(by)) return noAnswer();
  return numbFromBits(numbRemainder(numbBits(x), by));
}

// ---- Power ---------------------------------------------------------------------------------

bool numbOdd(const Term& e) {
  if (e.isLeaf()) return oddText(textOf(e));
  if (!isListCell(e)) return false;
  // The magnitude's lowest bit is list element 2; a list that ends after two
  // elements has magnitude 1 (odd), after one element it is zero.
  const Term& second = e.right();
  if (isListCell(second)) {
    const Term& third = second.right();
    if (isListCell(third)) return cellElement(third);
    if (isByteLeaf(third, 'K')) return true;
    return isDigitLeaf(third) && isOddDigit(third.first());
  }
  if (isDigitLeaf(second)) return getBit(bitsFromText(textOf(second)), 1);
  return false;
}

// Base 2 (the leaf "004") is 2^n exactly. Other bases: negative exponent "Z",
// zero "00", otherwise the squaring loop, whose schedule gives a^6 for 5 and
// a^5 for 6; with no round of the loop the result is the base itself.
Term numbPowa(const Term& base, const Term& exponent) {
  TARN_ASSERT(isNumbForm(base));
  const Term* t = &exponent;
  while (isListCell(*t)) t = &t->right();
  if (!isByteLeaf(*t, 'K') && !isDigitLeaf(*t)) return noAnswer();

  if (base.isLeaf() && textOf(base) == "004") {
    // The exponent's magnitude must stay below 2^59 (a list of 60 elements).
    if (listLengthUpTo61(exponent) >= 61) return noAnswer();
    BitString fixed(1, '\1');
    setBit(fixed, bitPosition(termToInt64(exponent)));
    return numbFromBits(fixed);
  }
  if (!hintSign(exponent)) return noAnswer();
  if (hintIsZero(exponent)) return leaf("00");

  Dyadic a = dyadicFromFixed(numbBits(base));
  std::string e = exponent.isLeaf() ? std::string(textOf(exponent)) : numberText(exponent);
  if (!oneIsLess(e)) return base;
  std::string_view mag = textMagnitude(e);
  Dyadic acc;
  if (mag.size() <= 19) {
    // A word exponent: the same schedule with the leading digit read from
    // the word.
    uint64_t v = natLow(natFromDecimal(mag));
    acc = a;
    for (bool first = true; v > 1; v >>= 1, first = false) {
      acc = timesSigned(acc, acc);
      if (first ? numbOdd(exponent) : oddWord(v)) acc = timesSigned(acc, a);
    }
  } else if (dyadicIsZero(a) || (a.exp == 0 && a.mant.limbs.size() == 1 && a.mant.limbs[0] == 1)) {
    // Zero and +-1 stay small under any exponent: zero stays zero, and +-1
    // ends squared to 1, times the base when the last round's exponent (e's
    // top two bits, 2 or 3) has the odd leading digit 3.
    Natural v = natFromDecimal(mag);
    bool lastOdd = natBit(v, natBitLength(v) - 2);
    acc = dyadicOf(true, a.mant, 0);
    if (lastOdd) acc = timesSigned(acc, a);
  } else {
    acc = powerByText(a, exponent, e);  // runs out of memory long before it ends
  }
  return numbFromBits(fixedFromDyadic(acc));
}

// ---- Order ------------------------------------------------------------------------------------

// List element 2 of the numb, the sentinel counting as 1 there. A numb leaf
// "00" + z zeros (+ digits of y) has bit z+1 set and y from bit z+2, so the
// element is read from z and y's parity without converting y.
bool numbFlag(const Term& t) {
  if (t.isLeaf()) {
    std::string_view text = textOf(t);
    if (text.size() >= 2 && text[0] == '0' && text[1] == '0') {
      size_t i = 2;
      while (i < text.size() && text[i] == '0') i++;
      size_t z = i - 2;
      if (i == text.size()) return z == 1;  // the sentinel alone, at z+1
      // z = 0: element 2 is y's lowest bit (y = 1 ends the list there: 1).
      if (z == 0) return (text.back() - '0') % 2 == 1;
      return z == 1;
    }
    BitString bits = bitsFromText(text);
    size_t length = bitLength(bits) - 1;
    return length == 2 || (length > 2 && getBit(bits, 2));
  }
  BitString bits = bitsOf(t);
  size_t top = bitLength(bits);  // sentinel index + 1; 0 for no list
  if (top < 3) return false;
  return top == 3 || getBit(bits, 2);
}

namespace {

// 64 bits of a string from byte 8*j on, zeros beyond its end.
uint64_t wordAt(const BitString& s, size_t j) {
  uint64_t w = 0;
  for (size_t k = 0; k < 8 && 8 * j + k < s.size(); k++) {
    w |= uint64_t(static_cast<unsigned char>(s[8 * j + k])) << (8 * k);
  }
  return w;
}

// The byte length of the list that the fixed form was halved from.
size_t listBytes(const BitString& fixed) {
  return fixed.empty() ? 0 : bitLength(fixed) / 8 + 1;
}

}  // namespace

// Equal flags: walk the positions below n = 4 * (larger list byte length) by
// significance, the odd ones downward from n-1 and then the even ones upward
// from 2. Positions n and above, and the sign, are never looked at.
bool numbLess(const Term& x, const Term& y) {
  TARN_ASSERT(isNumbForm(x) && isNumbForm(y));
  bool fx = numbFlag(x), fy = numbFlag(y);
  if (fx != fy) return fy;
  BitString bx = numbBits(x), by = numbBits(y);
  size_t n = 4 * std::max(listBytes(bx), listBytes(by));
  size_t words = (n + 63) / 64;
  auto below = [n](size_t j) {  // the positions of word j that are below n
    size_t lo = 64 * j;
    return n >= lo + 64 ? ~uint64_t(0) : (uint64_t(1) << (n - lo)) - 1;
  };
  auto decide = [&](size_t p) { return fx ^ getBit(by, p) ^ true; };
  for (size_t j = words; j-- > 0;) {
    uint64_t d = (wordAt(bx, j) ^ wordAt(by, j)) & 0xAAAAAAAAAAAAAAAAull & below(j);
    if (d) return decide(64 * j + 63 - size_t(__builtin_clzll(d)));
  }
  for (size_t j = 0; j < words; j++) {
    uint64_t d = (wordAt(bx, j) ^ wordAt(by, j)) & 0x5555555555555555ull & below(j);
    if (j == 0) d &= ~uint64_t(1);
    if (d) return decide(64 * j + size_t(__builtin_ctzll(d)));
  }
  return false;
}

}  // namespace tarn
