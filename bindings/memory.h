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

// The accessors, one read and one write per stem, each taking the width in
// bytes. The rows below bind them to a width one by one.
Term refRead(const Args& args, int width);
Term refWrite(const Args& args, int width);
Term recRead(const Args& args, int width);
Term recWrite(const Args& args, int width);
Term redRead(const Args& args, int width);
Term redWrite(const Args& args, int width);
Term relRead(const Args& args, int width);
Term relWrite(const Args& args, int width);
Term remRead(const Args& args, int width);
Term remWrite(const Args& args, int width);

// A handler of one accessor: the stem's function at a fixed width.
template <Term (*F)(const Args&, int), int Width>
Term accessor(const Builtin&, const Args& args) {
  return F(args, Width);
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

inline constexpr auto kAccessorBuiltins = std::to_array<Builtin>({
    special("refh", 1, memory::accessor<memory::refRead, 1>, Memory::kWrites),
    special("refi", 1, memory::accessor<memory::refRead, 2>, Memory::kWrites),
    special("refj", 1, memory::accessor<memory::refRead, 4>, Memory::kWrites),
    special("refk", 1, memory::accessor<memory::refRead, 8>, Memory::kWrites),
    special("refl", 2, memory::accessor<memory::refWrite, 1>, Memory::kWrites),
    special("refm", 2, memory::accessor<memory::refWrite, 2>, Memory::kWrites),
    special("refn", 2, memory::accessor<memory::refWrite, 4>, Memory::kWrites),
    special("refo", 2, memory::accessor<memory::refWrite, 8>, Memory::kWrites),
    special("rech", 2, memory::accessor<memory::recRead, 1>, Memory::kWrites),
    special("reci", 2, memory::accessor<memory::recRead, 2>, Memory::kWrites),
    special("recj", 2, memory::accessor<memory::recRead, 4>, Memory::kWrites),
    special("reck", 2, memory::accessor<memory::recRead, 8>, Memory::kWrites),
    special("recl", 3, memory::accessor<memory::recWrite, 1>, Memory::kWrites),
    special("recm", 3, memory::accessor<memory::recWrite, 2>, Memory::kWrites),
    special("recn", 3, memory::accessor<memory::recWrite, 4>, Memory::kWrites),
    special("reco", 3, memory::accessor<memory::recWrite, 8>, Memory::kWrites),
    special("redh", 2, memory::accessor<memory::redRead, 1>, Memory::kWrites),
    special("redi", 2, memory::accessor<memory::redRead, 2>, Memory::kWrites),
    special("redj", 2, memory::accessor<memory::redRead, 4>, Memory::kWrites),
    special("redk", 2, memory::accessor<memory::redRead, 8>, Memory::kWrites),
    special("redl", 3, memory::accessor<memory::redWrite, 1>, Memory::kWrites),
    special("redm", 3, memory::accessor<memory::redWrite, 2>, Memory::kWrites),
    special("redn", 3, memory::accessor<memory::redWrite, 4>, Memory::kWrites),
    special("redo", 3, memory::accessor<memory::redWrite, 8>, Memory::kWrites),
    special("relh", 2, memory::accessor<memory::relRead, 1>, Memory::kWrites),
    special("reli", 2, memory::accessor<memory::relRead, 2>, Memory::kWrites),
    special("relj", 2, memory::accessor<memory::relRead, 4>, Memory::kWrites),
    special("relk", 2, memory::accessor<memory::relRead, 8>, Memory::kWrites),
    special("rell", 3, memory::accessor<memory::relWrite, 1>, Memory::kWrites),
    special("relm", 3, memory::accessor<memory::relWrite, 2>, Memory::kWrites),
    special("reln", 3, memory::accessor<memory::relWrite, 4>, Memory::kWrites),
    special("relo", 3, memory::accessor<memory::relWrite, 8>, Memory::kWrites),
    special("remh", 2, memory::accessor<memory::remRead, 1>, Memory::kWrites),
    special("remi", 2, memory::accessor<memory::remRead, 2>, Memory::kWrites),
    special("remj", 2, memory::accessor<memory::remRead, 4>, Memory::kWrites),
    special("remk", 2, memory::accessor<memory::remRead, 8>, Memory::kWrites),
    special("reml", 3, memory::accessor<memory::remWrite, 1>, Memory::kWrites),
    special("remm", 3, memory::accessor<memory::remWrite, 2>, Memory::kWrites),
    special("remn", 3, memory::accessor<memory::remWrite, 4>, Memory::kWrites),
    special("remo", 3, memory::accessor<memory::remWrite, 8>, Memory::kWrites),
});

// The whole family: the block builtins, then the forty accessors.
inline constexpr auto kMemoryBuiltins = [] {
  std::array<Builtin, kMemoryBlockBuiltins.size() + kAccessorBuiltins.size()> all{};
  size_t k = 0;
  for (const Builtin& b : kMemoryBlockBuiltins) all[k++] = b;
  for (const Builtin& b : kAccessorBuiltins) all[k++] = b;
  return all;
}();

}  // namespace tarn
