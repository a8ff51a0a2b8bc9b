// The rewrite rules: what firing a saturated redex does, by its head.
#include <string>

#include "terms/failure.h"
#include "runtime/globals.h"
#include "numbers/model.h"
#include "runtime/annotate.h"
#include "reduction/coded.h"
#include "reduction/direct.h"
#include "reduction/machine.h"
#include "terms/texts.h"

namespace tarn {

namespace {

inline uint32_t letterBit(unsigned char c) { return isLower(c) ? 1u << (c - 'a') : 0; }

// An application of two annotated terms, annotated at once: the machine
// will look at it next, and its children are at hand now.
inline Term joined(Term a, Term b) {
  Term t = App(std::move(a), std::move(b));
  annotateSlow(t.node());
  return t;
}

// The parameters of a definition: its leading binders' letters, and the body
// under them. Cached in the slot for the value's version.
void peel(GlobalSlot& s) {
  if (s.peeledVersion == s.version && s.peeledEpoch == memoryEpoch()) return;
  s.params.clear();
  const Term* b = &s.value;
  while (spineShape(*b) == Shape::kBinder) {
    s.params.push_back(char(b->left().right().first()));
    b = &b->right();
  }
  s.body = *b;
  s.peeledVersion = s.version;
  s.peeledEpoch = memoryEpoch();
}

std::string nameOf(const Term& head) { return std::string(textOf(head)); }

}  // namespace

// ---- Substitution -----------------------------------------------------------

Term substituteAll(const Term& t, uint32_t mask, const Term* const* values) {
  annotate(t);
  const Node* n = t.node();
  // Only subterms that hold one of the letters are rebuilt; the rest is shared.
  if ((freeSetAnnotated(n) & mask) == 0) return t;
  if (n->isLeaf()) {
    unsigned char c = n->bytes()[0];
    TARN_ASSERT(isLower(c));
    return *values[c - 'a'];  // the variable itself
  }
  const Term& l = t.left();
  if (l.isApp()) {
    const Term& ll = l.left();
    // A binder ((\ p) b): p shadows its letter in b.
    if (isByteLeaf(ll, '\\'))
      return joined(l, substituteAll(t.right(), mask & ~letterBit(l.right().first()), values));
    // A wing ((({ p) w) y): w sees the outer letters, y not p.
    if (ll.isApp() && isByteLeaf(ll.left(), '{')) {
      uint32_t inner = mask & ~letterBit(ll.right().first());
      Term y = substituteAll(t.right(), inner, values);
      Term w = substituteAll(l.right(), mask, values);
      return joined(joined(ll, std::move(w)), std::move(y));
    }
  }
  Term r = substituteAll(t.right(), mask, values);
  return joined(substituteAll(l, mask, values), std::move(r));
}

Term substitute(const Term& body, const Term& value, unsigned char letter) {
  TARN_ASSERT(isLower(letter));
  const Term* values[26];  // read only at the letters of the mask
  values[letter - 'a'] = &value;
  return substituteAll(body, letterBit(letter), values);
}

// ---- Rules --------------------------------------------------------------------

// A vector applied to Z lists its elements; the empty vector applied to a
// size allocates; a non-empty vector applied to an index says whether that
// slot is filled (negative indices count from the end).
void fireVectorAccess(Machine& m, const Term& head, const Term& a1) {
  uint32_t size = head.node()->size();
  if (a1.isLeaf() && a1.first() == 'Z') {
    Term list = leafByte('K');
    for (uint32_t i = size; i-- > 0;) {
      const Term& e = elementOf(head, i);
      list = App2(leafByte('J'), e ? e : leafByte('Z'), std::move(list));
    }
    m.control = std::move(list);
    return;
  }
  if (size == 0) {
    if (isHostNatural(a1)) {
      uint64_t n = termToUInt64(a1);
      if (n < header::kSizeLimit) {
        m.control = vectorLeaf(size_t(n));
        return;
      }
    }
    m.control = leafByte('Z');
    return;
  }
  if (!isHostInteger(a1)) {
    m.control = leafByte('Z');
    return;
  }
  int64_t i = termToInt64(a1);
  if (i < 0) i += int64_t(size);
  if (i < 0 || i >= int64_t(size)) {
    m.control = leafByte('Z');
    return;
  }
  m.control = leafByte(elementOf(head, size_t(i)) ? 'K' : 'H');
}

// { p v c = c with v for p, once v is a value. Until then v becomes the
// control with the binder (\ p c) waiting for it: the wing is strict in its
// bound value and lazy in its body. This is the machine's only wing rule.
void fireWing(Machine& m, const Term& p, const Term& v, const Term& c) {
  if (isValue(v)) {
    m.control = substitute(c, v, p.first());
    return;
  }
  Term binder = App2(leafByte('\\'), p, c);
  Term value = v;
  m.frames.push_back(Frame{std::move(binder), false});
  m.control = std::move(value);
}

// \ p b a = b with a for p.
void fireBinder(Machine& m, const Term& p, const Term& body, const Term& a) {
  m.control = substitute(body, a, p.first());
}

// A number applied to anything opens into the first cell of its list.
void fireNumber(Machine& m, const Term& head) {
  std::string_view text = textOf(head);
  m.control = App2(leafByte('V'), numberHead(text), numberTail(text));
}

// Data applied to G gives its two parts; applied to anything else it reads as
// the tagged tree (V (X J) body).
void fireData(Machine& m, const Term& head, const Term& a1) {
  Term xj = App(leafByte('X'), leafByte('J'));
  if (isEmptyList(head)) {
    m.control = App2(a1, std::move(xj), leafByte('K'));
  } else if (a1.isLeaf() && a1.first() == 'G') {
    m.control = App2(leafByte('V'), bracketLeft(head), bracketRight(head));
  } else {
    m.control = App2(a1, std::move(xj), encodeData(head));
  }
}

// A blob opens into a balanced tree of its halves, down to byte trees.
void fireBlob(Machine& m, const Term& head) {
  size_t n = blobBytes(head).size();
  if (n == 0) m.control = leafByte('Z');
  else if (n == 1) m.control = byteTree(head);
  else m.control = App2(leafByte('V'), blobFront(head), blobBack(head));
}

// A real applied to a gives its bit tree applied to a.
void fireReal(Machine& m, const Term& head, const Term& a1) {
  m.control = App(realTree(head), a1);
}

// ")name" applied to a value stores it as the definition of name.
void fireMemo(Machine& m, const Term& head, const Term& x) {
  std::string_view name = textOf(head).substr(1);
  TARN_ASSERT(isValue(x));
  GlobalSlot& slot = slotOf(name);
  TARN_ASSERT(slot.value);
  TARN_ASSERT(!slot.callForm);
  // A memoised binder must not read as a definition with parameters.
  Term value = spineShape(x) == Shape::kBinder ? App2(leafByte('B'), leafByte('I'), x) : x;
  setSlotValue(slot, value);
  m.control = std::move(value);
}

// "]text" applied to a1: a name had no definition; the evaluation ends.
void fireUndefined(Machine& m, const Term& a1) {
  std::string text = "]";
  text += textOf(a1);
  endWith(m, leaf(text));
}

// A global name: parameters are substituted by the arguments; a
// parameterless definition is evaluated once and its value written back.
void fireGlobal(Machine& m, const Term& call, const Term& head, const Term* const* args, int argc) {
  GlobalSlot& s = slotOfLeaf(head);
  if (!s.value) {
    endWith(m, leaf("]" + nameOf(head)));
    return;
  }
  peel(s);
  if (!s.params.empty()) {
    TARN_ASSERT(argc == int(s.params.size()));
    // First-order integer definitions run directly when they can, and a
    // body with a template is built from it.
    if (fireDirect(s, call, args, argc, m.control)) return;
    const Term* values[26];  // read only at the letters of mask
    uint32_t mask = 0;
    for (int i = 0; i < argc; i++) {
      unsigned char c = static_cast<unsigned char>(s.params[size_t(i)]);
      TARN_ASSERT(isLower(c));
      uint32_t bit = letterBit(c);
      if (mask & bit) continue;  // the first parameter of a letter wins
      mask |= bit;
      values[c - 'a'] = args[i];
    }
    m.control = substituteAll(s.body, mask, values);
    return;
  }
  TARN_ASSERT(argc == 0);
  const Term& r = s.value;
  // The entry is ")" while its own evaluation is under way: self-dependence.
  if (r.first() == ')') {
    endWith(m, leaf(")" + nameOf(head)));
    return;
  }
  if (isValue(r) || s.callForm) {
    m.control = r;
    return;
  }
  Term body = r;
  setSlotValue(s, leafByte(')'));
  m.control = App(leaf(")" + nameOf(head)), std::move(body));
}

}  // namespace tarn
