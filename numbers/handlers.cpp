// The builtin handlers of this folder, bound by name into the builtin table.
// A handler reads its operands from the chain (the left operand of a binary
// builtin is the right child of the chain's left child) and calls the
// operation; the operations never start a reduction.
#include "runtime/globals.h"
#include "numbers/operators.h"

namespace tarn {

namespace {

using Binary = Term (*)(const Term&, const Term&);
using Unary = Term (*)(const Term&);

template <Binary op>
Term binary(const Term& chain) {
  return op(chain.left().right(), chain.right());
}

template <Unary op>
Term unary(const Term& chain) {
  return op(chain.right());
}

}  // namespace

std::span<const HandlerBinding> numberHandlers() {
  static const HandlerBinding bindings[] = {
      {"buck", unary<valueBuck>},       {"cape", unary<valueCape>},
      {"cent", binary<valueCent>},      {"dash", binary<valueDash>},
      {"diff", binary<valueDiff>},      {"gteq", binary<valueGreaterEq>},
      {"less", binary<valueLess>},      {"mult", binary<valueMult>},
      {"over", binary<valueOver>},      {"plus", binary<valuePlus>},
      {"powa", binary<valuePowa>},      {"real", unary<valueReal>},
      {"same", binary<valueSame>},      {"wave", unary<valueWave>},
  };
  return bindings;
}

}  // namespace tarn
