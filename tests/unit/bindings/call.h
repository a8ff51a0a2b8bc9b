// Calling a builtin row directly on a chain built from argument terms, as the
// machine does once every argument is a value.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "numbers/model.h"
#include "runtime/builtins.h"
#include "terms/term.h"

namespace tarn::testing {

// The saturated application of `row` to the arguments. Arguments are moved
// into the chain, so a temporary ends up held by the chain alone.
template <typename... T>
Term callRow(const Builtin& row, T&&... args) {
  if (sizeof...(T) != row.arity) throw std::logic_error("wrong argument count for " + std::string(row.name));
  Term chain = leaf(row.name);
  ((chain = App(std::move(chain), Term(std::forward<T>(args)))), ...);
  return row.handler(row, Args(chain, row.arity));
}

template <typename... T>
Term callNamed(std::string_view name, T&&... args) {
  const Builtin* row = findBuiltin(name);
  if (!row) throw std::logic_error("no builtin named " + std::string(name));
  return callRow(*row, std::forward<T>(args)...);
}

// A number leaf, an integer holding a host address, or the text of a result.
inline Term num(int64_t v) { return int64ToTerm(v); }
inline Term address(const void* p) { return int64ToTerm(reinterpret_cast<intptr_t>(p)); }
inline std::string text(const Term& t) { return std::string(textOf(t)); }

}  // namespace tarn::testing
