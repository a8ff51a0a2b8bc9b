// The builtin table: names and arities from builtins.def, handlers bound by
// name from the families that implement them.
#include <algorithm>
#include <array>
#include <string>

#include "terms/failure.h"
#include "runtime/globals.h"

namespace tarn {

namespace {

std::array<Builtin, 254> makeTable() {
  std::array<Builtin, 254> table = {{
#define BUILTIN(name, arity, writes) {#name, arity, writes != 0, nullptr},
#include "runtime/builtins.def"
#undef BUILTIN
  }};
  auto bind = [&](std::span<const HandlerBinding> family) {
    for (const HandlerBinding& h : family) {
      auto it = std::lower_bound(table.begin(), table.end(), h.name,
                                 [](const Builtin& b, std::string_view n) { return b.name < n; });
      TARN_ASSERT(it != table.end() && it->name == h.name);
      TARN_ASSERT(it->handler == nullptr);
      it->handler = h.handler;
    }
  };
  bind(numberHandlers());
  bind(primitiveHandlers());
  bind(bindingHandlers());
  bind(compileHandlers());
  return table;
}

const std::array<Builtin, 254>& table() {
  static const std::array<Builtin, 254> t = makeTable();
  return t;
}

}  // namespace

std::span<const Builtin> builtinTable() { return table(); }

const Builtin* findBuiltin(std::string_view name) {
  const auto& t = table();
  auto it = std::lower_bound(t.begin(), t.end(), name,
                             [](const Builtin& b, std::string_view n) { return b.name < n; });
  if (it == t.end() || it->name != name) return nullptr;
  return &*it;
}

Term callBuiltin(const Builtin& b, const Term& chain) {
  if (!b.handler) [[unlikely]] {
    std::string tag = "unimplemented " + std::string(b.name);
    internalFailure(tag.c_str());
  }
  return b.handler(chain);
}

}  // namespace tarn
