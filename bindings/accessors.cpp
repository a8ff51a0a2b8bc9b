// The forty accessors: numbers of 1, 2, 4 or 8 bytes read from and written to
// raw addresses, bracket literals, any node's bytes and blobs.
#include <string>

#include "bindings/memory.h"
#include "runtime/annotate.h"
#include "terms/texts.h"

namespace tarn::memory {

namespace {

// The width's bytes at p, unsigned, in host byte order.
uint64_t load(const void* p, int width) {
  uint64_t v = 0;
  std::memcpy(&v, p, size_t(width));
  return v;
}
// The value's low `width` bytes stored at p.
void store(void* p, uint64_t value, int width) { std::memcpy(p, &value, size_t(width)); }

// The value a write stores: the checked stems and `ref` keep the sign in two's
// complement (termToInt64), `red` and `rem` drop it (termToUInt64: -1 stores 1).
uint64_t signedValue(const Term& t) { return uint64_t(termToInt64(t)); }
uint64_t unsignedValue(const Term& t) { return termToUInt64(t); }

// A leaf that no one else holds: the application being reduced is its only
// holder, so an update in place is seen by no other term.
bool soleHeld(const Term& t) { return t.isLeaf() && t.node()->count() == 1; }

bool isBlobLeaf(const Term& t) { return t.isLeaf() && t.first() == '('; }

// The checked stems' index: a negative index counts from the end; the width
// must fit between it and n. False when it does not.
bool placeIndex(const Term& indexTerm, size_t n, int width, size_t& index) {
  int64_t i = termToInt64(indexTerm);
  if (i < 0) i += int64_t(n);
  if (i < 0) return false;
  if (uint64_t(i) > n || n - uint64_t(i) < size_t(width)) return false;
  index = size_t(i);
  return true;
}

// The text between a bracket value's outer brackets.
std::string innerText(const Term& t) {
  std::string text = flatten(t);
  return text.substr(1, text.size() - 2);
}

// Where `red` reads: the node's bytes from the second one on. For a leaf that
// is the text after its first byte; for an application, its child pointers.
unsigned char* leafBody(const Term& t) { return t.node()->bytes() + 1; }

// The blob's first data byte. The blob assertion: anything but a blob leaf
// stops the process.
unsigned char* blobData(const Term& t) {
  return reinterpret_cast<unsigned char*>(const_cast<char*>(blobBytes(t).data()));
}

// A bracket's effect on the balance: +1 for "[", -1 for "]". The value is
// compared whole, so a wider value counts only when its upper bytes are 0.
int bracketWeight(uint64_t v) { return (v == '[') - (v == ']'); }

Term wrapInBrackets(const std::string& bytes) { return leaf("[" + bytes + "]"); }

}  // namespace

// ref: the address as the location. Reads take it unsigned and test nothing.
Term refRead(const Args& args, int width) {
  auto address = reinterpret_cast<const void*>(uintptr_t(termToUInt64(args[0])));
  return uint64ToTerm(load(address, width));
}

Term refWrite(const Args& args, int width) {
  if (!isHostInteger(args[0]) || !isHostInteger(args[1])) return leafByte('Z');
  void* address = termToPointer(args[0]);
  store(address, signedValue(args[1]), width);
  return leafByte('I');
}

// rec: bracket data, indexed between its brackets. Reads flatten and copy the
// text on every call.
Term recRead(const Args& args, int width) {
  if (kindOf(args[0]) != Kind::kBracket || !isHostInteger(args[1])) return leafByte('Z');
  std::string text = innerText(args[0]);
  size_t index;
  if (!placeIndex(args[1], text.size(), width, index)) return leafByte('Z');
  return uint64ToTerm(load(text.data() + index, width));
}

// A rec write gives a new literal; it never changes the target. A solely held
// literal leaf takes the in-place path of the blob writes, whose blob
// assertion stops the process: a rec write works on shared literals only.
Term recWrite(const Args& args, int width) {
  if (kindOf(args[0]) != Kind::kBracket || !isHostInteger(args[1]) || !isHostInteger(args[2]))
    return leafByte('Z');
  if (soleHeld(args[0])) blobData(args[0]);  // does not return
  std::string text = innerText(args[0]);
  size_t index;
  if (!placeIndex(args[1], text.size(), width, index)) return leafByte('Z');
  uint64_t mask = width == 8 ? ~uint64_t(0) : (uint64_t(1) << (8 * width)) - 1;
  uint64_t value = signedValue(args[2]) & mask;
  if (bracketWeight(value) != bracketWeight(load(text.data() + index, width))) return leafByte('Z');
  store(text.data() + index, value, width);
  return wrapInBrackets(text);
}

// red: any node's bytes from the second one on, unchecked. Writes change the
// node in place, seen by every holder.
Term redRead(const Args& args, int width) {
  uint64_t index = termToUInt64(args[1]);
  return uint64ToTerm(load(leafBody(args[0]) + index, width));
}

Term redWrite(const Args& args, int width) {
  uint64_t index = termToUInt64(args[1]);
  uint64_t value = unsignedValue(args[2]);
  store(leafBody(args[0]) + index, value, width);
  return args[0];
}

// rel: a blob's data bytes, checked.
Term relRead(const Args& args, int width) {
  if (!isBlobLeaf(args[0]) || !isHostInteger(args[1])) return leafByte('Z');
  std::string_view bytes = blobBytes(args[0]);
  size_t index;
  if (!placeIndex(args[1], bytes.size(), width, index)) return leafByte('Z');
  return uint64ToTerm(load(bytes.data() + index, width));
}

// A solely held blob is changed in place and given back. A shared one is
// copied, and the copy comes back as bracket data, "[" bytes "]", with no
// balance check: writing into a shared blob gives kind u.
Term relWrite(const Args& args, int width) {
  if (!isBlobLeaf(args[0]) || !isHostInteger(args[1]) || !isHostInteger(args[2])) return leafByte('Z');
  std::string_view bytes = blobBytes(args[0]);
  size_t index;
  if (!placeIndex(args[1], bytes.size(), width, index)) return leafByte('Z');
  uint64_t value = signedValue(args[2]);
  if (soleHeld(args[0])) {
    store(blobData(args[0]) + index, value, width);
    return args[0];
  }
  std::string copy(bytes);
  store(copy.data() + index, value, width);
  return wrapInBrackets(copy);
}

// rem: a blob's data bytes, unchecked but for the blob assertion. Writes
// change the blob in place, seen by every holder.
Term remRead(const Args& args, int width) {
  unsigned char* data = blobData(args[0]);
  uint64_t index = termToUInt64(args[1]);
  return uint64ToTerm(load(data + index, width));
}

Term remWrite(const Args& args, int width) {
  unsigned char* data = blobData(args[0]);
  uint64_t index = termToUInt64(args[1]);
  uint64_t value = unsignedValue(args[2]);
  store(data + index, value, width);
  return args[0];
}

}  // namespace tarn::memory
