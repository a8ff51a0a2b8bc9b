// The builtin table: one row per builtin primitive.
//
// Contract: every builtin is one `Builtin` row, kept by the family that
// implements it (numbers/, primitives/, bindings/, checks/) in a constexpr
// table of its own. The composition root joins the family tables into one
// table sorted by name, checks at compile time that it holds exactly
// `kBuiltinCount` distinct names, and installs it here before anything looks
// a name up. The table then lives, unchanged, to the end of the process.
//
// A row names its handler. The machine calls a handler with the saturated
// application (every argument already a value) seen through `Args`, the one
// way to read arguments; the handler returns a new reference and starts no
// reduction. A row whose handler is still null stops the process with the
// internal failure "unimplemented NAME" when it is called.
//
// A host binding's row also carries the test of each argument and the kind
// of the host result; the binding frame (bindings/frame.h) reads them, so a
// plain host call is a row and nothing else.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "terms/term.h"

namespace tarn {

// The number of builtins the language has.
inline constexpr int kBuiltinCount = 254;
// The largest arity of any builtin.
inline constexpr int kMaxArity = 7;

// The arguments of a saturated application, first argument first, borrowed
// from the application.
class Args {
 public:
  Args(const Term& chain, int arity) : chain_(&chain), count_(arity) {
    const Term* t = &chain;
    for (int i = arity - 1; i >= 0; i--) {
      items_[i] = &t->right();
      t = &t->left();
    }
  }
  const Term& operator[](int i) const { return *items_[i]; }
  int size() const { return count_; }

  // True when argument i has no holder but this application: its node and
  // every application node of the spine above it have a count of 1. Only
  // then may a handler change the argument in place, since nothing else can
  // see it. One comparison per spine node, no scan.
  bool soleHeld(int i) const {
    const Term* t = chain_;
    for (int k = count_ - 1; k > i; k--) {
      if (t->node()->count() != 1) return false;
      t = &t->left();
    }
    return t->node()->count() == 1 && items_[i]->node()->count() == 1;
  }

 private:
  const Term* chain_;
  std::array<const Term*, kMaxArity> items_;  // the first count_ are set
  int count_;
};

// The test a host binding applies to one argument, and with it the
// conversion that the argument then gets.
enum class ArgTest : uint8_t {
  kNone,       // not a host parameter (rows with handlers of their own)
  kInteger,    // a host integer; converted to a 64-bit signed value
  kNatural,    // a non-negative host integer; converted to 64 bits
  kPointer,    // a blob, an integer or bracket data; converted to an address
  kReal,       // a real leaf; converted to a double
  kUnchecked,  // no test: converted straight to 64 bits (its assertions stop
               // the process on a value that is no number)
};

// How a host binding turns the host's result into a term.
enum class Result : uint8_t {
  kNone,      // rows with handlers of their own
  kSigned,    // a decimal integer of the value as a signed 64-bit number
  kUnsigned,  // a decimal integer of the value as an unsigned 64-bit number
  kReal,      // a real leaf
  kTruth,     // the leaf K for a non-zero value, H for zero
  kVoid,      // the leaf I (the host function returns nothing)
};

// Whether a builtin may change bytes that nodes occupy: the machine drops its
// name-lookup caches after calling one that may.
enum class Memory : uint8_t { kKeeps, kWrites };

struct Builtin;
using Handler = Term (*)(const Builtin& row, const Args& args);

struct Builtin {
  std::string_view name;
  uint8_t arity = 0;
  bool writesMemory = false;  // may change bytes of nodes: name caches are dropped
  Handler handler = nullptr;  // null until the builtin's handler is written
  std::array<ArgTest, kMaxArity> tests{};
  Result result = Result::kNone;
  int64_t value = 0;          // a constant's value, for handlers that read it
};

// ---- Row makers -------------------------------------------------------------

// A builtin with a handler of its own.
consteval Builtin special(std::string_view name, int arity, Handler h,
                          Memory memory = Memory::kKeeps) {
  return Builtin{name, uint8_t(arity), memory == Memory::kWrites, h, {}, Result::kNone, 0};
}
// A builtin whose handler has not been written yet.
consteval Builtin unwritten(std::string_view name, int arity, Memory memory = Memory::kWrites) {
  return Builtin{name, uint8_t(arity), memory == Memory::kWrites, nullptr, {}, Result::kNone, 0};
}

// ---- Joining the family tables ------------------------------------------------

// The family tables joined and sorted by name. Duplicate names and a count
// other than kBuiltinCount fail to compile.
template <size_t... N>
consteval std::array<Builtin, (N + ...)> joinBuiltins(const std::array<Builtin, N>&... families) {
  std::array<Builtin, (N + ...)> all{};
  size_t k = 0;
  auto append = [&](const auto& family) {
    for (const Builtin& b : family) all[k++] = b;
  };
  (append(families), ...);
  std::sort(all.begin(), all.end(), [](const Builtin& a, const Builtin& b) { return a.name < b.name; });
  return all;
}
template <size_t N>
consteval bool namesDistinct(const std::array<Builtin, N>& table) {
  for (size_t i = 1; i < N; i++)
    if (!(table[i - 1].name < table[i].name)) return false;
  return true;
}

// ---- The installed table --------------------------------------------------------

// Installs the joined table; called once by the composition root.
void installBuiltins(std::span<const Builtin> table);
// The 254 rows in name order.
std::span<const Builtin> builtinTable();
// The row of a name, or null.
const Builtin* findBuiltin(std::string_view name);
// The internal failure "unimplemented NAME".
[[noreturn]] void unimplementedBuiltin(const Builtin& b);
// Calls a builtin on its saturated application `chain` (borrowed).
inline Term callBuiltin(const Builtin& b, const Term& chain) {
  if (!b.handler) [[unlikely]] unimplementedBuiltin(b);
  return b.handler(b, Args(chain, b.arity));
}

}  // namespace tarn
