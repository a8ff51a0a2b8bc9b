// Stdio and files: streams, descriptors and the directory reader.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every row its tests, its one host
// call and its result. Streams, descriptors and directory streams are plain
// integers: nothing here buffers, tracks or closes anything for the program.
//
// The asymmetries are deliberate and programs rely on them: `puts` and
// `fwrite` take a text of the language (a literal, a blob or an address),
// while `fputs` takes only an address, so `fputs` of a literal is Z. `fread`
// gives its count unsigned and `fwrite` signed; `fwrite` alone demands
// non-negative sizes. Builtins whose host function writes a buffer (`fgets`,
// `fread`, `read`, `tmpnam`) take the buffer as an integer address only.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

#include <unistd.h>

#include "bindings/directory.h"
#include "bindings/frame.h"

namespace tarn {

// Host calls that the library does not offer under the builtin's shape.
namespace stdio {
// The host's standard output and error streams.
FILE* standardOutput();
FILE* standardError();
// setbuf as setvbuf: full buffering with 512 bytes when a buffer is given,
// no buffering when it is null.
void setBuffer(FILE* stream, char* buffer);
// The stream position as one 8-byte offset at `position`, and back.
int getPosition(FILE* stream, int64_t* position);
int setPosition(FILE* stream, const int64_t* position);
}  // namespace stdio

inline constexpr auto kStdioBuiltins = std::to_array<Builtin>({
    host<::clearerr>("clearerr", {ArgTest::kInteger}, Result::kVoid),
    host<closeDirectory>("closedir", {ArgTest::kInteger}, Result::kSigned),
    constant<sizeof(DirectoryEntry)>("dirent", Memory::kWrites),
    host<::fclose>("fclose", {ArgTest::kInteger}, Result::kSigned),
    host<::fdopen>("fdopen", {ArgTest::kInteger, ArgTest::kPointer}, Result::kSigned),
    host<::feof>("feof", {ArgTest::kInteger}, Result::kSigned),
    host<::ferror>("ferror", {ArgTest::kInteger}, Result::kSigned),
    host<::fflush>("fflush", {ArgTest::kInteger}, Result::kSigned),
    host<::fgetc>("fgetc", {ArgTest::kInteger}, Result::kSigned),
    host<stdio::getPosition>("fgetpos", {ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::fgets>("fgets", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::fileno>("fileno", {ArgTest::kInteger}, Result::kSigned),
    host<::fopen>("fopen", {ArgTest::kPointer, ArgTest::kPointer}, Result::kSigned),
    host<::fputc>("fputc", {ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::fputs>("fputs", {ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::fread>("fread", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger},
                  Result::kUnsigned),
    host<::fseek>("fseek", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<stdio::setPosition>("fsetpos", {ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::ftell>("ftell", {ArgTest::kInteger}, Result::kSigned),
    host<::fwrite>("fwrite", {ArgTest::kPointer, ArgTest::kNatural, ArgTest::kNatural, ArgTest::kInteger},
                   Result::kSigned),
    host<::getc>("getc", {ArgTest::kInteger}, Result::kSigned),
    host<::getchar>("getchar", {}, Result::kSigned),
    host<openDirectory>("opendir", {ArgTest::kPointer}, Result::kSigned),
    host<::perror>("perror", {ArgTest::kPointer}, Result::kVoid),
    host<::putc>("putc", {ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::putchar>("putchar", {ArgTest::kInteger}, Result::kSigned),
    host<::puts>("puts", {ArgTest::kPointer}, Result::kSigned),
    host<::read>("read", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<readDirectory>("readdir", {ArgTest::kInteger}, Result::kSigned),
    host<::remove>("remove", {ArgTest::kPointer}, Result::kSigned),
    host<::rename>("rename", {ArgTest::kPointer, ArgTest::kPointer}, Result::kSigned),
    host<::rewind>("rewind", {ArgTest::kInteger}, Result::kVoid),
    host<stdio::setBuffer>("setbuf", {ArgTest::kInteger, ArgTest::kInteger}, Result::kVoid),
    host<stdio::standardError>("stderr", {}, Result::kSigned),
    host<stdio::standardOutput>("stdout", {}, Result::kSigned),
    host<::tmpfile>("tmpfile", {}, Result::kSigned),
    host<::tmpnam>("tmpnam", {ArgTest::kInteger}, Result::kSigned),
    host<::ungetc>("ungetc", {ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::write>("write", {ArgTest::kInteger, ArgTest::kPointer, ArgTest::kInteger}, Result::kSigned),
});

}  // namespace tarn
