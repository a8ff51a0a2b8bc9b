// Strings and characters: the host string library and character classes.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every plain row its tests, its one
// host call and its result.
#pragma once

#include <array>

#include "bindings/frame.h"

namespace tarn {

inline constexpr auto kStringBuiltins = std::to_array<Builtin>({
    unwritten("atof", 1),
    unwritten("atoi", 1),
    unwritten("atol", 1),
    unwritten("isalnum", 1),
    unwritten("isalpha", 1),
    unwritten("isascii", 1),
    unwritten("isblank", 1),
    unwritten("isdigit", 1),
    unwritten("isgraph", 1),
    unwritten("islower", 1),
    unwritten("isprint", 1),
    unwritten("ispunct", 1),
    unwritten("isspace", 1),
    unwritten("isupper", 1),
    unwritten("strcasecmp", 2),
    unwritten("strcat", 2),
    unwritten("strchr", 2),
    unwritten("strcmp", 2),
    unwritten("strcpy", 2),
    unwritten("strdup", 1),
    unwritten("strerror", 1),
    unwritten("strlen", 1, Memory::kKeeps),
    unwritten("strncasecmp", 3),
    unwritten("strncat", 3),
    unwritten("strncmp", 3),
    unwritten("strncpy", 3),
    unwritten("strnlen", 2),
    unwritten("strpbrk", 2),
    unwritten("strrchr", 2),
    unwritten("strspn", 2),
    unwritten("strstr", 2),
    unwritten("strtod", 2),
    unwritten("strtok", 2),
    unwritten("strtok_r", 3),
    unwritten("strtol", 2),
    unwritten("strtoul", 2),
    unwritten("toascii", 1),
    unwritten("tolower", 1),
    unwritten("toupper", 1),
});

}  // namespace tarn
