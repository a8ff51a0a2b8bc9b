// Direct calls, the parts the compiler and the evaluator share: the
// expression code of a definition, its instantiation template, and the
// checks that keep the code valid for the present globals and memory.
// Included only by the reduction layer's direct-call files.
#pragma once

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "runtime/globals.h"
#include "terms/term.h"
#include "terms/texts.h"

namespace tarn {

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

// Integers the evaluator holds as words: below 10^17 in magnitude, so that a
// sum or difference of two never overflows, and every result is a leaf of at
// most 18 bytes, the texts the number builtins read as words themselves.
constexpr int64_t kWordLimit = 100000000000000000;

// The value of a canonical integer leaf of word size: "0", a digit string
// without a leading zero, or "0" before one (a negative number).
inline bool wordOfLeaf(const Node* n, int64_t& v) {
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

// K a b = a, H a = I, I a = a, T a b = b a, with the slots read added to reads.
bool preludeLawsHold(std::vector<std::pair<GlobalSlot*, uint32_t>>& reads);

// The most application nodes a template builds.
constexpr size_t kMaxTemplateSteps = 64;

DirectCode* refreshCode(GlobalSlot& s);

// The code of s, valid for the present globals and memory.
inline DirectCode* codeOf(GlobalSlot& s) {
  DirectCode* d = s.direct;
  if (d && d->stamp == globalsStamp() && d->epoch == memoryEpoch()) [[likely]] return d;
  return refreshCode(s);
}

}  // namespace tarn
