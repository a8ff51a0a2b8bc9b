// Run-time compilation: the source text of each kind, what a commit leaves in
// the tables, and what stays canonical. The golden programs in
// tests/programs/road show each failure's banner, load's Z and the values.
#include <gtest/gtest.h>

#include <string>

#include "checks/run.h"
#include "checks/runtime_compile.h"
#include "frontend/compile.h"
#include "reduction/canonical.h"
#include "runtime/globals.h"
#include "tests/unit/frontend/tree_dump.h"

namespace tarn {
namespace {

using testing::treeOf;

// The state of a running program: prelude, checks and a finished run.
void startedProgram(std::string_view source = "a\\0") {
  loadPrelude();
  ASSERT_TRUE(compile(source).ok());
  ASSERT_TRUE(checkAndRun(0).ok());
}

std::string sourceOf(const Term& t) {
  std::optional<std::string> s = sourceTextOf(t);
  return s ? "<" + *s + ">" : "none";
}

TEST(RuntimeCompile, SourceTextByKind) {
  startedProgram();
  EXPECT_EQ(sourceOf(blobLeaf(std::string("1,\0x", 4))), std::string("<1,\0x>", 6));  // bytes as they are
  // An integer cell spells its decimal text: the list K K H is a hint, plus,
  // magnitude bits 0 then the implied top bit: 2.
  Term two = App2(leafByte('J'), leafByte('K'),
                  App2(leafByte('J'), leafByte('K'), App2(leafByte('J'), leafByte('H'), leafByte('K'))));
  EXPECT_EQ(sourceOf(two), "<2>");
  EXPECT_EQ(sourceOf(App2(leafByte('J'), leafByte('K'), leafByte('Z'))), "none");  // no list
  // Bracket data, a leaf or a tree not yet flattened, loses its outer
  // brackets; (L R) is the list L with the element R appended.
  EXPECT_EQ(sourceOf(leaf("[a[b]]")), "<a[b]>");
  EXPECT_EQ(sourceOf(App(leaf("[ab]"), leaf("[[c]]"))), "<ab[[c]]>");
  EXPECT_EQ(sourceOf(vectorLeaf(2)), "<>");
  for (const Term& t : {leaf("003"), realLeaf(1.0), leafByte('I')}) EXPECT_EQ(sourceOf(t), "none");
}

TEST(RuntimeCompile, CommitAddsCallFormsAndAdvancesVersions) {
  startedProgram();
  uint32_t before = slotOf("nn").version;
  Term r = compileAtRunTime("nn+1,nn()\\4,pp\\5,pp()\\6", CompileMode::kRoad);
  EXPECT_EQ(treeOf(r), "5");
  EXPECT_NE(slotOf("nn").version, before);
  EXPECT_TRUE(isCallForm("nn"));
  // The later form of a name wins, and with it the mark.
  EXPECT_TRUE(isCallForm("pp"));
  EXPECT_EQ(treeOf(*findGlobal("pp")), "(I 6)");
  compileAtRunTime("0,qq()\\1,qq\\2", CompileMode::kRoad);
  EXPECT_FALSE(isCallForm("qq"));
  EXPECT_EQ(treeOf(*findGlobal("qq")), "2");
}

TEST(RuntimeCompile, OnlyValuesStayCanonical) {
  startedProgram();
  compileAtRunTime("0,aa\\[uv] K,bb\\x\\[uv] K x", CompileMode::kRoad);
  EXPECT_TRUE(findGlobal("aa")->same(findGlobal("bb")->right().left()));
  EXPECT_TRUE(isSeen(leaf("[uv]")));
  EXPECT_FALSE(isSeen(App(leaf("[uv]"), leafByte('K'))));
}

TEST(RuntimeCompile, LongLocalsTakeFreeLettersBeforeTheChecksThatFollow) {
  startedProgram();
  // Places run before the funky keys here: the binder over "1" takes the
  // letter a and is no longer funky.
  EXPECT_EQ(treeOf(compileAtRunTime("(1\\0)5", CompileMode::kRoad)), "0");
  EXPECT_EQ(treeOf(compileAtRunTime("ee 3,ee\\long\\long*2", CompileMode::kRoad)), "6");
  EXPECT_EQ(treeOf(*findGlobal("ee")), "(([\\] a) (([*] a) 2))");
}

}  // namespace
}  // namespace tarn
