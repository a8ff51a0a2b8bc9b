// The directory reader: the d_off hash at its edges, the entry types the
// golden program directory_listing (regular files and dot entries only)
// cannot make, and what the end of a listing leaves.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <map>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bindings/directory.h"

namespace tarn {
namespace {

TEST(DirectoryHash, TimesThirtyThreePlusEachUnsignedByte) {
  EXPECT_EQ(entryNameHash(""), 5381u);
  EXPECT_EQ(entryNameHash("\xff"), 5381u * 33 + 255);  // bytes read unsigned
  uint32_t h = 5381;
  for (char c : std::string("a_long_enough_name")) h = h * 33 + uint32_t(c);
  EXPECT_EQ(entryNameHash("a_long_enough_name"), h & 0x7fffffff);
  // Only the first 260 bytes count.
  EXPECT_EQ(entryNameHash(std::string(300, 'x').c_str()), entryNameHash(std::string(260, 'x').c_str()));
  EXPECT_NE(entryNameHash(std::string(259, 'x').c_str()), entryNameHash(std::string(260, 'x').c_str()));
}

// Entry name -> type in a listing.
std::map<std::string, uint32_t> typesIn(const char* folder) {
  std::map<std::string, uint32_t> types;
  DirectoryStream* d = openDirectory(folder);
  EXPECT_NE(d, nullptr);
  if (!d) return types;
  errno = 1234;
  while (DirectoryEntry* e = readDirectory(d)) {
    types[e->d_name] = e->d_type;
    EXPECT_EQ(e->d_ino, 0u);
  }
  EXPECT_EQ(readDirectory(d), nullptr);  // still at the end
  EXPECT_EQ(errno, 1234);                // the end is no error
  EXPECT_EQ(closeDirectory(d), 0);
  return types;
}

TEST(DirectoryListing, EntryTypes) {
  char folder[] = "/tmp/tarn_directory_test_XXXXXX";
  ASSERT_NE(mkdtemp(folder), nullptr);
  std::string base = folder;
  ::close(::open((base + "/plain").c_str(), O_CREAT | O_WRONLY, 0600));
  ::mkdir((base + "/sub").c_str(), 0700);
  ASSERT_EQ(::symlink("plain", (base + "/link").c_str()), 0);
  std::map<std::string, uint32_t> expected = {{".", kDirectoryEntry},
                                              {"..", kDirectoryEntry},
                                              {"plain", kOtherEntry},
                                              {"sub", kDirectoryEntry},
                                              {"link", kLinkEntry}};
  EXPECT_EQ(typesIn(folder), expected);
  ::unlink((base + "/link").c_str());
  ::unlink((base + "/plain").c_str());
  ::rmdir((base + "/sub").c_str());
  ::rmdir(folder);
  EXPECT_EQ(typesIn("/dev")["null"], kDeviceEntry);
}

}  // namespace
}  // namespace tarn
