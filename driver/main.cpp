// Entry point: the driver runs on a thread with a very large stack.
#include <cstdio>

#include "driver/driver.h"
#include "driver/stack.h"
#ifdef TARN_NO_FAST_PATHS
#include "reduction/direct.h"
#endif
#ifdef TARN_STATS
#include <cinttypes>

#include "reduction/direct.h"
#include "reduction/machine.h"
#endif

int main(int argc, char** argv) {
  int32_t status = 0;
#ifdef TARN_NO_FAST_PATHS
  tarn::setFastPaths(false);  // the test build that compares against the plain machine
#endif
  tarn::runWithLargeStack([&] { status = tarn::runDriver(argc, argv); });
  std::fflush(stdout);
#ifdef TARN_STATS
  std::fprintf(stderr, "steps %" PRIu64 "\n", tarn::machineSteps());
  std::fprintf(stderr, "direct %" PRIu64 " declined %" PRIu64 "\n", tarn::directCalls(), tarn::directDeclined());
#endif
  return status;
}
