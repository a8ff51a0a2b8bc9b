// Annotation and classification of terms.
//
// Invariant: a node's `state` goes from 0 to its final value once, the first
// time `annotate` visits it, and is then shared by all its holders. After
// annotation the header answers, in one byte, what the machine asks of every
// term: its remaining `arity`, whether it still holds work (`pending`), and
// whether it is closed data (state '@'); `size` holds the set of free local
// letters (bit 0 = 'a') of a non-data application.
//
// Nothing here evaluates. A word that is neither a global nor a single letter
// a-z is a fatal assertion: the program checks make that impossible.
#pragma once

#include <cstdint>

#include "terms/term.h"

namespace tarn {

void annotateSlow(Node* n);
inline void annotate(const Term& t) {
  if (t.node()->state() == 0) [[unlikely]] annotateSlow(t.node());
}

// Value (normal form for the machine): data, or no pending work and an arity
// of at least 1.
inline bool isValueAnnotated(const Node* n) {
  uint8_t s = n->state();
  if (s == header::kStateData) return true;
  return (s & header::kPendingBit) == 0 && (s & header::kArityBits) >= 53;
}
inline bool isValue(const Term& t) {
  annotate(t);
  return isValueAnnotated(t.node());
}

// 1 for data, else the arity value.
int arityOf(const Term& t);
// Free local letters of an annotated term: 0 for a number, bracket or vector
// leaf and for data; otherwise `size`.
inline uint32_t freeSetAnnotated(const Node* n) {
  if (n->isData()) return 0;
  if (n->isLeaf()) {
    unsigned char c = n->bytes()[0];
    if (isDigit(c) || c == '[' || c == '\n') return 0;
  }
  return n->size();
}
uint32_t freeSet(const Term& t);
bool isClosed(const Term& t);
bool isData(const Term& t);
// A data term whose text is exactly "[]"; a term that is not data is a fatal
// assertion.
bool isEmptyList(const Term& t);

// The kind of a value, as the operators, comparisons and bindings tell values
// apart. The values are the letters a program sees for them, and their order
// is the order in which values of different kinds compare.
enum class Kind : char {
  kBlob = 'a',      // a blob leaf "(" length ")" bytes
  kReal = 'e',      // a real leaf: a blank and eight bytes of a double
  kInteger = 'i',   // a decimal integer: a digit leaf or a J K cell
  kVector = 'k',    // a vector leaf
  kFraction = 'o',  // a binary fraction: a "00" leaf or a J H cell
  kBracket = 'u',   // closed bracket data
  kOther = 'w',     // anything else
};
Kind kindOf(const Term& t);

// The head byte of t's left spine is one of the lazy heads: & | A B C D E F H
// I J K L N Q R T U V X Z. Annotates the spine on its way down.
bool isLazyHead(const Term& t);
// The shape of a term's top by form alone.
enum class Shape : uint8_t {
  kBinder,  // ((\ p) body)
  kWing,    // ((({ p) v) c)
  kOther,
};
Shape spineShape(const Term& t);

}  // namespace tarn
