// Direct calls: reading a definition into its expression code and its
// instantiation template, and compiling again when what it read changes.
#include <algorithm>
#include <cstring>

#include "reduction/direct_code.h"
#include "runtime/annotate.h"
#include "terms/failure.h"
#include "terms/texts.h"

namespace tarn {

namespace {

// The leading binders of a definition: their letters and the body under them.
int peelParams(const Term& value, unsigned char* letters, const Term*& body) {
  int n = 0;
  const Term* b = &value;
  while (spineShape(*b) == Shape::kBinder) {
    const Term& p = b->left().right();
    if (n == 10 || !p.isLeaf() || !isLower(p.first()) || p.node()->bytes()[1] != 0) return -1;
    letters[n++] = p.first();
    b = &b->right();
  }
  body = b;
  return n;
}

bool isLetterLeaf(const Term& t, unsigned char c) { return isByteLeaf(t, c); }

// name = \p1 \p2 ... body with each body given as a predicate.
bool hasLaw(GlobalSlot& s, int params, bool (*body)(const Term& b, const unsigned char* p)) {
  if (!s.value || s.callForm) return false;
  unsigned char p[10];
  const Term* b;
  if (peelParams(s.value, p, b) != params) return false;
  for (int i = 0; i < params; i++)
    for (int j = 0; j < i; j++)
      if (p[i] == p[j]) return false;
  return body(*b, p);
}

}  // namespace

// K a b = a, H a = I, I a = a, T a b = b a: the laws a conditional and an
// over-applied operator rely on.
bool preludeLawsHold(std::vector<std::pair<GlobalSlot*, uint32_t>>& reads) {
  GlobalSlot& k = slotOf("K");
  GlobalSlot& h = slotOf("H");
  GlobalSlot& i = slotOf("I");
  GlobalSlot& t = slotOf("T");
  bool ok = hasLaw(k, 2, [](const Term& b, const unsigned char* p) { return isLetterLeaf(b, p[0]); }) &&
            hasLaw(h, 1, [](const Term& b, const unsigned char*) { return isByteLeaf(b, 'I'); }) &&
            hasLaw(i, 1, [](const Term& b, const unsigned char* p) { return isLetterLeaf(b, p[0]); }) &&
            hasLaw(t, 2, [](const Term& b, const unsigned char* p) {
              return b.isApp() && isLetterLeaf(b.left(), p[1]) && isLetterLeaf(b.right(), p[0]);
            });
  for (GlobalSlot* s : {&k, &h, &i, &t}) reads.emplace_back(s, s->version);
  return ok;
}

namespace {

bool arithOfBuiltin(const Builtin* b, Expr& kind, uint8_t& op) {
  static const std::pair<std::string_view, std::pair<Expr, uint8_t>> table[] = {
      {"plus", {Expr::kArith, uint8_t(Arith::kPlus)}},      {"dash", {Expr::kArith, uint8_t(Arith::kDash)}},
      {"mult", {Expr::kArith, uint8_t(Arith::kMult)}},      {"over", {Expr::kArith, uint8_t(Arith::kOver)}},
      {"cent", {Expr::kArith, uint8_t(Arith::kCent)}},      {"less", {Expr::kCompare, uint8_t(Compare::kLess)}},
      {"gteq", {Expr::kCompare, uint8_t(Compare::kGreaterEq)}}, {"same", {Expr::kCompare, uint8_t(Compare::kSame)}},
      {"diff", {Expr::kCompare, uint8_t(Compare::kDiff)}},
  };
  for (const auto& [name, what] : table) {
    if (b->name == name) {
      kind = what.first;
      op = what.second;
      return true;
    }
  }
  return false;
}

class Compiler {
 public:
  Compiler(DirectCode& out, const unsigned char* letters, int params)
      : out_(out), letters_(letters), params_(params) {}

  int32_t expr(const Term& t) { return applied(t, nullptr, 0); }

  // Each parameter's occurrences in t: the references to its argument that
  // the machine's instance of t holds.
  void countUses(const Term& t, Uses& uses) {
    if (t.isLeaf()) {
      unsigned char c = t.first();
      if (!isLower(c) || t.node()->bytes()[1] != 0) return;
      for (int i = 0; i < params_; i++)
        if (letters_[i] == c) {
          uses[size_t(i)]++;  // the first parameter of a letter wins
          return;
        }
      return;
    }
    if (t.node()->isData()) return;
    countUses(t.left(), uses);
    countUses(t.right(), uses);
  }

 private:
  // t applied to further arguments (those of an enclosing conditional that
  // go to whichever branch is taken).
  int32_t applied(const Term& t, const Term* const* extras, int extraCount) {
    annotate(t);
    // The spine: the head leaf and its arguments in source order.
    const Term* args[16];
    int n = 0;
    const Term* h = &t;
    while (h->isApp() && !h->node()->isData()) {
      if (n == 16) return -1;
      args[n++] = &h->right();
      h = &h->left();
    }
    for (int i = 0, j = n - 1; i < j; i++, j--) std::swap(args[i], args[j]);
    if (n + extraCount > 16) return -1;
    for (int i = 0; i < extraCount; i++) args[n++] = extras[i];
    if (n == 0) return t.isLeaf() ? leafExpr(t) : emit({Expr::kLiteral, 0, 0, -1, -1, -1, 0, t.node(), nullptr});
    if (!h->isLeaf()) return -1;

    // I a b... = a b...: a branch that passes the arguments on.
    if (isByteLeaf(*h, 'I')) return applied(*args[0], args + 1, n - 1);

    // A condition of & | ! before two branches: its value never leaves.
    int logicArgs;
    Logic logic;
    if (logicOf(*h, logic, logicArgs) && n >= logicArgs + 2) {
      int32_t test = logicExpr(logic, args);
      if (test < 0) return -1;
      return choice(test, args + logicArgs, n - logicArgs);
    }

    Instr part{Expr::kCall};
    int used;
    if (operatorOf(*h, part.kind, part.op)) {
      used = 2;
    } else if (dataOf(*h, part.kind)) {
      used = part.kind == Expr::kLook ? 2 : 3;
    } else {
      GlobalSlot* callee = calleeOf(*h, used);
      if (!callee) return -1;
      part.callee = callee;
    }
    if (n < used) return -1;  // a partial application is no integer work
    int32_t operands[16];
    for (int i = 0; i < used; i++)
      if ((operands[i] = expr(*args[i])) < 0) return -1;
    if (part.kind == Expr::kCall) {
      part.argc = uint8_t(used);
      part.a = int32_t(out_.callArgs.size());
      out_.callArgs.insert(out_.callArgs.end(), operands, operands + used);
    } else {
      part.a = operands[0];
      part.b = operands[1];
      part.c = used == 3 ? operands[2] : -1;
    }
    int32_t whole = emit(part);
    if (n == used) return whole;
    return choice(whole, args + used, n - used);
  }

  // The value of `test` applied to two branches and then to any further
  // arguments: a conditional. The branch not taken is dropped, with the
  // references it held.
  int32_t choice(int32_t test, const Term* const* args, int n) {
    if (n < 2) return -1;
    int32_t yes = applied(*args[0], args + 2, n - 2);
    int32_t no = applied(*args[1], args + 2, n - 2);
    if (yes < 0 || no < 0) return -1;
    Uses whenYes{}, whenNo{};
    countUses(*args[1], whenYes);
    countUses(*args[0], whenNo);
    return emit({Expr::kChoice, 0, 0, test, yes, no, dropLists(whenYes, whenNo), nullptr, nullptr});
  }

  // The index of a pair of drop lists, or -1 when both are empty.
  int64_t dropLists(const Uses& first, const Uses& second) {
    if (first == Uses{} && second == Uses{}) return -1;
    out_.drops.push_back(first);
    out_.drops.push_back(second);
    return int64_t(out_.drops.size() - 2);
  }

  // The element builtins the evaluator runs itself.
  bool dataOf(const Term& h, Expr& kind) {
    if (!isName(textOf(h))) return false;
    const Builtin* b = slotOfLeaf(h).builtin;
    if (!b) return false;
    if (b->name == "look") kind = Expr::kLook;
    else if (b->name == "cork") kind = Expr::kCork;
    else return false;
    return true;
  }

  // A condition: & | ! of conditions, or any expression giving K or H.
  int32_t condition(const Term& t) {
    if (t.isApp() && !isData(t)) {
      const Term* args[2];
      int n = 0;
      const Term* h = &t;
      while (h->isApp() && n < 2) {
        args[1 - n] = &h->right();
        n++;
        h = &h->left();
      }
      int logicArgs;
      Logic logic;
      if (h->isLeaf() && logicOf(*h, logic, logicArgs) && n == logicArgs) {
        if (n == 1) args[0] = args[1];
        return logicExpr(logic, args);
      }
    }
    return expr(t);
  }

  int32_t logicExpr(Logic logic, const Term* const* args) {
    int32_t a = condition(*args[0]);
    int32_t b = logic == Logic::kNot ? -1 : condition(*args[1]);
    if (a < 0 || (logic != Logic::kNot && b < 0)) return -1;
    // A second condition not looked at is dropped.
    int64_t drop = -1;
    if (logic != Logic::kNot) {
      Uses unused{};
      countUses(*args[1], unused);
      if (unused != Uses{}) {
        out_.drops.push_back(unused);
        drop = int64_t(out_.drops.size() - 1);
      }
    }
    return emit({Expr::kLogic, uint8_t(logic), 0, a, b, -1, drop, nullptr, nullptr});
  }

  // The prelude's & (q r H), | (q K r) and ! (p H K), while they hold.
  bool logicOf(const Term& h, Logic& logic, int& args) {
    if (!h.isLeaf() || h.node()->bytes()[1] != 0) return false;
    unsigned char c = h.first();
    if (c != '&' && c != '|' && c != '!') return false;
    GlobalSlot& s = slotOfLeaf(h);
    bool holds;
    if (c == '&') {
      holds = hasLaw(s, 2, [](const Term& b, const unsigned char* p) {
        return b.isApp() && b.left().isApp() && isLetterLeaf(b.left().left(), p[0]) &&
               isLetterLeaf(b.left().right(), p[1]) && isByteLeaf(b.right(), 'H');
      });
      logic = Logic::kAnd;
    } else if (c == '|') {
      holds = hasLaw(s, 2, [](const Term& b, const unsigned char* p) {
        return b.isApp() && b.left().isApp() && isLetterLeaf(b.left().left(), p[0]) &&
               isByteLeaf(b.left().right(), 'K') && isLetterLeaf(b.right(), p[1]);
      });
      logic = Logic::kOr;
    } else {
      holds = hasLaw(s, 1, [](const Term& b, const unsigned char* p) {
        return b.isApp() && b.left().isApp() && isLetterLeaf(b.left().left(), p[0]) &&
               isByteLeaf(b.left().right(), 'H') && isByteLeaf(b.right(), 'K');
      });
      logic = Logic::kNot;
    }
    out_.reads.emplace_back(&s, s.version);
    args = logic == Logic::kNot ? 1 : 2;
    return holds;
  }

  int32_t emit(const Instr& i) {
    out_.code.push_back(i);
    return int32_t(out_.code.size() - 1);
  }

  int32_t leafExpr(const Term& t) {
    unsigned char c = t.first();
    if (isLower(c) && t.node()->bytes()[1] == 0) {
      for (int i = 0; i < params_; i++)
        if (letters_[i] == c) return emit({Expr::kParam, 0, 0, -1, -1, -1, i, nullptr, nullptr});
      return -1;  // a letter bound inside the body
    }
    int64_t w;
    if (wordOfLeaf(t.node(), w)) return emit({Expr::kInteger, 0, 0, -1, -1, -1, w, t.node(), nullptr});
    if (isValue(t)) return emit({Expr::kLiteral, 0, 0, -1, -1, -1, 0, t.node(), nullptr});
    return -1;  // a parameterless global: the machine evaluates and memoises it
  }

  // An operator builtin, by its own name or through a parameterless global
  // whose value is that name (the prelude's [+]\plus).
  bool operatorOf(const Term& h, Expr& kind, uint8_t& op) {
    if (!isName(textOf(h))) return false;
    GlobalSlot& s = slotOfLeaf(h);
    if (s.builtin) return arithOfBuiltin(s.builtin, kind, op);
    if (!s.value || s.callForm || !s.value.isLeaf() || !isWordByte(s.value.first())) return false;
    GlobalSlot& v = slotOfLeaf(s.value);
    if (!v.builtin || !arithOfBuiltin(v.builtin, kind, op)) return false;
    out_.reads.emplace_back(&s, s.version);
    return true;
  }

  // A lower-case global with parameters: strict, so its call may be direct.
  GlobalSlot* calleeOf(const Term& h, int& params) {
    std::string_view name = textOf(h);
    if (name.size() < 2 || !isWordByte(h.first()) || !isName(name)) return nullptr;
    GlobalSlot& s = slotOfLeaf(h);
    if (!s.value || s.callForm || s.builtin) return nullptr;
    unsigned char letters[10];
    const Term* body;
    params = peelParams(s.value, letters, body);
    if (params < 1) return nullptr;
    out_.reads.emplace_back(&s, s.version);
    return &s;
  }

  DirectCode& out_;
  const unsigned char* letters_;
  int params_;
};

// Compiles the definition of s into d (whose earlier code is dropped).
// The template of a body: what substitution would rebuild, in advance. A
// body with a binder or wing on the way to a parameter has none (its
// shadowing is left to substitution).
class TemplateBuilder {
 public:
  TemplateBuilder(DirectCode& out, const unsigned char* letters, int params) : out_(out) {
    for (int i = params; i-- > 0;) {  // the first parameter of a letter wins
      argOf_[letters[i] - 'a'] = i;
      mask_ |= 1u << (letters[i] - 'a');
    }
  }

  bool source(const Term& t, Source& out) {
    annotate(t);
    const Node* n = t.node();
    if ((freeSetAnnotated(n) & mask_) == 0) {
      out = {Source::kShared, 0, t.node()};
      return true;
    }
    if (n->isLeaf()) {
      out = {Source::kArgument, uint32_t(argOf_[n->bytes()[0] - 'a']), nullptr};
      return true;
    }
    Shape shape = t.left().isApp() ? spineShape(t) : Shape::kOther;
    if (shape != Shape::kOther) return false;
    BuildStep step;
    if (!source(t.right(), step.right) || !source(t.left(), step.left)) return false;
    if (out_.steps.size() >= kMaxTemplateSteps) return false;
    out_.steps.push_back(step);
    out = {Source::kBuilt, uint32_t(out_.steps.size() - 1), nullptr};
    return true;
  }


 private:
  DirectCode& out_;
  int argOf_[26] = {};
  uint32_t mask_ = 0;
};

void buildTemplate(GlobalSlot& s, DirectCode& d) {
  d.steps.clear();
  d.templated = false;
  if (!s.value || s.builtin) return;
  unsigned char letters[10];
  const Term* body;
  int params = peelParams(s.value, letters, body);
  if (params < 1) return;
  annotate(*body);  // as the machine's first substitution would
  d.templateParams = params;
  TemplateBuilder b(d, letters, params);
  d.templated = b.source(*body, d.templateRoot);
  if (!d.templated) d.steps.clear();
}

void compile(GlobalSlot& s, DirectCode& d) {
  buildTemplate(s, d);
  d.code.clear();
  d.callArgs.clear();
  d.drops.clear();
  d.uses = Uses{};
  d.usedOtherThanOnce = 0;
  d.reads.clear();
  d.runnable = false;
  d.root = -1;
  d.value = s.value;
  d.reads.emplace_back(&s, s.version);
  d.stamp = globalsStamp();
  d.epoch = memoryEpoch();
  // Only a lower-case word is sure to be strict: a capital or an operator
  // byte may be a lazy head, fired on arguments that are not values.
  if (!s.value || s.callForm || s.builtin || s.name.size() < 2 || !isWordByte(uint8_t(s.name[0]))) return;
  unsigned char letters[10];
  const Term* body;
  d.params = peelParams(s.value, letters, body);
  if (d.params < 1) return;
  if (!preludeLawsHold(d.reads)) return;
  annotate(*body);  // as the machine's first substitution would
  Compiler c(d, letters, d.params);
  c.countUses(*body, d.uses);
  for (int k = 0; k < d.params; k++)
    if (d.uses[size_t(k)] != 1) d.usedOtherThanOnce |= uint16_t(1u << k);
  d.root = c.expr(*body);
  d.runnable = d.root >= 0;
}

}  // namespace

[[gnu::noinline]] DirectCode* refreshCode(GlobalSlot& s) {
  DirectCode* d = s.direct;
  if (!d) {
    d = s.direct = new DirectCode;  // lives as long as the slot
    compile(s, *d);
    return d;
  }
  bool same = true;
  for (const auto& [slot, version] : d->reads) same = same && slot->version == version;
  if (same && d->epoch == memoryEpoch()) {
    d->stamp = globalsStamp();
    return d;
  }
  // A definition changed, or memory may have: compile again, but a
  // definition whose attempt was abandoned stays so until it changes.
  bool abandoned = same && d->root >= 0 && !d->runnable;
  compile(s, *d);
  if (abandoned) d->runnable = false;
  return d;
}

}  // namespace tarn
