// The builtins of the number operators, one row each: arithmetic, comparison,
// reals and the unary operators.
//
// Contract: a row reads its operands (values, borrowed) through `Args` and
// calls the operation of numbers/operators.h; the operations never start a
// reduction and never change an operand.
#pragma once

#include <array>

#include "numbers/operators.h"
#include "runtime/builtins.h"

namespace tarn {

namespace numberRows {

using Binary = Term (*)(const Term&, const Term&);
using Unary = Term (*)(const Term&);

template <Binary op>
Term binary(const Builtin&, const Args& a) {
  return op(a[0], a[1]);
}

template <Unary op>
Term unary(const Builtin&, const Args& a) {
  return op(a[0]);
}

}  // namespace numberRows

inline constexpr auto kNumberBuiltins = std::to_array<Builtin>({
    special("buck", 1, numberRows::unary<valueBuck>),
    special("cape", 1, numberRows::unary<valueCape>),
    special("cent", 2, numberRows::binary<valueCent>),
    special("dash", 2, numberRows::binary<valueDash>),
    special("diff", 2, numberRows::binary<valueDiff>),
    special("gteq", 2, numberRows::binary<valueGreaterEq>),
    special("less", 2, numberRows::binary<valueLess>),
    special("mult", 2, numberRows::binary<valueMult>),
    special("over", 2, numberRows::binary<valueOver>),
    special("plus", 2, numberRows::binary<valuePlus>),
    special("powa", 2, numberRows::binary<valuePowa>),
    special("real", 1, numberRows::unary<valueReal>),
    special("same", 2, numberRows::binary<valueSame>),
    special("wave", 1, numberRows::unary<valueWave>),
});

}  // namespace tarn
