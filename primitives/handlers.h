// Handlers of the data primitives, bound by name in handlers.cpp.
#pragma once

#include "terms/term.h"

namespace tarn {

Term handleLisp(const Term& chain);
Term handleTern(const Term& chain);
Term handleCmpr(const Term& chain);
Term handleType(const Term& chain);
Term handleRaws(const Term& chain);

}  // namespace tarn
