// Direct calls: a strict evaluator for first-order integer definitions.
//
// Contract: `callDirect` evaluates a saturated call of a lower-case global
// whose arguments are values, and either gives exactly the value the graph
// machine would have reached (the same node where the machine would hand
// back an argument or a literal of the body; otherwise a new leaf made as
// the number builtins make it) or declines without any effect a program can
// see, and the machine then rewrites the call itself.
//
// What is compiled. A definition with parameters whose body is built from:
// its parameters; integer literals and other closed value literals; the
// operators + - * / % < > = # (through their prelude globals or the builtin
// names) applied to two operands; conditionals, a comparison or a call
// applied to two branches and possibly further arguments, read through the
// prelude laws of K, H and I; `look` and `cork` on vectors and blobs; and
// saturated calls of other such definitions. Integers are machine words in
// the evaluator and become leaves only when they leave it.
//
// Vectors and blobs. `look` reads a filled slot or a byte. `cork` updates in
// place exactly where the machine would: the value is held by nothing outside
// the call, and the computation under way holds it once (the evaluator counts
// the references the machine's instances of the bodies would hold). Writes
// are logged, and undone if the attempt is abandoned later.
//
// When it declines. Anything outside a word's range, a zero divisor, an
// operand that is not an integer, a condition that is not K or H, a callee
// that cannot be compiled, or an element operation the machine would answer
// with a new value (a copy, a Z) ends the attempt: any slot written is put
// back, nothing else has been written but annotations the machine would also
// have made, and the machine redoes the call. A definition whose attempt was
// abandoned is not tried again until it changes.
//
// Invalidation. Compiled code depends on the definition, its callees, the
// operator globals it reads and K, H and I. It is checked against the
// globals' stamp (advanced by every change of a slot, memo write-backs and
// run-time compilation included) and the memory epoch (advanced by every
// builtin that may write memory) before it runs, and recompiled when a slot
// it read has a new version or memory may have changed.
#pragma once

#include "runtime/globals.h"
#include "terms/term.h"

namespace tarn {

// Evaluates the application call = (s args...) directly. argc is the number
// of the definition's parameters; args point into call, which the caller
// gives up once the result replaces it. False: not taken, nothing observable
// happened.
bool callDirect(GlobalSlot& s, const Term& call, const Term* const* args, int argc, Term& result);

// The body of s with the arguments for its parameters, built from a
// template made once per definition: the same nodes, annotated alike, as
// substitution gives. False where the definition has no template.
bool instantiateDirect(GlobalSlot& s, const Term* const* args, int argc, Term& result);

// callDirect, or else instantiateDirect: what the machine's global-name rule
// asks first. False: substitution does the work.
bool fireDirect(GlobalSlot& s, const Term& call, const Term* const* args, int argc, Term& result);

// An over-applied operator (op a b c...) whose global still stands for a
// number builtin and whose operands are values: the builtin is called at
// once, and a K or H that meets two branches keeps one of them, as the
// frames, the global-name rule and the prelude laws would have made it.
// False: not taken, nothing changed.
bool operatorStep(Term& control);

// The fast paths of the machine are on in the product. The test build
// `tarn_slow` turns them off to compare outputs with them on and off.
void setFastPaths(bool on);
bool fastPaths();

// Calls taken directly and attempts abandoned, since start (for the
// benchmarks and tests).
uint64_t directCalls();
uint64_t directDeclined();

}  // namespace tarn
