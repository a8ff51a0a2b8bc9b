// The directory reader: the language's `dirent` records filled from the
// host's directory stream, one entry read ahead for `d_off`.
#include "bindings/directory.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace tarn {

// The reader's inner state, behind the record of a stream.
struct DirectoryState {
  DIR* host;                 // the host's directory stream
  bool cached;               // `name` and `type` hold an entry not yet returned
  unsigned char type;        // the host's d_type of that entry
  char name[sizeof(dirent::d_name)];  // that entry's name
};

namespace {

// Reads the host's next entry into the state; false at the end.
bool readHostEntry(DirectoryState& st) {
  const dirent* d = ::readdir(st.host);
  if (!d) return false;
  size_t length = ::strnlen(d->d_name, sizeof st.name - 1);
  std::memcpy(st.name, d->d_name, length);
  st.name[length] = 0;
  st.type = d->d_type;
  return true;
}

uint32_t typeFromMode(mode_t mode) {
  if (S_ISCHR(mode) || S_ISBLK(mode)) return kDeviceEntry;
  if (S_ISLNK(mode)) return kLinkEntry;
  if (S_ISDIR(mode)) return kDirectoryEntry;
  return kOtherEntry;
}

// The language's d_type of the state's entry. File systems that do not say
// the type in the entry are asked with lstat; errno stays as it was.
uint32_t entryType(const DirectoryState& st) {
  switch (st.type) {
    case DT_CHR:
    case DT_BLK: return kDeviceEntry;
    case DT_LNK: return kLinkEntry;
    case DT_DIR: return kDirectoryEntry;
    case DT_UNKNOWN: break;
    default: return kOtherEntry;
  }
  int saved = errno;
  struct stat info;
  uint32_t type = kOtherEntry;
  if (::fstatat(::dirfd(st.host), st.name, &info, AT_SYMLINK_NOFOLLOW) == 0) type = typeFromMode(info.st_mode);
  errno = saved;
  return type;
}

// The language's errno for a failed opendir: only three causes are told
// apart, every other one reads as a missing directory.
int openErrno(int hostErrno) {
  switch (hostErrno) {
    case EACCES: return 13;
    case ENOTDIR: return 20;
    default: return 2;
  }
}

}  // namespace

uint32_t entryNameHash(const char* name) {
  uint32_t hash = 5381;
  for (int i = 0; i < 260 && name[i] != 0; i++) hash = hash * 33 + static_cast<unsigned char>(name[i]);
  return hash & 0x7fffffff;
}

DirectoryStream* openDirectory(const char* path) {
  if (path == nullptr || path[0] == 0) {
    errno = 2;
    return nullptr;
  }
  auto* stream = static_cast<DirectoryStream*>(std::calloc(1, sizeof(DirectoryStream)));
  if (!stream) return nullptr;  // errno is the allocator's
  auto* st = static_cast<DirectoryState*>(std::calloc(1, sizeof(DirectoryState)));
  if (!st) {
    std::free(stream);
    return nullptr;
  }
  st->host = ::opendir(path);
  if (!st->host) {
    int cause = openErrno(errno);
    std::free(st);
    std::free(stream);
    errno = cause;
    return nullptr;
  }
  stream->state = st;
  return stream;
}

DirectoryEntry* readDirectory(DirectoryStream* stream) {
  DirectoryState& st = *stream->state;
  if (st.cached) st.cached = false;
  else if (!readHostEntry(st)) return nullptr;

  DirectoryEntry& e = stream->entry;
  size_t length = std::strlen(st.name);
  if (length >= sizeof e.d_name) {
    // A name that does not fit the record is given as "?", with no type and
    // no look-ahead.
    std::memcpy(e.d_name, "?", 2);
    e.d_namlen = 1;
    e.d_type = 0;
    e.d_off = 0xffffffffu;
    e.d_ino = 0;
    e.d_reclen = 0;
    return &e;
  }
  std::memcpy(e.d_name, st.name, length + 1);
  e.d_namlen = length;
  e.d_type = entryType(st);
  // Look one entry ahead: its name's hash is this entry's d_off, and it is
  // kept for the next call.
  if (readHostEntry(st)) {
    e.d_off = entryNameHash(st.name);
    st.cached = true;
  } else {
    e.d_off = kLastEntryOffset;
  }
  e.d_ino = 0;
  e.d_reclen = sizeof(DirectoryEntry);
  return &e;
}

int closeDirectory(DirectoryStream* stream) {
  if (stream == nullptr || stream->state == nullptr) {
    errno = 9;
    return -1;
  }
  ::closedir(stream->state->host);
  std::free(stream->state);
  std::free(stream);
  return 0;
}

}  // namespace tarn
