// The system's 64-digit alphabet, used for blob byte counts and source
// positions. The letters after q (and after Q) run q r u s t v w z x y: the
// order is the system's own and is part of the language.
#pragma once

#include <cstdint>
#include <string>

namespace tarn {

inline constexpr char kAlphabet[] =
    "_abcdefghijklmnopqrustvwzxy0123456789ABCDEFGHIJKLMNOPQRUSTVWZXY~";
static_assert(sizeof(kAlphabet) == 65);

// Value of an alphabet digit, 0..63; any other byte is a fatal assertion.
int digitValue(unsigned char c);
// True when c is one of the 64 digits.
bool isAlphabetDigit(unsigned char c);
// A count written in alphabet digits, most significant first, no leading
// "_"; zero is the empty text (as in the blob header "()").
std::string alphabetNumber(uint64_t value);

}  // namespace tarn
