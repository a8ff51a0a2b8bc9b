// The annotation pass and the classifications built on it.
#include "runtime/annotate.h"

#include <array>

#include "terms/failure.h"
#include "runtime/globals.h"
#include "terms/texts.h"

namespace tarn {

namespace {

using namespace header;

inline uint8_t arityTop(int arity, bool pending) {
  return uint8_t((pending ? kPendingBit : 0) | (arity + kArityBias));
}

// Leading binders of a definition, counted up to the sticky 11.
int countBinders(const Term* b) {
  int n = 0;
  while (b->isApp() && b->left().isApp() && isByteLeaf(b->left().left(), '\\')) {
    if (n < 11) n++;
    b = &b->right();
  }
  return n;
}

void annotateLeaf(Node* n) {
  const unsigned char* s = n->bytes();
  unsigned char c = s[0];
  if (c == '\n' || c == ')') {
    n->setTop(kLeafBit | arityTop(1, false));
  } else if (c == ']') {
    n->setTop(kLeafBit | arityTop(2, false));
  } else if (c == '[') {
    n->setTop(kLeafBit | kStateData);
  } else if (isDigit(c)) {
    n->setTop(kLeafBit | arityTop(1, false));
  } else if (isName(std::string_view(reinterpret_cast<const char*>(s), leafLength(n)))) {
    Term self = Term::share(n);
    GlobalSlot& slot = slotOfLeaf(self);
    if (slot.value) {
      n->setTop(kLeafBit | arityTop(countBinders(&slot.value), false));
    } else {
      // A local variable: arity 11 (unknown, sticky) and its own letter.
      TARN_ASSERT(isLower(c) && s[1] == 0);
      n->setTop(kLeafBit | arityTop(11, false));
      n->setSizeRaw(1u << (c - 'a'));
    }
  } else {
    n->setTop(kLeafBit | arityTop(1, false));  // numbers, blobs, reals, others
  }
}

void annotateApp(Node* n) {
  Node* f = n->leftNode();
  Node* x = n->rightNode();
  if (f->state() == 0) annotateSlow(f);
  if (x->state() == 0) annotateSlow(x);

  if (f->isData() && x->isData()) {
    uint32_t a = f->size(), b = x->size();
    uint32_t sum = (a >= 2 && b >= 2 && a + b < kSizeLimit) ? a + b : 0;
    n->setSizeRaw(sum);
    n->setTop(kStateData);
    return;
  }

  int arity;
  if (f->isData()) {
    arity = 0;
  } else {
    int a = f->arity();
    arity = a == 11 ? 11 : (a >= -50 ? a - 1 : a);
  }

  // A binder ((\ p) body): a value whatever its body holds.
  if (!f->isLeaf() && f->leftNode()->firstByte() == '\\') {
    n->setSizeRaw(freeSetAnnotated(x) & ~freeSetAnnotated(f));
    n->setTop(arityTop(arity, false));
    return;
  }

  bool pending;
  if (!f->isData() && f->pending()) {
    pending = true;
  } else if (!x->isData() && (x->pending() || x->arity() < 1)) {
    pending = true;
  } else {
    pending = false;
  }

  uint32_t set;
  Node* g = f->isLeaf() ? nullptr : f->leftNode();
  if (g && g->isLeaf() && g->bytes()[0] == '{') {
    set = freeSetAnnotated(x);  // ({ p w): the name p is not free here
  } else if (g && !g->isLeaf() && g->leftNode()->firstByte() == '{') {
    // The whole wing ({ p w y): y without p, and w.
    set = (freeSetAnnotated(x) & ~freeSetAnnotated(g->rightNode())) | freeSetAnnotated(f);
  } else {
    set = freeSetAnnotated(f) | freeSetAnnotated(x);
  }
  n->setSizeRaw(set);
  n->setTop(arityTop(arity, pending));
}

constexpr std::array<bool, 256> makeLazyTable() {
  std::array<bool, 256> t{};
  for (unsigned char c : std::string_view("&|ABCDEFHIJKLNQRTUVXZ")) t[c] = true;
  return t;
}
constexpr auto kLazy = makeLazyTable();

}  // namespace

void annotateSlow(Node* n) {
  if (n->state() != 0) return;
  if (n->isLeaf()) annotateLeaf(n);
  else annotateApp(n);
}

int arityOf(const Term& t) {
  annotate(t);
  return t.node()->isData() ? 1 : t.node()->arity();
}

uint32_t freeSet(const Term& t) {
  annotate(t);
  return freeSetAnnotated(t.node());
}

bool isClosed(const Term& t) { return freeSet(t) == 0; }

bool isData(const Term& t) {
  annotate(t);
  return t.node()->isData();
}

bool isEmptyList(const Term& t) {
  TARN_ASSERT(isData(t));
  return t.isLeaf() && textOf(t) == "[]";
}

Kind kindOf(const Term& t) {
  unsigned char c = t.first();
  if (t.isLeaf()) {
    if (c == ' ') return Kind::kReal;
    if (c == '(') return Kind::kBlob;
    if (c == '\n') return Kind::kVector;
  }
  annotate(t);
  if (t.node()->isData()) return Kind::kBracket;
  if (t.isApp()) {
    const Term& l = t.left();
    if (l.isLeaf()) return Kind::kOther;
    if (!(l.left().isLeaf() && l.left().first() == 'J')) return Kind::kOther;
    unsigned char r = l.right().first();
    if (r == 'H') return Kind::kFraction;
    if (r == 'K') return Kind::kInteger;
    return Kind::kOther;
  }
  if (!isDigit(c)) return Kind::kOther;
  const unsigned char* s = t.node()->bytes();
  return (s[0] == '0' && s[1] == '0') ? Kind::kFraction : Kind::kInteger;
}

bool isLazyHead(const Term& t) {
  const Node* n = t.node();
  for (;;) {
    if (n->state() == 0) annotateSlow(const_cast<Node*>(n));
    if (n->isLeaf()) return kLazy[n->bytes()[0]];
    if (n->isData()) return false;  // an application of data counts as byte 0
    n = n->leftNode();
  }
}

Shape spineShape(const Term& t) {
  if (t.isLeaf()) return Shape::kOther;
  const Term& t1 = t.left();
  if (t1.isLeaf()) return Shape::kOther;
  const Term& t2 = t1.left();
  if (textIs(t2, "\\")) return Shape::kBinder;
  if (t2.isLeaf()) return Shape::kOther;
  return textIs(t2.left(), "{") ? Shape::kWing : Shape::kOther;
}

}  // namespace tarn
