// The data primitives, one row each: trees (taking data apart, identity and
// order), conversions between kinds, element reading, element update and
// slices.
//
// Contract: a handler reads its arguments (values, borrowed) through `Args`,
// starts no reduction, and returns a new reference; wrong kinds give a fresh
// leaf "Z" where the primitive has no fatal assertion for them.
#pragma once

#include <array>

#include "runtime/builtins.h"

namespace tarn {

Term handleLisp(const Builtin&, const Args& args);
Term handleTern(const Builtin&, const Args& args);
Term handleCmpr(const Builtin&, const Args& args);
Term handleType(const Builtin&, const Args& args);
Term handleRaws(const Builtin&, const Args& args);

inline constexpr auto kPrimitiveBuiltins = std::to_array<Builtin>({
    unwritten("abort", 0),
    unwritten("assert", 1, Memory::kKeeps),
    special("cmpr", 2, handleCmpr),
    unwritten("copy", 2),
    unwritten("cork", 3),
    unwritten("cray", 0, Memory::kKeeps),
    unwritten("exit", 1),
    unwritten("init", 1, Memory::kKeeps),
    unwritten("leaf", 1, Memory::kKeeps),
    unwritten("leak", 1, Memory::kKeeps),
    unwritten("left", 1, Memory::kKeeps),
    special("lisp", 1, handleLisp),
    unwritten("lits", 1, Memory::kKeeps),
    unwritten("look", 2, Memory::kKeeps),
    unwritten("lots", 1, Memory::kKeeps),
    unwritten("post", 2, Memory::kKeeps),
    unwritten("rank", 1, Memory::kKeeps),
    special("raws", 2, handleRaws),
    unwritten("rght", 1, Memory::kKeeps),
    special("tern", 1, handleTern),
    unwritten("trim", 3, Memory::kKeeps),
    special("type", 1, handleType),
    unwritten("zits", 1, Memory::kKeeps),
});

}  // namespace tarn
