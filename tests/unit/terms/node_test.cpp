// The header word bit by bit, reference counts that never spill into the
// fields above them, leaf sizes by form and the slack behind a literal.
#include <gtest/gtest.h>

#include "terms/term.h"

namespace tarn {
namespace {

TEST(Header, FieldsSitAtTheirBitsAndSettersKeepTheRest) {
  Node n{};
  n.header = 5ull | (0x2aaaaaaull << 30) | (uint64_t(52 + 3) << 56) | (1ull << 62) | (1ull << 63);
  EXPECT_EQ(n.count(), 5u);
  EXPECT_EQ(n.size(), 0x2aaaaaau);
  EXPECT_EQ(n.arity(), 3);
  EXPECT_TRUE(n.pending());
  EXPECT_TRUE(n.isLeaf());
  EXPECT_EQ(n.state(), 0x40 | 55);
  EXPECT_FALSE(n.isData());
  n.setTop(64);  // closed data, application
  EXPECT_TRUE(n.isData());
  EXPECT_FALSE(n.isLeaf());
  n.setSizeRaw(0x1555555);
  EXPECT_EQ(n.count(), 5u);
  EXPECT_EQ(n.size(), 0x1555555u);
  EXPECT_EQ(n.top(), 64);
  n.setTop(0);
  setArity(&n, -52);  // the lowest arity; the top two bits stay clear
  EXPECT_EQ(n.arity(), -52);
  setArity(&n, 0);
  EXPECT_EQ(n.top(), '4');
  EXPECT_EQ(n.size(), 0x1555555u);
  setArity(&n, 11);
  EXPECT_EQ(n.top() & 63, 63);
  EXPECT_DEATH(setArity(&n, 12), "ASSERTION FAILED");
  EXPECT_DEATH(setArity(&n, -53), "ASSERTION FAILED");
  Term x = App(leaf("a"), leaf("b"));
  setSize(x.node(), 0x3ffffff);
  EXPECT_EQ(x.node()->size(), 0x3ffffffu);
  EXPECT_DEATH(setSize(x.node(), 0x4000000), "ASSERTION FAILED");
}

TEST(Header, CountChangesKeepTheUpperBitsAndStopAtTheLimit) {
  Term x = leaf("12");
  Node* n = x.node();
  EXPECT_EQ(n->top(), 128);  // a fresh leaf
  n->header += 0x3ffffffdull;  // count 0x3ffffffe: one copy still fits
  {
    Term y = x;
    EXPECT_EQ(n->count(), 0x3fffffffu);
    EXPECT_EQ(n->size(), 2u);
    EXPECT_EQ(n->top(), 128);
    EXPECT_DEATH({ Term z = x; }, "ASSERTION FAILED");
  }
  EXPECT_EQ(n->count(), 0x3ffffffeu);
  EXPECT_EQ(n->size(), 2u);
  n->header -= 0x3ffffffdull;
  Term& alias = x;
  x = alias;  // self-assignment leaves the count alone
  EXPECT_EQ(n->count(), 1u);
}

TEST(Node, LeafSizesByForm) {
  EXPECT_EQ(leaf("12345").node()->size(), 5u);
  EXPECT_EQ(leaf("[a b]").node()->size(), 5u);
  EXPECT_EQ(leaf("plus").node()->size(), 0u);
  Term nul = leaf(std::string_view("a\0b", 3));
  EXPECT_EQ(nul.node()->bytes()[3], 0);
  // A blob's length comes from its count; an empty count is no bytes.
  EXPECT_EQ(textOf(leaf("()")), "()");
  EXPECT_EQ(textOf(leaf(std::string_view("(b)x\0yz", 7))), std::string_view("(b)x\0", 5));
  // 0x3ffffff digits carry their length; one more and it is found by scanning.
  std::string digits(0x4000000, '7');
  Term big = leaf(digits);
  EXPECT_EQ(big.node()->size(), 0u);
  EXPECT_EQ(textOf(big).size(), 0x4000000u);
  digits.pop_back();
  EXPECT_EQ(leaf(digits).node()->size(), 0x3ffffffu);
}

TEST(Node, BracketLiteralsCarrySlackBehindTheirNul) {
  // An in-place update may address up to 7 bytes past a literal's NUL; they
  // must lie inside the node, with a NUL still behind them.
  for (std::string_view text : {"[]", "[a]", "[abcdefghijklmnop]", "[[a][b]]"}) {
    Term t = leaf(text);
    ASSERT_GE(leafCapacity(t.node()), text.size() + 1 + kBracketSlack) << text;
    for (size_t i = text.size(); i < text.size() + 1 + kBracketSlack; i++) EXPECT_EQ(t.node()->bytes()[i], 0) << text;
  }
  Term raw = rawLeaf(5);  // may be filled as a literal
  EXPECT_GE(leafCapacity(raw.node()), 5 + 1 + kBracketSlack);
  EXPECT_EQ(raw.node()->bytes()[5 + kBracketSlack], 0);
  EXPECT_GE(leafCapacity(leaf("abc").node()), 4u);  // other leaves: text and NUL
}

}  // namespace
}  // namespace tarn
