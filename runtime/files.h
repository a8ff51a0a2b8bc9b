// Appending to a file without going through the stream library's buffer.
//
// Contract: a failure to open the file is silent (the caller never reads the
// file back); a failure to close it is a fatal assertion.
#pragma once

#include <string_view>

namespace tarn {

// Appends text to a file through its descriptor, retrying interrupted writes.
void appendFile(const char* path, std::string_view text);

}  // namespace tarn
