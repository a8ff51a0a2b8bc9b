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

// Trees (tree.cpp).
Term handleLeft(const Builtin&, const Args& args);
Term handleRght(const Builtin&, const Args& args);
Term handleLeaf(const Builtin&, const Args& args);
Term handleRaws(const Builtin&, const Args& args);
Term handleLeak(const Builtin&, const Args& args);
Term handleLisp(const Builtin&, const Args& args);
Term handleType(const Builtin&, const Args& args);
Term handleCray(const Builtin&, const Args& args);
Term handleAssert(const Builtin&, const Args& args);
Term handleExit(const Builtin&, const Args& args);
Term handleAbort(const Builtin&, const Args& args);
// Identity and order (order.cpp).
Term handleTern(const Builtin&, const Args& args);
Term handleCmpr(const Builtin&, const Args& args);
// Conversions (conversions.cpp, bitlists.cpp).
Term handleZits(const Builtin&, const Args& args);
Term handleInit(const Builtin&, const Args& args);
Term handlePost(const Builtin&, const Args& args);
Term handleCopy(const Builtin&, const Args& args);
Term handleRank(const Builtin&, const Args& args);
Term handleLots(const Builtin&, const Args& args);
Term handleLits(const Builtin&, const Args& args);
// Element reading, update and slices (elements.cpp, update.cpp).
Term handleLook(const Builtin&, const Args& args);
Term handleCork(const Builtin&, const Args& args);
Term handleTrim(const Builtin&, const Args& args);

// `cork` changes a solely held value in place, and `copy` writes wherever it
// is told: both may change bytes of nodes.
inline constexpr auto kPrimitiveBuiltins = std::to_array<Builtin>({
    special("abort", 0, handleAbort, Memory::kWrites),
    special("assert", 1, handleAssert),
    special("cmpr", 2, handleCmpr),
    special("copy", 2, handleCopy, Memory::kWrites),
    special("cork", 3, handleCork, Memory::kWrites),
    special("cray", 0, handleCray),
    special("exit", 1, handleExit, Memory::kWrites),
    special("init", 1, handleInit),
    special("leaf", 1, handleLeaf),
    special("leak", 1, handleLeak),
    special("left", 1, handleLeft),
    special("lisp", 1, handleLisp),
    special("lits", 1, handleLits),
    special("look", 2, handleLook),
    special("lots", 1, handleLots),
    special("post", 2, handlePost),
    special("rank", 1, handleRank),
    special("raws", 2, handleRaws),
    special("rght", 1, handleRght),
    special("tern", 1, handleTern),
    special("trim", 3, handleTrim),
    special("type", 1, handleType),
    special("zits", 1, handleZits),
});

}  // namespace tarn
