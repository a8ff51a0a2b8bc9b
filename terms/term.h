// Term: the counted handle on a Node, and the constructors every Part uses.
//
// Ownership rule: a `Term` owns exactly one reference. Copying raises the
// count, destruction lowers it, moving transfers it. A function that takes a
// `Term` by value owns it; one that takes `const Term&` borrows it. The
// children of an application are reachable as borrowed `const Term&` through
// `left()` and `right()` without any count traffic.
//
// A null handle exists only as a moved-from or default-constructed value in a
// container; every Term the language sees refers to a node.
#pragma once

#include <string>
#include <string_view>

#include "terms/failure.h"
#include "terms/node.h"

namespace tarn {

class Term {
 public:
  Term() noexcept = default;
  Term(const Term& o) noexcept : p_(o.p_) {
    if (p_) retainNode(p_);
  }
  Term(Term&& o) noexcept : p_(o.p_) { o.p_ = nullptr; }
  ~Term() {
    if (p_) releaseNode(p_);
  }
  Term& operator=(const Term& o) noexcept {
    if (o.p_ != p_) {
      if (o.p_) retainNode(o.p_);
      Node* old = p_;
      p_ = o.p_;
      if (old) releaseNode(old);
    }
    return *this;
  }
  Term& operator=(Term&& o) noexcept {
    if (this != &o) {
      Node* old = p_;
      p_ = o.p_;
      o.p_ = nullptr;
      if (old) releaseNode(old);
    }
    return *this;
  }

  // Takes over a reference that the caller already holds (count unchanged).
  static Term adopt(Node* n) noexcept {
    Term t;
    t.p_ = n;
    return t;
  }
  // A new reference to a node held elsewhere.
  static Term share(Node* n) noexcept {
    if (n) retainNode(n);
    return adopt(n);
  }
  // Gives up the reference without releasing it.
  Node* detach() noexcept {
    Node* n = p_;
    p_ = nullptr;
    return n;
  }

  Node* node() const noexcept { return p_; }
  explicit operator bool() const noexcept { return p_ != nullptr; }
  bool same(const Term& o) const noexcept { return p_ == o.p_; }

  bool isLeaf() const { return p_->isLeaf(); }
  bool isApp() const { return !p_->isLeaf(); }
  // First byte of a leaf's text; 0 for an application.
  unsigned char first() const { return p_->firstByte(); }

  // Children of an application, borrowed. A leaf is a fatal assertion.
  const Term& left() const {
    TARN_ASSERT(!p_->isLeaf());
    return reinterpret_cast<const Term*>(p_ + 1)[0];
  }
  const Term& right() const {
    TARN_ASSERT(!p_->isLeaf());
    return reinterpret_cast<const Term*>(p_ + 1)[1];
  }

  // The member forms of App and App2: `this` is borrowed.
  Term call(Term b) const;
  Term call2(Term b, Term c) const;

 private:
  Node* p_ = nullptr;
};
static_assert(sizeof(Term) == sizeof(Node*), "a Term is one pointer");

// (a b): one new application node with count 1.
inline Term App(Term a, Term b) {
  Node* n = allocAppNode();
  n->header = 1;  // count 1, top byte 0: not annotated
  Node** kids = reinterpret_cast<Node**>(n + 1);
  kids[0] = a.detach();
  kids[1] = b.detach();
  return Term::adopt(n);
}
// ((a b) c)
inline Term App2(Term a, Term b, Term c) { return App(App(std::move(a), std::move(b)), std::move(c)); }
// (((a b) c) d)
inline Term App3(Term a, Term b, Term c, Term d) {
  return App(App2(std::move(a), std::move(b), std::move(c)), std::move(d));
}
inline Term Term::call(Term b) const { return App(*this, std::move(b)); }
inline Term Term::call2(Term b, Term c) const { return App2(*this, std::move(b), std::move(c)); }

// ---- Leaves ---------------------------------------------------------------

// A leaf of exactly these bytes (embedded NULs kept), NUL-terminated in the
// same allocation. Number and bracket leaves get their length in `size`.
// A bracket literal also gets the slack below.
Term leaf(std::string_view text);
// A leaf of n text bytes that the caller fills at once, before anything reads
// it; `sealLeaf` then records the length of a number or bracket text in
// `size`, as `leaf` does. Since the text may become a bracket literal, a raw
// leaf always carries the slack below.
Term rawLeaf(size_t n);
// Zero bytes that a bracket literal leaf carries behind its terminating NUL,
// inside its own allocation. The in-place byte update of a solely held
// literal addresses a byte up to 6 bytes past the NUL (an offset that
// programs can see and that is kept); the slack keeps that write inside the
// node, and its last bytes, never written, still end the text for readers
// that stop at a NUL.
inline constexpr size_t kBracketSlack = 8;
// The bytes of a leaf's allocation from its first text byte on: the text, its
// NUL and any slack (SIZE_MAX for a block of 4 GiB or more, whose size the
// allocator does not record).
size_t leafCapacity(const Node* n);
inline unsigned char* rawBytes(const Term& t) { return t.node()->bytes(); }
void sealLeaf(const Term& t, size_t n);
// The leaf of one byte.
Term leafByte(unsigned char b);
// The leaf of empty text (the default leaf).
Term emptyLeaf();
// A vector leaf of n slots, all empty (null). n must be below 0x4000000.
Term vectorLeaf(size_t n);
// Sets element i of a vector leaf that the caller is building or solely holds;
// the old element is released. `e` may be null (an empty slot).
void setElement(const Term& vec, size_t i, Term e);
// Element i of a vector leaf as a new reference (null for an empty slot).
// The element words sit one byte past an aligned address, so they are read
// by copying, never through a Term reference.
inline Term elementOf(const Term& vec, size_t i) { return Term::share(vec.node()->element(i)); }

// A blob leaf: "(", the byte count in alphabet digits, ")", the bytes.
Term blobLeaf(std::string_view bytes);
// The payload of a blob leaf (first byte "(").
std::string_view blobBytes(const Term& blob);
// A real leaf: a space and the 8 bytes of the double in memory order.
Term realLeaf(double v);
// The double of a real leaf; a leaf that is not a real is a fatal assertion.
double realValue(const Term& r);

// Text length of a leaf by its form (0 for an application). Numbers and
// bracket literals read `size` when it is set; blobs decode their header.
size_t leafLength(const Node* n);
// The leaf's text (empty for an application). Valid while the node lives.
inline std::string_view textOf(const Term& t) {
  const Node* n = t.node();
  return {reinterpret_cast<const char*>(n->bytes()), leafLength(n)};
}
inline bool textIs(const Term& t, std::string_view s) { return t.isLeaf() && textOf(t) == s; }
// True for the symbol leaf of byte b (a letter or operator): the text is b
// and its terminating NUL. Not meant for space or newline, whose leaves are
// reals and vectors.
inline bool isByteLeaf(const Term& t, unsigned char b) {
  const Node* n = t.node();
  return n->isLeaf() && n->bytes()[0] == b && n->bytes()[1] == 0;
}

// Header setters with their range checks.
void setArity(Node* n, int value);  // value in -52..11
void setSize(Node* n, uint32_t value);  // value below 0x4000000

inline bool isDigit(unsigned char c) { return c >= '0' && c <= '9'; }
inline bool isLower(unsigned char c) { return c >= 'a' && c <= 'z'; }
inline bool isWordByte(unsigned char c) { return c == '_' || isLower(c); }

}  // namespace tarn
