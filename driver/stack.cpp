// A thread with a reserved stack of 64 GiB (address space only).
#include "driver/stack.h"

#include <pthread.h>
#include <sys/mman.h>

namespace tarn {

namespace {

void* trampoline(void* p) {
  (*static_cast<const std::function<void()>*>(p))();
  return nullptr;
}

}  // namespace

void runWithLargeStack(const std::function<void()>& fn) {
  constexpr size_t kStackBytes = size_t(64) << 30;
  static void* stack = mmap(nullptr, kStackBytes, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_t thread;
  bool started = stack != MAP_FAILED && pthread_attr_setstack(&attr, stack, kStackBytes) == 0 &&
                 pthread_create(&thread, &attr, trampoline, const_cast<std::function<void()>*>(&fn)) == 0;
  pthread_attr_destroy(&attr);
  if (started) pthread_join(thread, nullptr);
  else fn();
}

}  // namespace tarn
