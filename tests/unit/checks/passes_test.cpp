// Definition passes: name lists, pair wings, funky keys, references, local
// names and their letters, compile-time folding, and a rename a million
// levels down.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "checks/names.h"
#include "checks/passes.h"
#include "driver/stack.h"
#include "frontend/compile.h"
#include "frontend/grammar.h"
#include "frontend/scan.h"
#include "reduction/printer.h"
#include "tests/unit/frontend/tree_dump.h"

namespace tarn {
namespace {

using testing::treeOf;

Term parse(std::string_view source) { return parseExpression(normalise(source)); }
std::vector<std::string> namesOf(const NameList& list) { return list.names; }
using Names = std::vector<std::string>;

TEST(NameList, SortedSetOperations) {
  NameList list = emptyNames();
  for (std::string_view n : {"zz", "a", "K", "a", "+", "zz"}) insertName(list, n);
  EXPECT_EQ(namesOf(list), (Names{"+", "K", "a", "zz"}));  // byte order, once each
  EXPECT_TRUE(countNames(list) == 4 && hasName(list, "K") && !hasName(list, "k"));
  removeName(list, "K");
  removeName(list, "absent");
  EXPECT_EQ(namesOf(mergeNames(list, mergeNames(oneName("b"), oneName("a")))), (Names{"+", "a", "b", "zz"}));
}

// (A plain pair wing binding both elements: the golden program
// pair_wing_binds_both_elements.)
TEST(PairWings, UnfoldIntoThreeWingsReusingTheSecondName) {
  // An operator name binds by its plain name in the projections.
  EXPECT_EQ(treeOf(expandPairWings(parse("x [+]{w}b"))),
            "((([{] [+]) w) ((([{] x) ([+] K)) ((([{] [+]) ([+] H)) b)))");
  // Two equal names are legal: both bindings act.
  EXPECT_EQ(treeOf(expandPairWings(parse("a a{w}a"))),
            "((([{] a) w) ((([{] a) (a K)) ((([{] a) (a H)) a)))");
  // Inner pair wings unfold first, inside values and bodies alike.
  EXPECT_EQ(treeOf(expandPairWings(parse("p{c d{v}d}p"))),
            "((([{] p) ((([{] d) v) ((([{] c) (d K)) ((([{] d) (d H)) d)))) p)");
}

TEST(FunkyKeys, FindsTheFirstIllegalBinderOrWing) {
  // (Binders over a number and an application, and a wing of three names:
  // the golden programs funky_*.)
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"[+]\\x{y}x+y", "none"},
      {"1{w}y", "((([{] 1) w) y)"},
      {"x y{w}z", "((([{] (x y)) w) z)"},            // not unfolded yet
      {"+\\0", "(([\\] (([+] [}]) [}])) 0)"},  // a bare operator
      // Depth first, left to right; inside wing values and argument positions.
      {"K(1\\0)(2\\0)", "(([\\] 1) 0)"},
      {"x{3\\0}y", "(([\\] 3) 0)"},
      {"a\\b\\K(5\\0)", "(([\\] 5) 0)"}};
  for (auto [src, want] : rows) {
    Term t = parse(src);
    const Term* key = findFunkyKey(t);
    EXPECT_EQ(key ? treeOf(*key) : "none", want) << src;
  }
  EXPECT_EQ(findFunkyKey(expandPairWings(parse("x y{w}z"))), nullptr);  // an unfolded pair is legal
}

TEST(GlobalRefs, FreeNamesWithBoundOnesRemoved) {
  auto refs = [](std::string_view src) { return namesOf(globalRefs(parse(src))); };
  EXPECT_EQ(refs("a\\f a b"), (Names{"b", "f"}));
  // A wing's name is bound in its body only, not in its value.
  EXPECT_EQ(refs("x{g x}h x"), (Names{"g", "h", "x"}));
  // "[+]" binds "+"; numbers and literals are no names.
  EXPECT_EQ(refs("[+]\\a+b 12[cd]"), (Names{"a", "b"}));
  EXPECT_EQ(refs("zz aa K a+b"), (Names{"+", "K", "a", "aa", "b", "zz"}));
  // A name bound in one branch is still free in the other.
  EXPECT_EQ(refs("(f\\f) f"), (Names{"f"}));
  EXPECT_EQ(refs("a\\a\\a"), (Names{}));
  // The binding leaves themselves are never references.
  EXPECT_EQ(namesOf(globalRefs(App(leafByte('\\'), leafByte('{')))), (Names{}));
}

TEST(Locals, BindingOccurrencesByLetterAndLongName) {
  Term t = parse("a\\foo\\x{bar\\a}K(c\\[+]\\0)");
  EXPECT_EQ(namesOf(letterLocals(t)), (Names{"a", "c", "x"}));
  EXPECT_EQ(namesOf(longLocals(t)), (Names{"[+]", "bar", "foo"}));
}

TEST(Places, LongNamesTakeFreeLettersInSortedOrder) {
  auto placed = [](std::string_view src) {
    Term t = parse(src);
    EXPECT_TRUE(placeLocals(t)) << src;
    return treeOf(t);
  };
  // zed and yon sort as yon, zed: b and c, the letter a being in use.
  EXPECT_EQ(placed("a\\zed\\yon\\a zed yon"), "(([\\] a) (([\\] c) (([\\] b) ((a c) b))))");
  // Letters the source binds are skipped.
  EXPECT_EQ(placed("a\\b\\d\\long\\long"),
            "(([\\] a) (([\\] b) (([\\] d) (([\\] c) c))))");
  // One long name takes one letter in all its scopes, wings included.
  EXPECT_EQ(placed("K(foo\\foo)(foo{1}foo)"), "((K (([\\] a) a)) ((([{] a) 1) a))");
  // "[+]" is renamed by its plain name, with its uses.
  EXPECT_EQ(placed("x\\[+]\\x+x"), "(([\\] x) (([\\] a) ((a x) x)))");
}

// (Twenty-six names fit and twenty-seven do not, and a long name used outside
// its scope is renamed there too: the golden programs place_26_names_run,
// place_at_27_names and local_long_name_used_outside_its_scope.)

class Folding : public ::testing::Test {
 protected:
  void SetUp() override {
    loadPrelude();
    ASSERT_TRUE(compile("0").ok());
  }
};

// (An open quote becoming its source and itself, and a closed one reduced
// once: the golden program backquote_folding.)
TEST_F(Folding, OpenExpressionsBecomeTheirSourceAndThemselves) {
  // A number's size is its length: it takes the same road.
  EXPECT_EQ(treeOf(foldQuotes(parse("`5"))), "((V [5]) 5)");
  // Inner quotes fold first; the quoted text is the source as written.
  EXPECT_EQ(treeOf(foldQuotes(parse("a\\`(K a `(K 1 2))"))),
            "(([\\] a) ((V [(Ka (` (K1 2)))]) ((K a) 1)))");
}

// A long name bound over a list of a million cells (J xx (J xx ... K)) is
// renamed all the way down. (Every pass walks deep programs in tests/depth,
// but none of them binds a long name.)
TEST(DeepTerms, PlacesRenameAMillionLevelsDown) {
  runWithLargeStack([] {
    constexpr int kDepth = 1000000;
    Term x = leaf("xx"), list = leafByte('K');
    for (int i = 0; i < kDepth; i++) list = App2(leafByte('J'), x, std::move(list));
    Term bound = App2(leafByte('\\'), x, list);
    ASSERT_TRUE(placeLocals(bound));
    EXPECT_EQ(treeOf(bound.left()), "([\\] a)");
    const Term* cell = &bound.right();
    for (int i = 1; i < kDepth; i++) cell = &cell->right();
    EXPECT_EQ(treeOf(*cell), "((J a) K)");
    EXPECT_EQ(namesOf(globalRefs(bound)), (Names{"J", "K"}));
  });
}

}  // namespace
}  // namespace tarn
