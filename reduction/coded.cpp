// Opening compact leaves into coded form, and reading coded form back.
#include "reduction/coded.h"

#include <cstring>

#include "terms/failure.h"
#include "numbers/bits.h"
#include "numbers/model.h"
#include "runtime/annotate.h"
#include "terms/texts.h"

namespace tarn {

namespace {

inline Term J(Term a, Term b) { return App2(leafByte('J'), std::move(a), std::move(b)); }
inline Term V(Term a, Term b) { return App2(leafByte('V'), std::move(a), std::move(b)); }

// (J a b) with the head leaf exactly J: gives a and b.
bool isJCell(const Term& t) {
  return t.isApp() && t.left().isApp() && isByteLeaf(t.left().left(), 'J');
}

// The eight bit leaves of a byte under three levels of J (or V at the top).
Term byteLevels(unsigned v, bool openTop) {
  auto bit = [&](int i) { return leafByte(((v >> i) & 1) ? 'I' : 'H'); };
  Term lo = J(J(bit(0), bit(1)), J(bit(2), bit(3)));
  Term hi = J(J(bit(4), bit(5)), J(bit(6), bit(7)));
  return openTop ? V(std::move(lo), std::move(hi)) : J(std::move(lo), std::move(hi));
}

bool isBitLeaf(const Term& t) { return isByteLeaf(t, 'H') || isByteLeaf(t, 'I'); }

bool isByteLevel(const Term& t, int depth) {
  if (depth == 0) return isBitLeaf(t);
  return isJCell(t) && isByteLevel(t.left().right(), depth - 1) && isByteLevel(t.right(), depth - 1);
}

int byteBits(const Term& t, int depth) {
  if (depth == 0) return isByteLeaf(t, 'I') ? 1 : 0;
  int lo = byteBits(t.left().right(), depth - 1);
  int hi = byteBits(t.right(), depth - 1);
  return lo | (hi << (1 << (depth - 1)));
}

}  // namespace

Term encodeData(const Term& data) {
  if (data.isLeaf() && textOf(data) == "[]") return leafByte('K');
  return J(encodeData(bracketLeft(data)), encodeData(bracketRight(data)));
}

Term numberHead(std::string_view text) {
  return leafByte(text.size() >= 2 && text[0] == '0' && text[1] == '0' ? 'H' : 'K');
}

Term numberTail(std::string_view text) {
  BitString bits = bitsFromText(text);
  stripZeros(bits);
  size_t len = bitLength(bits);
  if (len == 2) return leafByte('K');
  return leaf(textFromBits(halved(bits)));  // the first element dropped
}

Term blobFront(const Term& blob) {
  std::string_view b = blobBytes(blob);
  size_t m = 1;
  while (m * 2 < b.size()) m *= 2;
  return blobLeaf(b.substr(0, m));
}

Term blobBack(const Term& blob) {
  std::string_view b = blobBytes(blob);
  size_t m = 1;
  while (m * 2 < b.size()) m *= 2;
  return blobLeaf(b.substr(m));
}

Term byteTree(const Term& blob) {
  std::string_view b = blobBytes(blob);
  TARN_ASSERT(b.size() == 1);
  return byteLevels(static_cast<unsigned char>(b[0]), true);
}

Term realTree(const Term& real) {
  uint64_t w;
  std::memcpy(&w, real.node()->bytes() + 1, 8);
  Term level[64];
  for (int i = 0; i < 64; i++) level[i] = leafByte(((w >> i) & 1) ? 'K' : 'H');
  for (int n = 64; n > 1; n /= 2)
    for (int i = 0; i < n / 2; i++) level[i] = V(std::move(level[2 * i]), std::move(level[2 * i + 1]));
  return std::move(level[0]);
}

bool isByteTree(const Term& t) { return isByteLevel(t, 3); }

int byteValue(const Term& t) { return byteBits(t, 3); }

bool isCodedText(const Term& t) {
  if (t.isLeaf()) return t.first() == 'K';
  if (!isJCell(t)) return false;
  if (isByteTree(t)) return true;
  return isCodedText(t.left().right()) && isCodedText(t.right());
}

std::string codedText(const Term& t) {
  std::string out;
  // Walk the right spine iteratively so long lists do not nest calls.
  const Term* cur = &t;
  while (!cur->isLeaf()) {
    if (isByteTree(*cur)) {
      out.push_back(char(byteValue(*cur)));
      return out;
    }
    out += codedText(cur->left().right());
    cur = &cur->right();
  }
  return out;
}

Term codedData(const Term& t) {
  if (t.isLeaf()) return t.first() == 'K' && isByteLeaf(t, 'K') ? leaf("[]") : leafByte('Z');
  if (t.left().isLeaf() || !isJCell(t)) return leafByte('Z');
  Term a = codedData(t.left().right());
  if (a.first() == 'Z') return a;
  Term b = codedData(t.right());
  if (b.first() == 'Z') return b;
  return leaf(bracketJoin(textOf(a), textOf(b)));
}

}  // namespace tarn
