// Mathematics: the host maths library and the random number sequence.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every plain row its tests, its one
// host call and its result.
#pragma once

#include <array>

#include "bindings/frame.h"

namespace tarn {

inline constexpr auto kMathsBuiltins = std::to_array<Builtin>({
    unwritten("abs", 1),
    unwritten("acos", 1),
    unwritten("asin", 1),
    unwritten("atan", 1),
    unwritten("ceil", 1),
    unwritten("cos", 1),
    unwritten("cosh", 1),
    unwritten("erf", 1),
    unwritten("erfc", 1),
    unwritten("exp", 1),
    unwritten("fabs", 1),
    unwritten("floor", 1),
    unwritten("fmod", 2),
    unwritten("frexp", 2),
    unwritten("hypot", 2),
    unwritten("labs", 1),
    unwritten("ldexp", 2),
    unwritten("log", 1),
    unwritten("modf", 2),
    unwritten("nextafter", 2),
    unwritten("pow", 2),
    unwritten("rand", 0),
    unwritten("rand_max", 0),
    unwritten("sin", 1),
    unwritten("sinh", 1),
    unwritten("sqrt", 1),
    unwritten("srand", 1),
    unwritten("tan", 1),
    unwritten("tanh", 1),
});

}  // namespace tarn
