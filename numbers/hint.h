// Integer (`hint`) arithmetic and order on Terms: the operations that the
// operator and comparison builtins call once both operands are integers.
//
// Contract: every operand must pass isHostInteger (a fatal assertion
// otherwise) and is borrowed; a leaf is read in place as its text, a cell
// spelling (J K ...) through its canonical text. Every result is a new leaf
// owned by the caller: a canonical hint text, or the leaf "Z" where the
// result does not exist (division and remainder by zero). A product other
// than zero is born annotated with the top byte 182 (a leaf of arity +2), as
// products always are; every other result is a fresh, unannotated leaf.
//
// Operands of up to 18 digits take a machine-word path and never build a
// string; longer ones go to the decimal core (numbers/bignum/decimal.h), which
// writes its result straight into the result leaf.
#pragma once

#include "terms/term.h"

namespace tarn {

Term hintPlus(const Term& x, const Term& y);
Term hintDash(const Term& x, const Term& y);
Term hintMult(const Term& x, const Term& y);
// Floor division: -7 over 2 is -4, 7 over -2 is -4; "Z" for a zero divisor.
Term hintOver(const Term& x, const Term& y);
// Never negative: |x| mod |y| for equal signs, |y| minus that (or 0) for
// differing ones: -7 cent 3 is 2, 7 cent -3 is 2, -7 cent -3 is 1. "Z" for a
// zero divisor.
Term hintCent(const Term& x, const Term& y);
// x to the y: a negative y gives 0 for every base, y = 0 gives 1 for every
// base; a negative base to an odd y is negative.
Term hintPowa(const Term& x, const Term& y);

// Order by value.
bool hintLess(const Term& x, const Term& y);
bool hintGreaterEq(const Term& x, const Term& y);
// Equal canonical texts (the same value).
bool hintSame(const Term& x, const Term& y);

// The double nearest to the integer (strtod of its decimal text with "-" for
// a negative value): an integer too big for a double gives an infinity.
double hintToReal(const Term& x);

}  // namespace tarn
