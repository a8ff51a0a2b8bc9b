// The structural order and the set of canonical terms.
#include "reduction/canonical.h"

#include <cstring>
#include <set>

#include "reduction/annotate.h"
#include "terms/alphabet.h"

namespace tarn {

namespace {

// Bytes of a leaf that take part in the order, by the leaf's form.
size_t orderLength(const Node* n) {
  const unsigned char* s = n->bytes();
  unsigned char c = s[0];
  if (c == ' ') return 9;
  if (c == '\n') return 8 * size_t(n->size()) + 1;
  if (isDigit(c) || c == '[') {
    if (uint32_t size = n->size()) return size;
    return std::strlen(reinterpret_cast<const char*>(s));
  }
  if (c == '(') {
    // The payload count from the base-64 header; the compared bytes are
    // that many from the head of the text, header included.
    size_t count = 0;
    for (size_t i = 1; s[i] != ')'; i++) count = count * 64 + size_t(digitValue(s[i]));
    return count;
  }
  return std::strlen(reinterpret_cast<const char*>(s));
}

int leafOrder(const Node* x, const Node* y) {
  size_t lx = orderLength(x), ly = orderLength(y);
  int d = std::memcmp(x->bytes(), y->bytes(), lx < ly ? lx : ly);
  if (d != 0) return d < 0 ? 1 : -1;
  if (lx == ly) return 0;
  return lx < ly ? 1 : -1;
}

// Recursion on the left children only: lists lean right and cost no stack.
int nodeOrder(const Node* x, const Node* y) {
  for (;;) {
    if (x == y) return 0;
    bool xLeaf = x->isLeaf(), yLeaf = y->isLeaf();
    if (xLeaf && yLeaf) return leafOrder(x, y);
    if (xLeaf) return 1;
    if (yLeaf) return -1;
    if (int d = nodeOrder(x->leftNode(), y->leftNode())) return d;
    x = x->rightNode();
    y = y->rightNode();
  }
}

struct SortsFirst {
  bool operator()(const Term& a, const Term& b) const { return nodeOrder(a.node(), b.node()) == 1; }
};

using SeenSet = std::set<Term, SortsFirst>;

SeenSet& seenTerms() {
  static SeenSet* set = new SeenSet;  // lives to the end of the process
  return *set;
}

}  // namespace

int termOrder(const Term& x, const Term& y) { return nodeOrder(x.node(), y.node()); }

Term tern(Term t) {
  SeenSet& seen = seenTerms();
  if (t.isLeaf()) return *seen.insert(std::move(t)).first;
  if (auto it = seen.find(t); it != seen.end()) return *it;
  Term l = tern(t.left());
  Term r = tern(t.right());
  // Children already canonical: the application itself is entered.
  if (!(l.same(t.left()) && r.same(t.right()))) t = App(std::move(l), std::move(r));
  seen.insert(t);
  return t;
}

void clearSeenTerms() { seenTerms().clear(); }

void eraseSeenNonValues() {
  SeenSet& seen = seenTerms();
  for (auto it = seen.begin(); it != seen.end();) {
    if (isValue(*it)) ++it;
    else it = seen.erase(it);
  }
}

void eraseSeen(const Term& t) { seenTerms().erase(t); }

bool isSeen(const Term& t) { return seenTerms().count(t) != 0; }

size_t seenTermCount() { return seenTerms().size(); }

}  // namespace tarn
