// The installed builtin table and the call into a row's handler.
#include "runtime/builtins.h"

#include <atomic>
#include <string>

#include "terms/failure.h"

namespace tarn {

namespace {

std::span<const Builtin> gTable;
// Written around every handler call and read by the fatal-signal handler;
// lock-free, so a relaxed store is a plain move.
std::atomic<const Builtin*> gRunning{nullptr};
static_assert(std::atomic<const Builtin*>::is_always_lock_free);

// Restores the outer builtin's name when a handler returns.
class RunningScope {
 public:
  explicit RunningScope(const Builtin& b) : outer_(gRunning.load(std::memory_order_relaxed)) {
    gRunning.store(&b, std::memory_order_relaxed);
    std::atomic_signal_fence(std::memory_order_seq_cst);
  }
  ~RunningScope() {
    std::atomic_signal_fence(std::memory_order_seq_cst);
    gRunning.store(outer_, std::memory_order_relaxed);
  }
  RunningScope(const RunningScope&) = delete;
  RunningScope& operator=(const RunningScope&) = delete;

 private:
  const Builtin* outer_;
};

}  // namespace

void installBuiltins(std::span<const Builtin> table) {
  TARN_ASSERT(table.size() == size_t(kBuiltinCount));
  gTable = table;
}

std::span<const Builtin> builtinTable() {
  TARN_ASSERT(!gTable.empty());
  return gTable;
}

const Builtin* findBuiltin(std::string_view name) {
  auto t = builtinTable();
  auto it = std::lower_bound(t.begin(), t.end(), name,
                             [](const Builtin& b, std::string_view n) { return b.name < n; });
  if (it == t.end() || it->name != name) return nullptr;
  return &*it;
}

Term callBuiltin(const Builtin& b, const Term& chain) {
  if (!b.handler) [[unlikely]] {
    std::string tag = "unimplemented " + std::string(b.name);
    internalFailure(tag.c_str());
  }
  RunningScope running(b);
  return b.handler(b, Args(chain, b.arity));
}

const Builtin* runningBuiltin() { return gRunning.load(std::memory_order_relaxed); }

}  // namespace tarn
