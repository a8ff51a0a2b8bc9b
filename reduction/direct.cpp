// Direct calls: first-order definitions of integers and vectors compiled to a
// small expression code and evaluated strictly, integers as machine words.
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

#include <cstring>
#include <deque>
#include <memory>
#include <utility>
#include <vector>

#include "reduction/direct_code.h"
#include "runtime/annotate.h"
#include "terms/alphabet.h"
#include "terms/failure.h"
#include "terms/texts.h"

namespace tarn {

namespace {

bool gFastPaths = true;
uint64_t callsTaken = 0, callsDeclined = 0;

// Direct calls nest on the native stack (which is very large); deeper than
// this, the machine, whose depth is bounded only by memory, takes over.
constexpr int kMaxDepth = 20000000;

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

inline bool compareWords(Compare op, int64_t a, int64_t b) {
  switch (op) {
    case Compare::kLess: return a < b;
    case Compare::kGreaterEq: return a >= b;
    case Compare::kSame: return a == b;
    case Compare::kDiff: return a != b;
  }
  return false;
}

Val compare(Compare op, const Val& x, const Val& y) {
  bool yes = false;
  if (x.isWord() && y.isWord()) {
    yes = compareWords(op, x.word(), y.word());
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

// ---- Vectors and blobs held by one holder ---------------------------------------
//
// `cork` changes a vector or a blob in place when nothing but the
// application holds it. The machine's references to a value are the occurrences of it in the
// instance of the computation: in the bodies of the calls under way (a body
// refers to an argument once per occurrence of its parameter), in arguments
// already brought to values, and in the application of a builtin. The
// evaluator holds its values by pointer, so for each vector or blob that only
// the call holds when it starts (no holder outside it) it counts those
// references itself: a call adds each parameter's occurrences and removes
// the argument, a choice removes what the branch not taken held, a builtin
// removes its arguments once it is done, and `look` adds the element it
// gives. A `cork` whose target is such a value, held once, and still held by
// nothing outside, is the machine's in-place update; anything else declines.
//
// Writes are logged so that an attempt abandoned after a write can be
// undone before the machine redoes the call: a slot's old element stays in
// the log until the attempt ends, a blob's old byte is kept beside it.

inline bool isVectorNode(const Node* n) { return n->isLeaf() && n->bytes()[0] == '\n'; }
inline bool isBlobNode(const Node* n) { return n->isLeaf() && n->bytes()[0] == '('; }

// A blob's bytes, after "(", its length in base-64 digits, and ")".
unsigned char* blobData(Node* n, size_t* size = nullptr) {
  unsigned char* t = n->bytes();
  size_t close = 1, count = 0;
  while (t[close] != ')') count = count * 64 + size_t(digitValue(t[close++]));
  if (size) *size = count;
  return t + close + 1;
}

struct Tracked {
  Node* node;
  int64_t held;      // references in the computation under way
  uint32_t outside;  // references of the call's application, given up when it fires
  size_t logged;     // writes logged for this vector
  struct Originals* originals;  // once logging costs more than a slot table
};
Tracked tracked[kMaxParams];
int trackedCount = 0;
bool wroteAny = false;

// A vector's written slots and their elements from before the attempt, each
// with its reference: a bit per slot telling which were written, and a table
// by slot for the old elements. The first old element seen is the common
// one (a vector is often made of one value repeated): slots that held it
// only count its references, and the table is written for the others. It
// replaces the log of a vector once a sixty-fourth of its slots have been
// written, when clearing the bits costs no more than the entries did.
struct Originals {
  std::vector<uint64_t> written, own;  // own: the old element is in `first`
  std::unique_ptr<Node*[]> first;      // not initialised: only own slots are read
  bool hasCommon = false;
  Node* common = nullptr;
  size_t commonRefs = 0;
};
Originals originalsOf[kMaxParams];

struct SlotWrite {
  Node* target;  // a vector or a blob
  size_t slot;   // the element or byte
  Node* old;     // a vector's old element, owned by the log
  int oldByte;   // a blob's old byte; -1 for a vector
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

// Slot i of a vector with a table of originals gives up the element `was`.
inline void replaced(Originals& o, size_t i, Node* was) {
  uint64_t& word = o.written[i >> 6];
  uint64_t bit = uint64_t(1) << (i & 63);
  if (word & bit) {
    if (was) releaseNode(was);  // a value the attempt itself wrote
    return;
  }
  word |= bit;  // the slot's reference moves to the table
  if (!o.hasCommon) {
    o.hasCommon = true;
    o.common = was;
  }
  if (was == o.common) {
    o.commonRefs++;
    return;
  }
  o.own[i >> 6] |= bit;
  o.first[i] = was;
}

// The element slot i held before the attempt; its reference is the table's.
inline Node* originalAt(const Originals& o, size_t i) {
  return (o.own[i >> 6] >> (i & 63)) & 1 ? o.first[i] : o.common;
}

// The log entries of one vector move to its table of originals.
void takeOriginals(Tracked& t) {
  size_t n = t.node->size();
  Originals& o = originalsOf[&t - tracked];
  o.written.assign((n + 63) / 64, 0);
  o.own.assign((n + 63) / 64, 0);
  o.first.reset(new Node*[n]);
  t.originals = &o;
  std::deque<SlotWrite> others;
  for (const SlotWrite& w : slotWrites)
    if (w.target == t.node) replaced(o, w.slot, w.old);
    else others.push_back(w);
  slotWrites.swap(others);
}

// Each written slot of a vector with a table of originals.
template <typename F>
void forWritten(const Tracked& t, F each) {
  const Originals& o = *t.originals;
  for (size_t k = 0; k < o.written.size(); k++)
    for (uint64_t bits = o.written[k]; bits; bits &= bits - 1) each(k * 64 + size_t(__builtin_ctzll(bits)));
}

void undoSlotWrites() {
  for (size_t i = slotWrites.size(); i-- > 0;) {
    const SlotWrite& w = slotWrites[i];
    if (w.oldByte >= 0) {
      blobData(w.target)[w.slot] = uint8_t(w.oldByte);
      continue;
    }
    Node* now = w.target->element(w.slot);
    w.target->setElementRaw(w.slot, w.old);
    if (now) releaseNode(now);
  }
  slotWrites.clear();
  for (int k = 0; k < trackedCount; k++) {
    Tracked& t = tracked[k];
    if (!t.originals) continue;
    forWritten(t, [&](size_t i) {
      Node* now = t.node->element(i);
      t.node->setElementRaw(i, originalAt(*t.originals, i));
      if (now) releaseNode(now);
    });
  }
}

void keepSlotWrites() {
  if (!wroteAny) return;
  advanceMemoryEpoch();  // as each update of the machine does
  for (const SlotWrite& w : slotWrites)
    if (w.old) releaseNode(w.old);
  slotWrites.clear();
  for (int k = 0; k < trackedCount; k++) {
    Tracked& t = tracked[k];
    if (!t.originals) continue;
    const Originals& o = *t.originals;
    forWritten(t, [&](size_t i) {
      if ((o.own[i >> 6] >> (i & 63)) & 1 && o.first[i]) releaseNode(o.first[i]);
    });
    if (o.common)
      for (size_t r = 0; r < o.commonRefs; r++) releaseNode(o.common);
  }
}

Term escape(const Val& v);

// An element index: counted from the end when negative; false outside the
// n elements.
inline bool slotIndex(const Val& index, size_t elements, size_t& slot) {
  if (!index.isWord()) return false;
  int64_t i = index.word(), n = int64_t(elements);
  if (i < 0) i += n;
  if (i < 0 || i >= n) return false;
  slot = size_t(i);
  return true;
}

inline Val valueOfNode(Node* n) {
  int64_t w;
  return wordOfLeaf(n, w) ? Val(w, n, How::kInteger) : Val(0, n, How::kNode);
}

// look on a vector's filled slot or a blob's byte; anything else (a fresh Z,
// or another kind) is the machine's.
Val lookSlot(const Val& target, const Val& index) {
  if (target.how() != How::kNode) return kFailed;
  Node* v = target.node();
  size_t slot, size;
  if (isBlobNode(v)) {
    unsigned char* bytes = blobData(v, &size);
    if (!slotIndex(index, size, slot)) return kFailed;
    held(target, -1);
    return {bytes[slot], nullptr, How::kSum};  // a new leaf, as the builtin makes
  }
  if (!isVectorNode(v) || !slotIndex(index, v->size(), slot)) return kFailed;
  Node* e = v->element(slot);
  if (!e) return kFailed;
  held(target, -1);
  Val r = valueOfNode(e);
  held(r, 1);
  return r;
}

// cork on a vector or a blob that the computation holds once, in place; the
// copy and every failure are the machine's.
Val corkSlot(const Val& target, const Val& index, const Val& value) {
  if (target.how() != How::kNode) return kFailed;
  Node* v = target.node();
  bool blob = isBlobNode(v);
  if (!blob && !isVectorNode(v)) return kFailed;
  Tracked* t = trackedOf(v);
  if (!t || t->held != 1 || v->count() != t->outside) return kFailed;
  size_t slot, size;
  if (blob) {
    // The byte is the value's low byte.
    unsigned char* bytes = blobData(v, &size);
    if (!value.isWord() || !slotIndex(index, size, slot)) return kFailed;
    slotWrites.push_back({v, slot, nullptr, bytes[slot]});
    wroteAny = true;
    bytes[slot] = uint8_t(uint64_t(value.word()));
    return target;
  }
  if (!slotIndex(index, v->size(), slot)) return kFailed;
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
  wroteAny = true;
  if (t->originals) {
    replaced(*t->originals, slot, old);
  } else {
    slotWrites.push_back({v, slot, old, -1});
    if (++t->logged * 64 > v->size()) takeOriginals(*t);
  }
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
    if (x.isWord() && y.isWord()) [[likely]] return compareWords(Compare(in.op), x.word(), y.word());
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
    if (!released || !(isVectorNode(n) || isBlobNode(n))) continue;
    Tracked* t = trackedOf(n);
    if (!t) {
      t = &tracked[trackedCount++];
      *t = {n, 0, 0, 0, nullptr};
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
  bool taken = !r.failed();
  if (taken) {
    callsTaken++;
    result = escape(r);
    keepSlotWrites();
  } else {
    undoSlotWrites();
    d->runnable = false;  // not again until the definition changes
    callsDeclined++;
  }
  for (int k = 0; k < trackedCount; k++)
    if (Originals* o = tracked[k].originals) *o = Originals{};
  trackedCount = 0;
  wroteAny = false;
  return taken;
}

// The body of d's definition built from its template; false without one.
bool instantiate(const DirectCode* d, const Term* const* args, int argc, Term& result) {
  if (!d->templated) return false;
  TARN_ASSERT(d->templateParams == argc);
  Node* built[kMaxTemplateSteps];  // each owned until taken once
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

void setFastPaths(bool on) { gFastPaths = on; }
bool fastPaths() { return gFastPaths; }
uint64_t directCalls() { return callsTaken; }
uint64_t directDeclined() { return callsDeclined; }

}  // namespace tarn
