// The process: environment, signals, commands and error numbers.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every plain row its tests, its one
// host call and its result.
#pragma once

#include <array>

#include "bindings/frame.h"

namespace tarn {

inline constexpr auto kProcessBuiltins = std::to_array<Builtin>({
    unwritten("eacces", 0, Memory::kKeeps),
    unwritten("ebadf", 0, Memory::kKeeps),
    unwritten("econnaborted", 0, Memory::kKeeps),
    unwritten("efault", 0, Memory::kKeeps),
    unwritten("eintr", 0),
    unwritten("einval", 0, Memory::kKeeps),
    unwritten("eio", 0, Memory::kKeeps),
    unwritten("emfile", 0, Memory::kKeeps),
    unwritten("enfile", 0, Memory::kKeeps),
    unwritten("enodev", 0, Memory::kKeeps),
    unwritten("enomem", 0, Memory::kKeeps),
    unwritten("enotsock", 0, Memory::kKeeps),
    unwritten("enxio", 0, Memory::kKeeps),
    unwritten("eopnotsupp", 0, Memory::kKeeps),
    unwritten("eoverflow", 0, Memory::kKeeps),
    unwritten("errno", 0),
    unwritten("ewouldblock", 0),
    unwritten("getenv", 1),
    unwritten("raise", 1),
    unwritten("system", 1),
});

}  // namespace tarn
