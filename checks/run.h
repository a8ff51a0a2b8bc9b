// The check-and-run stage: the program checks over `globals`, then the main
// term applied to the address of the program's arguments, reduced.
//
// Contract: on success the report's tag reads "check" and the entry under the
// empty name of `globals` holds the program's integer result. Otherwise the
// report tells the first check that failed, or the failure that a run-time
// compilation carried out of the reduction.
#pragma once

#include <cstdint>

#include "runtime/report.h"

namespace tarn {

// argsAddress: the address of the vector entry argv[2], a null-terminated
// array of pointers to the program's argument strings.
Report checkAndRun(int64_t argsAddress);

}  // namespace tarn
