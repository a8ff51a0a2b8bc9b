// Identity and order of terms as builtins: `tern` and `cmpr`.
#include "runtime/globals.h"
#include "numbers/model.h"
#include "primitives/builtins.h"
#include "reduction/canonical.h"

namespace tarn {

// tern x: the canonical shared copy of x.
Term handleTern(const Builtin&, const Args& args) { return tern(args[0]); }

// cmpr x y: the structural order as the hint 1 (x sorts first), -1 or 0.
Term handleCmpr(const Builtin&, const Args& args) {
  return int64ToTerm(termOrder(args[0], args[1]));
}

}  // namespace tarn
