// The structural order and the set of canonical terms.
//
// `seenTerms` is kept as a hash set under the equality of the order
// (termOrder == 0): the set's own order is never observable, and a hash of
// the structure turns a lookup into one comparison in the common case. A
// structural compare of a long list against another that differs only at its
// end (its own suffix, say) walks the whole list; with an ordered set every
// insertion of a suffix would pay that walk log n times.
#include "reduction/canonical.h"

#include <cstring>
#include <vector>

#include "terms/failure.h"
#include "runtime/annotate.h"
#include "terms/alphabet.h"

namespace tarn {

namespace {

// ---- Order --------------------------------------------------------------------

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

// ---- Structural hash: equal under the order means equal hash --------------------

inline uint64_t mix(uint64_t h) {
  h ^= h >> 31;
  h *= 0x7fb5d329728ea185ull;
  h ^= h >> 27;
  h *= 0x81dadef4bc2dd44dull;
  return h ^ (h >> 33);
}

uint64_t leafHash(const Node* n) {
  size_t len = orderLength(n);
  const unsigned char* s = n->bytes();
  uint64_t h = 0x243f6a8885a308d3ull ^ len;
  size_t i = 0;
  for (; i + 8 <= len; i += 8) {
    uint64_t w;
    std::memcpy(&w, s + i, 8);
    h = (h ^ w) * 0x9e3779b97f4a7c15ull;
  }
  uint64_t tail = 0;
  std::memcpy(&tail, s + i, len - i);
  return mix(h ^ tail);
}

inline uint64_t appHash(uint64_t left, uint64_t right) {
  return mix(left * 0x9e3779b97f4a7c15ull + (right ^ 0x632be59bd9b4e019ull));
}

// ---- Tables ---------------------------------------------------------------------

// Open addressing with linear probing over a power-of-two table of (key,
// value) words, at most half full. Equal keys may repeat (hash collisions of
// different structures); a key's slots form one probe run from its home.
// Deletion shifts the rest of the run back, so no tombstones are needed.
class FlatTable {
 public:
  size_t size() const { return used_; }

  // Calls f(value) for each slot with this key until f returns true; gives
  // the value f accepted, or none.
  template <class F>
  bool find(uint64_t key, F&& f) const {
    if (used_ == 0) return false;
    for (size_t i = home(key); slots_[i].full; i = (i + 1) & mask_)
      if (slots_[i].key == key && f(slots_[i].value)) return true;
    return false;
  }
  void insert(uint64_t key, uint64_t value) {
    if (2 * (used_ + 1) > slots_.size()) grow();
    size_t i = home(key);
    while (slots_[i].full) i = (i + 1) & mask_;
    slots_[i] = {key, value, true};
    used_++;
  }
  // Removes the slot holding exactly (key, value), if any.
  bool erase(uint64_t key, uint64_t value) {
    if (used_ == 0) return false;
    for (size_t i = home(key); slots_[i].full; i = (i + 1) & mask_) {
      if (slots_[i].key != key || slots_[i].value != value) continue;
      shiftBack(i);
      used_--;
      return true;
    }
    return false;
  }
  template <class F>
  void forEach(F&& f) const {
    for (const Slot& s : slots_)
      if (s.full) f(s.key, s.value);
  }
  void clear() {
    slots_.clear();
    mask_ = 0;
    used_ = 0;
  }

 private:
  struct Slot {
    uint64_t key, value;
    bool full;
  };
  size_t home(uint64_t key) const { return size_t(mix(key)) & mask_; }
  void grow() {
    std::vector<Slot> old = std::move(slots_);
    slots_.assign(old.empty() ? 64 : 2 * old.size(), Slot{0, 0, false});
    mask_ = slots_.size() - 1;
    used_ = 0;
    for (const Slot& s : old)
      if (s.full) insert(s.key, s.value);
  }
  // Empties slot i and moves later members of its run into the gap when the
  // gap lies between their home and their slot.
  void shiftBack(size_t i) {
    for (size_t j = (i + 1) & mask_; slots_[j].full; j = (j + 1) & mask_) {
      size_t h = home(slots_[j].key);
      bool movable = i <= j ? (h <= i || h > j) : (h <= i && h > j);
      if (movable) {
        slots_[i] = slots_[j];
        i = j;
      }
    }
    slots_[i].full = false;
  }
  std::vector<Slot> slots_;
  size_t mask_ = 0, used_ = 0;
};

inline uint64_t addressKey(const Node* n) { return uint64_t(reinterpret_cast<uintptr_t>(n)); }
inline const Node* nodeAt(uint64_t v) { return reinterpret_cast<const Node*>(uintptr_t(v)); }

// ---- The set ----------------------------------------------------------------------

// Each entry holds one reference to its node. `byHash` finds an entry by
// structure, `hashOf` tells whether a node is an entry (and its hash).
struct SeenTerms {
  FlatTable byHash;  // structural hash -> entry node
  FlatTable hashOf;  // entry node address -> structural hash

  const Node* find(const Node* n, uint64_t h) const {
    const Node* found = nullptr;
    byHash.find(h, [&](uint64_t v) {
      if (nodeOrder(nodeAt(v), n) != 0) return false;
      found = nodeAt(v);
      return true;
    });
    return found;
  }
  bool entryHash(const Node* n, uint64_t& h) const {
    return hashOf.find(addressKey(n), [&](uint64_t v) {
      h = v;
      return true;
    });
  }
  void insert(const Term& t, uint64_t h) {
    Node* n = Term(t).detach();  // the entry's own reference
    byHash.insert(h, addressKey(n));
    hashOf.insert(addressKey(n), h);
  }
  void erase(const Node* n, uint64_t h) {
    byHash.erase(h, addressKey(n));
    hashOf.erase(addressKey(n), h);
    Term::adopt(const_cast<Node*>(n));  // drops the entry's reference
  }
  void clear() {
    std::vector<Node*> held;
    hashOf.forEach([&](uint64_t k, uint64_t) { held.push_back(const_cast<Node*>(nodeAt(k))); });
    byHash.clear();
    hashOf.clear();
    for (Node* n : held) Term::adopt(n);
  }
};

SeenTerms& seenTerms() {
  static SeenTerms* set = new SeenTerms;  // lives to the end of the process
  return *set;
}

// One call of tern, in two walks over the argument in the same order (left
// before right). The first records each visited node's structural hash and
// the number of records its visit made; it does not descend into entries of
// the set, nor a second time into a shared node. The second walk looks each
// node up top-down and skips the records of a subterm that was found. Both
// walks descend alike: what the first did not enter, the second finds (an
// entry, or a shared node entered on its first visit), with one exception
// handled where it arises.
class Interning {
 public:
  explicit Interning(SeenTerms& seen) : seen_(seen) {}

  uint64_t record(const Node* n) {
    size_t i = records_.size();
    records_.push_back({0, 1});
    uint64_t h;
    // A node of count 1 has no holder but its parent: it is no entry (an
    // entry holds its own reference) and is met only once.
    bool single = n->count() == 1;
    if (single || (!seen_.entryHash(n, h) && !repeated(n, h))) {
      if (n->isLeaf()) {
        h = leafHash(n);
      } else {
        uint64_t left = record(n->leftNode());  // left first, as the second walk goes
        h = appHash(left, record(n->rightNode()));
      }
      if (!single) shared_.insert(addressKey(n), h);
    }
    records_[i] = {h, records_.size() - i};
    return h;
  }

  // The lookup first; only a term that is not there has its children
  // interned, and the application itself is entered when they came back
  // unchanged.
  Term intern(const Term& t) {
    Record r = records_[cursor_];
    if (const Node* found = seen_.find(t.node(), r.hash)) {
      cursor_ += r.span;
      return Term::share(const_cast<Node*>(found));
    }
    cursor_++;
    if (t.isLeaf()) {
      seen_.insert(t, r.hash);
      return t;
    }
    if (r.span == 1) {
      // A repeated node whose first visit was skipped inside a found
      // subterm, and whose equal there has since left the set: it was not
      // entered by the first walk, so it gets a walk of its own.
      Interning inner(seen_);
      inner.record(t.node());
      return inner.intern(t);
    }
    Term left = intern(t.left());
    Term right = intern(t.right());
    Term result =
        (left.same(t.left()) && right.same(t.right())) ? t : App(std::move(left), std::move(right));
    seen_.insert(result, r.hash);
    return result;
  }

 private:
  struct Record {
    uint64_t hash;
    size_t span;
  };
  bool repeated(const Node* n, uint64_t& h) const {
    return shared_.find(addressKey(n), [&](uint64_t v) {
      h = v;
      return true;
    });
  }
  SeenTerms& seen_;
  std::vector<Record> records_;
  size_t cursor_ = 0;
  FlatTable shared_;  // nodes of count > 1 already hashed in this call
};

}  // namespace

int termOrder(const Term& x, const Term& y) { return nodeOrder(x.node(), y.node()); }

Term tern(Term t) {
  SeenTerms& seen = seenTerms();
  // An entry is its own canonical copy: the common case costs one probe.
  uint64_t h;
  if (seen.entryHash(t.node(), h)) return t;
  Interning interning(seen);
  interning.record(t.node());
  return interning.intern(t);
}

void clearSeenTerms() { seenTerms().clear(); }

void eraseSeenNonValues() {
  SeenTerms& seen = seenTerms();
  std::vector<std::pair<const Node*, uint64_t>> dropped;
  seen.hashOf.forEach([&](uint64_t node, uint64_t h) {
    if (!isValue(Term::share(const_cast<Node*>(nodeAt(node))))) dropped.emplace_back(nodeAt(node), h);
  });
  for (const auto& [node, h] : dropped) seen.erase(node, h);
}

void eraseSeen(const Term& t) {
  SeenTerms& seen = seenTerms();
  Interning interning(seen);
  uint64_t h = interning.record(t.node());
  if (const Node* found = seen.find(t.node(), h)) seen.erase(found, h);
}

bool isSeen(const Term& t) {
  SeenTerms& seen = seenTerms();
  Interning interning(seen);
  uint64_t h = interning.record(t.node());
  return seen.find(t.node(), h) != nullptr;
}

size_t seenTermCount() { return seenTerms().hashOf.size(); }

}  // namespace tarn
