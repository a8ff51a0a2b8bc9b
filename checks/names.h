// Name lists: small sets of names kept in ascending byte order of the text.
//
// Invariant: `names` is strictly ascending (std::string's byte order), so it
// holds no duplicates. The passes build one list per definition or per
// subterm; the lists are short, and union and insertion are linear walks.
// A NameList owns its strings; nothing in it refers to a term.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct NameList {
  std::vector<std::string> names;  // strictly ascending
};

NameList emptyNames();
NameList oneName(std::string_view name);
// The sorted union; a name in both lists is kept once.
NameList mergeNames(const NameList& a, const NameList& b);
// Sorted insertion; a name already there leaves the list as it is.
void insertName(NameList& list, std::string_view name);
void removeName(NameList& list, std::string_view name);
bool hasName(const NameList& list, std::string_view name);
inline size_t countNames(const NameList& list) { return list.names.size(); }

}  // namespace tarn
