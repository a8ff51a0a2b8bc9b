// The binding frame: how a builtin that binds a host function tests and
// converts its arguments and turns the host's result back into a term.
//
// Contract: a binding tests its arguments first to last; the first test that
// fails gives a fresh leaf Z, and neither the later arguments nor the host
// function are looked at. The conversions follow, last argument first; then
// the host function is called once, with the arguments in the language's
// order, and its result is converted as the row says. Host pointers, streams,
// descriptors and sockets are plain integers; doubles are real leaves; truth
// values are K and H. The frame adds nothing to the host function: no handle
// table, no record of what was opened.
//
// A plain binding is one row: `host<F>(name, {tests...}, result)`. The arity is
// the host function's parameter count, and the parameter types say how a
// converted argument is passed (an integer argument given to a pointer
// parameter is passed as the address it names).
#pragma once

#include <cstdint>
#include <initializer_list>
#include <tuple>
#include <type_traits>
#include <utility>

#include "numbers/model.h"
#include "runtime/builtins.h"
#include "terms/term.h"

namespace tarn {

// ---- Tests ---------------------------------------------------------------------
// A term of kind a (blob), i (integer) or u (bracket data).
bool isHostPointer(const Term& t);
// A real leaf.
bool isHostReal(const Term& t);
// The test of an argument: kNone and kUnchecked always pass.
bool passesTest(ArgTest test, const Term& t);

// ---- Conversions ---------------------------------------------------------------
// i: the integer; u: the address of the literal's text (its "[" included);
// a: the address of the blob's first data byte. Any other kind: fatal
// assertion.
void* termToPointer(const Term& t);
double termToReal(const Term& t);
Term realToTerm(double v);
Term truthToTerm(bool v);
Term pointerToTerm(const void* p);

// ---- The frame -------------------------------------------------------------------

// Host functions carry attributes (non-null parameters and the like) that a
// function pointer type cannot keep; dropping them is what is wanted here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wignored-attributes"

namespace frame {

template <typename F>
struct Signature;
template <typename R, typename... P>
struct Signature<R (*)(P...)> {
  using Return = R;
  using Params = std::tuple<std::decay_t<P>...>;
  static constexpr int kArity = sizeof...(P);
};
template <typename R, typename... P>
struct Signature<R (*)(P...) noexcept> : Signature<R (*)(P...)> {};

// One converted argument, passed as the host parameter type P.
template <typename P>
P convert(ArgTest test, const Term& t) {
  if constexpr (std::is_floating_point_v<P>) {
    return P(termToReal(t));
  } else if constexpr (std::is_pointer_v<P>) {
    if (test == ArgTest::kPointer) return static_cast<P>(termToPointer(t));
    return reinterpret_cast<P>(static_cast<intptr_t>(termToInt64(t)));
  } else {
    static_assert(std::is_integral_v<P>, "a host parameter is a number or a pointer");
    return static_cast<P>(termToInt64(t));
  }
}

template <typename R>
Term convertResult(Result kind, R r) {
  if constexpr (std::is_void_v<R>) {
    return leafByte('I');
  } else if constexpr (std::is_floating_point_v<R>) {
    return realToTerm(double(r));
  } else if constexpr (std::is_pointer_v<R>) {
    return pointerToTerm(r);
  } else {
    switch (kind) {
      case Result::kUnsigned: return uint64ToTerm(static_cast<uint64_t>(r));
      case Result::kTruth: return truthToTerm(r != 0);
      default: return int64ToTerm(static_cast<int64_t>(r));  // int results sign-extend
    }
  }
}

// The frame itself, instantiated once per host function.
template <auto F>
Term callHost(const Builtin& row, const Args& args) {
  using S = Signature<decltype(F)>;
  constexpr int n = S::kArity;
  for (int i = 0; i < n; i++)
    if (!passesTest(row.tests[i], args[i])) return leafByte('Z');
  typename S::Params values;
  // Last argument first: the comma fold runs left to right over reversed indexes.
  [&]<size_t... I>(std::index_sequence<I...>) {
    ((std::get<n - 1 - I>(values) =
          convert<std::tuple_element_t<n - 1 - I, typename S::Params>>(row.tests[n - 1 - I], args[n - 1 - I])),
     ...);
  }(std::make_index_sequence<n>{});
  if constexpr (std::is_void_v<typename S::Return>) {
    std::apply(F, values);
    return leafByte('I');
  } else {
    return convertResult<typename S::Return>(row.result, std::apply(F, values));
  }
}

template <int64_t V>
Term constantValue(const Builtin&, const Args&) {
  return int64ToTerm(V);
}

}  // namespace frame

// ---- Row makers --------------------------------------------------------------------

// A plain host binding: the host function F, one test per parameter, and the
// result conversion. Bindings may change any memory the program can reach.
template <auto F>
consteval Builtin host(std::string_view name, std::initializer_list<ArgTest> tests, Result result,
                       Memory memory = Memory::kWrites) {
  using S = frame::Signature<decltype(F)>;
  static_assert(S::kArity <= kMaxArity);
  Builtin b{name, uint8_t(S::kArity), memory == Memory::kWrites, &frame::callHost<F>, {}, result, 0};
  if (int(tests.size()) != S::kArity) throw "one test per host parameter";
  int i = 0;
  for (ArgTest t : tests) b.tests[i++] = t;
  return b;
}

// A zero-arity name that stands for a number of the language.
template <int64_t V>
consteval Builtin constant(std::string_view name, Memory memory = Memory::kKeeps) {
  return Builtin{name, 0, memory == Memory::kWrites, &frame::constantValue<V>, {}, Result::kSigned, V};
}

#pragma GCC diagnostic pop

}  // namespace tarn
