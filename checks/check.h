// The program checks: one fixed order of passes over all definitions in
// `globals`, each of which rewrites the definitions or stops with a report.
//
// Contract: `checkProgram` runs once, after `compile`, and changes `globals`
// for good: `_` is stored, bodies are rewritten, dead definitions that reach
// an undefined name are erased (a prelude name gets the prelude's definition
// back), compile-time values stay, and bodies become canonical. It returns a
// report whose tag is "check" when the program may run; then every body is
// annotated and every word in `globals` is defined. On a failure `globals`
// is left as the earlier passes made it. `preludeGlobals` is cleared.
//
// Definitions are visited in byte order of their names, the main term (the
// empty name) first. The report makers are shared with run-time compilation.
#pragma once

#include <functional>

#include <string>
#include <string_view>

#include "runtime/report.h"
#include "terms/term.h"

namespace tarn {

Report checkProgram();

// The text of the global `_`: the layouts of the host records that the
// memory builtins read and write.
std::string recordLayoutText();

// Reports of the checks; `name` is the definition's name ("" for the main
// term), `referrer` the name that refers to an undefined one.
Report funkyReport(std::string_view name, const Term& offending);
// `what` names the kind of the undefined name in the message ("function " at
// run time, nothing at start-up).
Report aliveReport(std::string_view referrer, std::string_view undefinedName, std::string_view what = "");
// The alive walk from the main term (the empty name), least name first, a
// name queued twice keeping its last referrer. `lookup` tells whether a name
// is defined and gives the body to enter (null: defined, not entered). The
// first undefined name gives aliveReport with `what`.
Report walkAlive(const std::function<bool(const std::string& name, const Term*& body)>& lookup,
                 std::string_view what);
Report placeReport(std::string_view name);
Report arityReport(std::string_view name);
Report localReport(std::string_view name, char letter);

// Leading binders allowed in one definition; an eleventh would read as the
// arity of a local variable.
inline constexpr int kMaxParameters = 10;

}  // namespace tarn
