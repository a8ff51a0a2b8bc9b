// Element reading: `look`, the reader that goes with `cork` and `trim`.
//
// What an element is depends on the kind: a byte of a blob or of the text
// between a literal's brackets (as an integer 0-255), a bit of a real's 64-bit
// pattern or of a number's bit string (as K or H), a slot of a vector. A
// negative index counts from the end. Each kind keeps its own bounds, and the
// asymmetries are deliberate: a real reads index 64 as H, and a number has no
// upper bound at all (its length reads the sentinel, K; beyond it, H).
#include <cstdint>
#include <cstring>
#include <string>

#include "numbers/bits.h"
#include "numbers/model.h"
#include "primitives/builtins.h"
#include "primitives/data.h"
#include "runtime/annotate.h"

namespace tarn {

namespace {

using data::noAnswer;

// Byte i of a text of n bytes, the index counted from the end when negative.
Term byteAt(std::string_view bytes, int64_t i) {
  int64_t n = int64_t(bytes.size());
  if (i >= n) return noAnswer();
  if (!data::normaliseIndex(i, n)) return noAnswer();
  return int64ToTerm(static_cast<unsigned char>(bytes[size_t(i)]));
}

// Bit i of a real's pattern, bit 0 lowest; one past the last bit reads 0.
Term realBit(const Term& r, int64_t i) {
  if (!data::normaliseIndex(i, 64)) return noAnswer();
  if (i >= 65) return noAnswer();
  if (i == 64) return data::truth(false);
  uint64_t pattern;
  std::memcpy(&pattern, r.node()->bytes() + 1, 8);
  return data::truth((pattern >> i) & 1);
}

// Element i of a number's list; no upper bound.
Term numberBit(const Term& x, int64_t i) {
  data::NumberBits b = data::numberBitsOf(x);
  if (b.bits.empty()) return noAnswer();  // a chain of cells that is no list
  if (i < -b.length) return noAnswer();
  if (i < 0) i += b.length;
  return data::truth(getBit(b.bits, size_t(i)));
}

// Slot i of a vector; an empty slot reads as a fresh Z.
Term slotAt(const Term& v, int64_t i) {
  int64_t n = v.node()->size();
  if (!data::normaliseIndex(i, n) || i >= n) return noAnswer();
  Term e = elementOf(v, size_t(i));
  return e ? e : noAnswer();
}

}  // namespace

// look target index: the element of the target at the index, or Z.
Term handleLook(const Builtin&, const Args& args) {
  const Term& target = args[0];
  if (!isHostInteger(args[1])) return noAnswer();
  int64_t i = termToInt64(args[1]);
  switch (kindOf(target)) {
    case Kind::kBlob: return byteAt(blobBytes(target), i);
    case Kind::kReal: return realBit(target, i);
    case Kind::kInteger:
    case Kind::kFraction: return numberBit(target, i);
    case Kind::kVector: return slotAt(target, i);
    case Kind::kBracket: {
      std::string flat;
      return byteAt(data::innerText(target, flat), i);
    }
    default: return noAnswer();
  }
}

}  // namespace tarn
