// The program checks and the run stage: the order of the checks and their
// reports, sharing, and the judgement of a result. Dead definitions and the
// argument address are golden programs (checks/dead_*, program_arguments).
#include <gtest/gtest.h>

#include <string>

#include "checks/check.h"
#include "checks/run.h"
#include "frontend/compile.h"
#include "runtime/globals.h"
#include "reduction/canonical.h"

namespace tarn {
namespace {


// Compiles a program text and runs the check-and-run stage on it.
Report runProgram(std::string_view source, int64_t address = 0) {
  loadPrelude();
  Report compiled = compile(source);
  EXPECT_TRUE(compiled.ok()) << compiled.say;
  return checkAndRun(address);
}

std::string fields(const Report& r) {
  return r.tag + "|" + r.say + "|" + r.vip + "|" + r.tip + "|" + r.way;
}

// The golden programs in tests/programs/checks print each kind of report
// whole (and the layouts of `_`); here the order of the checks, and the
// forms for the main term and for five-byte names.
TEST(Checks, ReportsInTheirOrder) {
  // Funky keys come before the alive check, and dead definitions count.
  EXPECT_EQ(fields(runProgram("a\\undefined_x,ff\\1\\0")),
            "funky|Funky key in expression (\\1 0) in function ff.|ff|(\\1 0)|");
  // Least name first; a name queued twice keeps its last referrer.
  EXPECT_EQ(fields(runProgram("a\\bb cc,bb\\zz,cc\\zz")),
            "alive|Alive function cc references undefined zz.|cc|zz|");
  // Five-byte names get their odd suffix in vip and tip.
  EXPECT_EQ(fields(runProgram("a\\hello,hello\\world")),
            "alive|Alive function hello references undefined world.|hello \"|world \"|");
  EXPECT_EQ(fields(runProgram("a\\b\\c\\d\\e\\f\\g\\h\\i\\j\\k\\0")),
            "arity|Arity of function  may not exceed ten.|||");
  std::string params;
  for (char c = 'a'; c <= 'z'; c++) params += std::string(1, c) + "\\";
  EXPECT_EQ(fields(runProgram("I(" + params + "long\\0)")), "place|Place error.|||");
}

TEST(Checks, SharingLeavesOnlyValuesCanonical) {
  ASSERT_TRUE(runProgram("a\\0,aa\\[xy] K,bb\\x\\[xy] K x").ok());
  const Term& aa = *findGlobal("aa");
  const Term& bb = *findGlobal("bb");
  // Equal subterms are one node, redexes included...
  EXPECT_TRUE(aa.same(bb.right().left()));
  // ...but only values stay in the set for later tern calls.
  EXPECT_TRUE(isSeen(leaf("[xy]")));
  EXPECT_FALSE(isSeen(App(leaf("[xy]"), leafByte('K'))));
}

// A result that the language's source cannot spell: the main term is set by
// hand after compiling.
Report runMain(Term body) {
  loadPrelude();
  EXPECT_TRUE(compile("0").ok());
  setGlobal("", App2(leafByte('\\'), leaf("a"), std::move(body)));
  return checkAndRun(0);
}

// (A report carried out of a road, and a marker as the result: the golden
// programs in tests/programs/road and range_self_dependence_marker.)
TEST(Run, JudgementOfTheResult) {
  // Integers in any spelling are results; K is the empty list.
  EXPECT_TRUE(runMain(leafByte('K')).ok());
  EXPECT_TRUE(runMain(App2(leafByte('J'), leafByte('K'), leaf("1"))).ok());
  EXPECT_EQ(runMain(leaf("007")).tag, "range");  // a numb
}

}  // namespace
}  // namespace tarn
