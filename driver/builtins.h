// The composition of the builtin table from its families.
#pragma once

namespace tarn {

// Installs the joined table of every family's rows (idempotent).
void installAllBuiltins();

}  // namespace tarn
