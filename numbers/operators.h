// The arithmetic operator builtins `plus`, `dash`, `mult`, `over`, `cent` and
// `powa` (the language's + - * / % ^), the comparisons `less`, `gteq`, `same`
// and `diff`, and the unary number-and-text builtins `real`, `buck`, `wave`
// and `cape`.
//
// Contract: operands are values, borrowed; nothing is evaluated or changed,
// classification only annotates. Each operation is a table over the kinds of
// its operands (kindOf: blob, real, integer, vector, fraction, bracket data
// or other), tested row by row; a pair that fits no row
// gives a fresh leaf "Z". The result is always a new reference owned by the
// caller (sometimes to an operand itself, as `real` of a real).
//
// Numeric operands of different kinds are promoted: with a real on either
// side both become doubles; an integer meets a numb as a numb for + - * %
// (exact) and as a double for / and ^. A number joined to a text stands as
// its canonical text, a real as "%e". A vector that reaches a numeric
// conversion is the internal failure "truecast" (or the numb operations'
// form assertion): no program gets a value from such a pair.
#pragma once

#include "terms/term.h"

namespace tarn {

// ---- Arithmetic ------------------------------------------------------------------
Term valuePlus(const Term& x, const Term& y);
Term valueDash(const Term& x, const Term& y);
Term valueMult(const Term& x, const Term& y);
Term valueOver(const Term& x, const Term& y);
Term valueCent(const Term& x, const Term& y);
Term valuePowa(const Term& x, const Term& y);

// ---- Comparison: the leaf K, H or Z ---------------------------------------------
// Within a kind by value (texts bytewise, vectors element by element);
// across kinds by the kind letters, so a < e < i < k < o < u. No promotion:
// the integer 1 and the numb 1 are not the same.
Term valueLess(const Term& x, const Term& y);
Term valueGreaterEq(const Term& x, const Term& y);
// One shared node is the same as itself whatever its kind (a NaN too).
Term valueSame(const Term& x, const Term& y);
Term valueDiff(const Term& x, const Term& y);

// ---- Reals and the unary operators ----------------------------------------------
// The real of any number, text or real tree; "Z" for anything else.
Term valueReal(const Term& x);
// "$": sign of a number; first byte of a blob; all but the last element of a
// bracket literal.
Term valueBuck(const Term& x);
// "~": negation of a number; rest of a blob; last element of a bracket
// literal.
Term valueWave(const Term& x);
// A blob to a bracket literal with "[" and "]" escaped as [q] and [r], and a
// bracket literal to a blob with [p], [q], [r] undone.
Term valueCape(const Term& x);

// A balanced six-level tree of (V l r) whose 64 leaves spell a double's bits,
// lowest first. Only the shape is tested; reading a leaf other than K or H
// is a fatal assertion.
bool isRealTree(const Term& t);
double realOfTree(const Term& t);

}  // namespace tarn
