// real, buck, wave and cape by kind, and the real tree of 64 truth values.
#include <cmath>
#include <cstring>

#include "numbers/operators.h"
#include "reduction/coded.h"
#include "terms/texts.h"
#include "values.h"

namespace tarn {
namespace {

using testing::blob;
using testing::N;
using testing::real;
using testing::show;
using testing::sym;
using testing::text;
using testing::vec;
using Reals = testing::Values;

uint64_t bitsOfDouble(double v) {
  uint64_t w;
  std::memcpy(&w, &v, sizeof w);
  return w;
}

// The tree of bits [from, from + 2^levels) of w, built by hand: (V l r) with
// the lower bits on the left, K for 1 and H for 0; `odd` replaces the leaf of
// bit `oddBit`.
Term tree(uint64_t w, int levels, int from = 0, int oddBit = -1, unsigned char odd = 'I') {
  if (levels == 0) {
    if (from == oddBit) return sym(odd);
    return sym((w >> from) & 1 ? 'K' : 'H');
  }
  int half = 1 << (levels - 1);
  return App(App(sym('V'), tree(w, levels - 1, from, oddBit, odd)),
             tree(w, levels - 1, from + half, oddBit, odd));
}

TEST_F(Reals, RealTreesSpellTheBitPattern) {
  for (double v : {1.5, -0.0, -2.75e-300, 4.9e-324, HUGE_VAL}) {
    uint64_t w = bitsOfDouble(v);
    EXPECT_EQ(bitsOfDouble(realValue(valueReal(tree(w, 6)))), w) << v;
    EXPECT_EQ(bitsOfDouble(realValue(valueReal(realTree(real(v))))), w) << v;
  }
  // Any other shape is no real: too shallow, or a J where a V belongs.
  EXPECT_EQ(text(valueReal(tree(5, 5))), "Z");
  Term t = tree(5, 6);
  Term withJ = App(App(sym('J'), t.left().right()), t.right());
  EXPECT_FALSE(isRealTree(withJ));
  EXPECT_EQ(text(valueReal(withJ)), "Z");
  EXPECT_EQ(text(valueReal(vec({}))), "Z");
  // The shape is right but a leaf is no truth value: an internal fault.
  EXPECT_TRUE(isRealTree(tree(5, 6, 0, 17)));
  EXPECT_DEATH(valueReal(tree(5, 6, 0, 17)), "ASSERTION FAILED");
  Term r = real(4.25);
  EXPECT_TRUE(valueReal(r).same(r));  // a real is its own real
}

// Signs beyond the golden program's: a negative NaN, and a numb, which
// answers with list element 2 rather than with its sign.
TEST_F(Reals, BuckAndWaveOnNumbers) {
  EXPECT_EQ(text(valueBuck(real(-std::nan("")))), "H");
  EXPECT_EQ(text(valueBuck(N("0001"))), "K");  // -1.5
  EXPECT_EQ(text(valueWave(N("00"))), "00");
  // The cell spelling (J K rest) gives rest, by design.
  Term rest = N("2");
  EXPECT_TRUE(valueWave(testing::cell(true, rest)).same(rest));
}

// The golden program reals_and_unary prints the plain cases.
TEST_F(Reals, BuckAndWaveSplitTexts) {
  EXPECT_EQ(text(valueBuck(blob("\nx"))), "[[p]]");
  EXPECT_EQ(text(valueBuck(blob("[x"))), "[[q]]");
  EXPECT_EQ(text(valueBuck(blob("]"))), "[[r]]");
  EXPECT_EQ(text(valueBuck(blob(std::string(1, '\0')))), std::string("[\0]", 3));
  EXPECT_EQ(text(valueWave(blob("a"))), "()");
  // The last element of a literal comes out of its one-byte shorthand.
  EXPECT_EQ(text(valueWave(N("[abc]"))), shorthandText('c'));
  EXPECT_EQ(text(valueWave(N("[a[]]"))), "[]");
  Term pair = App(N("[a]"), N("[b]"));
  EXPECT_TRUE(valueBuck(pair).same(pair.left()));
  EXPECT_TRUE(valueWave(pair).same(pair.right()));
}

TEST_F(Reals, CapeEscapesBothWays) {
  EXPECT_EQ(text(valueCape(blob("a\nb"))), "[a\nb]");  // newlines stay raw
  EXPECT_EQ(blobBytes(valueCape(N("[[p][q][r]]"))), "\n[]");
  EXPECT_EQ(text(valueCape(N("[[]]"))), "Z");
  // The two directions are not inverses: a newline is undone, not made.
  EXPECT_EQ(blobBytes(valueCape(valueCape(blob("x]\n")))), "x]\n");
}

}  // namespace
}  // namespace tarn
