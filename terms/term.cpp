// Leaf construction, leaf text lengths and the header setters.
#include "terms/term.h"

#include <cstring>

#include "terms/alphabet.h"

namespace tarn {

namespace {

// Blocks of a new leaf: header with the leaf bit and count 1, then the text
// and a NUL, then `slack` zero bytes.
Node* newLeafNode(size_t textBytes, size_t slack = 0) {
  Node* n = allocLeafNode(textBytes + 1 + slack);
  n->header = (uint64_t(header::kFreshLeafTop) << header::kTopShift) | 1;
  std::memset(n->bytes() + textBytes, 0, 1 + slack);
  return n;
}

}  // namespace

Term leaf(std::string_view text) {
  bool bracket = !text.empty() && text[0] == '[';
  Node* n = newLeafNode(text.size(), bracket ? kBracketSlack : 0);
  if (!text.empty()) std::memcpy(n->bytes(), text.data(), text.size());
  unsigned char c = text.empty() ? 0 : static_cast<unsigned char>(text[0]);
  if ((isDigit(c) || c == '[') && text.size() < header::kSizeLimit) n->setSizeRaw(uint32_t(text.size()));
  return Term::adopt(n);
}

Term rawLeaf(size_t n) { return Term::adopt(newLeafNode(n, kBracketSlack)); }

size_t leafCapacity(const Node* n) {
  const LeafPrefix* pre = reinterpret_cast<const LeafPrefix*>(n) - 1;
  if (pre->blockBytes == 0xffffffffu) return SIZE_MAX;  // a block too big to record
  return pre->blockBytes - sizeof(LeafPrefix) - sizeof(Node);
}

void sealLeaf(const Term& t, size_t n) {
  unsigned char c = t.node()->bytes()[0];
  if ((isDigit(c) || c == '[') && n < header::kSizeLimit) t.node()->setSizeRaw(uint32_t(n));
}

Term leafByte(unsigned char b) {
  Node* n = newLeafNode(1);
  n->bytes()[0] = b;
  if (isDigit(b)) n->setSizeRaw(1);
  return Term::adopt(n);
}

Term emptyLeaf() { return Term::adopt(newLeafNode(0)); }

Term vectorLeaf(size_t count) {
  TARN_ASSERT(count < header::kSizeLimit);
  Node* n = newLeafNode(1 + 8 * count);
  n->bytes()[0] = '\n';
  std::memset(n->bytes() + 1, 0, 8 * count);
  n->setSizeRaw(uint32_t(count));
  return Term::adopt(n);
}

void setElement(const Term& vec, size_t i, Term e) {
  Node* v = vec.node();
  TARN_ASSERT(v->isLeaf() && v->bytes()[0] == '\n' && i < v->size());
  Node* old = v->element(i);
  v->setElementRaw(i, e.detach());
  if (old) releaseNode(old);
}

Term blobLeaf(std::string_view bytes) {
  std::string count = alphabetNumber(bytes.size());
  Node* n = newLeafNode(2 + count.size() + bytes.size());
  unsigned char* t = n->bytes();
  t[0] = '(';
  std::memcpy(t + 1, count.data(), count.size());
  t[1 + count.size()] = ')';
  if (!bytes.empty()) std::memcpy(t + 2 + count.size(), bytes.data(), bytes.size());
  return Term::adopt(n);
}

std::string_view blobBytes(const Term& blob) {
  const unsigned char* t = blob.node()->bytes();
  TARN_ASSERT(blob.isLeaf() && t[0] == '(');
  size_t close = 1;
  uint64_t count = 0;
  while (t[close] != ')') count = count * 64 + uint64_t(digitValue(t[close++]));
  return {reinterpret_cast<const char*>(t + close + 1), size_t(count)};
}

Term realLeaf(double v) {
  Node* n = newLeafNode(9);
  n->bytes()[0] = ' ';
  std::memcpy(n->bytes() + 1, &v, 8);
  return Term::adopt(n);
}

double realValue(const Term& r) {
  TARN_ASSERT(r.isLeaf() && r.first() == ' ');
  double v;
  std::memcpy(&v, r.node()->bytes() + 1, 8);
  return v;
}

size_t leafLength(const Node* n) {
  if (!n->isLeaf()) return 0;
  const unsigned char* t = n->bytes();
  unsigned char c = t[0];
  if (c == ' ') return 9;
  if (c == '\n') return 1 + 8 * size_t(n->size());
  if (isDigit(c) || c == '[') {
    if (uint32_t s = n->size()) return s;
    size_t len;
    if (c == '[') {
      // Balance walk for a literal too long for the size field.
      long depth = 1;
      len = 1;
      while (depth > 0) {
        if (t[len] == '[') depth++;
        else if (t[len] == ']') depth--;
        len++;
      }
    } else {
      len = std::strlen(reinterpret_cast<const char*>(t));
    }
    TARN_ASSERT(len >= header::kSizeLimit);
    return len;
  }
  if (c == '(') {
    size_t close = 1;
    uint64_t count = 0;
    while (t[close] != ')') count = count * 64 + uint64_t(digitValue(t[close++]));
    return size_t(count) + close + 1;
  }
  return std::strlen(reinterpret_cast<const char*>(t));
}

void setArity(Node* n, int value) {
  TARN_ASSERT(value <= 11);
  TARN_ASSERT(value >= -52);
  int biased = value + header::kArityBias;
  TARN_ASSERT(biased < 64);
  n->setTop(uint8_t((n->top() & 0xc0) | biased));
}

void setSize(Node* n, uint32_t value) {
  TARN_ASSERT(value < header::kSizeLimit);
  n->setSizeRaw(value);
}

}  // namespace tarn
