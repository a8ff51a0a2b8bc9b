// Handlers of the host bindings, bound by name in handlers.cpp.
#pragma once

#include "terms/term.h"

namespace tarn {

Term handlePuts(const Term& chain);

}  // namespace tarn
