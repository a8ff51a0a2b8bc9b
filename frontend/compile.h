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

#include <string>
#include <string_view>
#include <vector>

#include "runtime/report.h"
#include "terms/term.h"

namespace tarn {

void loadPrelude();
Report compile(std::string_view source);
Term mainTerm();

// The pieces of a normalised program text, shared by the start-up compile
// and run-time compilation: the main expression (the text before the first
// comma) and the definitions behind the commas, in source order, up to the
// first refused name. Then the report tells the refusal ("lower", "built");
// the definitions before it are kept. A later definition of a name wins when
// they are stored in order. A call form's body is already wrapped in I.
struct PieceDefinition {
  std::string name;  // plain name
  Term body;
  bool callForm;
};
struct ProgramText {
  Term main;
  std::vector<PieceDefinition> definitions;
  Report report;  // tag "check" when no name was refused
};
// The start-up message writes a refused builtin's name in brackets; the
// run-time one writes it bare.
enum class BuiltWording { kBracketed, kBare };
ProgramText readProgramText(std::string_view normalisedText, BuiltWording wording);

}  // namespace tarn
