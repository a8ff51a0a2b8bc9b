// The builtin table: every family's rows joined, sorted by name and checked
// at compile time. This is the one place that names the families.
#include "driver/builtins.h"

#include "bindings/maths.h"
#include "bindings/memory.h"
#include "bindings/process.h"
#include "bindings/sockets.h"
#include "bindings/stdio.h"
#include "bindings/strings.h"
#include "bindings/times.h"
#include "checks/builtins.h"
#include "numbers/builtins.h"
#include "primitives/builtins.h"

namespace tarn {

namespace {

constexpr auto kBuiltins =
    joinBuiltins(kNumberBuiltins, kPrimitiveBuiltins, kStdioBuiltins, kMemoryBuiltins, kSocketBuiltins,
                 kStringBuiltins, kMathsBuiltins, kTimeBuiltins, kProcessBuiltins, kCompileBuiltins);
static_assert(kBuiltins.size() == size_t(kBuiltinCount), "every builtin has exactly one row");
static_assert(namesDistinct(kBuiltins), "no builtin has two rows");

}  // namespace

void installAllBuiltins() { installBuiltins(kBuiltins); }

std::span<const Builtin> allBuiltinRows() { return kBuiltins; }

}  // namespace tarn
