// A structural dump of a term for tests: (l r) for every application, [c] for
// a one-byte symbol leaf that is no letter or digit, "cray" for a vector, and
// the text of any other leaf. Unlike printTerm it shows every node, so a test
// states the exact tree. Recursive: for small terms only.
#pragma once

#include <string>

#include "terms/term.h"

namespace tarn::testing {

inline std::string treeOf(const Term& t) {
  if (t.isApp()) return "(" + treeOf(t.left()) + " " + treeOf(t.right()) + ")";
  if (t.first() == '\n') return "cray";
  std::string_view text = textOf(t);
  unsigned char c = text.empty() ? 0 : static_cast<unsigned char>(text[0]);
  bool letterOrDigit = isWordByte(c) || isDigit(c) || (c >= 'A' && c <= 'Z');
  if (text.size() == 1 && !letterOrDigit) return "[" + std::string(text) + "]";
  return std::string(text);
}

}  // namespace tarn::testing
