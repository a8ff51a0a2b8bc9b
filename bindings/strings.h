// Strings and characters: the host string library and character classes.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every plain row its tests, its one
// host call and its result. Texts are read through addresses: a bracket
// literal is passed with its brackets, a blob up to its first NUL (its storage
// ends with one), an integer as the address it names. Buffers that a row
// writes (destinations, strtok's text) must be integers: a node's text is
// never written through a binding.
//
// Where like members differ, the difference is kept on purpose: `strcpy`,
// `strcat` and `strcmp` are the system's own loops (strcmp answers -1, 0 or
// 1, the only normalised comparison); `strncpy` takes integers only; `atol`
// is `atoi`; `strtol` and `strtoul` are registered with two parameters but
// read three, which makes them unusable (see strings.cpp).
#pragma once

#include <array>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "bindings/frame.h"

namespace tarn {

namespace strings {

// The system's own string loops, each a host function of the frame.
int64_t textLength(const char* text);                    // bytes to the first NUL
char* copyText(char* destination, const char* source);   // copies through the NUL
char* appendText(char* destination, const char* source); // copies at destination's NUL
int compareText(const char* a, const char* b);           // -1, 0 or 1, bytes unsigned

// True when the low 32 bits, read unsigned, are below 128.
int isAsciiLow32(int64_t value);

// A host character class on the byte values (and EOF) it is defined for; any
// other value is in no class. Outside that range the host's classifiers read
// past their tables.
template <int (*F)(int)>
int byteClass(int c) {
  return c >= -128 && c <= 255 ? F(c) : 0;
}

// The host's message for an error number of the language (translated to the
// host's number first, so that `strerror errno` names the cause).
char* errorText(int languageNumber);

// strtol and strtoul: registered with arity 2, read three arguments.
template <bool Unsigned>
Term convertToLong(const Builtin& row, const Args& args);

// The search functions, picked from their C++ overloads.
using Find = const char* (*)(const char*, int);
using Search = const char* (*)(const char*, const char*);

}  // namespace strings

inline constexpr auto kStringBuiltins = std::to_array<Builtin>({
    host<::atof>("atof", {ArgTest::kPointer}, Result::kReal),
    host<::atoi>("atoi", {ArgTest::kPointer}, Result::kSigned),
    host<::atoi>("atol", {ArgTest::kPointer}, Result::kSigned),
    host<strings::byteClass<::isalnum>>("isalnum", {ArgTest::kInteger}, Result::kTruth),
    host<strings::byteClass<::isalpha>>("isalpha", {ArgTest::kInteger}, Result::kTruth),
    host<strings::isAsciiLow32>("isascii", {ArgTest::kInteger}, Result::kTruth),
    host<strings::byteClass<::isblank>>("isblank", {ArgTest::kInteger}, Result::kTruth),
    host<strings::byteClass<::isdigit>>("isdigit", {ArgTest::kInteger}, Result::kTruth),
    host<strings::byteClass<::isgraph>>("isgraph", {ArgTest::kInteger}, Result::kTruth),
    host<strings::byteClass<::islower>>("islower", {ArgTest::kInteger}, Result::kTruth),
    host<strings::byteClass<::isprint>>("isprint", {ArgTest::kInteger}, Result::kTruth),
    host<strings::byteClass<::ispunct>>("ispunct", {ArgTest::kInteger}, Result::kTruth),
    host<strings::byteClass<::isspace>>("isspace", {ArgTest::kInteger}, Result::kTruth),
    host<strings::byteClass<::isupper>>("isupper", {ArgTest::kInteger}, Result::kTruth),
    host<::strcasecmp>("strcasecmp", {ArgTest::kPointer, ArgTest::kPointer}, Result::kSigned),
    host<strings::appendText>("strcat", {ArgTest::kInteger, ArgTest::kPointer}, Result::kSigned),
    host<strings::Find(::strchr)>("strchr", {ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    host<strings::compareText>("strcmp", {ArgTest::kPointer, ArgTest::kPointer}, Result::kSigned),
    host<strings::copyText>("strcpy", {ArgTest::kInteger, ArgTest::kPointer}, Result::kSigned),
    host<::strdup>("strdup", {ArgTest::kPointer}, Result::kSigned),
    host<strings::errorText>("strerror", {ArgTest::kInteger}, Result::kSigned),
    host<strings::textLength>("strlen", {ArgTest::kPointer}, Result::kSigned, Memory::kKeeps),
    host<::strncasecmp>("strncasecmp", {ArgTest::kPointer, ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    host<::strncat>("strncat", {ArgTest::kInteger, ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    host<::strncmp>("strncmp", {ArgTest::kPointer, ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    host<::strncpy>("strncpy", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::strnlen>("strnlen", {ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    host<strings::Search(::strpbrk)>("strpbrk", {ArgTest::kPointer, ArgTest::kPointer}, Result::kSigned),
    host<strings::Find(::strrchr)>("strrchr", {ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    host<::strspn>("strspn", {ArgTest::kPointer, ArgTest::kPointer}, Result::kSigned),
    host<strings::Search(::strstr)>("strstr", {ArgTest::kPointer, ArgTest::kPointer}, Result::kSigned),
    host<::strtod>("strtod", {ArgTest::kPointer, ArgTest::kInteger}, Result::kReal),
    host<::strtok>("strtok", {ArgTest::kInteger, ArgTest::kPointer}, Result::kSigned),
    host<::strtok_r>("strtok_r", {ArgTest::kInteger, ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    special("strtol", 2, strings::convertToLong<false>, Memory::kWrites),
    special("strtoul", 2, strings::convertToLong<true>, Memory::kWrites),
    host<::toascii>("toascii", {ArgTest::kInteger}, Result::kSigned),
    host<::tolower>("tolower", {ArgTest::kInteger}, Result::kSigned),
    host<::toupper>("toupper", {ArgTest::kInteger}, Result::kSigned),
});

}  // namespace tarn
