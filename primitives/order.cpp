// Identity and order of terms as builtins: `tern` and `cmpr`.
#include "runtime/globals.h"
#include "numbers/model.h"
#include "primitives/handlers.h"
#include "reduction/canonical.h"

namespace tarn {

// tern x: the canonical shared copy of x.
Term handleTern(const Term& chain) { return tern(chain.right()); }

// cmpr x y: the structural order as the hint 1 (x sorts first), -1 or 0.
Term handleCmpr(const Term& chain) {
  return int64ToTerm(termOrder(chainArg(chain, 0, 2), chainArg(chain, 1, 2)));
}

}  // namespace tarn
