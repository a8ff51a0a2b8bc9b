// Appending to a file through its descriptor.
#include "runtime/files.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "terms/failure.h"

namespace tarn {

void appendFile(const char* path, std::string_view text) {
  FILE* f = std::fopen(path, "a");
  if (!f) return;  // nothing to write to; the trace is never read back
  int fd = fileno(f);
  size_t done = 0;
  while (done < text.size()) {
    ssize_t n = ::write(fd, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    done += size_t(n);
  }
  TARN_ASSERT(std::fclose(f) == 0);
}

}  // namespace tarn
