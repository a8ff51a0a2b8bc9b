// The header word bit by bit, and count changes that never spill into the
// fields above the count.
#include <gtest/gtest.h>

#include "terms/term.h"

namespace tarn {
namespace {

TEST(Header, FieldsSitAtTheirBits) {
  Node n{};
  n.header = 5ull                          // count
             | (0x2aaaaaaull << 30)       // size, 26 bits
             | (uint64_t(52 + 3) << 56)   // arity +3
             | (1ull << 62)               // pending
             | (1ull << 63);              // leaf
  EXPECT_EQ(n.count(), 5u);
  EXPECT_EQ(n.size(), 0x2aaaaaau);
  EXPECT_EQ(n.arity(), 3);
  EXPECT_TRUE(n.pending());
  EXPECT_TRUE(n.isLeaf());
  EXPECT_EQ(n.top(), 0x80 | 0x40 | 55);
  EXPECT_EQ(n.state(), 0x40 | 55);
  EXPECT_FALSE(n.isData());

  // setTop and setSizeRaw each leave every other field alone.
  n.setTop(64);  // closed data, application
  EXPECT_TRUE(n.isData());
  EXPECT_FALSE(n.isLeaf());
  EXPECT_EQ(n.count(), 5u);
  EXPECT_EQ(n.size(), 0x2aaaaaau);
  n.setSizeRaw(0x1555555);
  EXPECT_EQ(n.size(), 0x1555555u);
  EXPECT_EQ(n.count(), 5u);
  EXPECT_EQ(n.top(), 64);

  // Arity values at both ends of the biased range.
  n.setTop(0);
  setArity(&n, -52);
  EXPECT_EQ(n.arity(), -52);
  EXPECT_EQ(n.top() & 63, 0);
  setArity(&n, 0);
  EXPECT_EQ(n.top(), '4');
  EXPECT_EQ(n.size(), 0x1555555u);
}

TEST(Header, CountChangesKeepTheUpperBits) {
  Term x = leaf("12");
  Node* n = x.node();
  EXPECT_EQ(n->top(), 128);  // a fresh leaf
  EXPECT_EQ(n->size(), 2u);
  // Drive the count to one below its limit; the next copy still fits.
  n->header += 0x3ffffffdull;  // count 0x3ffffffe
  {
    Term y = x;
    EXPECT_EQ(n->count(), 0x3fffffffu);
    EXPECT_EQ(n->size(), 2u);
    EXPECT_EQ(n->top(), 128);
  }
  EXPECT_EQ(n->count(), 0x3ffffffeu);
  EXPECT_EQ(n->size(), 2u);
  n->header -= 0x3ffffffdull;
  EXPECT_EQ(n->count(), 1u);
}

}  // namespace
}  // namespace tarn
