// Running on a large stack.
//
// Annotation, substitution, printing, parsing and the definition passes
// recurse over the depth of a term, and a program can build terms a million
// levels deep. The interpreter therefore runs on a thread whose stack
// reserves tens of gigabytes of address space; pages are committed only as
// the recursion reaches them.
#pragma once

#include <functional>

namespace tarn {

// Runs fn on a thread with a very large stack and waits for it; falls back to
// the calling thread if such a thread cannot be made.
void runWithLargeStack(const std::function<void()>& fn);

}  // namespace tarn
