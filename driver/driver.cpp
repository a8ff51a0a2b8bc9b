// Placeholder run sequence until the driver lands: usage text only.
#include "driver/driver.h"

#include <cstdio>

namespace tarn {

std::time_t startTime;

int32_t runDriver(int argc, char** argv) {
  (void)argv;
  startTime = std::time(nullptr);
  if (argc <= 1) {
    std::fputs("\\/\\oh usage     /\\   /  \\\n/\\uck_______/\\_/  \\_/    \\_\n<say>tarn file args...\n",
               stderr);
    return 1;
  }
  return 0;
}

}  // namespace tarn
