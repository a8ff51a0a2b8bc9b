// The prelude's tables and the compile step: builtin stubs, plain and
// call-form definitions, and the lower report of a call form with its
// position in the normalised text. The main expression, ignored pieces and
// the structure check coming first are golden programs in tests/programs
// (run, compile and scan).
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "frontend/compile.h"
#include "runtime/globals.h"
#include "tests/unit/frontend/tree_dump.h"

namespace tarn {
namespace {

using testing::treeOf;

std::string global(std::string_view name) {
  const Term* t = findGlobal(name);
  return t ? treeOf(*t) : "<none>";
}

TEST(Prelude, DefinesExactlyItsNamesAfterEveryLoad) {
  loadPrelude();
  ASSERT_TRUE(compile("0,own\\1,gg()\\2").ok());
  loadPrelude();  // reloading resets every table
  std::vector<std::string> want;
  for (char c : std::string_view("ABCDEFGHIJKLMNOPQRUSTVWZXY\\{`!&|+-*/%^<>=#$~.@:?;'\","))
    want.emplace_back(1, c);
  std::sort(want.begin(), want.end());
  EXPECT_EQ(globalNames(), want);
  EXPECT_FALSE(isCallForm("gg"));
  EXPECT_EQ(findPreludeGlobal("own"), nullptr);
  for (const std::string& name : want) {
    EXPECT_FALSE(isCallForm(name));
    ASSERT_NE(findPreludeGlobal(name), nullptr);
    EXPECT_TRUE(findPreludeGlobal(name)->same(*findGlobal(name)));
  }
  // Bodies keep their binders, and lose the layout space.
  EXPECT_EQ(global("S"), "(([\\] a) (([\\] b) (([\\] c) ((a c) (b c)))))");
  EXPECT_EQ(global("!"), "(([\\] p) ((p H) K))");
}

TEST(Compile, BuiltinStubsCountTheirArguments) {
  loadPrelude();
  ASSERT_TRUE(compile("0").ok());
  EXPECT_EQ(global("getnameinfo"),  // the longest arity: letters up to g
            "(([\\] a) (([\\] b) (([\\] c) (([\\] d) (([\\] e) (([\\] f) (([\\] g) Z)))))))");
  for (const Builtin& b : builtinTable()) EXPECT_NE(findGlobal(b.name), nullptr) << b.name;
}

// (Plain, operator and call-form definitions in use, a redefined capital
// among them: the golden programs in tests/programs/run.)
TEST(Compile, LaterDefinitionsReplaceEarlierOnesWithTheirMark) {
  loadPrelude();
  ASSERT_TRUE(compile("0,gg()\\2,gg\\3,hh\\1,hh()\\4").ok());
  EXPECT_EQ(global("gg"), "3");
  EXPECT_FALSE(isCallForm("gg"));
  EXPECT_EQ(global("hh"), "(I 4)");
  EXPECT_TRUE(isCallForm("hh"));
}

// The lower and built reports are printed whole by the golden programs in
// tests/programs/compile; here the cases they leave out.
TEST(Compile, LowerReportsOfCallFormsAndNormalisedPositions) {
  // A call form is checked like a plain one, so a one-letter call form is
  // refused too.
  loadPrelude();
  Report call = compile("1,g()\\2");
  EXPECT_EQ(call.tag + " " + call.tip + " " + call.vip, "lower g ____b");
  EXPECT_EQ(findGlobal("g"), nullptr);
  // Normalised: "a\0,zz\1,y\2": the y is byte 9 there, byte 18 as written.
  loadPrelude();
  EXPECT_EQ(compile("a\\0 ,\n\n   zz\\1,\n  y\\2").vip, "____i");
  // Definitions before the failing one stay; none after it is made.
  loadPrelude();
  EXPECT_EQ(compile("0,ff\\2,x\\1,gg\\3").tag, "lower");
  EXPECT_EQ(global("ff"), "2");
  EXPECT_EQ(findGlobal("gg"), nullptr);
}

}  // namespace
}  // namespace tarn
