// Annotation where the golden programs cannot look: the data state of mixed
// applications, the arity of leaves of each form, and which heads are lazy.
// (Kinds are printed by the golden program identity, and the arity of globals
// up to eleven shows in arity_10_parameters_run and arity_at_11_parameters.)
#include <gtest/gtest.h>

#include "runtime/annotate.h"
#include "tests/unit/reduction/machine_fixture.h"

namespace tarn {
namespace {

using testing::program;
using testing::term;

class Annotate : public ::testing::Test {
 protected:
  void SetUp() override { program("0"); }
};

TEST_F(Annotate, DataAndMixedApplications) {
  Term k = term("K[x]");
  EXPECT_EQ(arityOf(k), 1);
  EXPECT_FALSE(k.node()->pending());
  Term both = App(term("[x]"), term("[yz]"));
  EXPECT_TRUE(isData(both));
  EXPECT_EQ(both.node()->size(), 7u);  // the two text lengths
  EXPECT_EQ(kindOf(both), Kind::kBracket);
  Term mixed = App(term("[x]"), term("K"));
  EXPECT_FALSE(isData(mixed));
  EXPECT_EQ(arityOf(mixed), 0);
}

TEST_F(Annotate, LeafArities) {
  EXPECT_EQ(arityOf(term("123")), 1);
  EXPECT_EQ(arityOf(leaf(")x")), 1);
  EXPECT_EQ(arityOf(leaf("]x")), 2);
  EXPECT_EQ(arityOf(vectorLeaf(2)), 1);
  EXPECT_EQ(arityOf(blobLeaf("ab")), 1);
  EXPECT_EQ(arityOf(realLeaf(1.5)), 1);
  // A product leaf is born with arity 2: applied once it is still a value.
  Term product = leaf("9801");
  product.node()->setTop(header::kProductLeafTop);
  EXPECT_TRUE(isValue(App(product, term("K"))));
}

TEST_F(Annotate, LazyHeadsByByteOnly) {
  for (const char* lazy : {"K", "I", "B (M M)", "J 1", "Z", "L"}) EXPECT_TRUE(isLazyHead(term(lazy))) << lazy;
  EXPECT_TRUE(isLazyHead(App(leafByte('&'), leaf("1"))));
  EXPECT_TRUE(isLazyHead(leafByte('|')));
  for (const char* strict : {"S", "M", "W", "Y", "G", "O", "P", "plus", "1", "a\\a", "[x]"})
    EXPECT_FALSE(isLazyHead(term(strict))) << strict;
  program("0,K\\a\\b\\b a");  // a redefined capital keeps its byte's laziness
  EXPECT_TRUE(isLazyHead(term("K")));
}

}  // namespace
}  // namespace tarn
