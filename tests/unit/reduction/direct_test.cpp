// Direct calls: the same result nodes as the machine (header word, bytes
// and sharing), declining where the machine must work, and invalidation
// when a definition, an operator, a prelude law or memory changes.
#include <gtest/gtest.h>

#include "reduction/direct.h"
#include "runtime/annotate.h"
#include "runtime/globals.h"
#include "tests/unit/reduction/machine_fixture.h"

namespace tarn {
namespace {

using testing::program;
using testing::term;

// The result of a closed term with the fast paths on or off.
Term reducedWith(bool fast, const Term& t) {
  setFastPaths(fast);
  Term r = reduce(t);
  setFastPaths(true);
  return r;
}

// Everything a program could read of a result node: header word, then text.
std::string nodeImage(const Term& t) {
  std::string image = std::to_string(t.node()->header) + ":";
  if (t.isLeaf()) image += std::string(textOf(t));
  return image;
}

class Direct_ : public ::testing::Test {
 protected:
  void SetUp() override {
    program(
        "0,sq\\x\\x*x,sub\\x\\y\\x-y,pick\\n\\x\\(n<1)x(7),flag\\n\\(n=0)K(H),eq\\x\\y\\x=y,"
        "nfib\\n\\(n<2)1(nfib(n-1)+nfib(n-2)+1),big\\n\\(n<1)1(1000*big(n-1)),"
        "ev\\n\\(n=0)K(od(n-1)),od\\n\\(n=0)H(ev(n-1)),inc\\x\\x+1,gate\\x\\(x<5)K(H)");
  }
};

TEST_F(Direct_, ResultNodesMatchTheMachine) {
  // Products are born with arity 2, zero excepted; sums and differences are
  // fresh leaves; comparisons give fresh truth leaves; negatives are "0...".
  for (const char* source : {"sq 12", "sq 0", "sq 012", "sub 3 10", "sub 10 3", "eq 4 4", "eq 4 5",
                             "nfib 15", "flag 0", "flag 3", "ev 31", "od 31", "big 5", "inc 99999999999999998"}) {
    Term fast = reducedWith(true, term(source));
    Term slow = reducedWith(false, term(source));
    EXPECT_EQ(nodeImage(fast), nodeImage(slow)) << source;
  }
}

TEST_F(Direct_, ArgumentsAndLiteralsComeBackAsTheSameNode) {
  Term call = term("pick 0 5");
  const Term& five = call.right();
  Term r = reducedWith(true, call);
  EXPECT_TRUE(r.same(five));
  // A truth value of the body is the body's own leaf, as the machine gives it.
  uint64_t before = directCalls();
  Term k1 = reducedWith(true, term("flag 0"));
  Term k2 = reducedWith(true, term("flag 0"));
  EXPECT_EQ(directCalls(), before + 2);
  EXPECT_TRUE(k1.same(k2));
  EXPECT_TRUE(reducedWith(false, term("flag 0")).same(k1));
}

TEST_F(Direct_, DeclinesWhereTheMachineMustWork) {
  // Beyond a word, a text operand, a zero divisor: the machine's answer.
  for (const char* source : {"big 7", "sq 400000000000", "inc [ab]", "sub 5 K", "pick 003 1"}) {
    EXPECT_EQ(printTerm(reducedWith(true, term(source))), printTerm(reducedWith(false, term(source)))) << source;
  }
  // A definition whose attempt was abandoned is not tried again.
  reducedWith(true, term("big 7"));
  uint64_t taken = directCalls(), declined = directDeclined();
  reducedWith(true, term("big 2"));
  EXPECT_EQ(directCalls(), taken);
  EXPECT_EQ(directDeclined(), declined);
}

TEST_F(Direct_, ALazyCapitalIsNeverCalledDirectly) {
  // N is a lazy head: it fires on its unevaluated arguments, and eq then
  // evaluates each of its own, so the text is printed twice.
  program("0,seq\\x\\y\\y,eq\\x\\y\\x=y,N\\x\\y\\eq x x");
  ::testing::internal::CaptureStdout();
  std::string value = printTerm(reduce(term("N (seq (puts [a]) 1) 2")));
  std::fflush(stdout);
  EXPECT_EQ(::testing::internal::GetCapturedStdout() + "=" + value, "[a]\n[a]\n=K");
}

// Both trees alike node for node: header words, texts, and the same node
// wherever one of them shares a node.
void expectSameTree(const Term& a, const Term& b) {
  ASSERT_EQ(a.node()->header & ~header::kCountMask, b.node()->header & ~header::kCountMask);
  if (a.same(b)) return;
  ASSERT_EQ(a.isLeaf(), b.isLeaf());
  if (a.isLeaf()) {
    ASSERT_EQ(textOf(a), textOf(b));
    ASSERT_FALSE(a.node()->count() == 1 && b.node()->count() > 1);  // built vs shared
    return;
  }
  expectSameTree(a.left(), b.left());
  expectSameTree(a.right(), b.right());
}

TEST_F(Direct_, TemplatesBuildWhatSubstitutionBuilds) {
  program(
      "0,sw\\a\\b\\c\\a c(b c),dup\\x\\x\\J x(J x K),deep\\p\\q\\J(J(J p 1)(J q [t]))(J 2 2),"
      "none\\p\\J 1 2,half\\p\\q\\J([{] p q)q,lam\\p\\q\\J(x\\p x)q,wing\\p\\x{p}J x p");
  Term a1 = term("J 5 K"), a2 = term("[data]"), a3 = term("S K");
  const Term* args[3] = {&a1, &a2, &a3};
  for (const char* name : {"sw", "dup", "deep", "none", "half", "lam", "wing"}) {
    SCOPED_TRACE(name);
    GlobalSlot& s = slotOf(name);
    // Substitution into the body under all the binders, parameter by
    // parameter: a repeated letter is gone after its first argument.
    Term expected = s.value;
    std::string letters;
    while (spineShape(expected) == Shape::kBinder) {
      letters += char(expected.left().right().first());
      Term body = expected.right();
      expected = body;
    }
    int n = int(letters.size());
    for (int i = 0; i < n; i++) expected = substitute(expected, *args[i], uint8_t(letters[size_t(i)]));
    Term built;
    if (!instantiateDirect(s, args, n, built)) {
      EXPECT_TRUE(std::string(name) == "lam" || std::string(name) == "wing") << name;
      continue;  // a binder or wing on the way to a parameter: substitution's work
    }
    expectSameTree(built, expected);
  }
}

TEST_F(Direct_, ChangesInvalidateCompiledCode) {
  EXPECT_EQ(printTerm(reduce(term("inc 4"))), "5");
  // A new definition of the function itself.
  setGlobal("inc", term("x\\x*3"));
  EXPECT_EQ(printTerm(reduce(term("inc 4"))), "12");
  // A callee changes under its caller.
  setGlobal("inc", term("x\\x+1"));
  EXPECT_EQ(printTerm(reduce(term("gate 4"))), "K");
  setGlobal("gate", term("x\\(inc x<5)K(H)"));
  EXPECT_EQ(printTerm(reduce(term("gate 4"))), "H");
  setGlobal("inc", term("x\\x-1"));
  EXPECT_EQ(printTerm(reduce(term("gate 5"))), "K");
  // An operator global now means another builtin.
  setGlobal("+", term("dash"));
  EXPECT_EQ(printTerm(reduce(term("nfib 3"))), printTerm(reducedWith(false, term("nfib 3"))));
  setGlobal("+", term("plus"));
  // The laws of | and ! are read too.
  setGlobal("gate", term("x\\(x<5|!(x<9))K(H)"));
  EXPECT_EQ(printTerm(reduce(term("gate 7"))), "H");
  setGlobal("|", term("q\\r\\r"));
  EXPECT_EQ(printTerm(reduce(term("gate 7"))), printTerm(reducedWith(false, term("gate 7"))));
  // K's law changes: a conditional must follow it.
  setGlobal("K", term("a\\b\\b"));
  EXPECT_EQ(printTerm(reduce(term("pick 0 5"))), "7");
  setGlobal("K", term("a\\b\\a"));
  EXPECT_EQ(printTerm(reduce(term("pick 0 5"))), "5");
}

TEST_F(Direct_, OperatorsInTheMachineFollowTheirGlobals) {
  auto both = [](const char* source) {
    std::string fast = printTerm(reducedWith(true, term(source)));
    EXPECT_EQ(fast, printTerm(reducedWith(false, term(source)))) << source;
    return fast;
  };
  EXPECT_EQ(both("(2<3) [a] [b]"), "[a]");
  EXPECT_EQ(both("(3<2) [a] [b]"), "[b]");
  EXPECT_EQ(both("(2+3) K"), "VK2");  // a number applied opens into its first cell
  EXPECT_EQ(both("(2<(1+2)) [a] [b]"), "[a]");        // an operand still to evaluate
  setGlobal("<", term("gteq"));
  EXPECT_EQ(both("(2<3) [a] [b]"), "[b]");
  setGlobal("<", term("less"));
  setGlobal("H", term("a\\K"));
  EXPECT_EQ(both("(3<2) [a] [b]"), "K[b]");
  setGlobal("H", term("a\\I"));
  setGlobal("T", term("a\\b\\a"));
  EXPECT_EQ(both("(3<2) [a] [b]"), both("(3<2) [a] [b]"));
  setGlobal("T", term("a\\b\\b a"));
}

TEST_F(Direct_, AMemoryWriteToALiteralIsSeen) {
  setGlobal("inc", term("x\\x+1"));
  EXPECT_EQ(printTerm(reduce(term("inc 4"))), "5");
  // Rewrite the body's literal 1 in place, as the memory builtins may.
  const Term& one = slotOf("inc").value.right().right();
  ASSERT_TRUE(textIs(one, "1"));
  one.node()->bytes()[0] = '6';
  advanceMemoryEpoch();
  EXPECT_EQ(printTerm(reduce(term("inc 4"))), "10");
  one.node()->bytes()[0] = '1';
  advanceMemoryEpoch();
}

// A vector of n slots holding 0, held by the caller alone.
Term zeros(int n) { return reduce(term("cray/0*" + std::to_string(n))); }

// (name v rest) reduced, with the vector moved in: the call is its only
// holder.
Term callOn(bool fast, const char* name, Term v, const char* rest) {
  setFastPaths(fast);
  Term r = reduce(App(App(leaf(name), std::move(v)), term(rest)));
  setFastPaths(true);
  return r;
}

TEST_F(Direct_, VectorsUpdateInPlaceOnlyForASoleHolder) {
  program(
      "0,seq\\x\\y\\y,fill\\v\\i\\(i<3)(fill(cork(v,i,look(v,i)+i+1),i+1))v,"
      "both\\v\\w\\seq(cork(v,0,9),look(w,0)),twice\\v\\x\\both(v,v),"
      "spoil\\v\\i\\(i<3)(spoil(cork(v,i,look(v,i)+1),i+1))(keep(v,i*99999999999999999)),keep\\v\\x\\v,"
      "back\\v\\x\\again(look(v,0),v),again\\e\\v\\cork(cork(v,0,5),0,e)");
  for (bool fast : {true, false}) {
    SCOPED_TRACE(fast ? "fast" : "slow");
    // Sole holder: every update lands in the vector itself.
    Term v = zeros(4);
    Node* address = v.node();
    uint64_t taken = directCalls();
    Term r = callOn(fast, "fill", std::move(v), "0");
    EXPECT_EQ(r.node(), address);
    EXPECT_EQ(directCalls() > taken, fast);
    for (int i = 0; i < 3; i++) EXPECT_EQ(textOf(elementOf(r, size_t(i))), std::to_string(i + 1));

    // Another holder keeps its view; the update goes to a copy.
    Term held = zeros(4);
    Term copy = callOn(fast, "fill", held, "0");
    EXPECT_FALSE(copy.same(held));
    EXPECT_EQ(textOf(elementOf(held, 0)), "0");
    EXPECT_EQ(textOf(elementOf(copy, 2)), "3");

    // One vector passed twice is held twice: the read sees the old slot.
    EXPECT_EQ(printTerm(callOn(fast, "twice", zeros(2), "K")), "0");

    // An attempt given up after some updates leaves no trace of them: the
    // machine's redo counts from 0 again.
    Term w = zeros(4);
    Node* at = w.node();
    Term spoilt = callOn(fast, "spoil", std::move(w), "0");
    EXPECT_EQ(spoilt.node(), at);
    for (int i = 0; i < 3; i++) EXPECT_EQ(textOf(elementOf(spoilt, size_t(i))), "1");
    // The same with a vector large enough that its writes are logged one by
    // one rather than kept in a table by slot.
    Term large = callOn(fast, "spoil", zeros(1000), "0");
    EXPECT_EQ(textOf(elementOf(large, 0)), "1");
    EXPECT_EQ(textOf(elementOf(large, 3)), "0");

    // An element written over and then put back is the same node as before.
    Term before = zeros(4);
    Node* zero = before.node()->element(0);
    Term restored = callOn(fast, "back", std::move(before), "K");
    EXPECT_EQ(restored.node()->element(0), zero);

    // A blob's bytes follow the same rules.
    Term b = reduce(term("cape[a]*4"));
    Node* blob = b.node();
    Term filled = callOn(fast, "fill", std::move(b), "0");
    EXPECT_EQ(filled.node(), blob);
    EXPECT_EQ(blobBytes(filled), "bcda");
    Term heldBlob = reduce(term("cape[a]*4"));
    EXPECT_EQ(blobBytes(callOn(fast, "fill", heldBlob, "0")), "bcda");
    EXPECT_EQ(blobBytes(heldBlob), "aaaa");
    EXPECT_EQ(blobBytes(callOn(fast, "spoil", reduce(term("cape[a]*4")), "0")), "bbba");
  }
}

}  // namespace
}  // namespace tarn
