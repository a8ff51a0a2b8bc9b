// Host calls of the stdio family that the host library does not offer in the
// builtin's shape.
#include "bindings/stdio.h"

namespace tarn::stdio {

FILE* standardOutput() { return stdout; }
FILE* standardError() { return stderr; }

void setBuffer(FILE* stream, char* buffer) {
  ::setvbuf(stream, buffer, buffer ? _IOFBF : _IONBF, buffer ? 512 : 0);
}

// The position is a plain byte offset on this host, so the 8 bytes at the
// address hold it directly rather than an opaque fpos_t.
int getPosition(FILE* stream, int64_t* position) {
  off_t offset = ::ftello(stream);
  if (offset < 0) return -1;
  *position = offset;
  return 0;
}

int setPosition(FILE* stream, const int64_t* position) { return ::fseeko(stream, off_t(*position), SEEK_SET); }

}  // namespace tarn::stdio
