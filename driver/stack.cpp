// A thread on a reserved stack (address space only), a guard below it, and
// the reservation halved until the host grants it.
#include "driver/stack.h"

#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>

#include "driver/signals.h"

namespace tarn {

namespace {

// Frames of more than this skip the guard; the walks' frames are far smaller.
constexpr size_t kGuardBytes = size_t(1) << 20;

struct Reserve {
  void* base = nullptr;  // the whole mapping, guard first
  size_t bytes = 0;      // the usable stack above the guard
};

// One mapping of guard plus stack, or none. Nothing is committed up front.
Reserve tryReserve(size_t bytes) {
  void* p = mmap(nullptr, bytes + kGuardBytes, PROT_READ | PROT_WRITE,
                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (p == MAP_FAILED) return {};
  if (mprotect(p, kGuardBytes, PROT_NONE) != 0) {
    munmap(p, bytes + kGuardBytes);
    return {};
  }
  return {p, bytes};
}

size_t addressSpaceLimit() {
  struct rlimit lim;
  if (getrlimit(RLIMIT_AS, &lim) != 0 || lim.rlim_cur == RLIM_INFINITY) return SIZE_MAX;
  return size_t(lim.rlim_cur);
}

// The first reservation that succeeds, halving from the first request down to
// the smallest worth a thread.
Reserve reserveStack() {
  for (size_t bytes = firstStackRequest(addressSpaceLimit()); bytes >= kSmallestStackBytes; bytes /= 2) {
    Reserve r = tryReserve(bytes);
    if (r.base) return r;
  }
  return {};
}

void* trampoline(void* p) {
  SignalStackScope signalStack;
  (*static_cast<const std::function<void()>*>(p))();
  return nullptr;
}

void runHere(const std::function<void()>& fn) {
  SignalStackScope signalStack;
  fn();
}

}  // namespace

size_t firstStackRequest(size_t limit) {
  size_t bytes = kWantedStackBytes;
  while (bytes / 2 >= kNeededStackBytes && bytes > limit / 2) bytes /= 2;
  return bytes;
}

void runWithLargeStack(const std::function<void()>& fn) {
  static Reserve stack = reserveStack();
  if (!stack.base) {
    std::fputs("tarn: no stack could be reserved; running on the main stack, deep terms may overflow it\n",
               stderr);
    return runHere(fn);
  }
  if (stack.bytes < kWantedStackBytes)
    std::fprintf(stderr, "tarn: stack reserve of %zu MiB instead of %zu MiB: the address space is limited\n",
                 stack.bytes >> 20, kWantedStackBytes >> 20);
  char* guard = static_cast<char*>(stack.base);
  setStackGuard(guard, guard + kGuardBytes, stack.bytes);

  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_t thread;
  bool started = pthread_attr_setstack(&attr, guard + kGuardBytes, stack.bytes) == 0 &&
                 pthread_create(&thread, &attr, trampoline, const_cast<std::function<void()>*>(&fn)) == 0;
  pthread_attr_destroy(&attr);
  if (started) {
    pthread_join(thread, nullptr);
    return;
  }
  setStackGuard(nullptr, nullptr, 0);
  std::fputs("tarn: no thread could be started; running on the main stack, deep terms may overflow it\n", stderr);
  runHere(fn);
}

}  // namespace tarn
