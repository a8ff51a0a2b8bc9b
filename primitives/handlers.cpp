// The builtin handlers of the data primitives, bound by name into the builtin
// table.
#include "primitives/handlers.h"

#include "runtime/globals.h"

namespace tarn {

std::span<const HandlerBinding> primitiveHandlers() {
  static const HandlerBinding bindings[] = {
      {"cmpr", handleCmpr},
      {"lisp", handleLisp},
      {"raws", handleRaws},
      {"tern", handleTern},
      {"type", handleType},
  };
  return bindings;
}

}  // namespace tarn
