// Mathematics: the host maths library and the random number sequence.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every plain row its tests, its one
// host call and its result. Every double parameter takes only a real (an
// integer gives "Z": the program converts with `real` first), and the tests
// run first to last, so `frexp` of a non-real gives "Z" before its address is
// looked at. Results are the host's own, NaNs and errno included.
//
// Host differences kept out of the program's sight:
//   - `labs` works on the low 32 bits (the host's long is 64-bit): it negates
//     in 32 bits and sign-extends, so -2147483648 stays negative.
//   - `rand` and `srand` are the system's own generator, the same on every
//     host: the state starts at 1, each `rand` steps it to
//     state * 214013 + 2531011 (mod 2^32) and returns bits 16..30;
//     `rand_max` is 32767.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

#include "bindings/frame.h"

namespace tarn {

namespace maths {

using Unary = double (*)(double);
using Binary = double (*)(double, double);

// The whole 64-bit value's magnitude; the lowest value stays negative.
int64_t absolute(int64_t value);
// The magnitude of the low 32 bits, sign-extended.
int64_t absoluteLow32(int64_t value);

// The generator: `srand` sets the state, `rand` steps it.
void seedRandom(uint32_t seed);
int randomNext();

}  // namespace maths

inline constexpr auto kMathsBuiltins = std::to_array<Builtin>({
    host<maths::absolute>("abs", {ArgTest::kInteger}, Result::kSigned),
    host<maths::Unary(::acos)>("acos", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::asin)>("asin", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::atan)>("atan", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::ceil)>("ceil", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::cos)>("cos", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::cosh)>("cosh", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::erf)>("erf", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::erfc)>("erfc", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::exp)>("exp", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::fabs)>("fabs", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::floor)>("floor", {ArgTest::kReal}, Result::kReal),
    host<maths::Binary(::fmod)>("fmod", {ArgTest::kReal, ArgTest::kReal}, Result::kReal),
    host<static_cast<double (*)(double, int*)>(::frexp)>("frexp", {ArgTest::kReal, ArgTest::kInteger}, Result::kReal),
    host<maths::Binary(::hypot)>("hypot", {ArgTest::kReal, ArgTest::kReal}, Result::kReal),
    host<maths::absoluteLow32>("labs", {ArgTest::kInteger}, Result::kSigned),
    host<static_cast<double (*)(double, int)>(::ldexp)>("ldexp", {ArgTest::kReal, ArgTest::kInteger}, Result::kReal),
    host<maths::Unary(::log)>("log", {ArgTest::kReal}, Result::kReal),
    host<static_cast<double (*)(double, double*)>(::modf)>("modf", {ArgTest::kReal, ArgTest::kInteger}, Result::kReal),
    host<maths::Binary(::nextafter)>("nextafter", {ArgTest::kReal, ArgTest::kReal}, Result::kReal),
    host<maths::Binary(::pow)>("pow", {ArgTest::kReal, ArgTest::kReal}, Result::kReal),
    host<maths::randomNext>("rand", {}, Result::kSigned),
    constant<32767>("rand_max", Memory::kWrites),
    host<maths::Unary(::sin)>("sin", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::sinh)>("sinh", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::sqrt)>("sqrt", {ArgTest::kReal}, Result::kReal),
    host<maths::seedRandom>("srand", {ArgTest::kInteger}, Result::kVoid),
    host<maths::Unary(::tan)>("tan", {ArgTest::kReal}, Result::kReal),
    host<maths::Unary(::tanh)>("tanh", {ArgTest::kReal}, Result::kReal),
});

}  // namespace tarn
