// Stdio and file bindings.
#include <cstdio>

#include "bindings/frame.h"
#include "bindings/handlers.h"
#include "runtime/globals.h"

namespace tarn {

// puts text: writes a language string (blob or literal, brackets included)
// or the string at an address, and a newline.
Term handlePuts(const Term& chain) {
  const Term& text = chain.right();
  if (!isHostPointer(text)) return leafByte('Z');
  return int64ToTerm(std::puts(static_cast<const char*>(termToPointer(text))));
}

}  // namespace tarn
