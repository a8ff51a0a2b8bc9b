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

// Host signatures spelled out. The search functions are picked from their
// C++ overloads; for the others the cast drops the library's attributes
// (nonnull, pure), which a template argument cannot carry.
using Find = const char* (*)(const char*, int);
using Search = const char* (*)(const char*, const char*);
using TextToInt = int (*)(const char*);
using TextToReal = double (*)(const char*);
using TextToText = char* (*)(const char*);
using Compare = int (*)(const char*, const char*);
using CompareCounted = int (*)(const char*, const char*, size_t);
using CopyCounted = char* (*)(char*, const char*, size_t);
using LengthCounted = size_t (*)(const char*, size_t);
using Span = size_t (*)(const char*, const char*);
using ReadReal = double (*)(const char*, char**);
using Tokens = char* (*)(char*, const char*);
using TokensResumed = char* (*)(char*, const char*, char**);

}  // namespace strings

inline constexpr auto kStringBuiltins = std::to_array<Builtin>({
    host<strings::TextToReal(::atof)>("atof", {ArgTest::kPointer}, Result::kReal),
    host<strings::TextToInt(::atoi)>("atoi", {ArgTest::kPointer}, Result::kSigned),
    host<strings::TextToInt(::atoi)>("atol", {ArgTest::kPointer}, Result::kSigned),
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
    host<strings::Compare(::strcasecmp)>("strcasecmp", {ArgTest::kPointer, ArgTest::kPointer}, Result::kSigned),
    host<strings::appendText>("strcat", {ArgTest::kInteger, ArgTest::kPointer}, Result::kSigned),
    host<strings::Find(::strchr)>("strchr", {ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    host<strings::compareText>("strcmp", {ArgTest::kPointer, ArgTest::kPointer}, Result::kSigned),
    host<strings::copyText>("strcpy", {ArgTest::kInteger, ArgTest::kPointer}, Result::kSigned),
    host<strings::TextToText(::strdup)>("strdup", {ArgTest::kPointer}, Result::kSigned),
    host<strings::errorText>("strerror", {ArgTest::kInteger}, Result::kSigned),
    host<strings::textLength>("strlen", {ArgTest::kPointer}, Result::kSigned, Memory::kKeeps),
    host<strings::CompareCounted(::strncasecmp)>("strncasecmp", {ArgTest::kPointer, ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    host<strings::CopyCounted(::strncat)>("strncat", {ArgTest::kInteger, ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    host<strings::CompareCounted(::strncmp)>("strncmp", {ArgTest::kPointer, ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    host<strings::CopyCounted(::strncpy)>("strncpy", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<strings::LengthCounted(::strnlen)>("strnlen", {ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    host<strings::Search(::strpbrk)>("strpbrk", {ArgTest::kPointer, ArgTest::kPointer}, Result::kSigned),
    host<strings::Find(::strrchr)>("strrchr", {ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    host<strings::Span(::strspn)>("strspn", {ArgTest::kPointer, ArgTest::kPointer}, Result::kSigned),
    host<strings::Search(::strstr)>("strstr", {ArgTest::kPointer, ArgTest::kPointer}, Result::kSigned),
    host<strings::ReadReal(::strtod)>("strtod", {ArgTest::kPointer, ArgTest::kInteger}, Result::kReal),
    host<strings::Tokens(::strtok)>("strtok", {ArgTest::kInteger, ArgTest::kPointer}, Result::kSigned),
    host<strings::TokensResumed(::strtok_r)>("strtok_r", {ArgTest::kInteger, ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
    special("strtol", 2, strings::convertToLong<false>, Memory::kWrites),
    special("strtoul", 2, strings::convertToLong<true>, Memory::kWrites),
    host<::toascii>("toascii", {ArgTest::kInteger}, Result::kSigned),
    host<::tolower>("tolower", {ArgTest::kInteger}, Result::kSigned),
    host<::toupper>("toupper", {ArgTest::kInteger}, Result::kSigned),
});

}  // namespace tarn
