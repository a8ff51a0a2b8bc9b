// Shapes and helpers shared by the data primitives: the tagged tree, the
// text of bracket data, index normalising and element lengths.
//
// Contract: everything here only reads terms (borrowed) and builds new ones;
// nothing starts a reduction or changes a node.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "terms/term.h"

namespace tarn::data {

// The leaf Z, fresh each time: the answer for a wrong kind of value.
inline Term noAnswer() { return leafByte('Z'); }
// The leaves K and H, the truth values.
inline Term truth(bool v) { return leafByte(v ? 'K' : 'H'); }
inline bool isTruth(const Term& t) { return isByteLeaf(t, 'K') || isByteLeaf(t, 'H'); }

// (J a b): a cell whose head is the leaf J.
inline bool isJCell(const Term& t) {
  return t.isApp() && t.left().isApp() && isByteLeaf(t.left().left(), 'J');
}
// The tagged tree V (X J) B. Its body B is K for the empty tree and J C D for
// the pair of C and D.
bool isTaggedTree(const Term& t);
inline const Term& taggedBody(const Term& t) { return t.right(); }
// V (X J) body, from new leaves V, X and J.
Term taggedTree(Term body);

// A negative index counts from the end: n is added. False when the index is
// still negative.
inline bool normaliseIndex(int64_t& i, int64_t n) {
  if (i < 0) i += n;
  return i >= 0;
}

// The text of bracket data (kind u) without its outer brackets: a view into a
// leaf's own text, or, for an application, into `scratch`, which receives the
// flattened text.
std::string_view innerText(const Term& bracket, std::string& scratch);

// The bracket literal "[" bytes "]".
Term bracketLiteral(std::string_view inner);

// The bit string of a number term (kinds i and o), read as a list: `bits`
// holds the raw string (empty for a malformed chain of cells) and `length`
// the index of its sentinel, the number of list elements (0 when malformed).
struct NumberBits {
  std::string bits;
  int64_t length;
};
NumberBits numberBitsOf(const Term& number);

}  // namespace tarn::data
