// Fatal signals: a crash explained, the program's output kept.
//
// A program reaches raw memory through its builtins (`puts 1` reads the
// address 1), so a host call may fault; that is the program's doing and the
// process still ends by the host's signal. What the handler adds, for
// SIGSEGV, SIGBUS, SIGFPE and SIGILL:
//   1. one line on the error stream naming the signal and the builtin that
//      was running, or saying that the stack overflowed;
//   2. the bytes the program had written to the output stream and that
//      still sit in its buffer, written out;
//   3. the default action restored and the signal raised again, so the
//      status is the one the host gives for that signal.
// The handler uses only write(2), sigaction and raise, and takes no lock: the
// crashed call may hold the output stream's lock. It reads the stream's
// buffer pointers without the lock; the default action is restored first, so
// a stream that the program had wrecked ends the process by the same signal.
#pragma once

#include <signal.h>

#include <cstddef>

namespace tarn {

// Gives the output stream a buffer owned by the interpreter, of the size and
// mode the C library would have chosen itself (line buffered on a terminal,
// else fully buffered with the descriptor's block size, at most BUFSIZ).
// Must run before anything is written to the stream.
void adoptOutputBuffer();

// Installs the handlers for the whole process.
void installFatalSignalHandlers();

// While it lives, the calling thread runs the handler on an alternate signal
// stack, so that the handler can run after the thread's own stack has
// overflowed. The thread's previous alternate stack comes back at the end: a
// sanitizer runtime unmaps whatever alternate stack a thread ends with,
// assuming it is its own.
class SignalStackScope {
 public:
  SignalStackScope();
  ~SignalStackScope();
  SignalStackScope(const SignalStackScope&) = delete;
  SignalStackScope& operator=(const SignalStackScope&) = delete;

 private:
  stack_t previous_{};
};

// The guard [low, high) below the interpreter's stack, and the usable size of
// that stack: a fault inside the guard is reported as a stack overflow.
void setStackGuard(const void* low, const void* high, size_t stackBytes);

// The line the handler writes for a signal, the running builtin's name (empty
// for none) and whether the stack overflowed; `out` holds at least 160 bytes.
// Returns the line's length. Exposed for the unit tests.
size_t fatalSignalLine(char* out, int sig, const char* builtin, size_t builtinLength,
                       bool overflow, size_t stackMiB);

}  // namespace tarn
