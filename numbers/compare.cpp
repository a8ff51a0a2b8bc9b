// Comparison by kind: within a kind by value, across kinds by the kind
// letters, with "Z" for anything of kind w. Answers are worked out as the
// bytes 'K', 'H' and 'Z' and become a leaf only at the top, so vectors can
// be compared element by element without making a leaf per element.
#include <string_view>

#include "numbers/hint.h"
#include "numbers/numb.h"
#include "numbers/operands.h"
#include "numbers/operators.h"
#include "runtime/annotate.h"

namespace tarn {

namespace {

using Answer = char;  // 'K' true, 'H' false, 'Z' no answer
constexpr Answer kYes = 'K', kNo = 'H', kNone = 'Z';
inline Answer answer(bool v) { return v ? kYes : kNo; }

Answer lessOf(const Term& x, const Term& y);
Answer greaterEqOf(const Term& x, const Term& y);
Answer sameOf(const Term& x, const Term& y);
Answer diffOf(const Term& x, const Term& y);

// Unsigned bytes over the common length, then the shorter first
// (char_traits<char> compares as unsigned char).
bool bytesLess(std::string_view a, std::string_view b) { return a < b; }

// The bytes compared for texts: a blob's payload, a bracket value's interior.
bool textLess(const Term& x, const Term& y, Kind kind) {
  OperandBytes a(x, kind), b(y, kind);
  return bytesLess(a.view(), b.view());
}
bool textSame(const Term& x, const Term& y, Kind kind) {
  OperandBytes a(x, kind), b(y, kind);
  return a.view() == b.view();
}

// A numb's canonical text, compared for equality.
bool numbSame(const Term& x, const Term& y) { return textSame(x, y, Kind::kFraction); }

// ---- Vectors ------------------------------------------------------------------------
// An element is the term in its slot; an empty slot reads as a fresh leaf Z,
// so it is never the same node as anything and compares as "Z".

struct Elements {
  Term x, y;
  bool sameNode;
};

Elements elementsAt(const Term& vx, const Term& vy, size_t i) {
  Node* a = vx.node()->element(i);
  Node* b = vy.node()->element(i);
  Elements e{a ? Term::share(a) : leafByte('Z'), b ? Term::share(b) : leafByte('Z'), false};
  e.sameNode = a != nullptr && a == b;
  return e;
}

size_t sizeOf(const Term& v) { return v.node()->size(); }

Answer vectorSame(const Term& x, const Term& y) {
  if (sizeOf(x) != sizeOf(y)) return kNo;
  for (size_t i = 0; i < sizeOf(x); i++) {
    Elements e = elementsAt(x, y, i);
    if (e.sameNode) continue;
    Answer s = sameOf(e.x, e.y);
    if (s != kYes) return s;
  }
  return kYes;
}

Answer vectorDiff(const Term& x, const Term& y) {
  if (sizeOf(x) != sizeOf(y)) return kYes;
  for (size_t i = 0; i < sizeOf(x); i++) {
    Elements e = elementsAt(x, y, i);
    if (e.sameNode) continue;
    Answer d = diffOf(e.x, e.y);
    if (d != kNo) return d;
  }
  return kNo;
}

// The first pair of elements that are not the same node decides: "Z" or "K"
// from the order, "H" unless the two are the same value. A common part of
// equal elements leaves it to the sizes.
Answer vectorLess(const Term& x, const Term& y) {
  size_t n = sizeOf(x) < sizeOf(y) ? sizeOf(x) : sizeOf(y);
  for (size_t i = 0; i < n; i++) {
    Elements e = elementsAt(x, y, i);
    if (e.sameNode) continue;
    Answer c = lessOf(e.x, e.y);
    if (c != kNo) return c;
    if (sameOf(e.x, e.y) != kYes) return kNo;
  }
  return answer(sizeOf(x) < sizeOf(y));
}

Answer vectorGreaterEq(const Term& x, const Term& y) {
  size_t n = sizeOf(x) < sizeOf(y) ? sizeOf(x) : sizeOf(y);
  for (size_t i = 0; i < n; i++) {
    Elements e = elementsAt(x, y, i);
    if (e.sameNode) continue;
    Answer s = sameOf(e.x, e.y);
    if (s == kNone) return kNone;
    if (s != kYes) return greaterEqOf(e.x, e.y);
  }
  return answer(sizeOf(x) >= sizeOf(y));
}

// ---- The four comparisons ---------------------------------------------------------

Answer lessOf(const Term& x, const Term& y) {
  Kind kx = kindOf(x), ky = kindOf(y);
  if (kx == Kind::kOther || ky == Kind::kOther) return kNone;
  if (kx != ky) return answer(kx < ky);
  switch (kx) {
    case Kind::kBlob:
    case Kind::kBracket: return answer(textLess(x, y, kx));
    case Kind::kReal: return answer(realValue(x) < realValue(y));  // false for a NaN
    case Kind::kInteger: return answer(hintLess(x, y));
    case Kind::kVector: return vectorLess(x, y);
    case Kind::kFraction: return answer(numbLess(x, y));
    default: TARN_FAIL();
  }
}

Answer greaterEqOf(const Term& x, const Term& y) {
  Kind kx = kindOf(x), ky = kindOf(y);
  if (kx == Kind::kOther || ky == Kind::kOther) return kNone;
  if (kx != ky) return answer(kx >= ky);
  switch (kx) {
    case Kind::kBlob:
    case Kind::kBracket: return answer(!textLess(x, y, kx));
    case Kind::kReal: return answer(realValue(x) >= realValue(y));  // false for a NaN
    case Kind::kInteger: return answer(hintGreaterEq(x, y));
    case Kind::kVector: return vectorGreaterEq(x, y);
    // Unequal numbs that numbLess can't tell apart are "greater or equal"
    // both ways.
    case Kind::kFraction: return answer(!numbLess(x, y));
    default: TARN_FAIL();
  }
}

// Equality within a kind (the kinds already agree and are not w or k).
bool sameValue(const Term& x, const Term& y, Kind kind) {
  switch (kind) {
    case Kind::kBlob:
    case Kind::kBracket: return textSame(x, y, kind);
    case Kind::kReal: return realValue(x) == realValue(y);  // NaN: never; 0.0 == -0.0
    case Kind::kInteger: return hintSame(x, y);
    case Kind::kFraction: return numbSame(x, y);
    default: TARN_FAIL();
  }
}

Answer sameOf(const Term& x, const Term& y) {
  if (x.same(y)) return kYes;
  Kind kx = kindOf(x), ky = kindOf(y);
  if (kx == Kind::kOther || ky == Kind::kOther) return kNone;
  if (kx != ky) return kNo;
  if (kx == Kind::kVector) return vectorSame(x, y);
  return answer(sameValue(x, y, kx));
}

Answer diffOf(const Term& x, const Term& y) {
  if (x.same(y)) return kNo;
  Kind kx = kindOf(x), ky = kindOf(y);
  if (kx == Kind::kOther || ky == Kind::kOther) return kNone;
  if (kx != ky) return kYes;
  if (kx == Kind::kVector) return vectorDiff(x, y);
  return answer(!sameValue(x, y, kx));
}

}  // namespace

Term valueLess(const Term& x, const Term& y) {
  if (isHintLeaf(x) && isHintLeaf(y)) [[likely]] return leafByte(answer(hintLess(x, y)));
  return leafByte(lessOf(x, y));
}

Term valueGreaterEq(const Term& x, const Term& y) {
  if (isHintLeaf(x) && isHintLeaf(y)) [[likely]] return leafByte(answer(hintGreaterEq(x, y)));
  return leafByte(greaterEqOf(x, y));
}

Term valueSame(const Term& x, const Term& y) { return leafByte(sameOf(x, y)); }

Term valueDiff(const Term& x, const Term& y) { return leafByte(diffOf(x, y)); }

}  // namespace tarn
