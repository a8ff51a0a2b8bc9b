// The reduction machine.
//
// Contract: `reduce` takes a closed term and rewrites it until it is a value.
// The machine never overwrites a node: each step builds new application nodes
// out of shared ones. The only lasting effects of a run are the memo
// write-backs of parameterless definitions into the globals, the annotation
// of nodes, and whatever the builtins do.
//
// State. The machine of the language is one term (K X): a continuation K
// made of frames (B k f) (hand the value to f) and (B k (T a)) (apply the
// value to a), ending in "I", and the control X. Here the chain of frames is
// held as a stack of (kind, term) records, which is the same continuation
// without building its B and T nodes; `dumpMachine` prints it in the term
// form. When a value meets an argument frame, (T a V) is contracted at once
// to (V a) as long as T has the prelude's law.
//
// A step may: replace the control, push or pop frames, write a memo entry
// into the globals (only for a parameterless definition, only with a value),
// and call a builtin handler. It never recurses into the machine, except
// through a handler that compiles text at run time.
//
// Fast paths (direct.h) take several steps at once where the outcome is
// known: a call of a first-order integer definition evaluated directly, a
// body built from its template instead of by substitution, an operator on
// values applied at once. Each leaves exactly the nodes and effects the
// plain steps would; the build `tarn_slow` runs without them, and the
// differential test compares the two.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "terms/term.h"

namespace tarn {

struct Frame {
  Term term;
  bool argument;  // true: (B k (T a)); false: (B k f)
};

struct Machine {
  Term control;
  std::vector<Frame> frames;  // innermost last; empty means the continuation I
};

// The value of a closed term. Re-entrant: run-time compilation nests calls.
Term reduce(Term t);

// One step of the machine by its seven rules, in order. The caller has dealt
// with an empty continuation and a value in control.
void step(Machine& m);
// Fires the saturated redex in control (arity 0): a builtin, or one of the
// rewrite rules by the head.
void contract(Machine& m);

// Steps taken by all machines since start (for the benchmarks).
uint64_t machineSteps();
// A budget for test harnesses (a run never sets one): once all machines
// together have taken `limit` steps, every reduction ends at once with the
// report tagged "steps", carried like a failed run-time compilation's.
void setStepLimit(uint64_t limit);

// The machine state as the term (K X), printed.
std::string dumpMachine(const Machine& m);

// Rewrite rules (rules.cpp), one per head kind; `head` is the spine's head,
// `args` its arguments in source order, borrowed from the control.
void fireVectorAccess(Machine& m, const Term& head, const Term& a1);
void fireWing(Machine& m, const Term& p, const Term& v, const Term& c);
void fireBinder(Machine& m, const Term& p, const Term& body, const Term& a);
void fireNumber(Machine& m, const Term& head);
void fireData(Machine& m, const Term& head, const Term& a1);
void fireBlob(Machine& m, const Term& head);
void fireReal(Machine& m, const Term& head, const Term& a1);
void fireMemo(Machine& m, const Term& head, const Term& x);
void fireUndefined(Machine& m, const Term& a1);
void fireGlobal(Machine& m, const Term& call, const Term& head, const Term* const* args, int argc);

// Ends the evaluation with r: the continuation is dropped.
void endWith(Machine& m, Term r);

// body with the free occurrences of the letter replaced by value (a closed
// value). Subterms without the letter are shared, not copied.
Term substitute(const Term& body, const Term& value, unsigned char letter);
// All letters of `mask` at once: values[i] stands for letter 'a' + i.
Term substituteAll(const Term& body, uint32_t mask, const Term* const* values);

}  // namespace tarn
