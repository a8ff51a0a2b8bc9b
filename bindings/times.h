// Time: clock readings and the broken-down time record.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every plain row its tests, its one
// host call and its result.
#pragma once

#include <array>

#include "bindings/frame.h"

namespace tarn {

inline constexpr auto kTimeBuiltins = std::to_array<Builtin>({
    unwritten("asctime", 1),
    unwritten("ctime", 1),
    unwritten("difftime", 2),
    unwritten("gmtime", 1),
    unwritten("localtime", 1),
    unwritten("mktime", 1),
    unwritten("strftime", 4),
    unwritten("time", 1),
    unwritten("time_t", 0),
});

}  // namespace tarn
