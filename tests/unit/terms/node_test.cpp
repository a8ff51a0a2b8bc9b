// Node layout, reference counts and release of deep structures.
#include <gtest/gtest.h>

#include "terms/term.h"

namespace tarn {
namespace {

TEST(Node, ApplicationIsThreeWordsAndCountsChildren) {
  Term a = leaf("a");
  Term b = leaf("b");
  Term ab = App(a, b);
  EXPECT_EQ(a.node()->count(), 2u);
  EXPECT_EQ(ab.node()->count(), 1u);
  EXPECT_EQ(ab.node()->top(), 0);  // not annotated
  EXPECT_TRUE(ab.left().same(a));
  EXPECT_TRUE(ab.right().same(b));
  EXPECT_EQ(ab.first(), 0);
  // The two child pointers follow the header directly.
  auto* words = reinterpret_cast<Node**>(ab.node() + 1);
  EXPECT_EQ(words[0], a.node());
  EXPECT_EQ(words[1], b.node());
}

TEST(Node, LeafHeaderAndSize) {
  Term n = leaf("12345");
  EXPECT_EQ(n.node()->top(), 128);
  EXPECT_EQ(n.node()->size(), 5u);
  EXPECT_EQ(textOf(n), "12345");
  Term w = leaf("plus");
  EXPECT_EQ(w.node()->size(), 0u);
  Term br = leaf("[a b]");
  EXPECT_EQ(br.node()->size(), 5u);
  Term nul = leaf(std::string_view("a\0b", 3));
  EXPECT_EQ(nul.node()->bytes()[3], 0);
}

TEST(Node, LeafUsedTwiceInOneSpineIsCountedTwice) {
  Term x = leaf("x");
  Term spine = App3(leaf("f"), x, x, leaf("y"));
  EXPECT_EQ(x.node()->count(), 3u);
  EXPECT_EQ(spine.left().left().left().first(), 'f');
}

TEST(Node, SelfAssignmentKeepsCount) {
  Term x = leaf("x");
  Term& alias = x;
  x = alias;
  EXPECT_EQ(x.node()->count(), 1u);
}

TEST(Node, CountOverflowStops) {
  Term x = leaf("x");
  x.node()->header |= 0x3ffffffeull;  // count 0x3fffffff
  EXPECT_DEATH({ Term y = x; }, "ASSERTION FAILED");
  x.node()->header &= ~0x3fffffffull;
  x.node()->header |= 1;
}

TEST(Node, SetArityAndSizeCheckTheirRanges) {
  Term x = App(leaf("a"), leaf("b"));
  setArity(x.node(), -3);
  EXPECT_EQ(x.node()->arity(), -3);
  setArity(x.node(), 11);
  EXPECT_EQ(x.node()->top() & 63, 63);
  EXPECT_DEATH(setArity(x.node(), 12), "ASSERTION FAILED");
  EXPECT_DEATH(setArity(x.node(), -53), "ASSERTION FAILED");
  setSize(x.node(), 0x3ffffff);
  EXPECT_EQ(x.node()->size(), 0x3ffffffu);
  EXPECT_DEATH(setSize(x.node(), 0x4000000), "ASSERTION FAILED");
}

TEST(Node, LeftOfLeafStops) {
  Term x = leaf("x");
  EXPECT_DEATH((void)x.left(), "ASSERTION FAILED");
}

TEST(Node, VectorReleasesElementsOnce) {
  Term e = leaf("e");
  {
    Term v = vectorLeaf(3);
    setElement(v, 0, e);
    setElement(v, 2, e);
    EXPECT_EQ(e.node()->count(), 3u);
    EXPECT_EQ(v.node()->size(), 3u);
    EXPECT_EQ(elementOf(v, 1).node(), nullptr);
  }
  EXPECT_EQ(e.node()->count(), 1u);
  Term empty = vectorLeaf(0);
  EXPECT_EQ(empty.first(), '\n');
}

TEST(Node, MillionCellListAndChainReleaseSafely) {
  Term list = leaf("K");
  for (int i = 0; i < 1000000; i++) list = App2(leaf("J"), leaf("K"), std::move(list));
  list = Term();
  Term chain = leaf("f");
  for (int i = 0; i < 1000000; i++) chain = App(std::move(chain), leaf("x"));
  chain = Term();
  SUCCEED();
}

TEST(Node, LongNumberLeafScansItsLength) {
  std::string digits(0x4000000, '7');
  Term big = leaf(digits);
  EXPECT_EQ(big.node()->size(), 0u);
  EXPECT_EQ(textOf(big).size(), 0x4000000u);
  digits.pop_back();
  Term fits = leaf(digits);
  EXPECT_EQ(fits.node()->size(), 0x3ffffffu);
}

}  // namespace
}  // namespace tarn
