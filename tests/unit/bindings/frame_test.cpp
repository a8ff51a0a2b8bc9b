// The binding frame: tests in order with the first failure giving Z and no
// host call, the conversion each test implies, and the result conversions.
#include <gtest/gtest.h>

#include <string>

#include "bindings/frame.h"
#include "tests/unit/bindings/call.h"

namespace tarn {
namespace {

using testing::callRow;
using testing::num;
using testing::text;

// What the probe host function last received.
struct Seen {
  int calls = 0;
  int64_t number = 0;
  const char* pointer = nullptr;
  std::string bytes;  // the first four bytes at `pointer`, read during the call
  double real = 0;
} seen;

int64_t probe(int64_t number, const char* pointer, double real) {
  seen.calls++;
  seen.number = number;
  seen.pointer = pointer;
  seen.bytes.assign(pointer, 4);
  seen.real = real;
  return number * 2;
}
constexpr Builtin kProbe = host<probe>("probe", {ArgTest::kInteger, ArgTest::kPointer, ArgTest::kReal}, Result::kSigned);

size_t sizes(size_t n) { return n; }
constexpr Builtin kNatural = host<sizes>("natural", {ArgTest::kNatural}, Result::kUnsigned);
constexpr Builtin kUnchecked = host<sizes>("unchecked", {ArgTest::kUnchecked}, Result::kSigned);

class Frame : public ::testing::Test {
 protected:
  void SetUp() override { seen = Seen{}; }
};

TEST_F(Frame, FirstFailingTestGivesZAndNoCall) {
  // The first argument fails; the second would stop the process if it were
  // looked at (a word that is no global cannot be classified).
  EXPECT_EQ(text(callRow(kProbe, realLeaf(1.0), leaf("no_such_global_name"), realLeaf(1.0))), "Z");
  // Later failures: the second (a real is no pointer), then the third (an
  // integer is no real).
  EXPECT_EQ(text(callRow(kProbe, num(1), realLeaf(1.0), realLeaf(1.0))), "Z");
  EXPECT_EQ(text(callRow(kProbe, num(1), leaf("[x]"), num(1))), "Z");
  EXPECT_EQ(text(callRow(kProbe, leaf("[x]"), leaf("[x]"), realLeaf(1.0))), "Z");
  EXPECT_EQ(seen.calls, 0);
}

TEST_F(Frame, EachTestBringsItsConversion) {
  EXPECT_EQ(text(callRow(kProbe, num(-21), leaf("[ab]"), realLeaf(1.5))), "042");
  EXPECT_EQ(seen.calls, 1);
  EXPECT_EQ(seen.number, -21);
  EXPECT_EQ(seen.bytes, "[ab]");  // a literal is seen with its brackets
  EXPECT_EQ(seen.real, 1.5);

  callRow(kProbe, num(0), blobLeaf(std::string("x\0y", 3)), realLeaf(0));
  EXPECT_EQ(seen.bytes, std::string("x\0y\0", 4));  // a blob: its data bytes, then the NUL behind them

  char buffer[4] = {'a', 'b', 'c', 'd'};
  callRow(kProbe, num(5), num(int64_t(reinterpret_cast<intptr_t>(buffer))), realLeaf(0));
  EXPECT_EQ(seen.pointer, buffer);  // an integer is the address itself

  // Beyond 64 bits an integer wraps to its low 64 bits: 2^64 + 7.
  callRow(kProbe, leaf("18446744073709551623"), num(int64_t(reinterpret_cast<intptr_t>(buffer))), realLeaf(0));
  EXPECT_EQ(seen.number, 7);
  EXPECT_EQ(seen.calls, 4);
}

TEST_F(Frame, UncheckedArgumentThatIsNoNumberStops) {
  EXPECT_DEATH(callRow(kUnchecked, leaf("[x]")), "ASSERTION FAILED");
  // K passes the integer test, and the signed conversion then stops at the
  // absolute value.
  EXPECT_DEATH(testing::callNamed("malloc", leaf("K")), "ASSERTION FAILED");
}

unsigned allOnes32() { return 0xffffffffu; }
size_t allOnes64() { return ~size_t(0); }
const char* where() { return reinterpret_cast<const char*>(uintptr_t(4096)); }
void nothing() { seen.calls++; }

// (Truth, real and plain signed results are the rows' answers in the golden
// binding programs.)
TEST_F(Frame, ResultsWidenAsTheirHostTypeSays) {
  EXPECT_EQ(text(callRow(host<allOnes32>("b", {}, Result::kSigned))), "4294967295");  // unsigned: no sign extension
  EXPECT_EQ(text(callRow(host<allOnes64>("c", {}, Result::kSigned))), "01");  // size_t through the signed conversion
  EXPECT_EQ(text(callRow(host<allOnes64>("d", {}, Result::kUnsigned))), "18446744073709551615");
  EXPECT_EQ(text(callRow(host<where>("g", {}, Result::kSigned))), "4096");
  EXPECT_EQ(text(callRow(host<nothing>("h", {}, Result::kVoid))), "I");
  EXPECT_EQ(seen.calls, 1);
}

}  // namespace
}  // namespace tarn
