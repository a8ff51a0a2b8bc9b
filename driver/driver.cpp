// Placeholder run sequence until the driver lands: usage text only.
#include "driver/driver.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "driver/failure.h"

namespace tarn {

std::time_t startTime;

void appendFile(const char* path, std::string_view text) {
  FILE* f = std::fopen(path, "a");
  if (f) {
    int fd = fileno(f);
    size_t done = 0;
    while (done < text.size()) {
      ssize_t n = ::write(fd, text.data() + done, text.size() - done);
      if (n <= 0) break;
      done += size_t(n);
    }
  }
  TARN_ASSERT(f == nullptr || std::fclose(f) == 0);
}

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
