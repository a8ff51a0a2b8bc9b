// Node allocation and release.
//
// Application nodes are 24-byte cells handed out from slabs and recycled
// through a free list threaded through their header words. Leaves carry a
// 16-byte hidden prefix and come from size-class free lists up to 256 bytes,
// from the system allocator beyond. Release is iterative: freeing a list of a
// million cells or an application chain a million deep uses a heap work
// stack, never the native stack.
#include <cstdlib>
#include <vector>

#include "terms/failure.h"
#include "terms/node.h"

namespace tarn {
namespace {

constexpr size_t kSlabCells = 8192;
constexpr size_t kClassStep = 16;
constexpr size_t kSmallLimit = 256;  // block bytes served from class lists
constexpr size_t kClasses = kSmallLimit / kClassStep;

struct FreeCell {
  FreeCell* next;
};

FreeCell* appFree = nullptr;
FreeCell* leafFree[kClasses + 1] = {};

void* systemAlloc(size_t bytes) {
  void* p = std::malloc(bytes);
  if (!p) TARN_FAIL();  // exhaustion of memory ends the program
  return p;
}

[[gnu::noinline, maybe_unused]] void refillAppCells() {
  auto* slab = static_cast<unsigned char*>(systemAlloc(kSlabCells * kAppNodeBytes));
  for (size_t i = kSlabCells; i-- > 0;) {
    auto* c = reinterpret_cast<FreeCell*>(slab + i * kAppNodeBytes);
    c->next = appFree;
    appFree = c;
  }
}

[[gnu::noinline, maybe_unused]] void refillLeafClass(size_t cls) {
  size_t block = cls * kClassStep;
  size_t count = 65536 / block;
  auto* slab = static_cast<unsigned char*>(systemAlloc(count * block));
  for (size_t i = count; i-- > 0;) {
    auto* c = reinterpret_cast<FreeCell*>(slab + i * block);
    c->next = leafFree[cls];
    leafFree[cls] = c;
  }
}

}  // namespace

Node* allocAppNode() {
#ifdef TARN_SANITIZE
  return static_cast<Node*>(systemAlloc(kAppNodeBytes));
#else
  if (!appFree) [[unlikely]] refillAppCells();
  FreeCell* c = appFree;
  appFree = c->next;
  return reinterpret_cast<Node*>(c);
#endif
}

Node* allocLeafNode(size_t payloadBytes) {
  // A request that would overflow asks for the largest size, so that the
  // allocator fails.
  size_t want = sizeof(LeafPrefix) + sizeof(Node) + payloadBytes;
  if (payloadBytes > (size_t(1) << 62)) want = ~size_t(0);
  void* block;
  size_t blockBytes;
#ifdef TARN_SANITIZE
  blockBytes = want;
  block = systemAlloc(want);
#else
  if (want <= kSmallLimit) {
    size_t cls = (want + kClassStep - 1) / kClassStep;
    if (!leafFree[cls]) [[unlikely]] refillLeafClass(cls);
    FreeCell* c = leafFree[cls];
    leafFree[cls] = c->next;
    block = c;
    blockBytes = cls * kClassStep;
  } else {
    blockBytes = want;
    block = systemAlloc(want);
  }
#endif
  auto* pre = static_cast<LeafPrefix*>(block);
  pre->blockBytes = blockBytes > 0xffffffffu ? 0xffffffffu : uint32_t(blockBytes);
  pre->cacheEpoch = 0;
  pre->cacheSlot = nullptr;
  return reinterpret_cast<Node*>(pre + 1);
}

void freeNodeMemory(Node* n) {
#ifdef TARN_SANITIZE
  if (n->isLeaf()) std::free(prefixOf(n));
  else std::free(n);
#else
  if (!n->isLeaf()) {
    auto* c = reinterpret_cast<FreeCell*>(n);
    c->next = appFree;
    appFree = c;
    return;
  }
  LeafPrefix* pre = prefixOf(n);
  size_t blockBytes = pre->blockBytes;
  if (blockBytes <= kSmallLimit) {
    auto* c = reinterpret_cast<FreeCell*>(pre);
    size_t cls = blockBytes / kClassStep;
    c->next = leafFree[cls];
    leafFree[cls] = c;
  } else {
    std::free(pre);
  }
#endif
}

void countOverflow() { TARN_FAIL(); }

// The count of n has reached zero. Children whose counts reach zero in turn
// go on a work stack instead of the native stack.
std::vector<Node*> destroyWork;

void destroyNode(Node* n) {
  std::vector<Node*>& work = destroyWork;
  size_t base = work.size();
  for (;;) {
    if (!n->isLeaf()) {
      Node* kids[2] = {n->leftNode(), n->rightNode()};
      for (Node* k : kids) {
        uint64_t h = k->header;
        if ((h & header::kCountMask) == 1) work.push_back(k);
        else k->header = h - 1;
      }
    } else if (n->bytes()[0] == '\n') {
      size_t count = n->size();
      for (size_t i = 0; i < count; i++) {
        Node* k = n->element(i);
        if (!k) continue;
        uint64_t h = k->header;
        if ((h & header::kCountMask) == 1) work.push_back(k);
        else k->header = h - 1;
      }
    }
    freeNodeMemory(n);
    if (work.size() == base) return;
    n = work.back();
    work.pop_back();
  }
}

}  // namespace tarn
