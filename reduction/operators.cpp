// Operators in the machine: an over-applied operator on number leaves is
// called at once, and a truth value meeting two branches keeps one of them.
#include <vector>

#include "reduction/direct.h"
#include "reduction/direct_code.h"
#include "runtime/annotate.h"
#include "runtime/builtins.h"

namespace tarn {

namespace {

// Whether K, H, I and T still have their prelude laws, for the present
// globals and memory.
bool lawsHoldNow() {
  static uint32_t stamp = 0, epoch = 0;
  static bool holds = false;
  if (stamp == globalsStamp() && epoch == memoryEpoch()) [[likely]] return holds;
  std::vector<std::pair<GlobalSlot*, uint32_t>> reads;
  holds = preludeLawsHold(reads);
  stamp = globalsStamp();
  epoch = memoryEpoch();
  return holds;
}

// The number builtins an operator global may stand for: pure, never a
// marker, never a write to memory.
bool isOperatorBuiltin(const Builtin* b) {
  static const Builtin* const table[] = {
      findBuiltin("plus"), findBuiltin("dash"), findBuiltin("mult"), findBuiltin("over"), findBuiltin("cent"),
      findBuiltin("less"), findBuiltin("gteq"), findBuiltin("same"), findBuiltin("diff"),
  };
  for (const Builtin* t : table)
    if (t == b) return true;
  return false;
}

}  // namespace

bool operatorStep(Term& control) {
  if (!fastPaths()) return false;
  // The spine: (op a b c1 ... ck) with op a parameterless global.
  const Term* args[4];
  int n = 0;
  const Term* h = &control;
  while (h->isApp()) {
    if (n == 4) return false;
    args[n++] = &h->right();
    h = &h->left();
  }
  // The head must be a one-byte name whose definition has no parameters
  // (annotated with arity 0, as the control is).
  if (n < 2 || !h->isLeaf() || h->node()->bytes()[1] != 0 || h->node()->arity() != 0) return false;
  if (isWordByte(h->first())) return false;
  GlobalSlot& s = slotOfLeaf(*h);
  if (!s.value || !s.value.isLeaf() || !isWordByte(s.value.first()) || s.value.first() == ')') return false;
  GlobalSlot& v = slotOfLeaf(s.value);
  if (!v.builtin || !isOperatorBuiltin(v.builtin)) return false;
  // Number leaves only: the call term still holds the operands here, so
  // their counts are not the machine's, which only a handler that updates a
  // text or vector in place for a sole holder could tell.
  const Term& a = *args[n - 1];
  const Term& b = *args[n - 2];
  if (!isDigit(a.first()) || !isDigit(b.first()) || !lawsHoldNow()) return false;
  // The machine: op gives its value, the frames apply it to a and b (T's
  // law), and the builtin gets that chain.
  Term chain = App2(s.value, a, b);
  annotateSlow(chain.node());
  Term r = callBuiltin(*v.builtin, chain);
  if (n == 4 && r.isLeaf() && r.node()->bytes()[1] == 0 && (r.first() == 'K' || r.first() == 'H')) {
    // K c1 c2 = c1; H c1 c2 = I c2 = c2.
    Term chosen = *args[r.first() == 'K' ? 1 : 0];
    control = std::move(chosen);
    return true;
  }
  Term next = std::move(r);
  for (int i = n - 3; i >= 0; i--) next = App(std::move(next), *args[i]);
  control = std::move(next);
  return true;
}

}  // namespace tarn
