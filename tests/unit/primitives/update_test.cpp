// The sole-holder rule of `cork`: a value that only the fired application
// holds is changed in place (the same node comes back), and a value that
// anything else holds is copied, leaving that holder's view as it was.
#include <gtest/gtest.h>

#include "numbers/model.h"
#include "runtime/builtins.h"
#include "terms/term.h"
#include "terms/texts.h"

namespace tarn {
namespace {

// Fires `name` on its saturated application, which the call holds alone
// (the chain is released afterwards, as the machine releases it).
Term fire(std::string_view name, Term a, Term b, Term c) {
  const Builtin* row = findBuiltin(name);
  EXPECT_NE(row, nullptr);
  Term chain = App3(leaf(name), std::move(a), std::move(b), std::move(c));
  return callBuiltin(*row, chain);
}

TEST(SoleHolder, ArgsSeeEveryHolderOnTheSpine) {
  Term target = leaf("[abc]");
  Term inner = App(leaf("cork"), target);  // ((cork t) ...)
  Term chain = App2(inner, leaf("1"), leaf("2"));
  Args args(chain, 3);
  EXPECT_FALSE(args.soleHeld(0));  // `target` and `inner` are held here too
  Node* t = target.node();
  target = Term();
  EXPECT_FALSE(args.soleHeld(0));  // the spine node (cork t) is still shared
  inner = Term();
  EXPECT_TRUE(args.soleHeld(0));
  EXPECT_TRUE(args.soleHeld(2));
  Term extra = Term::share(t);
  EXPECT_FALSE(args.soleHeld(0));
  EXPECT_TRUE(args.soleHeld(1));  // other arguments are not affected
  Term chainCopy = chain;
  EXPECT_FALSE(args.soleHeld(2));  // the application itself is shared
}

TEST(SoleHolder, BlobIsUpdatedInPlaceOnlyWhenNothingElseHoldsIt) {
  Term shared = blobLeaf("abc");
  Term copy = fire("cork", shared, leaf("1"), leaf("65"));
  EXPECT_FALSE(copy.same(shared));
  EXPECT_EQ(blobBytes(copy), "aAc");
  EXPECT_EQ(blobBytes(shared), "abc");  // the other holder's view

  Term sole = blobLeaf("abc");
  Node* address = sole.node();
  Term same = fire("cork", std::move(sole), leaf("02"), leaf("321"));
  EXPECT_EQ(same.node(), address);
  EXPECT_EQ(blobBytes(same), "aAc");
  EXPECT_EQ(same.node()->count(), 1u);
}

TEST(SoleHolder, VectorSlotIsOverwrittenInPlaceAndTheOldElementReleased) {
  Term old = leaf("[old]");
  Term vec = vectorLeaf(2);
  setElement(vec, 0, old);
  setElement(vec, 1, leaf("[keep]"));
  ASSERT_EQ(old.node()->count(), 2u);

  // Held elsewhere: a clone that shares the elements; the original is intact.
  Term clone = fire("cork", vec, leaf("0"), leaf("[new]"));
  EXPECT_FALSE(clone.same(vec));
  EXPECT_EQ(textOf(elementOf(clone, 0)), "[new]");
  EXPECT_TRUE(elementOf(clone, 1).same(elementOf(vec, 1)));
  EXPECT_TRUE(elementOf(vec, 0).same(old));
  clone = Term();

  Node* address = vec.node();
  Term same = fire("cork", std::move(vec), leaf("0"), leaf("U"));  // U empties the slot
  EXPECT_EQ(same.node(), address);
  EXPECT_FALSE(elementOf(same, 0));
  EXPECT_EQ(old.node()->count(), 1u);  // the slot's reference is gone
}

TEST(SoleHolder, LiteralInPlaceWritesEightBytesFurtherInsideItsSlack) {
  std::string text = "[abcdefghijklmnop]";
  // Held elsewhere: the byte at the index is changed, in a copy.
  Term shared = leaf(text);
  EXPECT_EQ(textOf(fire("cork", shared, leaf("0"), leaf("65"))), "[Abcdefghijklmnop]");
  EXPECT_EQ(textOf(shared), text);

  // Sole holder: text position index + 9.
  Term sole = leaf(text);
  Node* address = sole.node();
  Term same = fire("cork", std::move(sole), leaf("0"), leaf("65"));
  EXPECT_EQ(same.node(), address);
  EXPECT_EQ(textOf(same), "[abcdefghAjklmnop]");

  // The last index reaches 6 bytes past the NUL: inside the node, and the
  // bytes behind it still end the text for a NUL reader.
  Term last = fire("cork", std::move(same), leaf("01"), leaf("66"));
  const unsigned char* bytes = last.node()->bytes();
  EXPECT_EQ(bytes[text.size() + 6], 'B');
  EXPECT_LT(text.size() + 8, leafCapacity(last.node()));
  EXPECT_EQ(bytes[text.size() + 7], 0);
  EXPECT_EQ(bytes[text.size() + 8], 0);
  EXPECT_EQ(textOf(last), "[abcdefghAjklmnop]");
}

TEST(SoleHolder, FailedUpdatesAndCopiedKindsLeaveTheTargetAlone) {
  Term z = fire("cork", blobLeaf("abc"), leaf("3"), leaf("65"));  // out of bounds
  EXPECT_TRUE(isByteLeaf(z, 'Z'));
  Term literal = leaf("[a[b]c]");
  Term bracket = fire("cork", literal, leaf("1"), leaf("65"));  // a bracket byte
  EXPECT_TRUE(isByteLeaf(bracket, 'Z'));
  EXPECT_EQ(textOf(literal), "[a[b]c]");
  // A real is always copied.
  Term real = realLeaf(1.0);
  Term r = fire("cork", real, leaf("63"), leaf("K"));
  EXPECT_FALSE(r.same(real));
  EXPECT_EQ(realValue(r), -1.0);
  EXPECT_EQ(realValue(real), 1.0);
}

}  // namespace
}  // namespace tarn
