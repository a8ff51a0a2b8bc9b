// The expression grammar: normalised source text to a term.
//
// Contract: the text has passed the bracket check and been normalised (see
// scan.h); on such text the parser cannot fail, and every text, the empty one
// included, parses to some term. A text that breaks that promise (unbalanced
// brackets, an atom of several bytes that is no word, number, literal or
// parenthesis) is a fatal assertion. The caller owns the returned term; the
// parser keeps nothing.
//
// Operators are not evaluated here: an infix operator becomes the one-byte
// leaf of its character applied to its two operands, and the prelude gives the
// leaf its meaning. Levels, loosest first:
//
//    1  ; \ {      right   infix; "{" builds the wing ((([{] x) w) y)
//    2  ? newline  left    infix; a newline builds (below above)
//    3  & |        right   infix
//    4  = < > #    right   infix
//    5  @ space    left    infix; a space builds (f x)
//    6  + - : .    left    infix
//    7  * / % '    left    infix
//    8  ^          right   infix
//    9  ~ ! " $ `  postfix, at the end of a text
//   10  the same   prefix, at the start of a text
//   11  tight operator chain: f~x!y is ((f (~ x)) (! y))
//   12  tight call chain: SKK, ab1, f(a,b)c, [lit]x
//   13  atoms: word, number, literal, (expression), one byte
//
// The empty text below level 8 is the leaf "}", which is what an operator
// with a missing operand gets: "f()" is (f }).
#pragma once

#include <string_view>

#include "terms/term.h"

namespace tarn {

// Parses a whole normalised text (the top level).
Term parseExpression(std::string_view normalisedText);

}  // namespace tarn
