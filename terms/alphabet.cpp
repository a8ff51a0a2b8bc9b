// The system alphabet: digit values by table, and counts written in it.
#include "terms/alphabet.h"

#include <array>

#include "terms/failure.h"

namespace tarn {

namespace {

constexpr std::array<int8_t, 256> makeDigitTable() {
  std::array<int8_t, 256> table{};
  for (auto& v : table) v = -1;
  for (int i = 0; i < 64; i++) table[static_cast<unsigned char>(kAlphabet[i])] = int8_t(i);
  return table;
}
constexpr auto kDigitTable = makeDigitTable();

}  // namespace

int digitValue(unsigned char c) {
  int v = kDigitTable[c];
  TARN_ASSERT(v >= 0);
  return v;
}

bool isAlphabetDigit(unsigned char c) { return kDigitTable[c] >= 0; }

std::string alphabetNumber(uint64_t value) {
  std::string out;
  while (value) {
    out.insert(out.begin(), kAlphabet[value % 64]);
    value /= 64;
  }
  return out;
}

}  // namespace tarn
