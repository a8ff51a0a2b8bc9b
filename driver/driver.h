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
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

namespace tarn {

extern std::time_t startTime;

// The whole run; returns the 32-bit status for the entry point.
int32_t runDriver(int argc, char** argv);

// Reads a file whole, NUL bytes kept; failures are fatal assertions.
std::string readProgramFile(const char* path);
// A path with "[", "]", control bytes, 127 and bytes of 128 or more written
// as "[HH]".
std::string escapedPath(std::string_view path);

}  // namespace tarn
