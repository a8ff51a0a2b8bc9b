// Conversions on shapes that programs reach only through long detours:
// bracket applications whose parts are characters, blobs with trailing NULs,
// and chains that look like numbers but end in no list. (Nested vectors are
// the golden program conversions.)
#include <gtest/gtest.h>

#include "frontend/compile.h"
#include "numbers/bits.h"
#include "numbers/model.h"
#include "reduction/printer.h"
#include "runtime/builtins.h"
#include "terms/term.h"
#include "terms/texts.h"

namespace tarn {
namespace {

Term fire1(std::string_view name, Term a) {
  Term chain = App(leaf(name), std::move(a));
  return callBuiltin(*findBuiltin(name), chain);
}
Term fire2(std::string_view name, Term a, Term b) {
  Term chain = App2(leaf(name), std::move(a), std::move(b));
  return callBuiltin(*findBuiltin(name), chain);
}

TEST(Conversions, OpenedApplicationKeepsCharacterListsAsText) {
  // ([] a), the right part being the list of the character a: a character
  // list stays text, so the whole comes back flattened.
  std::string listOfA(shorthandText('a'));
  Term chars = App(leaf("[]"), leaf(listOfA));
  Term opened = fire1("lots", chars);
  ASSERT_TRUE(opened.isLeaf());
  EXPECT_EQ(textOf(opened), "[a]");
  // Its rank is the sum of the parts' lengths, not the flattened length.
  EXPECT_EQ(textOf(fire1("rank", chars)), std::to_string(2 + listOfA.size() - 2));
  EXPECT_EQ(textOf(fire1("zits", chars)), "[a]");
  // A part that is no character opens into an application.
  Term pair = App(leaf("[x]"), leaf("[[y]]"));
  EXPECT_EQ(printTerm(fire1("lots", pair)), "([x] [][y])");
}

TEST(Conversions, BlobNumberKeepsTheCountOfTrailingNuls) {
  // N = x * 2^(k+1) + 2^k: element k is the lowest set one.
  for (size_t k = 0; k < 20; k++) {
    std::string bytes = "\x05";
    bytes.append(k, '\0');
    Term list = fire1("lots", blobLeaf(bytes));
    BitString bits = bitsOf(list);
    for (size_t i = 0; i < k; i++) EXPECT_FALSE(getBit(bits, i)) << k;
    EXPECT_TRUE(getBit(bits, k));
    EXPECT_TRUE(getBit(bits, k + 1));   // x = 5 = 101: bits of x follow
    EXPECT_FALSE(getBit(bits, k + 2));
    EXPECT_TRUE(getBit(bits, k + 3));   // x's top bit is the sentinel
    EXPECT_EQ(bitLength(bits), k + 4);
  }
  EXPECT_TRUE(isByteLeaf(fire1("lots", blobLeaf("")), 'K'));
}

TEST(Conversions, MalformedNumberChainsAnswerZ) {
  // (J K S) has the kind of an integer but no list ends in S. Classifying it
  // annotates the capitals, which must then be defined.
  loadPrelude();
  Term bad = App2(leafByte('J'), leafByte('K'), leafByte('S'));
  for (std::string_view name : {"rank", "zits", "init"}) EXPECT_TRUE(isByteLeaf(fire1(name, bad), 'Z')) << name;
  EXPECT_TRUE(isByteLeaf(fire2("look", bad, leaf("0")), 'Z'));
  EXPECT_TRUE(isByteLeaf(fire1("lits", bad), 'Z'));  // the walk ends at a leaf S
  EXPECT_TRUE(fire1("lots", bad).same(bad));         // a list stays as it is
}

}  // namespace
}  // namespace tarn
