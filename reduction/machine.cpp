// The machine loop, its seven step rules, and the dispatch of a redex.
#include "reduction/machine.h"

#include "terms/failure.h"
#include "runtime/globals.h"
#include "runtime/annotate.h"
#include "reduction/direct.h"
#include "reduction/printer.h"
#include "runtime/report.h"

namespace tarn {

namespace {

uint64_t stepCount = 0;
uint64_t stepLimit = UINT64_MAX;  // see setStepLimit

// Takes an owned application apart. When the control is the node's only
// holder (the common case) the children's references are moved out and the
// node's memory reused, with no count traffic.
inline void split(Term&& x, Term& l, Term& r) {
  Node* n = x.detach();
  if (n->count() == 1) {
    l = Term::adopt(n->leftNode());
    r = Term::adopt(n->rightNode());
    freeNodeMemory(n);
  } else {
    l = Term::share(n->leftNode());
    r = Term::share(n->rightNode());
    releaseNode(n);
  }
}

// True when the globals' T still has the law T a b = b a (parameters p q,
// body (q p)), so that an argument frame can apply a value directly.
GlobalSlot* swapSlot = nullptr;
uint32_t swapSeenVersion = ~0u, swapSeenEpoch = 0;
bool swapHolds = false;

bool swapLawHolds() {
  if (!swapSlot) [[unlikely]] swapSlot = &slotOf("T");
  GlobalSlot& s = *swapSlot;
  if (s.version == swapSeenVersion && memoryEpoch() == swapSeenEpoch) [[likely]] return swapHolds;
  bool& holds = swapHolds;
  swapSeenVersion = s.version;
  swapSeenEpoch = memoryEpoch();
  holds = false;
  if (!s.value) return false;
  const Term* b = &s.value;
  unsigned char p[2];
  for (unsigned char& letter : p) {
    if (spineShape(*b) != Shape::kBinder) return false;
    const Term& var = b->left().right();
    if (!var.isLeaf() || !isLower(var.first()) || var.node()->bytes()[1] != 0) return false;
    letter = var.first();
    b = &b->right();
  }
  holds = p[0] != p[1] && b->isApp() && isByteLeaf(b->left(), p[1]) && isByteLeaf(b->right(), p[0]);
  return holds;
}

// Rule 1: a value meets the innermost frame.
inline void handValue(Machine& m) {
  Frame f = std::move(m.frames.back());
  m.frames.pop_back();
  if (!f.argument) {
    m.control = App(std::move(f.term), std::move(m.control));          // (f V)
  } else if (swapLawHolds()) {
    m.control = App(std::move(m.control), std::move(f.term));          // (T a V) = (V a)
  } else {
    m.control = App2(leafByte('T'), std::move(f.term), std::move(m.control));
  }
}

inline void pushArgument(Machine& m, Term a) { m.frames.push_back(Frame{std::move(a), true}); }
inline void pushFunction(Machine& m, Term f) { m.frames.push_back(Frame{std::move(f), false}); }

// Evaluate the function part first: (B K (T r) l).
inline void descendLeft(Machine& m) {
  Term l, r;
  split(std::move(m.control), l, r);
  pushArgument(m, std::move(r));
  m.control = std::move(l);
}

// Evaluate the argument: (B K l r).
inline void descendRight(Machine& m) {
  Term l, r;
  split(std::move(m.control), l, r);
  pushFunction(m, std::move(l));
  m.control = std::move(r);
}

// Argument frames on top of the continuation, counted up to n.
inline int argumentFrames(const Machine& m, int n) {
  int count = 0;
  for (size_t i = m.frames.size(); i-- > 0 && count < n;) {
    if (!m.frames[i].argument) break;
    count++;
  }
  return count;
}

}  // namespace

uint64_t machineSteps() { return stepCount; }

void setStepLimit(uint64_t limit) { stepLimit = limit; }

namespace {

[[gnu::cold]] Term stepBudgetSpent() {
  Report r;
  r.say = "Step budget spent.";
  r.tag = "steps";
  return App(leafByte(']'), leaf(reportText(r)));
}

}  // namespace

void endWith(Machine& m, Term r) {
  m.frames.clear();
  m.control = std::move(r);
}

void step(Machine& m) {
  stepCount++;
  Node* x = m.control.node();
  if (x->state() == 0) annotateSlow(x);

  // Rule 1: a value goes to the innermost frame.
  if (isValueAnnotated(x)) {
    TARN_ASSERT(!m.frames.empty());
    handValue(m);
    return;
  }
  int arity = x->arity();

  // Rule 2: over-applied; the last argument waits on the continuation. An
  // operator on values is applied at once.
  if (arity < 0) {
    if (arity <= -2 && operatorStep(m.control)) return;
    descendLeft(m);
    return;
  }

  if (arity == 0) {
    // Rules 3 and 4: a lazy head fires at once, any head once all is a value.
    if (!x->pending() || isLazyHead(m.control)) {
      contract(m);
      return;
    }
    // Rule 5a: a wing is strict in its bound value, lazy in its body; the
    // wing rule of `contract` brings the value first.
    if (spineShape(m.control) == Shape::kWing) {
      contract(m);
      return;
    }
    // Rules 5b and 5c: function part first, then the argument.
    Node* l = x->leftNode();
    if (!l->isData() && l->pending()) descendLeft(m);
    else descendRight(m);
    return;
  }

  // Rule 6: a lazy partial application saturated from waiting argument
  // frames, without evaluating its pending parts.
  if (isLazyHead(m.control) && argumentFrames(m, arity) >= arity) {
    for (int i = 0; i < arity; i++) {
      Term a = std::move(m.frames.back().term);
      m.frames.pop_back();
      m.control = App(std::move(m.control), std::move(a));
    }
    annotate(m.control);
    contract(m);
    return;
  }

  // Rule 7: bring the parts of a partial application to values.
  if (isValue(m.control.left())) descendRight(m);
  else descendLeft(m);
}

namespace {

// What the head of a saturated redex is, in the order in which the kinds are
// tested: a builtin name first (so no rewrite rule ever sees one), then the
// compact leaves and binding forms, and anything else last as a global name.
enum class Head : uint8_t {
  kBuiltin,    // a word naming a builtin: its handler gets the application
  kVector,     // a vector leaf
  kWing,       // the leaf "{"
  kBinder,     // the leaf backslash
  kNumber,     // a number leaf
  kData,       // closed bracket data (state '@')
  kBlob,       // a blob leaf "("
  kReal,       // a real leaf (first byte blank)
  kMemo,       // ")name": the memo write-back
  kUndefined,  // "]name": the undefined-name marker
  kGlobal,     // any other name
};

Head classifyHead(const Term& head, const Builtin*& builtin) {
  unsigned char c = head.first();
  if (head.isLeaf() && isWordByte(c)) {
    builtin = slotOfLeaf(head).builtin;
    if (builtin) return Head::kBuiltin;
  }
  if (head.isLeaf()) {
    if (c == '\n') return Head::kVector;
    if (isByteLeaf(head, '{')) return Head::kWing;
    if (isByteLeaf(head, '\\')) return Head::kBinder;
    if (isDigit(c)) return Head::kNumber;
  }
  if (head.node()->isData()) return Head::kData;
  switch (c) {
    case '(': return Head::kBlob;
    case ' ': return Head::kReal;
    case ')': return Head::kMemo;
    case ']': return Head::kUndefined;
    default: return Head::kGlobal;
  }
}

// A builtin's handler gets the whole application. A result that applies a
// ")" or "]" marker ends the evaluation: the continuation is dropped.
void fireBuiltin(Machine& m, const Builtin& b, const Term& x) {
  Term r = callBuiltin(b, x);
  if (b.writesMemory) advanceMemoryEpoch();
  if (r.isApp() && r.left().isLeaf() && (r.left().first() == ')' || r.left().first() == ']'))
    endWith(m, std::move(r));
  else
    m.control = std::move(r);
}

}  // namespace

void contract(Machine& m) {
  Term x = std::move(m.control);  // held until the rule has built its result
  Node* xn = x.node();
  TARN_ASSERT(freeSetAnnotated(xn) == 0);
  TARN_ASSERT(!xn->isData());
  TARN_ASSERT(xn->arity() == 0);

  // Spine walk: the head and its arguments in source order.
  constexpr int kMaxArgs = 16;
  const Term* args[kMaxArgs];
  int argc = 0;
  const Term* h = &x;
  while (h->isApp() && !h->node()->isData()) {
    TARN_ASSERT(argc < kMaxArgs);
    args[argc++] = &h->right();
    h = &h->left();
  }
  for (int i = 0, j = argc - 1; i < j; i++, j--) std::swap(args[i], args[j]);
  const Term& head = *h;

  // One classification, then the rules in the order of `Head`.
  const Builtin* builtin = nullptr;
  switch (classifyHead(head, builtin)) {
    case Head::kBuiltin: return fireBuiltin(m, *builtin, x);
    case Head::kVector: return fireVectorAccess(m, head, *args[0]);
    case Head::kWing: return fireWing(m, *args[0], *args[1], *args[2]);
    case Head::kBinder: return fireBinder(m, *args[0], *args[1], *args[2]);
    case Head::kNumber: return fireNumber(m, head);
    case Head::kData: return fireData(m, head, *args[0]);
    case Head::kBlob: return fireBlob(m, head);
    case Head::kReal: return fireReal(m, head, *args[0]);
    case Head::kMemo: return fireMemo(m, head, *args[0]);
    case Head::kUndefined: return fireUndefined(m, *args[0]);
    case Head::kGlobal: return fireGlobal(m, x, head, args, argc);
  }
}

Term reduce(Term t) {
  Machine m;
  m.control = std::move(t);
  for (;;) {
    if (m.frames.empty() && isValue(m.control)) return std::move(m.control);
    if (stepCount >= stepLimit) [[unlikely]] return stepBudgetSpent();
    step(m);
  }
}

std::string dumpMachine(const Machine& m) {
  // Rebuild the continuation as terms: I, then (B k f) or (B k (T a)).
  Term k = leafByte('I');
  for (const Frame& f : m.frames) {
    Term part = f.argument ? App(leafByte('T'), f.term) : f.term;
    k = App2(leafByte('B'), std::move(k), std::move(part));
  }
  return printTerm(App(std::move(k), m.control));
}

}  // namespace tarn
