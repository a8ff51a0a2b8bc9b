// The fatal-signal handler: one line of explanation, the pending output, then
// the same signal with its default action. Everything here is
// async-signal-safe; no allocation, no stdio call, no lock.
#include "driver/signals.h"

#include <signal.h>
#include <sys/stat.h>
#include <ucontext.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdio>

#include "runtime/builtins.h"

namespace tarn {

namespace {

constexpr int kFatalSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL};

// The output stream's buffer, the interpreter's own storage: the handler
// checks that the stream's pointers still lie in it before writing from it.
char gOutBuffer[BUFSIZ];
size_t gOutBytes = 0;

// The stack guard, as setStackGuard recorded it (0 when none is known).
std::atomic<uintptr_t> gGuardLow{0};
std::atomic<uintptr_t> gGuardHigh{0};
std::atomic<size_t> gStackBytes{0};

// One alternate signal stack per thread that runs the interpreter; only one
// does at a time (the large-stack thread, or the main thread as fallback).
alignas(16) char gSignalStack[64 * 1024];

void writeAll(int fd, const char* p, size_t n) {
  while (n > 0) {
    ssize_t w = ::write(fd, p, n);
    if (w <= 0) return;  // EINTR cannot happen: the fatal signals are blocked here
    p += w;
    n -= size_t(w);
  }
}

const char* signalName(int sig) {
  switch (sig) {
    case SIGSEGV: return "SIGSEGV";
    case SIGBUS: return "SIGBUS";
    case SIGFPE: return "SIGFPE";
    case SIGILL: return "SIGILL";
    default: return "signal";
  }
}

// Appends text to a bounded line.
struct Line {
  char* out;
  size_t cap;
  size_t n = 0;
  void add(const char* s, size_t len) {
    for (size_t i = 0; i < len && n < cap; i++) out[n++] = s[i];
  }
  void add(const char* s) {
    while (*s && n < cap) out[n++] = *s++;
  }
  void number(size_t v) {
    char digits[24];
    size_t k = 0;
    do {
      digits[k++] = char('0' + v % 10);
      v /= 10;
    } while (v);
    while (k && n < cap) out[n++] = digits[--k];
  }
};

// The fault was on the stack: inside the guard below the interpreter's stack,
// or, with no guard known, within a page or so below the faulting stack
// pointer (a push or a call that found no page).
bool isStackOverflow(const siginfo_t* info, const void* context) {
  if (info->si_signo != SIGSEGV) return false;
  auto addr = reinterpret_cast<uintptr_t>(info->si_addr);
  uintptr_t low = gGuardLow.load(std::memory_order_relaxed);
  uintptr_t high = gGuardHigh.load(std::memory_order_relaxed);
  if (high != 0) return addr >= low && addr < high;
#if defined(__x86_64__) && defined(REG_RSP)
  auto sp = uintptr_t(static_cast<const ucontext_t*>(context)->uc_mcontext.gregs[REG_RSP]);
  return addr < sp + 4096 && addr + 65536 > sp;
#else
  (void)context;
  return false;
#endif
}

// Writes out what the program left in the output stream's buffer, reading
// glibc's stream pointers without its lock. The pointers must describe a
// non-empty range inside the stream's own buffer; anything else is left alone.
void writePendingOutput() {
#ifdef __GLIBC__
  FILE* f = stdout;
  const char* base = f->_IO_write_base;
  const char* ptr = f->_IO_write_ptr;
  const char* bufBase = f->_IO_buf_base;
  const char* bufEnd = f->_IO_buf_end;
  if (!base || !ptr || !bufBase || ptr <= base) return;
  if (base < bufBase || ptr > bufEnd) return;
  // Normally the buffer is ours; a program that gave the stream a buffer of
  // its own (setvbuf) gets its bytes written too, within that buffer's ends.
  writeAll(STDOUT_FILENO, base, size_t(ptr - base));
#endif
}

void onFatalSignal(int sig, siginfo_t* info, void* context) {
  // SA_RESETHAND has restored the default action: a fault from here on ends
  // the process by the signal, as it would have ended without the handler.
  const Builtin* running = runningBuiltin();
  bool overflow = isStackOverflow(info, context);
  char text[160];
  size_t n = fatalSignalLine(text, sig, running ? running->name.data() : "",
                             running ? running->name.size() : 0, overflow,
                             gStackBytes.load(std::memory_order_relaxed) >> 20);
  writeAll(STDERR_FILENO, text, n);
  writePendingOutput();
  // The signal is blocked while the handler runs; raised now, it is
  // delivered with its default action as the handler returns. A fault that
  // came from an instruction would also recur there.
  ::raise(sig);
}

}  // namespace

size_t fatalSignalLine(char* out, int sig, const char* builtin, size_t builtinLength,
                       bool overflow, size_t stackMiB) {
  Line line{out, 159};
  line.add("tarn: ");
  line.add(signalName(sig));
  if (overflow) {
    line.add(": stack overflow: a term nested too deep for the ");
    if (stackMiB) {
      line.number(stackMiB);
      line.add(" MiB ");
    }
    line.add("stack");
  } else if (builtinLength) {
    line.add(" in the builtin ");
    line.add(builtin, builtinLength);
  } else {
    line.add(" outside any builtin");
  }
  line.out[line.n++] = '\n';
  return line.n;
}

void adoptOutputBuffer() {
  // The choice glibc makes when it allocates the buffer itself.
  int mode = _IOFBF;
  gOutBytes = BUFSIZ;
  struct stat st;
  if (::fstat(STDOUT_FILENO, &st) == 0) {
    if (S_ISCHR(st.st_mode) && ::isatty(STDOUT_FILENO)) mode = _IOLBF;
    if (st.st_blksize > 0 && size_t(st.st_blksize) < gOutBytes) gOutBytes = size_t(st.st_blksize);
  }
  std::setvbuf(stdout, gOutBuffer, mode, gOutBytes);
}

void installFatalSignalHandlers() {
  struct sigaction action {};
  action.sa_sigaction = onFatalSignal;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_RESETHAND;
  sigemptyset(&action.sa_mask);
  for (int sig : kFatalSignals) sigaddset(&action.sa_mask, sig);
  for (int sig : kFatalSignals) ::sigaction(sig, &action, nullptr);
}

SignalStackScope::SignalStackScope() {
  stack_t ss{};
  ss.ss_sp = gSignalStack;
  ss.ss_size = sizeof gSignalStack;
  ss.ss_flags = 0;
  if (::sigaltstack(&ss, &previous_) != 0) previous_.ss_flags = SS_DISABLE;
}

SignalStackScope::~SignalStackScope() {
  if (previous_.ss_flags & SS_DISABLE) {
    stack_t off{};
    off.ss_flags = SS_DISABLE;
    ::sigaltstack(&off, nullptr);
  } else {
    ::sigaltstack(&previous_, nullptr);
  }
}

void setStackGuard(const void* low, const void* high, size_t stackBytes) {
  gGuardLow.store(reinterpret_cast<uintptr_t>(low), std::memory_order_relaxed);
  gGuardHigh.store(reinterpret_cast<uintptr_t>(high), std::memory_order_relaxed);
  gStackBytes.store(stackBytes, std::memory_order_relaxed);
}

}  // namespace tarn
