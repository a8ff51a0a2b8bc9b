// Entry point: runs the driver on a thread whose stack is large enough for
// the deepest terms a program can build (annotation, substitution, printing
// and the passes recurse over term depth).
#include <pthread.h>
#include <sys/mman.h>

#include <cstdio>

#include "driver/driver.h"

namespace {

struct Run {
  int argc;
  char** argv;
  int32_t status;
};

void* runThread(void* p) {
  Run* r = static_cast<Run*>(p);
  r->status = tarn::runDriver(r->argc, r->argv);
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  Run run{argc, argv, 0};
  // Reserve address space only; pages are committed as the stack grows.
  constexpr size_t kStackBytes = size_t(64) << 30;
  void* stack = mmap(nullptr, kStackBytes, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  pthread_attr_t attr;
  pthread_attr_init(&attr);
  pthread_t thread;
  if (stack == MAP_FAILED || pthread_attr_setstack(&attr, stack, kStackBytes) != 0 ||
      pthread_create(&thread, &attr, runThread, &run) != 0) {
    runThread(&run);  // fall back to the native stack
  } else {
    pthread_join(thread, nullptr);
  }
  std::fflush(stdout);
  return run.status;
}
