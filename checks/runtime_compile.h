// Run-time compilation: `road` and `load`, which compile a source text given
// by the running program, add its definitions to `globals` and give the
// value of its main expression.
//
// Contract: a call compiles the text into a private table (the text's own
// definitions, the main expression under the empty name) and runs the
// definition passes and checks on it, in this order: bracket structure,
// definitions ("lower", "built" without brackets), no name that `globals`
// already has ("roads"), pair wings, alive (a name is sound when either
// table has it), taint (tainted new definitions are dropped, nothing is
// restored), places, arity, funky keys, compile-time evaluation, the commit,
// unbound locals, sharing. Nothing in `globals` changes before the commit;
// a failure of the unbound-locals check comes after it, so the new
// definitions stay. Existing definitions are never replaced. The main
// expression is then reduced by a nested machine on the native stack, and
// its value is the builtin's result.
//
// `road` answers a failure with the failure term ("]" report-text), which
// ends the whole evaluation; the run stage unpacks the report. `load` answers
// every failure with the leaf Z and the program goes on; it makes its terms
// canonical before the compile-time evaluation instead of after the commit.
// Both answer Z at once for an argument that holds no source text (a real, a
// binary fraction, a function).
#pragma once

#include <optional>
#include <string>

#include "runtime/builtins.h"
#include "runtime/report.h"
#include "terms/term.h"

namespace tarn {

enum class CompileMode { kRoad, kLoad };

// The source text of an argument, by kind: a blob's bytes, an integer's
// decimal text, bracket data's flattened text without its outer brackets, the
// empty text for a vector; none for any other kind.
std::optional<std::string> sourceTextOf(const Term& argument);

// Compiles and evaluates one source text; see the contract above.
Term compileAtRunTime(std::string_view source, CompileMode mode);

// The term that carries a report out of the evaluation.
Term failureTerm(const Report& report);

// The builtins.
Term handleRoad(const Builtin& row, const Args& args);
Term handleLoad(const Builtin& row, const Args& args);

}  // namespace tarn
