// Name lists as sorted vectors of strings.
#include "checks/names.h"

#include <algorithm>

namespace tarn {

NameList emptyNames() { return NameList{}; }

NameList oneName(std::string_view name) {
  NameList list;
  list.names.emplace_back(name);
  return list;
}

NameList mergeNames(const NameList& a, const NameList& b) {
  NameList out;
  out.names.reserve(a.names.size() + b.names.size());
  std::set_union(a.names.begin(), a.names.end(), b.names.begin(), b.names.end(),
                 std::back_inserter(out.names));
  return out;
}

void insertName(NameList& list, std::string_view name) {
  auto it = std::lower_bound(list.names.begin(), list.names.end(), name);
  if (it == list.names.end() || *it != name) list.names.emplace(it, name);
}

void removeName(NameList& list, std::string_view name) {
  auto it = std::lower_bound(list.names.begin(), list.names.end(), name);
  if (it != list.names.end() && *it == name) list.names.erase(it);
}

bool hasName(const NameList& list, std::string_view name) {
  return std::binary_search(list.names.begin(), list.names.end(), name);
}

}  // namespace tarn
