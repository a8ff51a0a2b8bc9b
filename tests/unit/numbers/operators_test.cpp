// The six operator tables over kind pairs: promotion, text joins, removal and
// repetition of texts and vectors, vector extension with its empty slot, the
// rows that give "Z", and the fall-through of a vector into a conversion.
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <filesystem>

#include "numbers/operators.h"
#include "values.h"

namespace tarn {
namespace {

using testing::blob;
using testing::cell;
using testing::N;
using testing::real;
using testing::show;
using testing::sym;
using testing::text;
using testing::vec;
using Operators = testing::Values;

TEST_F(Operators, PlusPromotesAcrossNumericKinds) {
  EXPECT_EQ(show(valuePlus(N("2"), N("3"))), "5");
  EXPECT_EQ(show(valuePlus(N("1"), N("002"))), "003");         // 1 + 0.5, exact
  EXPECT_EQ(show(valuePlus(N("002"), N("1"))), "003");
  EXPECT_EQ(show(valuePlus(N("1"), real(0.5))), "real[1.500000e+00]");
  EXPECT_EQ(show(valuePlus(N("003"), real(0.5))), "real[2.000000e+00]");
  EXPECT_EQ(show(valuePlus(real(0.25), real(0.5))), "real[7.500000e-01]");
  EXPECT_EQ(show(valuePlus(N("001"), N("001"))), "004");       // numb 1 + 1 = 2
  EXPECT_EQ(show(valuePlus(cell(true, N("2")), N("1"))), "6");  // a cell spelling of 5
  EXPECT_EQ(show(valueDash(N("003"), N("1"))), "002");
  EXPECT_EQ(show(valueMult(N("3"), N("002"))), "003");
  EXPECT_EQ(show(valueCent(N("7"), N("004"))), "001");         // 7 % 2 as numbs
  // Over and powa have no exact numb form: both sides become doubles.
  EXPECT_EQ(show(valueOver(N("1"), N("002"))), "real[2.000000e+00]");
  EXPECT_EQ(show(valuePowa(N("2"), N("002"))), "real[1.414214e+00]");
  EXPECT_EQ(show(valueOver(N("1"), real(4))), "real[2.500000e-01]");
  EXPECT_EQ(show(valueCent(real(5.5), N("2"))), "real[1.500000e+00]");
}

TEST_F(Operators, TextJoinsUseCanonicalTexts) {
  EXPECT_EQ(show(valuePlus(blob("abc"), N("5"))), "cape[abc5]");
  EXPECT_EQ(show(valuePlus(N("5"), blob("abc"))), "cape[5abc]");
  EXPECT_EQ(show(valuePlus(blob("abc"), N("05"))), "cape[abc05]");
  EXPECT_EQ(show(valuePlus(blob("abc"), N("003"))), "cape[abc003]");
  EXPECT_EQ(show(valuePlus(real(1.5), blob("x"))), "cape[1.500000e+00x]");
  EXPECT_EQ(show(valuePlus(blob("ab"), blob("cd"))), "cape[abcd]");
  // A blob wins over a bracket literal; literals join their interiors.
  EXPECT_EQ(show(valuePlus(N("[ab]"), blob("cd"))), "cape[abcd]");
  EXPECT_EQ(show(valuePlus(N("[ab]"), N("[cd]"))), "[abcd]");
  EXPECT_EQ(show(valuePlus(N("[ab]"), N("05"))), "[ab05]");
  EXPECT_EQ(show(valuePlus(real(2), N("[x]"))), "[2.000000e+00x]");
  // An application of data joins as its flattened text.
  EXPECT_EQ(show(valuePlus(App(N("[a]"), N("[b]")), N("[c]"))), "[a[b]c]");
  Term joined = valuePlus(N("[ab]"), N("[cd]"));
  EXPECT_EQ(joined.node()->size(), 6u);
  EXPECT_EQ(blobBytes(valuePlus(blob(std::string("a\0", 2)), blob("b"))), std::string("a\0b", 3));
}

TEST_F(Operators, TextRemovalAndRepetition) {
  EXPECT_EQ(show(valueDash(blob("abcd"), N("1"))), "cape[bcd]");
  EXPECT_EQ(show(valueDash(blob("abcd"), N("01"))), "cape[abc]");
  EXPECT_EQ(show(valueDash(blob("abcd"), N("0"))), "cape[abcd]");
  EXPECT_EQ(text(valueDash(blob("abcd"), N("4"))), "()");
  EXPECT_EQ(text(valueDash(blob("abcd"), N("04"))), "()");
  EXPECT_EQ(text(valueDash(blob("abcd"), N("5"))), "Z");
  EXPECT_EQ(text(valueDash(blob("abcd"), N("05"))), "Z");
  EXPECT_EQ(text(valueDash(N("[abcd]"), N("3"))), "[d]");
  EXPECT_EQ(text(valueDash(N("[abcd]"), N("03"))), "[a]");
  EXPECT_EQ(text(valueDash(N("[ab]"), N("2"))), "[]");
  EXPECT_EQ(show(valueMult(blob("ab"), N("3"))), "cape[ababab]");
  EXPECT_EQ(show(valueMult(N("3"), blob("ab"))), "cape[ababab]");
  EXPECT_EQ(text(valueMult(blob("ab"), N("0"))), "()");
  EXPECT_EQ(text(valueMult(blob("ab"), N("01"))), "Z");
  EXPECT_EQ(text(valueMult(N("[ab]"), N("2"))), "[abab]");
  EXPECT_EQ(text(valueMult(N("2"), N("[ab]"))), "[abab]");
  EXPECT_EQ(text(valueMult(N("[ab]"), N("0"))), "[]");
  EXPECT_EQ(blobBytes(valueMult(blob("xyz"), N("5"))), "xyzxyzxyzxyzxyz");
  EXPECT_EQ(blobBytes(valueMult(blob(""), N("7"))), "");
}

TEST_F(Operators, VectorsJoinShrinkAndRepeat) {
  Term a = N("1"), b = N("2"), c = N("3");
  Term v = vec({a, b, c});
  EXPECT_EQ(show(valueDash(v, N("1"))), "(/ (/ cray 1) 2)");   // the last one goes
  EXPECT_EQ(show(valueDash(v, N("01"))), "(/ (/ cray 2) 3)");  // the first one goes
  EXPECT_EQ(show(valueDash(v, N("0"))), "(/ (/ (/ cray 1) 2) 3)");
  EXPECT_EQ(show(valueDash(v, N("3"))), "cray");
  EXPECT_EQ(text(valueDash(v, N("4"))), "Z");
  EXPECT_EQ(text(valueDash(v, N("04"))), "Z");
  EXPECT_EQ(show(valuePlus(v, vec({Term(), a}))), "(/ (/ (/ (/ (/ cray 1) 2) 3) Z) 1)");
  EXPECT_EQ(show(valueMult(vec({a, Term()}), N("2"))), "(/ (/ (/ (/ cray 1) Z) 1) Z)");
  EXPECT_EQ(show(valueMult(N("2"), vec({a}))), "(/ (/ cray 1) 1)");
  EXPECT_EQ(show(valueMult(v, N("0"))), "cray");
  EXPECT_EQ(text(valueMult(v, N("01"))), "Z");
  // Elements are shared, not copied: each copy holds one more reference.
  uint32_t before = a.node()->count();
  Term twice = valueMult(v, N("2"));
  EXPECT_EQ(a.node()->count(), before + 2);
  EXPECT_EQ(twice.node()->element(3), a.node());
  EXPECT_EQ(twice.node()->element(1), b.node());
}

TEST_F(Operators, VectorExtensionTakesAnyValue) {
  Term v = vec({N("1")});
  EXPECT_EQ(show(valueOver(v, N("7"))), "(/ (/ cray 1) 7)");
  EXPECT_EQ(show(valueCent(N("7"), v)), "(/ (/ cray 7) 1)");
  EXPECT_EQ(show(valuePowa(v, N("7"))), "(/ (/ cray 1) 7)");
  // U makes an empty slot; a function or a vector is an element like any other.
  Term slotted = valueOver(v, sym('U'));
  EXPECT_EQ(slotted.node()->size(), 2u);
  EXPECT_EQ(slotted.node()->element(1), nullptr);
  EXPECT_EQ(valueCent(sym('U'), v).node()->element(0), nullptr);
  EXPECT_EQ(valuePowa(v, sym('U')).node()->element(1), nullptr);
  EXPECT_EQ(show(valueOver(v, sym('S'))), "(/ (/ cray 1) S)");
  EXPECT_EQ(show(valueCent(sym('S'), v)), "(/ (/ cray S) 1)");
  EXPECT_EQ(show(valueOver(v, v)), "(/ (/ cray 1) (/ cray 1))");
  EXPECT_EQ(valueOver(vec({}), N("5")).node()->size(), 1u);
}

TEST_F(Operators, RowsWithoutAnswer) {
  Term f = sym('S');
  Term v = vec({N("1")});
  for (Term (*op)(const Term&, const Term&) : {valuePlus, valueDash, valueMult, valueOver, valueCent, valuePowa}) {
    EXPECT_EQ(text(op(f, N("1"))), "Z");
    EXPECT_EQ(text(op(N("1"), f)), "Z");
    EXPECT_EQ(text(op(blob("a"), N("[b]"))), op == valuePlus ? "(b)ab" : "Z");
  }
  EXPECT_EQ(text(valuePlus(v, N("1"))), "Z");
  EXPECT_EQ(text(valuePlus(N("1"), v)), "Z");
  EXPECT_EQ(text(valueDash(blob("ab"), blob("a"))), "Z");
  EXPECT_EQ(text(valueDash(v, v)), "Z");
  EXPECT_EQ(text(valueDash(blob("ab"), N("001"))), "Z");
  EXPECT_EQ(text(valueMult(blob("ab"), blob("a"))), "Z");
  EXPECT_EQ(text(valueMult(v, v)), "Z");
  EXPECT_EQ(text(valueOver(N("004"), N("002"))), "Z");  // no numb division
  EXPECT_EQ(text(valueOver(blob("a"), N("1"))), "Z");
  EXPECT_EQ(text(valueOver(N("1"), N("[a]"))), "Z");
  EXPECT_EQ(text(valueCent(N("003"), N("00"))), "Z");
  EXPECT_EQ(text(valueCent(N("[a]"), N("[b]"))), "Z");
  EXPECT_EQ(text(valuePowa(N("003"), N("003"))), "Z");
  EXPECT_EQ(text(valuePowa(N("003"), N("01"))), "Z");
  EXPECT_EQ(text(valuePowa(N("[a]"), N("2"))), "Z");
}

TEST_F(Operators, RealsFollowTheHost) {
  EXPECT_TRUE(std::isinf(realValue(valueOver(real(1.0), real(0.0)))));
  EXPECT_TRUE(std::isnan(realValue(valueOver(real(0.0), real(0.0)))));
  EXPECT_EQ(realValue(valueCent(real(5.5), real(2))), 1.5);
  EXPECT_EQ(realValue(valueCent(real(-5.5), real(2))), -1.5);  // fmod keeps the sign
  EXPECT_EQ(realValue(valuePowa(real(2), real(10))), 1024.0);
  EXPECT_EQ(realValue(valueDash(real(1), real(3))), -2.0);
  EXPECT_EQ(realValue(valueMult(real(1.5), real(-2))), -3.0);
  // Exact kinds still take their own operations.
  EXPECT_EQ(text(valuePowa(N("004"), N("3"))), "0064");  // 8 as a numb
  EXPECT_EQ(text(valueMult(N("003"), N("003"))), "0012");  // 2.25
}

TEST_F(Operators, DataLiteralsDashToAnApplication) {
  Term x = N("[a]"), y = N("[b]");
  Term pair = valueDash(x, y);
  ASSERT_TRUE(pair.isApp());
  EXPECT_TRUE(pair.left().same(x));
  EXPECT_TRUE(pair.right().same(y));
}

// A vector opposite a real reaches the conversion to doubles.
TEST_F(Operators, VectorInARealConversionIsTruecast) {
  auto run = [](Term (*op)(const Term&, const Term&), bool vectorLeft) {
    std::fflush(stdout);
    dup2(2, 1);  // the failure line goes to the output stream
    Term v = vec({N("1")});
    if (vectorLeft) op(v, real(1));
    else op(real(1), v);
  };
  EXPECT_DEATH(run(valueDash, true), "REDVFAIL: truecast");
  EXPECT_DEATH(run(valueMult, false), "REDVFAIL: truecast");
  EXPECT_DEATH(run(valueOver, false), "REDVFAIL: truecast");
}

TEST_F(Operators, PromotedNumbAdditionsAreTraced) {
  std::error_code ec;
  auto size = [&] { return std::filesystem::file_size("/tmp/both.bug", ec); };
  auto appended = [&](uintmax_t from) {
    std::string out;
    if (FILE* f = std::fopen("/tmp/both.bug", "rb")) {
      std::fseek(f, long(from), SEEK_SET);
      for (int c; (c = std::fgetc(f)) != EOF;) out += char(c);
      std::fclose(f);
    }
    return out;
  };
  uintmax_t before = size();
  valuePlus(N("01"), N("001"));  // hint -1 + numb 1
  EXPECT_NE(appended(before).find("jjaa01\n"), std::string::npos);
  before = size();
  valueDash(N("001"), N("1"));  // numb 1 - hint 1: the 1 is negated first
  EXPECT_NE(appended(before).find("jjaa10\n"), std::string::npos);
}

}  // namespace
}  // namespace tarn
