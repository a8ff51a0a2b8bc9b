// The memory family: the accessor table, each width and its signedness, and
// the in-place and copying paths of the blob and text writes.
#include <gtest/gtest.h>

#include <cstring>

#include "bindings/memory.h"
#include "tests/unit/bindings/call.h"

namespace tarn {
namespace {

using testing::callNamed;
using testing::num;
using testing::text;

Term address(const void* p) { return num(int64_t(reinterpret_cast<intptr_t>(p))); }

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

TEST(RefAccessors, ReadsAreUnsignedAtEachWidth) {
  unsigned char block[16] = {};
  EXPECT_EQ(text(callNamed("refo", address(block), num(-2))), "I");
  EXPECT_EQ(text(callNamed("refh", address(block))), "254");
  EXPECT_EQ(text(callNamed("refi", address(block))), "65534");
  EXPECT_EQ(text(callNamed("refj", address(block))), "4294967294");
  EXPECT_EQ(text(callNamed("refk", address(block))), "18446744073709551614");
  // Writes store only their width, low byte first.
  callNamed("refm", address(block + 8), num(0x12345));
  EXPECT_EQ(block[8], 0x45);
  EXPECT_EQ(block[9], 0x23);
  EXPECT_EQ(block[10], 0);
  callNamed("refn", address(block + 8), num(0x1122334455));
  EXPECT_EQ(text(callNamed("refk", address(block + 8))), std::to_string(0x22334455));
  // The read address is taken unsigned: a negated address reads the same place.
  EXPECT_EQ(text(callNamed("refh", num(-int64_t(reinterpret_cast<intptr_t>(block))))), "254");
  // Writes test both arguments, the address first.
  EXPECT_EQ(text(callNamed("refl", leaf("[x]"), num(1))), "Z");
  EXPECT_EQ(text(callNamed("refl", address(block), blobLeaf("x"))), "Z");
}

TEST(RecAccessors, CheckedIndexesAndTheBalanceRule) {
  EXPECT_EQ(text(callNamed("rech", leaf("[abc]"), num(-1))), "99");
  EXPECT_EQ(text(callNamed("recj", leaf("[abcd]"), num(0))), std::to_string(0x64636261));
  EXPECT_EQ(text(callNamed("recj", leaf("[abc]"), num(0))), "Z");
  EXPECT_EQ(text(callNamed("rech", blobLeaf("abc"), num(0))), "Z");
  // The copying write: a shared literal (the test holds it too).
  Term shared = leaf("[abc]");
  EXPECT_EQ(text(callNamed("recl", shared, num(1), num(-190))), "[aBc]");  // -190 stores 66
  EXPECT_EQ(text(shared), "[abc]");
  EXPECT_EQ(text(callNamed("recl", shared, num(0), num('['))), "Z");
  // Wider values count as a bracket only when their upper bytes are zero.
  EXPECT_EQ(text(callNamed("recm", shared, num(0), num('['))), "Z");
  EXPECT_EQ(text(callNamed("recm", shared, num(0), num(0x4100 | 'b'))), "[bAc]");
}

TEST(RecAccessors, WriteOnASolelyHeldLiteralStopsAtTheBlobAssertion) {
  EXPECT_DEATH(callNamed("recl", leaf("[abc]"), num(0), num(65)), "ASSERTION FAILED");
}

TEST(RedAccessors, ReadFromTheSecondByteAndWriteInPlace) {
  Term t = leaf("[abc]");
  EXPECT_EQ(text(callNamed("redh", t, num(3))), "93");
  EXPECT_EQ(text(callNamed("redi", t, num(0))), std::to_string(0x6261));
  Term r = callNamed("redl", t, num(0), num(-1));  // the sign is dropped: stores 1
  EXPECT_TRUE(r.same(t));
  EXPECT_EQ(textOf(t)[1], '\x01');
}

TEST(RelAccessors, SoleHolderInPlaceSharedGivesBracketData) {
  EXPECT_EQ(text(callNamed("relk", blobLeaf("1234567"), num(0))), "Z");
  EXPECT_EQ(text(callNamed("reli", blobLeaf("abc"), num(-2))), std::to_string(0x6362));
  EXPECT_EQ(text(callNamed("reli", blobLeaf("abc"), num(-4))), "Z");
  EXPECT_EQ(text(callNamed("relh", leaf("[abc]"), num(0))), "Z");

  Term sole = callNamed("rell", blobLeaf("abc"), num(0), num(-1));
  EXPECT_EQ(blobBytes(sole), "\xff" "bc");  // the blob itself, changed, signed value

  Term shared = blobLeaf("a]c");
  Term copy = callNamed("relm", shared, num(0), num(0x5b5b));
  EXPECT_EQ(text(copy), "[[[c]");  // no balance check on this path
  EXPECT_EQ(blobBytes(shared), "a]c");
}

TEST(RemAccessors, UncheckedIndexAndInPlaceWrites) {
  Term shared = blobLeaf("abc");
  EXPECT_EQ(text(callNamed("remh", shared, num(3))), "0");  // the NUL behind the storage
  Term r = callNamed("remm", shared, num(1), num(-0x4242));  // sign dropped: "BB"
  EXPECT_TRUE(r.same(shared));
  EXPECT_EQ(blobBytes(shared), "aBB");
  EXPECT_DEATH(callNamed("remh", leaf("[abc]"), num(0)), "ASSERTION FAILED");
}

TEST(BlockBuiltins, ZeroingAndTheUntestedPair) {
  unsigned char block[4] = {1, 2, 3, 4};
  EXPECT_EQ(text(callNamed("bzero", address(block), num(0))), "I");
  EXPECT_EQ(block[0], 1);
  EXPECT_EQ(text(callNamed("bzero", address(block), num(-1))), "Z");
  EXPECT_EQ(text(callNamed("bzero", address(block), num(2))), "I");
  EXPECT_EQ(block[1], 0);
  EXPECT_EQ(block[2], 3);
  EXPECT_EQ(text(callNamed("memset", address(block), num(7), num(4))), text(address(block)));
  EXPECT_EQ(block[3], 7);
  EXPECT_DEATH(callNamed("memset", leaf("[x]"), num(0), num(1)), "ASSERTION FAILED");
  EXPECT_EQ(text(callNamed("memcpy", blobLeaf("ab"), address(block), num(1))), "Z");
}

}  // namespace
}  // namespace tarn
