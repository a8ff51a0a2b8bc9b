// The mechanics under the operator tables: the bytes that an operand stands
// for in a text join, the conversion of a numeric operand to a double, and
// the text and vector results that the operators build (joins, removal,
// repetition, extension).
//
// Contract: operands are borrowed and already classified by the caller (the
// `kind` arguments are kindOf letters). Every result is a new leaf owned by
// the caller, or the leaf "Z" where the operators' rules give no answer; no
// operand is changed. New vectors share their elements (each copied element
// gets one more reference) and keep empty slots empty.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/annotate.h"
#include "terms/term.h"

namespace tarn {

inline bool isNumericKind(Kind k) { return k == Kind::kReal || k == Kind::kInteger || k == Kind::kFraction; }
inline bool isTextKind(Kind k) { return k == Kind::kBlob || k == Kind::kBracket; }

// An integer leaf (kind i) recognised without annotating anything: a digit
// text that does not start "00". Two of them are the operators' common case.
inline bool isHintLeaf(const Term& t) {
  const Node* n = t.node();
  if (!n->isLeaf()) return false;
  const unsigned char* s = n->bytes();
  return isDigit(s[0]) && !(s[0] == '0' && s[1] == '0');
}

// The bytes of an operand in a text join: a number's canonical text, a real
// in the format "%e", a blob's payload, the interior of a bracket value (its
// outer bracket pair removed; an application of data is flattened first).
// Held in place where the operand's own text will do, otherwise owned here.
class OperandBytes {
 public:
  OperandBytes(const Term& t, Kind kind);
  OperandBytes(const OperandBytes&) = delete;
  OperandBytes& operator=(const OperandBytes&) = delete;
  std::string_view view() const { return view_; }

 private:
  std::string owned_;
  std::string_view view_;
};

// A numeric operand as a double: a real as it is, an integer through
// hintToReal, a numb through numbToReal. Any other kind is the internal
// failure "truecast".
double toReal(const Term& t);

// ---- Texts (blobs when `blob`, bracket literals otherwise) ---------------------
// A blob or a bracket literal of the bytes a then b.
Term textJoin(bool blob, std::string_view a, std::string_view b);
// Removal of m = |n| bytes: m equal to the length gives the empty text, m
// above it "Z"; n >= 1 drops the first n bytes, n <= 0 the last m.
Term textRemove(bool blob, std::string_view bytes, int64_t n);
// n copies of the bytes: "Z" for n < 0, the empty text for n = 0.
Term textRepeat(bool blob, std::string_view bytes, int64_t n);

// ---- Vectors ------------------------------------------------------------------------
// x's elements then y's; "Z" unless the total is below 0x4000000.
Term vectorJoin(const Term& x, const Term& y);
// Removal of m = |n| elements: "Z" for m above the size; n > 0 drops the last
// n elements, n <= 0 the first m (the opposite direction of the text rule).
Term vectorRemove(const Term& x, int64_t n);
// n copies of the element sequence: "Z" for n < 0.
Term vectorRepeat(const Term& x, int64_t n);
// x's elements followed by e, or e followed by x's elements; an e that is the
// leaf "U" makes an empty slot. No size check here: the callers make theirs.
Term vectorExtendBack(const Term& x, const Term& e);
Term vectorExtendFront(const Term& e, const Term& x);

}  // namespace tarn
