// The machine: evaluation order by head, the step rules, and the rewrite
// rules for the kinds of head the golden programs leave at their edges.
#include <gtest/gtest.h>

#include "runtime/globals.h"
#include "numbers/model.h"
#include "runtime/annotate.h"
#include "reduction/coded.h"
#include "tests/unit/reduction/machine_fixture.h"

namespace tarn {
namespace {

using testing::program;
using testing::reduced;
using testing::term;

std::string captured(const std::string& source) {
  ::testing::internal::CaptureStdout();
  std::string value = reduced(source);
  std::fflush(stdout);
  return ::testing::internal::GetCapturedStdout() + "=" + value;
}

// Lazy capitals and strict words in plain use are run by the golden programs
// in tests/programs/run, a redefined capital's laziness is annotate_test's,
// and the real trees are reals_test's.
class Machine_ : public ::testing::Test {
 protected:
  void SetUp() override { program("0,seq\\x\\y\\y,fst\\x\\y\\x,two\\x\\y\\seq x y"); }
};

TEST_F(Machine_, StrictHeadsEvaluateAnArgumentOnceBeforeCopyingIt) {
  // S two I c = two c (I c): c is brought to a value before S copies it, so
  // its side effect happens once.
  EXPECT_EQ(captured("S two I (seq (puts [x]) 7)"), "[x]\n=7");
  // Function part first, then the argument, from the outside in.
  EXPECT_EQ(captured("two (seq (puts [a]) 1) (seq (puts [b]) 2)"), "[a]\n[b]\n=2");
}

TEST_F(Machine_, OverApplicationPushesArgumentFrames) {
  // fst has two parameters: (fst K 2 5) has arity -1. The function part
  // reaches a value and the argument frame reapplies it.
  EXPECT_EQ(reduced("fst K 2 5"), "K5");
}

TEST_F(Machine_, LazyPartialApplicationsTakeWaitingFramesFirst) {
  // (C K (M M)) is pending, but C is lazy and an argument frame waits: it is
  // saturated, and K drops (M M) without ever evaluating it.
  EXPECT_EQ(reduced("I (C K (M M)) 5"), "5");
}

TEST_F(Machine_, WingsAreStrictInTheValueLazyInTheBody) {
  EXPECT_EQ(reduced("x{I 4}K x (M M)"), "4");
}

TEST_F(Machine_, ParameterlessDefinitionsAreEvaluatedOnceAndWrittenBack) {
  // (Once and at every use, as seen from a program: the golden program
  // memo_plain_once_call_form_each_use; the marker's range report:
  // range_self_dependence_marker.)
  program("0,loop\\I loop,qq\\I(x\\x)");
  // A definition that needs its own value ends with the marker ")name", and
  // its entry stays ")".
  Term r = reduce(term("loop"));
  EXPECT_EQ(textOf(r), ")loop");
  EXPECT_EQ(textOf(*findGlobal("loop")), ")");
  EXPECT_EQ(textOf(reduce(term("loop"))), ")loop");
  // A memoised binder is stored as (B I binder) and still works as a function.
  EXPECT_EQ(reduced("qq 7"), "7");
  EXPECT_EQ(printTerm(*findGlobal("qq")), "(BI (\\x x))");
}

TEST_F(Machine_, UndefinedNamesEndTheEvaluation) {
  // A name whose entry went away after its leaf was annotated (as when a
  // program rewrites a leaf's bytes) ends the evaluation however deep the
  // continuation is.
  program("0,seq\\x\\y\\y,two\\x\\y\\seq x y,nothing_here\\x\\x");
  Term t = term("two 1 (two 2 (two 3 (nothing_here 4)))");
  annotate(t);
  eraseGlobal("nothing_here");
  EXPECT_EQ(textOf(reduce(t)), "]nothing_here");
  EXPECT_EQ(printTerm(leaf("]nothing_here")), "()");
}

TEST_F(Machine_, VectorAccess) {
  Term v = vectorLeaf(3);
  setElement(v, 0, leaf("7"));
  setElement(v, 2, leaf("9"));
  auto apply = [](const Term& f, Term a) { return printTerm(reduce(App(f, std::move(a)))); };
  // -1 is slot 2; slot 1 is empty; "002" is no integer.
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"0", "K"}, {"1", "H"}, {"01", "K"}, {"04", "Z"}, {"3", "Z"}, {"002", "Z"}};
  for (auto [index, want] : rows) EXPECT_EQ(apply(v, leaf(index)), want) << index;
  EXPECT_EQ(apply(v, leafByte('Z')), "(J7 (JZ J9K))");
  Term empty = vectorLeaf(0);
  Term made = reduce(App(empty, leaf("5")));
  EXPECT_EQ(made.first(), '\n');
  EXPECT_EQ(made.node()->size(), 5u);
  EXPECT_EQ(apply(empty, leaf("67108864")), "Z");  // 0x4000000
  EXPECT_EQ(apply(empty, leaf("01")), "Z");
}

TEST_F(Machine_, DataOpensAsATaggedTree) {
  EXPECT_EQ(reduced("[[a][b]] G"), "V[[a]][b]");
  EXPECT_EQ(reduced("[] V"), "(V XJ K)");  // the general rule
  EXPECT_EQ(reduced("[[]] V"), "(V XJ JKK)");
  EXPECT_EQ(printTerm(encodeData(term("[[][[]]]"))), "(J JKK JKK)");
}

TEST_F(Machine_, BlobsOpenIntoBalancedHalves) {
  auto open = [](std::string bytes) { return printTerm(reduce(App(blobLeaf(bytes), leafByte('K')))); };
  EXPECT_EQ(open(""), "Z");
  EXPECT_EQ(open("ab"), "(V cape[a] cape[b])");
  EXPECT_EQ(open("abcde"), "(V cape[abcd] cape[e])");
  // One byte opens to its bits under V: 'A' is 65 = bits 0 and 6.
  EXPECT_EQ(open("A"), "(V (J JIH JHH) (J JHH JIH))");
  Term bytes = byteTree(blobLeaf("A"));
  EXPECT_FALSE(isByteTree(bytes));  // the opened form has V on top
  Term coded = App2(leafByte('J'), bytes.left().right(), bytes.right());
  EXPECT_TRUE(isByteTree(coded));
  EXPECT_EQ(byteValue(coded), 65);
}

TEST_F(Machine_, CodedTextAndData) {
  Term a = App2(leafByte('J'), byteTree(blobLeaf("a")).left().right(), byteTree(blobLeaf("a")).right());
  Term text = App2(leafByte('J'), a, App2(leafByte('J'), a, leafByte('K')));
  EXPECT_TRUE(isCodedText(text));
  EXPECT_EQ(codedText(text), "aa");
  EXPECT_EQ(printTerm(codedData(term("J K (J K K)"))), "[[[]]]");
  EXPECT_EQ(printTerm(codedData(term("J K 5"))), "Z");
}

}  // namespace
}  // namespace tarn
