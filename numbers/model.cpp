// The number model: shape tests, list walks and host integer conversions.
//
// Number leaves hold decimal text; the list spelling of Part of the language
// ((J b rest) cells) is read through bit strings. The common case, a leaf, is
// handled without building a bit string wherever the result can be read off
// the text directly.
#include "numbers/model.h"

#include <cinttypes>
#include <cstdio>

#include "terms/failure.h"

namespace tarn {

namespace {

// (J b x) with b the leaf `elem`; any b when elem is 0.
bool isCell(const Term& t, unsigned char elem) {
  if (!t.isApp()) return false;
  const Term& l = t.left();
  if (!l.isApp() || !isByteLeaf(l.left(), 'J')) return false;
  if (elem) return isByteLeaf(l.right(), elem);
  return isByteLeaf(l.right(), 'H') || isByteLeaf(l.right(), 'K');
}

bool startsWith00(std::string_view s) { return s.size() >= 2 && s[0] == '0' && s[1] == '0'; }

// Low 64 bits of a decimal digit string (wrapping).
uint64_t decimalMod64(std::string_view digits) {
  uint64_t v = 0;
  for (char c : digits) v = v * 10 + uint64_t(c - '0');
  return v;
}

// The bits of a number text from bit 2 upward, as 64 bits: for a hint the
// magnitude modulo 2^64 (its top bit is the list's sentinel), for a numb text
// "00", z zeros and digits y the bits (bit z+1 | y << z+2) >> 2.
uint64_t textUInt64(std::string_view text) {
  TARN_ASSERT(!text.empty());
  if (!startsWith00(text)) {
    if (text[0] == '0') text.remove_prefix(1);  // "0" and negatives
    return decimalMod64(text);
  }
  size_t z = 0;
  while (2 + z < text.size() && text[2 + z] == '0') z++;
  uint64_t marker = (z >= 1 && z - 1 < 64) ? uint64_t(1) << (z - 1) : 0;
  uint64_t y = decimalMod64(text.substr(2 + z));
  return marker | (z < 64 ? y << z : 0);
}

// Appends the list held in `more` (sentinel excluded) behind the list in
// `bits` (sentinel at `end`); returns the new sentinel index.
size_t appendList(BitString& bits, size_t end, const BitString& more) {
  size_t n = bitLength(more);
  TARN_ASSERT(n >= 1);
  setBit(bits, end, false);
  for (size_t i = 0; i + 1 < n; i++)
    if (getBit(more, i)) setBit(bits, end + i);
  setBit(bits, end + n - 1);
  return end + n - 1;
}

}  // namespace

bool isHostInteger(const Term& t) {
  if (t.isApp()) return isCell(t, 'K');
  const unsigned char* s = t.node()->bytes();
  if (s[0] == 'K' && s[1] == 0) return true;
  if (s[0] == '0') return s[1] != '0';
  return s[0] >= '1' && s[0] <= '9';
}

bool isHostNatural(const Term& t) {
  if (t.isApp()) return isCell(t, 'H');
  const unsigned char* s = t.node()->bytes();
  if (s[0] == 'K' && s[1] == 0) return true;
  if (s[0] == '0') return s[1] == 0;
  return s[0] >= '1' && s[0] <= '9';
}

bool isBitList(const Term& t) {
  if (t.isApp()) return isCell(t, 0);
  return isByteLeaf(t, 'K') || isDigit(t.first());
}

bool isNumbForm(const Term& t) {
  if (t.isApp()) return isCell(t, 'H');
  const unsigned char* s = t.node()->bytes();
  return s[0] == '0' && s[1] == '0';
}

bool hintIsZero(const Term& t) { return isByteLeaf(t, 'K') || isByteLeaf(t, '0'); }

BitString bitsOf(const Term& t) {
  TARN_ASSERT(isBitList(t));
  BitString bits(1, char(1));
  size_t end = 0;  // index of the sentinel
  const Term* cur = &t;
  while (cur->isApp()) {
    if (!isCell(*cur, 0)) return BitString();
    bool one = isByteLeaf(cur->left().right(), 'K');
    setBit(bits, end, one);
    setBit(bits, ++end);
    cur = &cur->right();
  }
  if (isByteLeaf(*cur, 'K')) return bits;
  if (!isDigit(cur->first())) return BitString();  // no list ends in such a leaf
  BitString tail = bitsFromText(textOf(*cur));
  if (end == 0) return tail;
  appendList(bits, end, tail);
  return bits;
}

Term numberFromBits(const BitString& bits) {
  if (bitLength(bits) == 1) return leafByte('K');
  return leaf(textFromBits(bits));
}

std::string numberText(const Term& t) {
  TARN_ASSERT(isBitList(t));
  if (t.isLeaf()) {
    // Every digit text is canonical; the leaf K is the empty list.
    return std::string(textOf(t));
  }
  BitString bits = bitsOf(t);
  TARN_ASSERT(!bits.empty());
  if (bitLength(bits) == 1) return "K";
  return textFromBits(bits);
}

BitString numbBits(const Term& t) {
  TARN_ASSERT(isNumbForm(t));
  BitString b = bitsOf(t);
  TARN_ASSERT(!b.empty());
  b = halved(b);
  stripZeros(b);
  return b;
}

Term numbFromBits(const BitString& fixed) {
  TARN_ASSERT(!isAllZero(fixed));
  return leaf(textFromBits(doubled(fixed)));
}

Term int64ToTerm(int64_t v) {
  char buf[32];
  if (v < 0) {
    std::snprintf(buf, sizeof buf, "0%" PRIu64, uint64_t(0) - uint64_t(v));
  } else {
    std::snprintf(buf, sizeof buf, "%" PRId64, v);
  }
  return leaf(buf);
}

Term uint64ToTerm(uint64_t v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%llu", static_cast<unsigned long long>(v));
  return leaf(buf);
}

uint64_t termToUInt64(const Term& t) {
  if (t.isLeaf()) {
    if (isByteLeaf(t, 'K')) return 0;
    if (isDigit(t.first())) return textUInt64(textOf(t));
  }
  BitString b = bitsOf(t);
  uint64_t v = 0;
  for (int i = 0; i < 64; i++)
    if (getBit(b, size_t(i) + 2)) v |= uint64_t(1) << i;
  return v;
}

int64_t termToInt64(const Term& t) {
  bool plus = hintSign(t);
  Term a = hintAbs(t);
  uint64_t m = termToUInt64(a);
  return plus ? int64_t(m) : int64_t(uint64_t(0) - m);
}

bool hintSign(const Term& t) {
  if (t.isLeaf()) {
    const unsigned char* s = t.node()->bytes();
    if (s[0] == '0') return s[1] == 0;
    return true;
  }
  std::string text = numberText(t);
  return text == "0" || text[0] != '0';
}

Term hintAbs(const Term& t) {
  if (t.isLeaf()) {
    std::string_view s = textOf(t);
    if (s == "0") return t;
    if (!s.empty() && s[0] == '0') return leaf(s.substr(1));
    TARN_ASSERT(!s.empty() && s[0] >= '1' && s[0] <= '9');
    return t;
  }
  TARN_ASSERT(isCell(t, 'K'));
  BitString b = bitsOf(t);
  setBit(b, 1);
  return numberFromBits(b);
}

Term hintNegate(const Term& t) {
  TARN_ASSERT(isHostInteger(t));
  if (t.isApp()) return t.right();  // (J K rest) gives rest, by design
  if (isByteLeaf(t, 'K') || isByteLeaf(t, '0')) return t;
  std::string_view s = textOf(t);
  if (s[0] == '0') return leaf(s.substr(1));
  std::string r;
  r.reserve(s.size() + 1);
  r.push_back('0');
  r.append(s);
  return leaf(r);
}

Term hintToNumb(const Term& t) {
  BitString s;
  if (t.isLeaf()) {
    TARN_ASSERT(isDigit(t.first()));
    s = halved(bitsFromText(textOf(t)));
  } else {
    // Drop the first cell; every further cell must be an integer cell.
    s = BitString(1, char(1));
    size_t end = 0;
    const Term* cur = &t.right();
    while (cur->isApp()) {
      TARN_ASSERT(isHostInteger(*cur));
      setBit(s, end, true);
      setBit(s, ++end);
      cur = &cur->right();
    }
    if (!isByteLeaf(*cur, 'K')) {
      TARN_ASSERT(isDigit(cur->first()));
      BitString tail = bitsFromText(textOf(*cur));
      // The leaf's list without its own first element.
      BitString rest;
      for (size_t i = 1, n = bitLength(tail); i < n; i++)
        if (getBit(tail, i)) setBit(rest, i - 1);
      appendList(s, end, rest);
    }
  }
  stripZeros(s);
  if (s.size() == 1 && s[0] == 1) return leaf("00");
  BitString out;
  size_t n = s.size() * 8;
  for (size_t i = 1; i < n; i++)
    if (getBit(s, i)) setBit(out, 2 * i);
  setBit(out, 1, getBit(s, 0));
  return leaf(textFromBits(out));
}

}  // namespace tarn
