// The six operator tables over kind pairs: promotion, text joins, removal and
// repetition of texts and vectors, vector extension with its empty slot, the
// rows that give "Z", and the fall-through of a vector into a conversion. And
// comparison: node identity before kinds for same and diff, kind letters
// across kinds, NaNs, texts as unsigned bytes, vectors element by element.
#include <unistd.h>

#include <cmath>
#include <cstdio>

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
using Compare = testing::Values;

// The kind-pair tables are printed whole by the golden programs; these are
// the facts a printed value can't show: lengths, embedded NULs, cell
// spellings and the promotion of an integer to a numb.
TEST_F(Operators, JoinsAndPromotionsBeyondThePrintedTables) {
  EXPECT_EQ(show(valuePlus(cell(true, N("2")), N("1"))), "6");  // a cell spelling of 5
  EXPECT_EQ(show(valuePlus(N("1"), N("002"))), "003");          // 1 + 0.5, exact
  EXPECT_EQ(show(valueCent(N("7"), N("004"))), "001");          // 7 % 2 as numbs
  EXPECT_EQ(show(valuePlus(App(N("[a]"), N("[b]")), N("[c]"))), "[a[b]c]");
  EXPECT_EQ(valuePlus(N("[ab]"), N("[cd]")).node()->size(), 6u);
  EXPECT_EQ(valueDash(N("[abcd]"), N("03")).node()->size(), 3u);
  EXPECT_EQ(blobBytes(valuePlus(blob(std::string("a\0", 2)), blob("b"))), std::string("a\0b", 3));
  EXPECT_EQ(blobBytes(valueMult(blob("xyz"), N("5"))), "xyzxyzxyzxyzxyz");
  EXPECT_EQ(blobBytes(valueMult(blob(""), N("7"))), "");
  EXPECT_EQ(text(valueDash(blob("abcd"), N("05"))), "Z");
  EXPECT_EQ(text(valueMult(N("[ab]"), N("0"))), "[]");
}

TEST_F(Operators, VectorsShareTheirElements) {
  Term a = N("1"), b = N("2"), c = N("3");
  Term v = vec({a, b, c});
  // (Removal and repetition in plain cases: the golden kind-pair programs.)
  EXPECT_EQ(show(valuePlus(v, vec({Term(), a}))), "(/ (/ (/ (/ (/ cray 1) 2) 3) Z) 1)");
  EXPECT_EQ(show(valueMult(vec({a, Term()}), N("2"))), "(/ (/ (/ (/ cray 1) Z) 1) Z)");
  // Elements are shared, not copied: each copy holds one more reference.
  uint32_t before = a.node()->count();
  Term twice = valueMult(v, N("2"));
  EXPECT_EQ(a.node()->count(), before + 2);
  EXPECT_EQ(twice.node()->element(3), a.node());
  EXPECT_EQ(twice.node()->element(1), b.node());
  // Extension by the leaf U makes an empty slot, on either side.
  Term one = vec({N("1")});
  Term slotted = valueOver(one, sym('U'));
  EXPECT_EQ(slotted.node()->size(), 2u);
  EXPECT_EQ(slotted.node()->element(1), nullptr);
  EXPECT_EQ(valueCent(sym('U'), one).node()->element(0), nullptr);
  EXPECT_EQ(valuePowa(one, sym('U')).node()->element(1), nullptr);
  EXPECT_EQ(valueOver(vec({}), N("5")).node()->size(), 1u);
  // Two bracket literals dash to their application, sharing both.
  Term x = N("[a]"), y = N("[b]");
  Term pair = valueDash(x, y);
  EXPECT_TRUE(pair.left().same(x) && pair.right().same(y));
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
  // The lines alternate below, so each check sees its own line.
  auto lastLine = [] {
    char line[8] = {};
    if (FILE* f = std::fopen("/tmp/both.bug", "rb")) {
      if (std::fseek(f, -7, SEEK_END) == 0) line[std::fread(line, 1, 7, f)] = 0;
      std::fclose(f);
    }
    return std::string(line);
  };
  valuePlus(N("01"), N("001"));  // hint -1 + numb 1
  EXPECT_EQ(lastLine(), "jjaa01\n");
  valueDash(N("001"), N("1"));  // numb 1 - hint 1: the 1 is negated first
  EXPECT_EQ(lastLine(), "jjaa10\n");
}

std::string less(const Term& x, const Term& y) { return text(valueLess(x, y)); }
std::string gteq(const Term& x, const Term& y) { return text(valueGreaterEq(x, y)); }
std::string same(const Term& x, const Term& y) { return text(valueSame(x, y)); }
std::string diff(const Term& x, const Term& y) { return text(valueDiff(x, y)); }

// The golden program comparisons.tarn prints the common cases; here the
// identity rules, texts as unsigned bytes and the orders a printed line
// can't pin down. Each row: less, gteq, same, diff.
TEST_F(Compare, IdentityRealsAndTexts) {
  Term f = sym('S'), nan = real(std::nan(""));
  const std::tuple<Term, Term, std::string_view> rows[] = {
      {N("[a]"), N("002"), "HKHK"},  // kind letters: u after o
      {f, f, "ZZKH"},                // one node, but no order for kind w
      {nan, nan, "HHKH"},            // one node is the same, yet not ordered
      {real(1), real(std::nan("")), "HHHK"},
      {real(0.0), real(-0.0), "HKKH"},
      {blob("a"), blob("\xff"), "KHHK"},
      {blob("\xff"), blob("a"), "HKHK"},
      {blob("ab"), blob("ab"), "HKKH"},
      {blob(""), blob(""), "HKKH"},
      {N("[ab]"), N("[b]"), "KHHK"},  // interiors "ab" and "b"
      {N("[]"), N("[a]"), "KHHK"},
      {App(N("[a]"), N("[b]")), N("[a[b]]"), "HKKH"}};  // data compares as its flattened text
  for (const auto& [x, y, want] : rows)
    EXPECT_EQ(less(x, y) + gteq(x, y) + same(x, y) + diff(x, y), want) << show(x) << " against " << show(y);
}

TEST_F(Compare, VectorsElementByElement) {
  Term v12 = vec({N("1"), N("2")}), v13 = vec({N("1"), N("3")}), v1 = vec({N("1")}), v10 = vec({N("1"), N("0")});
  Term f = sym('S'), slot = vec({Term()});
  // Each row: less, gteq, same, diff.
  // (Plain orders of vectors: the golden program comparisons.)
  const std::tuple<Term, Term, std::string_view> rows[] = {
      {v13, v12, "HKHK"}, {v1, v10, "KHHK"},
      {vec({N("9")}), vec({N("001")}), "KHHK"},  // kinds inside order as at the top
      // An empty slot reads as a fresh Z: no answer, even against another one.
      {slot, v1, "ZZZZ"}, {slot, vec({Term()}), "ZZZZ"}, {vec({N("1"), Term()}), vec({N("1"), Term()}), "ZZZZ"},
      // A function shared by both vectors is skipped as one node.
      {vec({f, N("2")}), vec({f, N("2")}), "HKKH"}, {vec({f, N("2")}), vec({f, N("3")}), "KHHK"},
      {vec({sym('S')}), vec({sym('S')}), "ZZZZ"}};
  for (const auto& [x, y, want] : rows)
    EXPECT_EQ(less(x, y) + gteq(x, y) + same(x, y) + diff(x, y), want) << show(x) << " against " << show(y);
}

}  // namespace
}  // namespace tarn
