// The memory family: allocation, block operations and the accessors that read
// and write numbers of each width at an address.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every plain row its tests, its one
// host call and its result.
#pragma once

#include <array>

#include "bindings/frame.h"

namespace tarn {

inline constexpr auto kMemoryBuiltins = std::to_array<Builtin>({
    unwritten("bzero", 2),
    unwritten("calloc", 2),
    unwritten("free", 1),
    unwritten("malloc", 1),
    unwritten("memchr", 3),
    unwritten("memcmp", 3),
    unwritten("memcpy", 3),
    unwritten("memmove", 3),
    unwritten("memset", 3),
    unwritten("realloc", 2),
    unwritten("rech", 2),
    unwritten("reci", 2),
    unwritten("recj", 2),
    unwritten("reck", 2),
    unwritten("recl", 3),
    unwritten("recm", 3),
    unwritten("recn", 3),
    unwritten("reco", 3),
    unwritten("redh", 2),
    unwritten("redi", 2),
    unwritten("redj", 2),
    unwritten("redk", 2),
    unwritten("redl", 3),
    unwritten("redm", 3),
    unwritten("redn", 3),
    unwritten("redo", 3),
    unwritten("refh", 1),
    unwritten("refi", 1),
    unwritten("refj", 1),
    unwritten("refk", 1),
    unwritten("refl", 2),
    unwritten("refm", 2),
    unwritten("refn", 2),
    unwritten("refo", 2),
    unwritten("relh", 2),
    unwritten("reli", 2),
    unwritten("relj", 2),
    unwritten("relk", 2),
    unwritten("rell", 3),
    unwritten("relm", 3),
    unwritten("reln", 3),
    unwritten("relo", 3),
    unwritten("remh", 2),
    unwritten("remi", 2),
    unwritten("remj", 2),
    unwritten("remk", 2),
    unwritten("reml", 3),
    unwritten("remm", 3),
    unwritten("remn", 3),
    unwritten("remo", 3),
});

}  // namespace tarn
