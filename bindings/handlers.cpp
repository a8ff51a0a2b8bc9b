// The builtin handlers of the host bindings, bound by name into the builtin
// table.
#include "bindings/handlers.h"

#include "runtime/globals.h"

namespace tarn {

std::span<const HandlerBinding> bindingHandlers() {
  static const HandlerBinding bindings[] = {
      {"puts", handlePuts},
  };
  return bindings;
}

}  // namespace tarn
