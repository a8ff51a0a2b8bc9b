// Handlers of the data primitives, bound by name in handlers.cpp.
#pragma once

#include "terms/term.h"

namespace tarn {

Term handleLisp(const Term& chain);

}  // namespace tarn
