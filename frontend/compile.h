// The compile stage: the prelude, the program text, and the main term.
//
// Contract: `loadPrelude` resets the process-wide tables (globals, call forms,
// the prelude's copy) and fills them with the prelude, which defines the
// capitals and the bracketed operators in the language itself; the prelude's
// copy is then taken. `compile` checks the raw program text, stores a stub
// for every builtin (its arity as that many binders around "Z"), then the main
// expression under the empty name of `globals` and every definition under its
// plain name. A definition of a single lower-case letter, of a builtin, of
// backslash or of "{" ends the compile with a report ("lower", "built") whose
// position counts bytes of the normalised text; the definitions stored before
// it stay. A piece that is not a definition is ignored without remark.
// `mainTerm` returns a new reference to the entry under the empty name, which
// must exist (fatal assertion otherwise).
#pragma once

#include <string_view>

#include "runtime/report.h"
#include "terms/term.h"

namespace tarn {

void loadPrelude();
Report compile(std::string_view source);
Term mainTerm();

}  // namespace tarn
