// The composition of the builtin table from its families.
#pragma once

#include <span>

#include "runtime/builtins.h"

namespace tarn {

// Installs the joined table of every family's rows (idempotent).
void installAllBuiltins();
// The joined table itself, in name order (a harness installs a copy).
std::span<const Builtin> allBuiltinRows();

}  // namespace tarn
