// The driver: the program's entry and its run sequence.
//
// A run: store the start time; with no file argument print the usage text
// (status 1); test that the program file opens (else the start report and
// 0x80000000); read it whole; load the prelude; compile (frontend); check and
// run (checks, which reduce the main term applied to the address of argv[2]
// with the machine, the numbers, primitives and bindings serving as its
// builtins); the exit status is the low 32 bits of the integer result. Any
// failing stage prints the reset sequence and its report's banner to the
// error stream, and the status is 0x80000000.
//
// The process exit status: the host keeps the low 8 bits of the 32-bit
// status, which for 0x80000000 are 0; so a program that could not run (the
// start report or any failing stage) exits with 1, and every other status,
// a program's own 2147483648 included, passes to the host unchanged.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

namespace tarn {

extern std::time_t startTime;

// The 32-bit status of a run, and whether the run failed before the program
// gave an integer result (the status is then 0x80000000).
struct RunOutcome {
  int32_t status = 0;
  bool couldNotRun = false;
};

// The whole run.
RunOutcome runProgram(int argc, char** argv);
// The whole run; returns the 32-bit status only.
int32_t runDriver(int argc, char** argv);
// What the entry point returns to the host for a run: 1 for a program that
// could not run, else the 32-bit status (the host keeps its low 8 bits).
int processExitStatus(const RunOutcome& outcome);

// Reads a file whole, NUL bytes kept; failures are fatal assertions.
std::string readProgramFile(const char* path);
// A path with "[", "]", control bytes, 127 and bytes of 128 or more written
// as "[HH]".
std::string escapedPath(std::string_view path);

}  // namespace tarn
