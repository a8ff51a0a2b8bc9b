// The memory family: allocation, block operations and the accessors that read
// and write numbers of each width at an address or inside a leaf.
//
// Contract: each builtin of this family is one row of the tables below. The
// allocator and block builtins are plain host calls through the binding frame
// (bindings/frame.h), their addresses integers only; `free` and `memset` skip
// their tests on purpose, so they never give Z. There is no memory safety
// here by design: a wild address or an index past the end faults or corrupts
// like any pointer error, except in the two checked stems.
//
// Accessors. A name is a stem and a suffix. The suffix gives the width and
// the operation: h i j k read 1, 2, 4, 8 bytes; l m n o write them, with one
// more argument, the value. Reads are unsigned, in host byte order. The stem
// says what the first argument is and what is checked:
//   ref  a raw address                      no test for reads; writes test both
//   rec  bracket data, between its brackets  kind, index, bounds, bracket balance
//   red  any node, from its text's 2nd byte  nothing
//   rel  a blob's data bytes                 kind, index, bounds
//   rem  a blob's data bytes                 the blob assertion only
// `rec` and `rel` index from the end when the index is negative, `red` and
// `rem` read the index unsigned. Writes store the value's low bytes, signed
// (ref, rec, rel) or with the sign dropped (red, rem).
//
// Accessor writes change bytes of nodes (in place for `red`, `rem` and a
// solely held `rel` target), so every row is Memory::kWrites: the machine
// then drops what it cached about leaf bytes.
#pragma once

#include <array>
#include <cstring>

#include "bindings/frame.h"

namespace tarn {

namespace memory {

// bzero address count: I; a count of 0 touches nothing, a negative one is Z.
Term zeroBlock(const Builtin& row, const Args& args);

// The accessor handlers, one read and one write per stem. The row's `value`
// holds the width in bytes and whether a written value is taken signed.
Term refRead(const Builtin& row, const Args& args);
Term refWrite(const Builtin& row, const Args& args);
Term recRead(const Builtin& row, const Args& args);
Term recWrite(const Builtin& row, const Args& args);
Term redRead(const Builtin& row, const Args& args);
Term redWrite(const Builtin& row, const Args& args);
Term relRead(const Builtin& row, const Args& args);
Term relWrite(const Builtin& row, const Args& args);
Term remRead(const Builtin& row, const Args& args);
Term remWrite(const Builtin& row, const Args& args);

// Row `value` of an accessor: the width in its low byte, kSignedValue set when
// a write takes the value through termToInt64 rather than termToUInt64.
inline constexpr int64_t kWidthMask = 0xff;
inline constexpr int64_t kSignedValue = 0x100;

struct AccessorStem {
  char name[4];      // the three letters
  int readArity;     // arguments of a read; a write takes one more
  bool signedValue;  // writes convert the value with termToInt64
  Handler read;
  Handler write;
};
inline constexpr AccessorStem kAccessorStems[] = {
    {"ref", 1, true, refRead, refWrite},
    {"rec", 2, true, recRead, recWrite},
    {"red", 2, false, redRead, redWrite},
    {"rel", 2, true, relRead, relWrite},
    {"rem", 2, false, remRead, remWrite},
};
inline constexpr int kStemCount = int(std::size(kAccessorStems));

struct AccessorWidth {
  char read;   // suffix of the read
  char write;  // suffix of the write
  int bytes;
};
inline constexpr AccessorWidth kAccessorWidths[] = {{'h', 'l', 1}, {'i', 'm', 2}, {'j', 'n', 4}, {'k', 'o', 8}};
inline constexpr int kWidthCount = int(std::size(kAccessorWidths));
inline constexpr int kAccessorCount = kStemCount * kWidthCount * 2;

// The four-letter names, stem by stem, reads then writes: "refh" ... "remo".
inline constexpr auto kAccessorNames = [] {
  std::array<char, 4 * kAccessorCount> names{};
  int k = 0;
  for (const AccessorStem& s : kAccessorStems)
    for (int write = 0; write < 2; write++)
      for (const AccessorWidth& w : kAccessorWidths) {
        for (int i = 0; i < 3; i++) names[size_t(k++)] = s.name[i];
        names[size_t(k++)] = write ? w.write : w.read;
      }
  return names;
}();

consteval std::array<Builtin, kAccessorCount> accessorRows() {
  std::array<Builtin, kAccessorCount> rows{};
  int k = 0;
  for (const AccessorStem& s : kAccessorStems)
    for (int write = 0; write < 2; write++)
      for (const AccessorWidth& w : kAccessorWidths) {
        Builtin b = special(std::string_view(kAccessorNames.data() + 4 * k, 4), s.readArity + write,
                            write ? s.write : s.read, Memory::kWrites);
        b.value = w.bytes | (s.signedValue ? kSignedValue : 0);
        rows[size_t(k++)] = b;
      }
  return rows;
}

// The overload of memchr that reads a constant block.
inline constexpr auto kFindByte = static_cast<const void* (*)(const void*, int, size_t)>(&::memchr);

}  // namespace memory

inline constexpr auto kMemoryBlockBuiltins = std::to_array<Builtin>({
    special("bzero", 2, memory::zeroBlock, Memory::kWrites),
    host<::calloc>("calloc", {ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::free>("free", {ArgTest::kUnchecked}, Result::kVoid),
    host<::malloc>("malloc", {ArgTest::kInteger}, Result::kSigned),
    host<memory::kFindByte>("memchr", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::memcmp>("memcmp", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    // memcpy is memmove: overlapping blocks are copied as memmove copies them.
    host<::memmove>("memcpy", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::memmove>("memmove", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::memset>("memset", {ArgTest::kUnchecked, ArgTest::kUnchecked, ArgTest::kUnchecked}, Result::kSigned),
    host<::realloc>("realloc", {ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
});

// The whole family: the block builtins, then the forty accessors.
inline constexpr auto kMemoryBuiltins = [] {
  constexpr auto accessors = memory::accessorRows();
  std::array<Builtin, kMemoryBlockBuiltins.size() + accessors.size()> all{};
  size_t k = 0;
  for (const Builtin& b : kMemoryBlockBuiltins) all[k++] = b;
  for (const Builtin& b : accessors) all[k++] = b;
  return all;
}();

}  // namespace tarn
