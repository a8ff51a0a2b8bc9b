// Stdio and files: streams, descriptors and the directory reader.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every plain row its tests, its one
// host call and its result.
#pragma once

#include <array>

#include <cstdio>

#include "bindings/frame.h"

namespace tarn {

inline constexpr auto kStdioBuiltins = std::to_array<Builtin>({
    unwritten("clearerr", 1),
    unwritten("closedir", 1),
    unwritten("dirent", 0),
    unwritten("fclose", 1),
    unwritten("fdopen", 2),
    unwritten("feof", 1),
    unwritten("ferror", 1),
    unwritten("fflush", 1),
    unwritten("fgetc", 1),
    unwritten("fgetpos", 2),
    unwritten("fgets", 3),
    unwritten("fileno", 1),
    unwritten("fopen", 2),
    unwritten("fputc", 2),
    unwritten("fputs", 2),
    unwritten("fread", 4),
    unwritten("fseek", 3),
    unwritten("fsetpos", 2),
    unwritten("ftell", 1),
    unwritten("fwrite", 4),
    unwritten("getc", 1),
    unwritten("getchar", 0),
    unwritten("opendir", 1),
    unwritten("perror", 1),
    unwritten("putc", 2),
    unwritten("putchar", 1),
    host<::puts>("puts", {ArgTest::kPointer}, Result::kSigned),
    unwritten("read", 3),
    unwritten("readdir", 1),
    unwritten("remove", 1),
    unwritten("rename", 2),
    unwritten("rewind", 1),
    unwritten("setbuf", 2),
    unwritten("stderr", 0),
    unwritten("stdout", 0),
    unwritten("tmpfile", 0),
    unwritten("tmpnam", 1),
    unwritten("ungetc", 2),
    unwritten("write", 3),
});

}  // namespace tarn
