// Running on a large stack.
//
// Parsing, the definition passes, annotation, substitution and printing
// recurse over the depth of a term, and a program can build terms a million
// levels deep (about 0.7 GiB of native stack for a million-deep right spine).
// The interpreter therefore runs on a thread whose stack reserves up to
// 64 GiB of address space; pages are committed only as the recursion reaches
// them. A guard below the stack turns an overflow into a fault that the
// fatal-signal handler reports as such.
//
// When the reservation fails (an address-space limit, strict overcommit), the
// runner halves it until one succeeds, and says on the error stream that it
// runs with less than it wanted. Under an address-space limit it reserves at
// most half of the limit, leaving the rest to the heap, but never less than
// what a million-level term needs while that still fits.
#pragma once

#include <cstddef>
#include <functional>

namespace tarn {

// The reservation the runner asks for first.
inline constexpr size_t kWantedStackBytes = size_t(64) << 30;
// What the recursive walks need for terms a million levels deep.
inline constexpr size_t kNeededStackBytes = size_t(1) << 30;
// Below this a reservation is not worth a thread: the main stack is used.
inline constexpr size_t kSmallestStackBytes = size_t(16) << 20;

// The size to ask for first under an address-space limit of `limit` bytes
// (SIZE_MAX for none): the wanted size, halved while it exceeds half the
// limit and stays above the needed size.
size_t firstStackRequest(size_t limit);

// Runs fn on a thread with the largest stack that can be reserved (see
// above) and waits for it; runs it on the calling thread if no thread can be
// made. The thread gets the alternate signal stack and the guard is recorded
// for the fatal-signal handler.
void runWithLargeStack(const std::function<void()>& fn);

}  // namespace tarn
