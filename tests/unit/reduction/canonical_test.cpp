// The structural order and canonical terms: signs, leaf lengths by form,
// sharing through tern and the pruning of non-values. The builtins cmpr and
// tern are the golden program tern_and_cmpr.
#include <gtest/gtest.h>

#include <string>

#include "driver/stack.h"
#include "reduction/canonical.h"

namespace tarn {
namespace {

Term W(std::string_view text) { return leaf(text); }

TEST(TermOrder, SignsAndShapes) {
  auto ab = [](std::string_view l, std::string_view r) { return App(W(l), W(r)); };
  // x sorts first: positive; the longer text sorts last; a leaf after an
  // application; the left child decides first; bytes compare unsigned.
  // (Plain leaves and applications through cmpr: the golden program
  // tern_and_cmpr.)
  const std::tuple<Term, Term, int> rows[] = {
      {W("ab"), W("a"), -1},         {W("a"), W("ab"), 1},           {ab("a", "b"), W("a"), -1},
      {ab("a", "b"), ab("a", "c"), 1}, {ab("b", "a"), ab("a", "c"), -1}, {emptyLeaf(), W("a"), 1},
      {leafByte(200), W("a"), -1}};
  for (const auto& [x, y, sign] : rows) EXPECT_EQ(termOrder(x, y), sign) << textOf(x) << " " << textOf(y);
}

TEST(TermOrder, LeafLengthsByForm) {
  // Reals compare all nine bytes, NULs included: 1.0 and 2.0 differ only in
  // their top bytes (0x3F 0xF0 against 0x40 0x00, little-endian).
  EXPECT_EQ(termOrder(realLeaf(1.0), realLeaf(2.0)), -1);
  EXPECT_EQ(termOrder(realLeaf(2.0), realLeaf(1.0)), 1);
  EXPECT_EQ(termOrder(realLeaf(0.5), realLeaf(0.5)), 0);
  // Vectors compare their element references as raw bytes.
  Term e = W("e");
  Term v1 = vectorLeaf(1), v2 = vectorLeaf(1);
  setElement(v1, 0, e);
  setElement(v2, 0, e);
  EXPECT_EQ(termOrder(v1, v2), 0);
  EXPECT_EQ(termOrder(vectorLeaf(0), v1), 1);
  EXPECT_EQ(termOrder(vectorLeaf(1), vectorLeaf(1)), 0);
  // Blobs: the payload count of bytes from the head of the text, so two
  // blobs of two bytes compare "(b" against "(b" whatever they hold, and a
  // blob of three bytes compares "(c)".
  EXPECT_EQ(termOrder(blobLeaf("xy"), blobLeaf("zw")), 0);
  EXPECT_EQ(termOrder(blobLeaf("xy"), blobLeaf("xyz")), 1);
  EXPECT_EQ(termOrder(blobLeaf(""), blobLeaf("x")), 1);
}

TEST(Tern, EqualTermsBecomeOneNode) {
  clearSeenTerms();
  Term five1 = W("5"), five2 = W("5");
  Term c1 = tern(five1), c2 = tern(five2);
  EXPECT_TRUE(c1.same(five1));
  EXPECT_TRUE(c2.same(five1));

  // Children already canonical: the application itself is entered.
  Term f = tern(W("f")), x = tern(W("x"));
  Term fx = App(f, x);
  EXPECT_TRUE(tern(fx).same(fx));
  EXPECT_TRUE(isSeen(fx));
  // Fresh children: a new node over the canonical ones; the argument is not
  // entered, and a later equal term finds the same entry.
  Term fresh = App(W("f"), W("x"));
  EXPECT_TRUE(tern(fresh).same(fx));
  Term other = App(W("g"), W("x"));
  Term canonical = tern(other);
  EXPECT_FALSE(canonical.same(other));
  EXPECT_TRUE(canonical.right().same(x));
  EXPECT_TRUE(tern(App(W("g"), W("x"))).same(canonical));
}

TEST(Tern, PruningKeepsOnlyValues) {
  clearSeenTerms();
  Term applied = tern(App(W("5"), W("6")));  // a number applied: a redex
  Term data = tern(App(W("[a]"), W("[b]")));
  size_t before = seenTermCount();
  eraseSeenNonValues();
  EXPECT_FALSE(isSeen(applied));
  EXPECT_TRUE(isSeen(data));
  EXPECT_TRUE(isSeen(W("5")));
  EXPECT_EQ(seenTermCount(), before - 1);
  eraseSeen(W("6"));
  EXPECT_FALSE(isSeen(W("6")));
  clearSeenTerms();
  EXPECT_EQ(seenTermCount(), 0u);
}

TEST(Tern, ManyEntriesSurviveErasureOfOthers) {
  clearSeenTerms();
  constexpr int kCount = 20000;
  auto entry = [](int i) { return App(W("f"), W(std::to_string(i))); };
  for (int i = 0; i < kCount; i++) tern(entry(i));
  for (int i = 0; i < kCount; i += 3) eraseSeen(entry(i));
  int kept = 0;
  for (int i = 0; i < kCount; i++) {
    kept += isSeen(entry(i));
    EXPECT_EQ(isSeen(entry(i)), i % 3 != 0) << i;
    EXPECT_TRUE(isSeen(W(std::to_string(i))));
  }
  EXPECT_EQ(seenTermCount(), size_t(kept + kCount + 1));  // and the leaf f
  clearSeenTerms();
}

// Two equal lists a million cells deep: a walk to the very end to tell them
// apart, and tern finding the first one's canonical copy for the second.
TEST(Tern, DeepListsCompareAndShare) {
  runWithLargeStack([] {
    clearSeenTerms();
    auto list = [](std::string_view last) {
      Term t = W(last);
      for (int i = 0; i < 1000000; i++) t = App2(leafByte('J'), W("1"), std::move(t));
      return t;
    };
    Term a = list("K"), b = list("K");
    EXPECT_EQ(termOrder(a, b), 0);
    EXPECT_EQ(termOrder(list("H"), a), 1);  // "H" before "K" at the very end
    EXPECT_TRUE(tern(b).same(tern(a)));
    clearSeenTerms();
  });
}

}  // namespace
}  // namespace tarn
