// Nodes: the one heap record of the term graph, and its header word.
//
// Invariant (reference counts): a node lives while its `count` is above zero.
// Only the code of this folder changes a count; everyone else holds nodes
// through `Term` (term.h), which owns exactly one reference.
//
// Layout, which programs can read through the memory builtins and which is
// therefore part of the language:
//   application: [header][left Node*][right Node*]           exactly 24 bytes
//   leaf:        [header][text bytes...][NUL]                 one allocation
//   vector leaf: [header][byte 10][size element Node*s]       elements unaligned
// A leaf allocation also carries a hidden prefix in front of the header (see
// LeafPrefix), outside the readable layout.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tarn {

// NodeHeader bits, least significant first:
//   0-29   count    references held to the node
//   30-55  size     text length, element count or free-variable set
//   56-61  arity    remaining arity, stored biased by 52 ('4')
//   62     pending  the term still holds work
//   63     leaf     set on a leaf
// Bits 56-62 read together are the `state`; 0 means "not annotated yet" and
// 64 ('@') means closed data.
namespace header {
inline constexpr uint64_t kCountMask = 0x3fffffffull;
inline constexpr int kSizeShift = 30;
inline constexpr uint64_t kSizeMask = 0x3ffffffull;  // after the shift
inline constexpr uint32_t kSizeLimit = 0x4000000u;   // sizes must stay below
inline constexpr int kTopShift = 56;
inline constexpr uint8_t kLeafBit = 0x80;
inline constexpr uint8_t kPendingBit = 0x40;
inline constexpr uint8_t kArityBits = 0x3f;
inline constexpr uint8_t kStateBits = 0x7f;
inline constexpr int kArityBias = 52;
inline constexpr uint8_t kStateData = 64;  // '@'
inline constexpr uint8_t kFreshLeafTop = 0x80;
inline constexpr uint8_t kProductLeafTop = 182;  // leaf, arity +2: a product
}  // namespace header

struct Node {
  uint64_t header;  // the word above; children or text follow it

  uint32_t count() const { return uint32_t(header & header::kCountMask); }
  uint32_t size() const {
    return uint32_t((header >> header::kSizeShift) & header::kSizeMask);
  }
  uint8_t top() const { return uint8_t(header >> header::kTopShift); }
  uint8_t state() const { return top() & header::kStateBits; }
  bool isLeaf() const { return (top() & header::kLeafBit) != 0; }
  bool isData() const { return state() == header::kStateData; }
  bool pending() const { return (top() & header::kPendingBit) != 0; }
  // The arity value, -52..11; meaningful only once annotated and not data.
  int arity() const { return int(top() & header::kArityBits) - header::kArityBias; }

  void setTop(uint8_t t) {
    header = (header & ~(uint64_t(0xff) << header::kTopShift)) |
             (uint64_t(t) << header::kTopShift);
  }
  // Stores the size field; a value of 0x4000000 or more is a fatal assertion
  // (checked in term.cpp's setSize).
  void setSizeRaw(uint32_t s) {
    header = (header & ~(header::kSizeMask << header::kSizeShift)) |
             (uint64_t(s) << header::kSizeShift);
  }

  unsigned char* bytes() { return reinterpret_cast<unsigned char*>(this + 1); }
  const unsigned char* bytes() const {
    return reinterpret_cast<const unsigned char*>(this + 1);
  }
  Node* leftNode() const { return reinterpret_cast<Node* const*>(this + 1)[0]; }
  Node* rightNode() const { return reinterpret_cast<Node* const*>(this + 1)[1]; }
  unsigned char firstByte() const { return isLeaf() ? bytes()[0] : 0; }

  // Vector leaves: element i, which may be null (an empty slot).
  Node* element(size_t i) const {
    Node* e;
    std::memcpy(&e, bytes() + 1 + 8 * i, sizeof e);
    return e;
  }
  void setElementRaw(size_t i, Node* e) { std::memcpy(bytes() + 1 + 8 * i, &e, sizeof e); }
};
static_assert(sizeof(Node) == 8, "the header is one 64-bit word");
inline constexpr size_t kAppNodeBytes = 24;  // header + two child pointers

// Hidden bookkeeping in front of every leaf's header. It is not part of the
// readable node: it lets the allocator know the block size, and lets the
// machine cache the globals slot of a name (validated by an epoch that every
// memory-writing builtin advances, so a rewritten leaf never keeps a stale
// answer).
struct LeafPrefix {
  uint32_t blockBytes;  // size of the whole allocation, prefix included
  uint32_t cacheEpoch;  // 0: no cached slot
  void* cacheSlot;      // the globals slot of the leaf's name
};
static_assert(sizeof(LeafPrefix) == 16);
inline LeafPrefix* prefixOf(Node* n) { return reinterpret_cast<LeafPrefix*>(n) - 1; }

// Allocation (alloc.cpp). Application nodes come from a free list of 24-byte
// cells; leaves from size-class free lists or the system allocator.
Node* allocAppNode();
Node* allocLeafNode(size_t payloadBytes);  // payload: text bytes + NUL
void freeNodeMemory(Node* n);

// Count changes. The increment keeps the bits above the count untouched and
// stops the program when the count would overflow 0x3fffffff.
[[noreturn]] void countOverflow();
void destroyNode(Node* n);  // count reached zero: release children, free

inline void retainNode(Node* n) {
  uint64_t h = n->header;
  if ((h & header::kCountMask) == header::kCountMask) [[unlikely]] countOverflow();
  n->header = h + 1;
}
inline void releaseNode(Node* n) {
  uint64_t h = n->header;
  if ((h & header::kCountMask) == 1) destroyNode(n);
  else n->header = h - 1;
}

}  // namespace tarn
