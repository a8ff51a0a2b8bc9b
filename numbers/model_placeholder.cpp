// PLACEHOLDER: termToInt64 for plain decimal leaves only, until the number
// model lands. A text is "0", positive digits, or "0" and the digits of a
// negative magnitude; the value wraps modulo 2^64.
#include "numbers/model.h"

namespace tarn {

int64_t termToInt64(const Term& t) {
  TARN_ASSERT(t.isLeaf());
  std::string_view text = textOf(t);
  TARN_ASSERT(!text.empty() && !(text.size() >= 2 && text[0] == '0' && text[1] == '0'));
  bool negative = text.size() > 1 && text[0] == '0';
  uint64_t magnitude = 0;
  for (size_t i = negative ? 1 : 0; i < text.size(); i++) {
    TARN_ASSERT(isDigit(static_cast<unsigned char>(text[i])));
    magnitude = magnitude * 10 + uint64_t(text[i] - '0');
  }
  return int64_t(negative ? 0 - magnitude : magnitude);
}

}  // namespace tarn
