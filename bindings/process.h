// The process: environment, signals, commands and error numbers.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every plain row its tests, its one
// host call and its result.
//
// Error numbers are the language's own, whatever the host: the constants
// below keep their values, and `errno` translates the host's current value
// into them. On Linux five numbers differ (ECONNABORTED 103 -> 106, ENOTSOCK
// 88 -> 128, EOPNOTSUPP 95 -> 130, EOVERFLOW 75 -> 132, EAGAIN and
// EWOULDBLOCK 11 -> 140); every other value passes unchanged. `system`
// returns the host's value as it is: on Linux that is the wait status, so a
// command that exits with 3 gives 768.
#pragma once

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>

#include "bindings/frame.h"

namespace tarn {

// A host error number in the language's numbering, and back.
int64_t languageErrorNumber(int hostNumber);
int hostErrorNumber(int64_t languageNumber);

namespace process {

// The host's current errno, translated: the zero-arity call `errno`.
int64_t currentErrorNumber();

}  // namespace process

inline constexpr auto kProcessBuiltins = std::to_array<Builtin>({
    constant<13>("eacces", Memory::kKeeps),
    constant<9>("ebadf", Memory::kKeeps),
    constant<106>("econnaborted", Memory::kKeeps),
    constant<14>("efault", Memory::kKeeps),
    constant<4>("eintr", Memory::kWrites),
    constant<22>("einval", Memory::kKeeps),
    constant<5>("eio", Memory::kKeeps),
    constant<24>("emfile", Memory::kKeeps),
    constant<23>("enfile", Memory::kKeeps),
    constant<19>("enodev", Memory::kKeeps),
    constant<12>("enomem", Memory::kKeeps),
    constant<128>("enotsock", Memory::kKeeps),
    constant<6>("enxio", Memory::kKeeps),
    constant<130>("eopnotsupp", Memory::kKeeps),
    constant<132>("eoverflow", Memory::kKeeps),
    host<process::currentErrorNumber>("errno", {}, Result::kSigned),
    constant<140>("ewouldblock", Memory::kWrites),
    host<::getenv>("getenv", {ArgTest::kPointer}, Result::kSigned),
    host<::raise>("raise", {ArgTest::kInteger}, Result::kSigned),
    host<::system>("system", {ArgTest::kPointer}, Result::kSigned),
});

}  // namespace tarn
