// Canonical terms: a structural order on terms, and one shared node for each
// structure that passes through `tern`.
//
// Ownership: `seenTerms` is process-wide, made on first use and never torn
// down; each entry holds a reference, so a canonical node lives as long as
// it stays in the set. Entries leave only through the sharing passes
// (`clearSeenTerms`, `eraseSeenNonValues`, `eraseSeen`); a term that passes
// through `tern` otherwise stays for the rest of the run, deliberately.
//
// Invariant: no two entries of `seenTerms` are equal under `termOrder`, and
// the children of an application inserted by `tern` were canonical when it
// was inserted. Nothing mutates an entry: a node in the set has a holder
// beyond any running chain, so no sole-holder update touches it.
#pragma once

#include <cstddef>

#include "terms/term.h"

namespace tarn {

// Structural order, without classification: 1 when x sorts first, -1 when y
// does, 0 for equal structure. A leaf sorts after any application; two
// applications compare their left children, then their right ones; two leaves
// compare their bytes as unsigned values up to the shorter length, and then
// the shorter first. The compared length is, by form: a real 9, a vector
// 8*size+1 (its element references as raw bytes), a number or bracket leaf
// its size (by NUL when the size is 0), a blob its payload count taken from
// the head of its text, anything else up to its NUL.
int termOrder(const Term& x, const Term& y);

// The canonical copy of t: the entry equal to t if there is one; otherwise a
// leaf is entered as it stands, and an application is entered after its
// children have been made canonical (a new node when either child changed).
Term tern(Term t);

// The sharing passes' access to the set.
void clearSeenTerms();
// Erases every entry that is not a value (annotating entries as needed).
void eraseSeenNonValues();
// Erases the entry equal to t, if any.
void eraseSeen(const Term& t);
bool isSeen(const Term& t);
size_t seenTermCount();

}  // namespace tarn
