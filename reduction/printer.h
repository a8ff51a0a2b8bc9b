// The term printer: any term to text that reads as source.
//
// Contract: `printTerm` borrows the term and changes nothing in it: it does
// not annotate, evaluate or share. Every term has a text. The walk is
// iterative, so a term of any depth prints without using the native stack,
// and the text is built once, in time proportional to its length.
//
// Leaves print by first byte: the markers (empty text, ")", "]") as "()", a
// vector as "cray" wrapped once per element as (/ so-far element), a real as
// real[%e], a blob as cape[bytes] with newline, "[" and "]" written [p], [q]
// and [r], anything else as its text. An application (l r) prints, with L and
// R the texts of l and r:
//   1. L already "(...)" (and not "()"): L's list is extended, "(... R)";
//   2. R one balanced literal "[...]": L R side by side;
//   3. R longer than one byte and either mixing byte classes or starting
//      with a byte that is no letter or digit: "(L R)";
//   4. R a word after a letter, or a number after a digit: "(L R)";
//   5. otherwise L R side by side.
// The byte classes are: "_" and a-z, 0-9, and everything else. So SKK prints
// "SKK", (f x) prints "(f x)", (f 1) prints "f1".
#pragma once

#include <string>

#include "terms/term.h"

namespace tarn {

std::string printTerm(const Term& term);

}  // namespace tarn
