// Run-time compilation as builtins: `road` and `load` (checks/runtime_compile.h).
#pragma once

#include <array>

#include "checks/runtime_compile.h"
#include "runtime/builtins.h"

namespace tarn {

inline constexpr auto kCompileBuiltins = std::to_array<Builtin>({
    special("load", 1, handleLoad, Memory::kKeeps),
    special("road", 1, handleRoad, Memory::kKeeps),
});

}  // namespace tarn
