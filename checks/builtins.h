// Run-time compilation as builtins: `road` and `load`.
#pragma once

#include <array>

#include "runtime/builtins.h"

namespace tarn {

inline constexpr auto kCompileBuiltins = std::to_array<Builtin>({
    unwritten("load", 1, Memory::kKeeps),
    unwritten("road", 1, Memory::kKeeps),
});

}  // namespace tarn
