// Element update and slices: `cork` sets one element of a value, `trim` takes
// a slice of it.
//
// Both are pure to the program's eye, with one careful exception: when the
// target has no holder but the application being fired (Args::soleHeld), a
// blob, vector or literal leaf is changed in place and returned, so that a
// loop threading one value through `cork` runs without copying. A value that
// anything else holds is copied first, and its holders see no change.
//
// The order of the tests is part of the behaviour: the index first, then the
// value test of the kind, then the bounds. Every failure is a fresh Z, and a
// failed update leaves the target as it was.
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

// The low byte of an integer value.
unsigned char lowByte(const Term& v) { return static_cast<unsigned char>(termToInt64(v)); }

// cork on a blob: byte i becomes the value's low byte.
Term corkBlob(const Args& args) {
  const Term& blob = args[0];
  if (!isHostInteger(args[2])) return noAnswer();
  std::string_view bytes = blobBytes(blob);
  int64_t i = termToInt64(args[1]);
  int64_t n = int64_t(bytes.size());
  if (!data::normaliseIndex(i, n) || i >= n) return noAnswer();
  unsigned char b = lowByte(args[2]);
  if (args.soleHeld(0)) {
    const_cast<char*>(bytes.data())[i] = char(b);
    return blob;
  }
  std::string copy(bytes);
  copy[size_t(i)] = char(b);
  return blobLeaf(copy);
}

// cork on a real: bit i of the pattern (counted from the least significant)
// becomes 1 for K and 0 for H. A real is always copied.
Term corkReal(const Args& args) {
  int64_t i = termToInt64(args[1]);
  if (i < -64 || i > 63) return noAnswer();
  if (!data::isTruth(args[2])) return noAnswer();
  if (i < 0) i += 64;
  uint64_t pattern;
  std::memcpy(&pattern, args[0].node()->bytes() + 1, 8);
  uint64_t bit = uint64_t(1) << i;
  pattern = isByteLeaf(args[2], 'K') ? (pattern | bit) : (pattern & ~bit);
  double v;
  std::memcpy(&v, &pattern, 8);
  return realLeaf(v);
}

// cork on a number: element i of its bit string. An index past the end grows
// the string; a string left with no bit set is no number.
Term corkNumber(const Args& args) {
  if (!data::isTruth(args[2])) return noAnswer();
  data::NumberBits b = data::numberBitsOf(args[0]);
  if (b.bits.empty()) return noAnswer();  // a chain of cells that is no list
  int64_t i = termToInt64(args[1]);
  if (i < -b.length) return noAnswer();
  if (i < 0) i += b.length;
  setBit(b.bits, size_t(i), isByteLeaf(args[2], 'K'));
  if (isAllZero(b.bits)) return noAnswer();
  stripZeros(b.bits);
  return numberFromBits(b.bits);
}

// cork on a vector: slot i holds the value; the leaf U empties the slot. Any
// value can be stored.
Term corkVector(const Args& args) {
  const Term& vec = args[0];
  int64_t i = termToInt64(args[1]);
  int64_t n = vec.node()->size();
  if (!data::normaliseIndex(i, n) || i >= n) return noAnswer();
  Term element = isByteLeaf(args[2], 'U') ? Term() : args[2];
  if (args.soleHeld(0)) {
    setElement(vec, size_t(i), std::move(element));
    return vec;
  }
  Term clone = vectorLeaf(size_t(n));
  for (int64_t k = 0; k < n; k++)
    if (k != i) setElement(clone, size_t(k), elementOf(vec, size_t(k)));
  setElement(clone, size_t(i), std::move(element));
  return clone;
}

// cork on bracket data: byte i of the text between the brackets becomes the
// value's low byte. The byte replaced must not be a bracket; the new byte is
// not tested, so a program may leave the literal unbalanced.
Term corkBracket(const Args& args) {
  const Term& target = args[0];
  if (!isHostInteger(args[2])) return noAnswer();
  std::string flat;
  std::string_view inner = data::innerText(target, flat);
  int64_t i = termToInt64(args[1]);
  int64_t n = int64_t(inner.size());
  if (!data::normaliseIndex(i, n) || i >= n) return noAnswer();
  if (inner[size_t(i)] == '[' || inner[size_t(i)] == ']') return noAnswer();
  unsigned char b = lowByte(args[2]);
  if (target.isLeaf() && args.soleHeld(0)) {
    // The in-place path addresses text position i + 9, eight bytes past the
    // byte the copying path changes; programs see this offset and it is kept.
    // The literal's slack holds every such position (up to 6 bytes past the
    // NUL) inside the node, and keeps a NUL behind it.
    size_t at = size_t(i) + 9;
    TARN_ASSERT(at + 1 < leafCapacity(target.node()));
    target.node()->bytes()[at] = b;
    return target;
  }
  std::string text(inner);
  text[size_t(i)] = char(b);
  return data::bracketLiteral(text);
}

// Bounds [low, high) of a slice of n elements, each counted from the end when
// negative. False when a bound stays negative or lies outside 0..n, or when
// low is above high.
bool sliceBounds(int64_t& low, int64_t& high, int64_t n) {
  if (!data::normaliseIndex(low, n) || !data::normaliseIndex(high, n)) return false;
  return low <= high && low <= n && high <= n;
}

// A slice of a literal's text must be balanced by itself.
bool isBalanced(std::string_view text) {
  long depth = 0;
  for (char c : text) {
    if (c == '[') depth++;
    else if (c == ']' && --depth < 0) return false;
  }
  return depth == 0;
}

Term trimBlob(const Term& blob, int64_t low, int64_t high) {
  if (low == high) return blobLeaf("");  // whatever the length: before the bounds
  std::string_view bytes = blobBytes(blob);
  if (!sliceBounds(low, high, int64_t(bytes.size()))) return noAnswer();
  return blobLeaf(bytes.substr(size_t(low), size_t(high - low)));
}

// No shortcut for equal bounds: a slice of 0 elements is a new vector, not
// the process's empty one.
Term trimVector(const Term& vec, int64_t low, int64_t high) {
  if (!sliceBounds(low, high, vec.node()->size())) return noAnswer();
  Term slice = vectorLeaf(size_t(high - low));
  for (int64_t k = low; k < high; k++) setElement(slice, size_t(k - low), elementOf(vec, size_t(k)));
  return slice;
}

Term trimBracket(const Term& target, int64_t low, int64_t high) {
  if (low == high) return leaf("[]");
  std::string flat;
  std::string_view inner = data::innerText(target, flat);
  if (!sliceBounds(low, high, int64_t(inner.size()))) return noAnswer();
  std::string_view slice = inner.substr(size_t(low), size_t(high - low));
  if (!isBalanced(slice)) return noAnswer();
  return data::bracketLiteral(slice);
}

}  // namespace

// cork target index value: the target with one element set, in place for a
// sole holder, else in a copy; Z on any failure.
Term handleCork(const Builtin&, const Args& args) {
  if (!isHostInteger(args[1])) return noAnswer();
  switch (kindOf(args[0])) {
    case Kind::kBlob: return corkBlob(args);
    case Kind::kReal: return corkReal(args);
    case Kind::kInteger:
    case Kind::kFraction: return corkNumber(args);
    case Kind::kVector: return corkVector(args);
    case Kind::kBracket: return corkBracket(args);
    default: return noAnswer();
  }
}

// trim target low high: the elements from low up to high (not included), as
// a new value of the target's kind; Z on any failure. Numbers and reals have
// no slices.
Term handleTrim(const Builtin&, const Args& args) {
  if (!isHostInteger(args[1]) || !isHostInteger(args[2])) return noAnswer();
  Kind kind = kindOf(args[0]);
  if (kind != Kind::kBlob && kind != Kind::kVector && kind != Kind::kBracket) return noAnswer();
  int64_t low = termToInt64(args[1]);
  int64_t high = termToInt64(args[2]);
  if (kind == Kind::kBlob) return trimBlob(args[0], low, high);
  if (kind == Kind::kVector) return trimVector(args[0], low, high);
  return trimBracket(args[0], low, high);
}

}  // namespace tarn
