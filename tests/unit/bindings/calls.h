// Calling a builtin from a unit test as the machine would: its saturated
// application built from argument values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "numbers/model.h"
#include "runtime/builtins.h"
#include "terms/texts.h"

namespace tarn::testing {

inline Term call(std::string_view name, std::vector<Term> args) {
  Term chain = leaf(name);
  for (Term& a : args) chain = App(std::move(chain), std::move(a));
  return callBuiltin(*findBuiltin(name), chain);
}
// An integer term holding a host address.
inline Term address(const void* p) { return int64ToTerm(reinterpret_cast<intptr_t>(p)); }
inline std::string text(const Term& t) { return std::string(textOf(t)); }

}  // namespace tarn::testing
