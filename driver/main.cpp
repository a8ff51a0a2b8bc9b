// Entry point: the driver runs on a thread with a very large stack.
#include <cstdio>

#include "driver/driver.h"
#include "driver/stack.h"

int main(int argc, char** argv) {
  int32_t status = 0;
  tarn::runWithLargeStack([&] { status = tarn::runDriver(argc, argv); });
  std::fflush(stdout);
  return status;
}
