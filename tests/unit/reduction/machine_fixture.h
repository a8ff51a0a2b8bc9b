// Helpers for machine tests: a program's globals from source, terms from
// source text, and reduction to printed text.
#pragma once

#include <string>

#include "frontend/compile.h"
#include "frontend/grammar.h"
#include "frontend/scan.h"
#include "reduction/machine.h"
#include "reduction/printer.h"

namespace tarn::testing {

// Loads the prelude and compiles `source` (a main expression, then
// definitions), as the driver does before the checks.
inline void program(const std::string& source) {
  loadPrelude();
  Report r = compile(source);
  if (!r.ok()) throw std::runtime_error("compile failed: " + r.say);
}

inline Term term(const std::string& source) { return parseExpression(normalise(source)); }

inline std::string reduced(const std::string& source) { return printTerm(reduce(term(source))); }

}  // namespace tarn::testing
