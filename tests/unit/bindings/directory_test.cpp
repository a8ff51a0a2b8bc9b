// The directory reader: the d_off hash, the errno rules of opendir and
// closedir, and a listing of a directory with one entry of each type.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <map>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bindings/directory.h"
#include "tests/unit/bindings/call.h"

namespace tarn {
namespace {

TEST(DirectoryHash, TimesThirtyThreePlusEachUnsignedByte) {
  EXPECT_EQ(entryNameHash(""), 5381u);
  EXPECT_EQ(entryNameHash("a"), 5381u * 33 + 97);
  EXPECT_EQ(entryNameHash("\xff"), 5381u * 33 + 255);  // bytes read unsigned
  uint32_t h = 5381;
  for (char c : std::string("a_long_enough_name")) h = h * 33 + uint32_t(c);
  EXPECT_EQ(entryNameHash("a_long_enough_name"), h & 0x7fffffff);
  // Only the first 260 bytes count.
  EXPECT_EQ(entryNameHash(std::string(300, 'x').c_str()), entryNameHash(std::string(260, 'x').c_str()));
  EXPECT_NE(entryNameHash(std::string(259, 'x').c_str()), entryNameHash(std::string(260, 'x').c_str()));
}

TEST(DirectoryErrors, OpenAndCloseSetTheLanguagesErrno) {
  errno = 0;
  EXPECT_EQ(openDirectory(nullptr), nullptr);
  EXPECT_EQ(errno, 2);
  errno = 0;
  EXPECT_EQ(openDirectory(""), nullptr);
  EXPECT_EQ(errno, 2);
  errno = 0;
  EXPECT_EQ(openDirectory("/nonexistent_directory_of_tarn"), nullptr);
  EXPECT_EQ(errno, 2);
  errno = 0;
  EXPECT_EQ(openDirectory("/dev/null"), nullptr);  // not a directory
  EXPECT_EQ(errno, 20);
  errno = 0;
  EXPECT_EQ(closeDirectory(nullptr), -1);
  EXPECT_EQ(errno, 9);
  // The builtin rows: a non-integer stream is Z, 0 is -1.
  EXPECT_EQ(testing::text(testing::callNamed("closedir", leaf("[x]"))), "Z");
  EXPECT_EQ(testing::text(testing::callNamed("closedir", testing::num(0))), "01");
  EXPECT_EQ(testing::text(testing::callNamed("dirent")), "296");
}

TEST(DirectoryListing, EveryEntryWithTypeLengthAndLookAheadHash) {
  char folder[] = "/tmp/tarn_directory_test_XXXXXX";
  ASSERT_NE(mkdtemp(folder), nullptr);
  std::string base = folder;
  ::close(::open((base + "/plain").c_str(), O_CREAT | O_WRONLY, 0600));
  ::mkdir((base + "/sub").c_str(), 0700);
  ASSERT_EQ(::symlink("plain", (base + "/link").c_str()), 0);

  DirectoryStream* d = openDirectory(folder);
  ASSERT_NE(d, nullptr);
  std::map<std::string, uint32_t> types;
  uint32_t previousOffset = 0;
  bool first = true;
  errno = 1234;
  while (DirectoryEntry* e = readDirectory(d)) {
    EXPECT_EQ(static_cast<void*>(e), static_cast<void*>(d));  // the stream is its record
    std::string name = e->d_name;
    if (!first) {
      EXPECT_EQ(previousOffset, entryNameHash(name.c_str())) << name;
    }
    first = false;
    previousOffset = e->d_off;
    types[name] = e->d_type;
    EXPECT_EQ(e->d_namlen, name.size());
    EXPECT_EQ(e->d_reclen, 296);
    EXPECT_EQ(e->d_ino, 0u);
  }
  EXPECT_EQ(previousOffset, kLastEntryOffset);
  EXPECT_EQ(readDirectory(d), nullptr);  // still at the end
  EXPECT_EQ(errno, 1234);                // the end is no error
  EXPECT_EQ(closeDirectory(d), 0);

  std::map<std::string, uint32_t> expected = {{".", kDirectoryEntry},
                                              {"..", kDirectoryEntry},
                                              {"plain", kOtherEntry},
                                              {"sub", kDirectoryEntry},
                                              {"link", kLinkEntry}};
  EXPECT_EQ(types, expected);

  ::unlink((base + "/link").c_str());
  ::unlink((base + "/plain").c_str());
  ::rmdir((base + "/sub").c_str());
  ::rmdir(folder);
}

TEST(DirectoryListing, DevicesHaveTheirOwnType) {
  DirectoryStream* d = openDirectory("/dev");
  ASSERT_NE(d, nullptr);
  uint32_t nullType = 0;
  while (DirectoryEntry* e = readDirectory(d))
    if (std::string(e->d_name) == "null") nullType = e->d_type;
  closeDirectory(d);
  EXPECT_EQ(nullType, kDeviceEntry);
}

}  // namespace
}  // namespace tarn
