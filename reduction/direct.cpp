// Direct calls: first-order integer definitions compiled to a small
// expression code and evaluated strictly, with integers as machine words.
//
// Why it is the machine's answer. A lower-case definition is strict: the
// machine brings every argument of a call to a value, left to right, before
// it substitutes, and an operator builtin gets both operands as values, left
// operand first. A conditional (c x y) evaluates c, and the leaf K or H that
// a comparison gives then keeps x or y by the prelude laws of K, H and I
// (checked here, together with T, through which over-applied heads take
// their arguments). So the evaluator computes the same values in the same
// order; the only effects the machine would have had besides the result are
// the nodes of the instantiated bodies, which no program can reach.
#include "reduction/direct.h"

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <deque>
#include <cstring>
#include <utility>
#include <vector>

#include "runtime/annotate.h"
#include "terms/failure.h"
#include "terms/texts.h"

namespace tarn {

namespace {

bool gFastPaths = true;
uint64_t callsTaken = 0, callsDeclined = 0;

// Integers the evaluator holds as words: below 10^17 in magnitude, so that a
// sum or difference of two never overflows, and every result is a leaf of at
// most 18 bytes, the texts the number builtins read as words themselves.
constexpr int64_t kWordLimit = 100000000000000000;
// Direct calls nest on the native stack (which is very large); deeper than
// this, the machine, whose depth is bounded only by memory, takes over.
constexpr int kMaxDepth = 20000000;

enum class Expr : uint8_t {
  kParam,    // the argument at index `word`
  kInteger,  // an integer literal of the body: `word`, the leaf `node`
  kLiteral,  // any other closed value of the body: the node itself
  kArith,    // a + - * / % b
  kCompare,  // a < > = # b
  kCall,     // callee(args...)
  kChoice,   // (a b c): a must give K (b) or H (c)
  kLogic,    // a & b, a | b, !a: only as the condition of a choice
  kLook,     // look(a, b): a slot of a vector
  kCork,     // cork(a, b, c): a vector's slot set in place
};

enum class Arith : uint8_t { kPlus, kDash, kMult, kOver, kCent };
enum class Compare : uint8_t { kLess, kGreaterEq, kSame, kDiff };
enum class Logic : uint8_t { kAnd, kOr, kNot };

struct Instr {
  Expr kind;
  uint8_t op = 0;     // an Arith or Compare
  uint8_t argc = 0;   // kCall: the number of arguments
  int32_t a = -1, b = -1, c = -1;  // operands; kCall: a is the first of `callArgs`
  int64_t word = 0;      // kChoice, kLogic: the first of its drop lists, or -1
  Node* node = nullptr;  // held through the definition's value
  GlobalSlot* callee = nullptr;
};

// The most parameters a compiled definition has.
constexpr int kMaxParams = 10;
// Occurrences of each parameter in a part of a body.
using Uses = std::array<uint16_t, kMaxParams>;

// How a value came to be, which decides the node it becomes when it leaves.
enum class How : uint8_t {
  kFailed,   // the attempt is abandoned
  kSum,      // a word from + - / %: a new leaf of its text
  kProduct,  // a word from *: a new leaf born with the product's arity 2
  kYes,      // a comparison's K, not yet made
  kNo,       // a comparison's H, not yet made
  kInteger,  // the integer `word`, standing for the node `node`
  kNode,     // the node `node`, not a word-sized integer
};

// A value in two words, so that it travels in registers: the integer, and
// the node it stands for (if any) with its How in the low three bits.
class Val {
 public:
  Val() = default;
  Val(int64_t word, Node* node, How how) : word_(word), bits_(reinterpret_cast<uintptr_t>(node) | uintptr_t(how)) {}
  int64_t word() const { return word_; }
  Node* node() const { return reinterpret_cast<Node*>(bits_ & ~uintptr_t(7)); }
  How how() const { return How(bits_ & 7); }
  bool failed() const { return how() == How::kFailed; }
  // An integer held as a word: from arithmetic, or a word-sized leaf.
  bool isWord() const { return (0b100110u >> (bits_ & 7)) & 1; }

 private:
  int64_t word_ = 0;
  uintptr_t bits_ = 0;
};
static_assert(sizeof(Val) == 16);
const Val kFailed{0, nullptr, How::kFailed};

}  // namespace

// An instantiation template: the application nodes of a definition's body
// that hold a parameter, in the order they are built (children first). A
// source is a node of the body, shared, an argument, or a node built earlier.
struct Source {
  enum Kind : uint8_t { kShared, kArgument, kBuilt } kind;
  uint32_t index;  // the argument or built node; unused when shared
  Node* node;      // kShared: held through the definition's value
};
struct BuildStep {
  Source left, right;
};

struct DirectCode {
  // Instantiation of the body by its template, where it has one.
  bool templated = false;
  int templateParams = 0;
  Source templateRoot{};
  std::vector<BuildStep> steps;

  uint32_t stamp = 0;  // globals' stamp and memory epoch last checked against
  uint32_t epoch = 0;
  std::vector<std::pair<GlobalSlot*, uint32_t>> reads;  // slots and their versions
  bool runnable = false;  // compiled, and no attempt abandoned since
  int params = 0;
  int32_t root = -1;
  std::vector<Instr> code;
  std::vector<int32_t> callArgs;
  Uses uses{};              // each parameter's occurrences in the body
  uint16_t usedOtherThanOnce = 0;  // the parameters whose uses are not 1, as bits
  std::vector<Uses> drops;  // what a choice or a logic operator leaves untaken
  Term value;  // the definition compiled: keeps the literal nodes alive
};

namespace {

// ---- Reading definitions --------------------------------------------------------

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

// The value of a canonical integer leaf of word size: "0", a digit string
// without a leading zero, or "0" before one (a negative number).
bool wordOfLeaf(const Node* n, int64_t& v) {
  if (!n->isLeaf()) return false;
  const unsigned char* s = n->bytes();
  if (!isDigit(s[0])) return false;
  size_t len = n->size();
  if (len == 0 || len > 18) return false;
  if (len == 1) {
    v = s[0] - '0';
    return true;
  }
  bool negative = s[0] == '0';
  if (s[negative] == '0' || len - negative > 17) return false;
  int64_t m = 0;
  for (size_t i = negative; i < len; i++) {
    if (!isDigit(s[i])) return false;
    m = m * 10 + (s[i] - '0');
  }
  v = negative ? -m : m;
  return true;
}

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
    if (out_.steps.size() >= kMaxSteps) return false;
    out_.steps.push_back(step);
    out = {Source::kBuilt, uint32_t(out_.steps.size() - 1), nullptr};
    return true;
  }

  static constexpr size_t kMaxSteps = 64;

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

DirectCode* refreshCode(GlobalSlot& s);

// The code of s, valid for the present globals and memory.
inline DirectCode* codeOf(GlobalSlot& s) {
  DirectCode* d = s.direct;
  if (d && d->stamp == globalsStamp() && d->epoch == memoryEpoch()) [[likely]] return d;
  return refreshCode(s);
}

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

// ---- Evaluation ------------------------------------------------------------------

inline bool inRange(int64_t v) { return v > -kWordLimit && v < kWordLimit; }

Val arith(Arith op, int64_t a, int64_t b) {
  int64_t r = 0;
  How how = How::kSum;
  switch (op) {
    case Arith::kPlus: r = a + b; break;
    case Arith::kDash: r = a - b; break;
    case Arith::kMult:
      if (__builtin_mul_overflow(a, b, &r)) return kFailed;
      how = How::kProduct;
      break;
    case Arith::kOver:  // floor division; a zero divisor gives Z
      if (b == 0) return kFailed;
      r = a / b;
      if (a % b != 0 && (a < 0) != (b < 0)) r--;
      break;
    case Arith::kCent: {  // never negative; a zero divisor gives Z
      if (b == 0) return kFailed;
      int64_t ma = a < 0 ? -a : a, mb = b < 0 ? -b : b;
      r = ma % mb;
      if ((a < 0) != (b < 0) && r != 0) r = mb - r;
      break;
    }
  }
  if (!inRange(r)) [[unlikely]] return kFailed;
  return {r, nullptr, how};
}

Val compare(Compare op, const Val& x, const Val& y) {
  bool yes = false;
  if (x.isWord() && y.isWord()) {
    switch (op) {
      case Compare::kLess: yes = x.word() < y.word(); break;
      case Compare::kGreaterEq: yes = x.word() >= y.word(); break;
      case Compare::kSame: yes = x.word() == y.word(); break;
      case Compare::kDiff: yes = x.word() != y.word(); break;
    }
  } else if ((op == Compare::kSame || op == Compare::kDiff) && x.how() == How::kNode &&
             y.how() == How::kNode && x.node() == y.node()) {
    yes = op == Compare::kSame;  // one node is the same as itself, whatever it is
  } else {
    return kFailed;
  }
  return {0, nullptr, yes ? How::kYes : How::kNo};
}

// The arguments of direct calls live on a stack of their own, reserved as
// address space once (pages are used only as deep as calls go), so that a
// call's native frame stays small and a tail call reuses its caller's room.
constexpr size_t kArgumentRoom = size_t(1) << 28;  // values (4 GiB of address space)
Val* argBase = nullptr;
Val* argTop = nullptr;
Val* argEnd = nullptr;
int depth = 0;

bool reserveArguments() {
  if (argBase) return true;
  void* p = mmap(nullptr, kArgumentRoom * sizeof(Val), PROT_READ | PROT_WRITE,
                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (p == MAP_FAILED) return false;
  argBase = argTop = static_cast<Val*>(p);
  argEnd = argBase + kArgumentRoom;
  return true;
}

// ---- Vectors held by one holder -------------------------------------------------
//
// `cork` changes a vector in place when nothing but the application holds
// it. The machine's references to a value are the occurrences of it in the
// instance of the computation: in the bodies of the calls under way (a body
// refers to an argument once per occurrence of its parameter), in arguments
// already brought to values, and in the application of a builtin. The
// evaluator holds its values by pointer, so for each vector that only the
// call holds when it starts (no holder outside it) it counts those
// references itself: a call adds each parameter's occurrences and removes
// the argument, a choice removes what the branch not taken held, a builtin
// removes its arguments once it is done, and `look` adds the element it
// gives. A `cork` whose target is such a vector, held once, and still held by
// nothing outside, is the machine's in-place update; anything else declines.
//
// Writes are logged so that an attempt abandoned after a write can be
// undone before the machine redoes the call: the slot's old element stays in
// the log until the attempt ends.

struct Tracked {
  Node* node;
  int64_t held;      // references in the computation under way
  uint32_t outside;  // references of the call's application, given up when it fires
};
Tracked tracked[kMaxParams];
int trackedCount = 0;

struct SlotWrite {
  Node* vector;
  size_t slot;
  Node* old;  // owned by the log
};
std::deque<SlotWrite> slotWrites;  // no copying as it grows

Tracked* trackedOf(const Node* n) {
  for (int i = 0; i < trackedCount; i++)
    if (tracked[i].node == n) return &tracked[i];
  return nullptr;
}

[[gnu::noinline]] void heldSlow(Node* n, int64_t delta) {
  if (Tracked* t = trackedOf(n)) t->held += delta;
}

// A value's references change by delta.
[[gnu::always_inline]] inline void held(const Val& v, int64_t delta) {
  if (trackedCount == 0 || v.how() != How::kNode) [[likely]] return;
  heldSlow(v.node(), delta);
}

// A call's body takes the place of its application: each argument is held
// once per occurrence of its parameter instead of once.
[[gnu::always_inline]] inline void enter(const DirectCode* d, const Val* params) {
  if (trackedCount == 0 || d->usedOtherThanOnce == 0) [[likely]] return;
  for (unsigned bits = d->usedOtherThanOnce; bits; bits &= bits - 1) {
    int k = __builtin_ctz(bits);
    held(params[k], int64_t(d->uses[size_t(k)]) - 1);
  }
}

// A part of the body is dropped with the references it held.
[[gnu::always_inline]] inline void drop(const DirectCode* d, int64_t list, const Val* params) {
  if (trackedCount == 0 || list < 0) [[likely]] return;
  const Uses& uses = d->drops[size_t(list)];
  for (int k = 0; k < d->params; k++)
    if (uses[size_t(k)]) held(params[k], -int64_t(uses[size_t(k)]));
}

void undoSlotWrites() {
  for (size_t i = slotWrites.size(); i-- > 0;) {
    const SlotWrite& w = slotWrites[i];
    Node* now = w.vector->element(w.slot);
    w.vector->setElementRaw(w.slot, w.old);
    if (now) releaseNode(now);
  }
  slotWrites.clear();
}

void keepSlotWrites() {
  if (slotWrites.empty()) return;
  advanceMemoryEpoch();  // as each update of the machine does
  for (const SlotWrite& w : slotWrites)
    if (w.old) releaseNode(w.old);
  slotWrites.clear();
}

Term escape(const Val& v);

inline bool isVectorNode(const Node* n) { return n->isLeaf() && n->bytes()[0] == '\n'; }

// A slot index: counted from the end when negative; false outside the vector.
inline bool slotIndex(const Val& index, const Node* vector, size_t& slot) {
  if (!index.isWord()) return false;
  int64_t i = index.word(), n = int64_t(vector->size());
  if (i < 0) i += n;
  if (i < 0 || i >= n) return false;
  slot = size_t(i);
  return true;
}

inline Val valueOfNode(Node* n) {
  int64_t w;
  return wordOfLeaf(n, w) ? Val(w, n, How::kInteger) : Val(0, n, How::kNode);
}

// look on a vector's filled slot; anything else (a fresh Z, or another kind)
// is the machine's.
Val lookSlot(const Val& target, const Val& index) {
  size_t slot;
  if (target.how() != How::kNode || !isVectorNode(target.node()) || !slotIndex(index, target.node(), slot))
    return kFailed;
  Node* e = target.node()->element(slot);
  if (!e) return kFailed;
  held(target, -1);
  Val r = valueOfNode(e);
  held(r, 1);
  return r;
}

// cork on a vector that the computation holds once, in place; the copy and
// every failure are the machine's.
Val corkSlot(const Val& target, const Val& index, const Val& value) {
  size_t slot;
  if (target.how() != How::kNode || !isVectorNode(target.node()) || !slotIndex(index, target.node(), slot))
    return kFailed;
  Node* v = target.node();
  Tracked* t = trackedOf(v);
  if (!t || t->held != 1 || v->count() != t->outside) return kFailed;
  Node* old = v->element(slot);
  if (old && trackedOf(old)) return kFailed;  // the log would hold it
  bool empties = value.how() == How::kNode && value.node()->isLeaf() && value.node()->bytes()[0] == 'U' &&
                 value.node()->bytes()[1] == 0;
  Node* now = nullptr;
  if (!empties) {
    if ((value.how() == How::kNode || value.how() == How::kInteger) && value.node() == old) {
      held(value, -1);
      return target;  // the same element again: nothing changes
    }
    now = escape(value).detach();
  }
  v->setElementRaw(slot, now);
  slotWrites.push_back({v, slot, old});
  held(value, -1);
  return target;
}

Val eval(const DirectCode* d, int32_t at, const Val* params);

Val strict(const DirectCode* d, const Instr& in, const Val* params);

// An operand: parameters and literals are read here, without a frame. The
// common kinds are tested one by one before the general dispatch, so that
// each test site learns its own pattern.
inline Val operand(const DirectCode* d, int32_t at, const Val* params) {
  const Instr& in = d->code[size_t(at)];
  if (in.kind == Expr::kParam) [[likely]] return params[in.word];
  if (in.kind == Expr::kInteger) return Val(in.word, in.node, How::kInteger);
  switch (in.kind) {
    case Expr::kLiteral: return Val(0, in.node, How::kNode);
    case Expr::kArith:
    case Expr::kCompare:
    case Expr::kLook:
    case Expr::kCork: return strict(d, in, params);
    default: return eval(d, at, params);
  }
}

// An operator or element builtin on its operands, evaluated left to right.
// Only calls nest evaluations (and count towards the depth), so these run
// in the frame of whoever needs their value.
Val strict(const DirectCode* d, const Instr& in, const Val* params) {
  switch (in.kind) {
    case Expr::kArith: {
      Val x = operand(d, in.a, params);
      if (!x.isWord()) return kFailed;
      Val y = operand(d, in.b, params);
      return y.isWord() ? arith(Arith(in.op), x.word(), y.word()) : kFailed;
    }
    case Expr::kCompare: {
      Val x = operand(d, in.a, params);
      if (x.failed()) return kFailed;
      Val y = operand(d, in.b, params);
      Val r = y.failed() ? kFailed : compare(Compare(in.op), x, y);
      held(x, -1);
      held(y, -1);
      return r;
    }
    case Expr::kLook: {
      Val x = operand(d, in.a, params);
      Val i = x.failed() ? x : operand(d, in.b, params);
      return i.failed() ? kFailed : lookSlot(x, i);
    }
    case Expr::kCork: {
      Val x = operand(d, in.a, params);
      Val i = x.failed() ? x : operand(d, in.b, params);
      Val v = i.failed() ? i : operand(d, in.c, params);
      return v.failed() ? kFailed : corkSlot(x, i, v);
    }
    default: TARN_ASSERT(false); return kFailed;
  }
}

// A condition's truth: 1 for K, 0 for H, -1 when the attempt is abandoned
// (any other value). A comparison chooses at once, with no value made; &
// and | look at their second condition only as the prelude laws do.
int truth(const DirectCode* d, int32_t at, const Val* params) {
  const Instr& in = d->code[size_t(at)];
  Val c;
  if (in.kind == Expr::kCompare) [[likely]] {
    Val x = operand(d, in.a, params);
    Val y = x.failed() ? x : operand(d, in.b, params);
    if (x.isWord() && y.isWord()) [[likely]] {
      switch (Compare(in.op)) {
        case Compare::kLess: return x.word() < y.word();
        case Compare::kGreaterEq: return x.word() >= y.word();
        case Compare::kSame: return x.word() == y.word();
        case Compare::kDiff: return x.word() != y.word();
      }
    }
    c = y.failed() ? y : compare(Compare(in.op), x, y);
    held(x, -1);
    held(y, -1);
    return c.how() == How::kYes ? 1 : c.how() == How::kNo ? 0 : -1;
  }
  switch (in.kind) {
    case Expr::kLogic: {
      int a = truth(d, in.a, params);
      if (a < 0) return a;
      switch (Logic(in.op)) {
        case Logic::kAnd:
          if (a) return truth(d, in.b, params);
          drop(d, in.word, params);
          return 0;
        case Logic::kOr:
          if (!a) return truth(d, in.b, params);
          drop(d, in.word, params);
          return 1;
        case Logic::kNot: return !a;
      }
      return -1;
    }
    default: c = eval(d, at, params);
  }
  How how = c.how();
  if (how == How::kNode) {
    const Node* n = c.node();
    if (n->isLeaf() && n->bytes()[1] == 0 && (n->bytes()[0] == 'K' || n->bytes()[0] == 'H'))
      how = n->bytes()[0] == 'K' ? How::kYes : How::kNo;
  }
  return how == How::kYes ? 1 : how == How::kNo ? 0 : -1;
}

// The value of instruction `at` of d with the given parameters. Calls in
// tail position (a branch, a definition's body) continue in this frame.
Val eval(const DirectCode* d, int32_t at, const Val* params) {
  Val* mark = argTop;  // argument room above this is ours, given back on return
  if (++depth > kMaxDepth) [[unlikely]] {
    depth--;
    return kFailed;
  }
  Val r;
  for (;;) {
    const Instr& in = d->code[size_t(at)];
    switch (in.kind) {
      case Expr::kParam: r = params[in.word]; break;
      case Expr::kInteger: r = Val(in.word, in.node, How::kInteger); break;
      case Expr::kLiteral: r = Val(0, in.node, How::kNode); break;
      case Expr::kArith:
      case Expr::kCompare:
      case Expr::kLook:
      case Expr::kCork: r = strict(d, in, params); break;
      case Expr::kChoice: {
        int yes = truth(d, in.a, params);
        if (yes < 0) { r = kFailed; break; }
        drop(d, in.word < 0 ? -1 : in.word + !yes, params);
        at = yes ? in.b : in.c;
        continue;  // the branch is in tail position
      }
      case Expr::kLogic: r = kFailed; break;  // compiled only as a condition
      case Expr::kCall: {
        Val* args = argTop;
        if (argEnd - args < in.argc) [[unlikely]] { r = kFailed; break; }
        argTop += in.argc;
        bool ok = true;
        for (int i = 0; i < in.argc && ok; i++) {
          args[i] = operand(d, d->callArgs[size_t(in.a + i)], params);
          ok = !args[i].failed();
        }
        DirectCode* callee = codeOf(*in.callee);
        if (!ok || !callee->runnable || callee->params != in.argc) { r = kFailed; break; }
        // The callee's body is in tail position: when our own parameters are
        // room of this frame, the arguments move down over them.
        if (params >= mark && params < args) {
          for (int i = 0; i < in.argc; i++) mark[i] = args[i];  // a few words: no memmove call
          args = mark;
          argTop = mark + in.argc;
        }
        enter(callee, args);
        d = callee;
        params = args;
        at = callee->root;
        continue;
      }
    }
    break;
  }
  argTop = mark;
  depth--;
  return r;
}

// The integer's leaf, as the number builtins write it: "0" before the digits
// of a negative value. Digits are written in pairs, from the back.
Term wordLeaf(int64_t v) {
  static constexpr char kPairs[] =
      "0001020304050607080910111213141516171819202122232425262728293031323334353637383940414243444546474849"
      "5051525354555657585960616263646566676869707172737475767778798081828384858687888990919293949596979899";
  uint64_t m = v < 0 ? 0 - uint64_t(v) : uint64_t(v);
  size_t digits = 1;
  for (uint64_t ten = 10; digits < 19 && m >= ten; ten *= 10) digits++;
  size_t n = digits + (v < 0);
  Term t = rawLeaf(n);
  char* p = reinterpret_cast<char*>(rawBytes(t)) + n;
  while (m >= 100) {
    p -= 2;
    std::memcpy(p, kPairs + 2 * (m % 100), 2);
    m /= 100;
  }
  if (m >= 10) {
    p -= 2;
    std::memcpy(p, kPairs + 2 * m, 2);
  } else {
    *--p = char('0' + m);
  }
  if (v < 0) *--p = '0';
  sealLeaf(t, n);
  return t;
}

// The node a value becomes when it leaves the evaluator.
Term escape(const Val& v) {
  switch (v.how()) {
    case How::kSum: return wordLeaf(v.word());
    case How::kProduct: {
      Term t = wordLeaf(v.word());
      if (v.word() != 0) t.node()->setTop(header::kProductLeafTop);  // as every product is born
      return t;
    }
    case How::kYes: return leafByte('K');
    case How::kNo: return leafByte('H');
    default: return Term::share(v.node());
  }
}

}  // namespace

namespace {

// The direct evaluation of a call of d's definition; false where it is not
// taken or was abandoned.
bool evaluate(DirectCode* d, const Term& call, const Term* const* args, int argc, Term& result) {
  if (!d->runnable || d->params != argc) return false;
  if (!argBase && !reserveArguments()) [[unlikely]] return false;
  Val* params = argTop;
  argTop += argc;
  for (int i = 0; i < argc; i++) params[i] = valueOfNode(args[i]->node());
  // The vectors that only the application holds: its spine nodes above them
  // are held by nothing else, so firing gives up every reference to them.
  trackedCount = 0;
  const Node* spine = call.node();
  bool released = true;
  for (int i = argc - 1; i >= 0; i--, spine = spine->leftNode()) {
    released = released && spine->count() == 1;
    Node* n = args[i]->node();
    if (!released || !isVectorNode(n)) continue;
    Tracked* t = trackedOf(n);
    if (!t) {
      t = &tracked[trackedCount++];
      *t = {n, 0, 0};
    }
    t->held++;
    t->outside++;
  }
  int kept = 0;
  for (int i = 0; i < trackedCount; i++)
    if (tracked[i].node->count() == tracked[i].outside) tracked[kept++] = tracked[i];
  trackedCount = kept;
  enter(d, params);
  depth = 0;
  Val r = eval(d, d->root, params);
  argTop = params;
  trackedCount = 0;
  if (r.failed()) {
    undoSlotWrites();
    d->runnable = false;  // not again until the definition changes
    callsDeclined++;
    return false;
  }
  callsTaken++;
  result = escape(r);
  keepSlotWrites();
  return true;
}

// The body of d's definition built from its template; false without one.
bool instantiate(const DirectCode* d, const Term* const* args, int argc, Term& result) {
  if (!d->templated) return false;
  TARN_ASSERT(d->templateParams == argc);
  Node* built[TemplateBuilder::kMaxSteps];  // each owned until taken once
  auto take = [&](const Source& from) -> Term {
    switch (from.kind) {
      case Source::kShared: return Term::share(from.node);
      case Source::kArgument: return *args[from.index];
      default: return Term::adopt(built[from.index]);
    }
  };
  size_t n = d->steps.size();
  for (size_t i = 0; i < n; i++) {
    const BuildStep& step = d->steps[i];
    Term r = take(step.right);
    Term t = App(take(step.left), std::move(r));
    annotateSlow(t.node());  // as substitution annotates what it builds
    built[i] = t.detach();
  }
  result = take(d->templateRoot);
  return true;
}

}  // namespace

bool callDirect(GlobalSlot& s, const Term& call, const Term* const* args, int argc, Term& result) {
  return gFastPaths && evaluate(codeOf(s), call, args, argc, result);
}

bool instantiateDirect(GlobalSlot& s, const Term* const* args, int argc, Term& result) {
  return gFastPaths && instantiate(codeOf(s), args, argc, result);
}

bool fireDirect(GlobalSlot& s, const Term& call, const Term* const* args, int argc, Term& result) {
  if (!gFastPaths) return false;
  DirectCode* d = codeOf(s);
  return evaluate(d, call, args, argc, result) || instantiate(d, args, argc, result);
}

// ---- Operators in the machine -------------------------------------------------------

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
  if (!gFastPaths) return false;
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

void setFastPaths(bool on) { gFastPaths = on; }
bool fastPaths() { return gFastPaths; }
uint64_t directCalls() { return callsTaken; }
uint64_t directDeclined() { return callsDeclined; }

}  // namespace tarn
