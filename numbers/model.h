// The number model: how a list of truth values is spelled as a number leaf,
// a chain of (J b rest) cells, or a mix, and the conversions among those
// spellings, bit strings and host integers.
//
// Kinds: a `hint` (integer) list starts with K, a `numb` (binary fraction)
// with H. A hint text is its decimal digits, "0" for zero, and "0" before the
// digits of a negative magnitude ("05" is -5). A numb text starts "00".
// Conversions that meet a shape they cannot read are fatal assertions: the
// operators classify their operands before they convert.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "numbers/bits.h"
#include "terms/term.h"

namespace tarn {

// ---- Tests ------------------------------------------------------------------
// Leaf K, a digit leaf not starting "00", or an application (J K x).
bool isHostInteger(const Term& t);
// Leaf K, leaf "0", a leaf whose first byte is 1-9, or an application (J H x).
bool isHostNatural(const Term& t);
// Leaf K or a digit leaf, or (J b x) with b the leaf H or K.
bool isBitList(const Term& t);
// A leaf starting "00", or (J H x).
bool isNumbForm(const Term& t);
// True for the leaf K and the leaf "0".
bool hintIsZero(const Term& t);

// ---- Lists, texts and bit strings -------------------------------------------
// The bit string of a number term; the empty string when a cell of the chain
// is malformed. A term refused by isBitList is a fatal assertion.
BitString bitsOf(const Term& t);
// The leaf K for the empty list, otherwise the number leaf of the bits.
Term numberFromBits(const BitString& bits);
// The canonical text of a number term, whatever its spelling.
std::string numberText(const Term& t);
// Numb fixed form (the bit string divided by 2) and back to a numb leaf.
BitString numbBits(const Term& t);
Term numbFromBits(const BitString& fixed);

// ---- Host integers ----------------------------------------------------------
Term int64ToTerm(int64_t v);
Term uint64ToTerm(uint64_t v);
// The magnitude's low 64 bits (sentinel included), negated when the number is
// negative: numbers beyond 64 bits wrap silently.
int64_t termToInt64(const Term& t);
uint64_t termToUInt64(const Term& t);

// ---- Hint signs -------------------------------------------------------------
bool hintSign(const Term& t);  // true for zero and positive
Term hintAbs(const Term& t);
Term hintNegate(const Term& t);
Term hintToNumb(const Term& t);

}  // namespace tarn
