// Shapes and helpers shared by the data primitives.
#include "primitives/data.h"

#include <cstring>

#include "numbers/bits.h"
#include "numbers/model.h"
#include "terms/texts.h"

namespace tarn::data {

bool isTaggedTree(const Term& t) {
  if (!t.isApp() || !t.left().isApp() || !isByteLeaf(t.left().left(), 'V')) return false;
  const Term& tag = t.left().right();
  return tag.isApp() && isByteLeaf(tag.left(), 'X') && isByteLeaf(tag.right(), 'J');
}

Term taggedTree(Term body) {
  return App2(leafByte('V'), App(leafByte('X'), leafByte('J')), std::move(body));
}

std::string_view innerText(const Term& bracket, std::string& scratch) {
  std::string_view text;
  if (bracket.isLeaf()) {
    text = textOf(bracket);
  } else {
    scratch = flatten(bracket);
    text = scratch;
  }
  return text.size() >= 2 ? text.substr(1, text.size() - 2) : std::string_view();
}

Term bracketLiteral(std::string_view inner) {
  Term t = rawLeaf(inner.size() + 2);
  unsigned char* p = rawBytes(t);
  p[0] = '[';
  if (!inner.empty()) std::memcpy(p + 1, inner.data(), inner.size());
  p[inner.size() + 1] = ']';
  sealLeaf(t, inner.size() + 2);
  return t;
}

NumberBits numberBitsOf(const Term& number) {
  NumberBits r{bitsOf(number), 0};
  size_t len = bitLength(r.bits);
  if (len > 0) r.length = int64_t(len - 1);
  return r;
}

}  // namespace tarn::data
