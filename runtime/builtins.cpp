// The installed builtin table and the call into a row's handler.
#include "runtime/builtins.h"

#include <string>

#include "terms/failure.h"

namespace tarn {

namespace {

std::span<const Builtin> gTable;

}  // namespace

void installBuiltins(std::span<const Builtin> table) {
  TARN_ASSERT(table.size() == size_t(kBuiltinCount));
  gTable = table;
}

std::span<const Builtin> builtinTable() {
  TARN_ASSERT(!gTable.empty());
  return gTable;
}

const Builtin* findBuiltin(std::string_view name) {
  auto t = builtinTable();
  auto it = std::lower_bound(t.begin(), t.end(), name,
                             [](const Builtin& b, std::string_view n) { return b.name < n; });
  if (it == t.end() || it->name != name) return nullptr;
  return &*it;
}

void unimplementedBuiltin(const Builtin& b) {
  std::string tag = "unimplemented " + std::string(b.name);
  internalFailure(tag.c_str());
}

}  // namespace tarn
