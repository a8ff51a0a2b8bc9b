// The directory reader behind `opendir`, `readdir` and `closedir`.
//
// Contract: a directory stream is one block that the reader allocates and
// only `closedir` frees. The block starts with the language's `dirent`
// record, so the address of the stream is also the address of the record
// that `readdir` fills; behind the record sits a pointer to the reader's
// inner state. Each `readdir` overwrites the same record, and looks one entry
// ahead to fill `d_off`, keeping that entry for the next call. Entries come
// in the host's order, "." and ".." included.
//
// Errors follow the host library: a failed `opendir` gives a null stream and
// sets errno to the language's number for the cause; `readdir` at the end
// gives null and leaves errno alone; `closedir` of a null stream gives -1
// with errno 9.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn {

// The language's `dirent` record, 296 bytes, as a program reads it through
// the memory builtins (the same offsets as the `dirent` entry of the global
// `_`). It is the binding's own record, not the host's, and is filled from
// the host's entry.
struct DirectoryEntry {
  uint32_t d_ino;      // 0 always
  uint32_t d_off;      // hash of the next entry's name; 0x7fffffff after the last
  uint16_t d_reclen;   // 296 (0 for an entry whose name could not be copied)
  uint8_t padding1[6];
  uint64_t d_namlen;   // length of d_name, without its NUL
  uint32_t d_type;     // kDeviceEntry, kLinkEntry, kDirectoryEntry or kOtherEntry
  char d_name[261];    // the name, NUL-terminated
  uint8_t padding2[7];
};
static_assert(offsetof(DirectoryEntry, d_ino) == 0);
static_assert(offsetof(DirectoryEntry, d_off) == 4);
static_assert(offsetof(DirectoryEntry, d_reclen) == 8);
static_assert(offsetof(DirectoryEntry, d_namlen) == 16);
static_assert(offsetof(DirectoryEntry, d_type) == 24);
static_assert(offsetof(DirectoryEntry, d_name) == 28);
static_assert(sizeof(DirectoryEntry) == 296, "the size that the `dirent` builtin gives");

// Values of d_type.
inline constexpr uint32_t kDeviceEntry = 8192;      // character or block device
inline constexpr uint32_t kLinkEntry = 49152;       // symbolic link
inline constexpr uint32_t kDirectoryEntry = 16384;  // directory
inline constexpr uint32_t kOtherEntry = 32768;      // anything else
// d_off after the last entry.
inline constexpr uint32_t kLastEntryOffset = 0x7fffffff;

struct DirectoryState;

// The directory stream: the record, then the reader's inner state. 304 bytes.
struct DirectoryStream {
  DirectoryEntry entry;   // what readdir fills; the stream's own address
  DirectoryState* state;  // the host stream and the entry read ahead
};
static_assert(offsetof(DirectoryStream, state) == 296);
static_assert(sizeof(DirectoryStream) == 304);

// The d_off hash of a name: 5381, then for each byte (unsigned) up to the
// first NUL or the 260th byte, times 33 plus the byte; the low 31 bits.
uint32_t entryNameHash(const char* name);

// Opens the directory at `path` (NUL-terminated). Null or empty path: errno 2
// and null. A host failure: errno 13 for no permission, 20 for not a
// directory, 2 for anything else, and null.
DirectoryStream* openDirectory(const char* path);
// The stream's record filled with the next entry, or null at the end (errno
// untouched).
DirectoryEntry* readDirectory(DirectoryStream* stream);
// Closes the host stream and frees the block: 0. A null stream or a null
// inner state: errno 9 and -1.
int closeDirectory(DirectoryStream* stream);

}  // namespace tarn
