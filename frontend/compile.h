// The compile stage: the prelude, the program text, and the main term.
//
// Contract: `loadPrelude` resets the process-wide tables and fills them with
// the prelude; `compile` checks the raw program text, then stores the main
// expression under the empty name of `globals` and every definition under its
// name. A failing text leaves a report whose tag is not "check"; definitions
// stored before the failure stay. `mainTerm` returns a new reference to the
// entry under the empty name, which must exist (fatal assertion otherwise).
#pragma once

#include <string_view>

#include "driver/report.h"
#include "terms/term.h"

namespace tarn {

void loadPrelude();
Report compile(std::string_view source);
Term mainTerm();

}  // namespace tarn
