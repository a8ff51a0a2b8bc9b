// The memory family: the accessor table with each row's arity, flag and
// width, and the writes that stop at an assertion. What each accessor reads
// and writes, signs and bounds included, is printed by the golden programs in
// tests/programs/bindings_memory.
#include <gtest/gtest.h>

#include <cstring>

#include "bindings/memory.h"
#include "tests/unit/bindings/call.h"

namespace tarn {
namespace {

using testing::address;
using testing::callNamed;
using testing::num;
using testing::text;

TEST(AccessorTable, FortyNamesWithTheirArityAndWidth) {
  const char* stems[] = {"ref", "rec", "red", "rel", "rem"};
  const char reads[] = "hijk", writes[] = "lmno";
  unsigned char block[8] = {};
  for (int s = 0; s < 5; s++)
    for (int w = 0; w < 4; w++) {
      int readArity = s == 0 ? 1 : 2;
      const Builtin* r = findBuiltin(std::string(stems[s]) + reads[w]);
      const Builtin* x = findBuiltin(std::string(stems[s]) + writes[w]);
      ASSERT_TRUE(r && x) << stems[s] << reads[w];
      EXPECT_EQ(r->arity, readArity);
      EXPECT_EQ(x->arity, readArity + 1);
      EXPECT_TRUE(r->writesMemory && x->writesMemory);
    }
  // Each ref row stores and reads exactly its width.
  for (int w = 0; w < 4; w++) {
    std::memset(block, 0, sizeof block);
    callNamed(std::string("ref") + writes[w], address(block), num(-1));
    int stored = 0;
    while (stored < 8 && block[stored] == 0xff) stored++;
    EXPECT_EQ(stored, 1 << w) << writes[w];
    std::memset(block, 0xff, sizeof block);
    EXPECT_EQ(text(callNamed(std::string("ref") + reads[w], address(block))),
              std::to_string(w == 3 ? ~uint64_t(0) : (uint64_t(1) << (8 << w)) - 1));
  }
}

TEST(AccessorsDeathTest, LiteralsWhereOnlyAddressesOrBlobsFitStop) {
  // recl on a solely held literal and remh on any literal reach the blob
  // assertion; memset's address is unchecked, and a literal is no number.
  EXPECT_DEATH(callNamed("recl", leaf("[abc]"), num(0), num(65)), "ASSERTION FAILED");
  EXPECT_DEATH(callNamed("remh", leaf("[abc]"), num(0)), "ASSERTION FAILED");
  EXPECT_DEATH(callNamed("memset", leaf("[x]"), num(0), num(1)), "ASSERTION FAILED");
}

}  // namespace
}  // namespace tarn
