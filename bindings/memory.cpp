// The block builtin with a rule of its own: bzero.
#include "bindings/memory.h"

namespace tarn::memory {

// bzero address count: both integers, else Z; a negative count is Z too,
// and a count of 0 calls nothing.
Term zeroBlock(const Builtin&, const Args& args) {
  if (!isHostInteger(args[0]) || !isHostInteger(args[1])) return leafByte('Z');
  int64_t count = termToInt64(args[1]);
  void* address = termToPointer(args[0]);
  if (count < 0) return leafByte('Z');
  if (count > 0) std::memset(address, 0, size_t(count));
  return leafByte('I');
}

}  // namespace tarn::memory
