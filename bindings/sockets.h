// Sockets: descriptors, addresses, name lookup and byte order.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every plain row its tests, its one
// host call and its result. A socket is an integer; an address record is
// memory the program lays out itself. Numbers pass to the host unchanged:
// families, levels, options and flags are the host's own values (AF_INET 2
// and SOCK_STREAM 1 agree between hosts), and a failing call gives the
// host's -1 or error code with its cause left where the host keeps it.
//
// The rows with handlers of their own:
//   getaddrinfo  node service hints result-address, no tests: the hints are
//                read in the language's addrinfo layout, and every record of
//                the result list is rewritten in place into that layout
//                (bindings/addrinfo.h); the host's code is the result.
//   freeaddrinfo list, no test: the list is rewritten back and freed; I.
//   gai_strerror code: the host's message as 16-bit units in one
//                process-wide buffer of 1024 units, whose address is the
//                result (every call overwrites it).
//   inet_pton    a b c: only a is tested and passed, as the family, the text
//                address and the destination alike; b and c are ignored. The
//                binding cannot convert a real address, on purpose.
//   fd_set       registered with arity 0, its handler reads two arguments
//                (socket, set address) that a zero-arity chain does not hold:
//                calling it is a fatal assertion. The insertion it would do
//                is `fdSetInsert`.
#pragma once

#include <arpa/inet.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>

#include "bindings/frame.h"

namespace tarn {

Term handleGetaddrinfo(const Builtin& row, const Args& args);
Term handleFreeaddrinfo(const Builtin& row, const Args& args);
Term handleGaiStrerror(const Builtin& row, const Args& args);
Term handleInetPton(const Builtin& row, const Args& args);
Term handleFdSet(const Builtin& row, const Args& args);

// The language's fd_set: a 32-bit count, then, at the next 8-byte boundary,
// up to 64 sockets of 8 bytes each (520 bytes in all).
struct LanguageFdSet {
  uint32_t count;
  uint32_t padding;
  uint64_t sockets[64];
};
static_assert(sizeof(LanguageFdSet) == 520, "the language's fd_set is 520 bytes");

// The set insertion behind `fd_set`: a socket already in the set stays
// once; a new one is appended while the count is below 64, and dropped
// silently after that. The result is the leaf I; a socket or set address
// that is no integer gives Z.
Term fdSetInsert(const Term& socket, const Term& set);

// The process-wide buffer of `gai_strerror`, in 16-bit units.
inline constexpr size_t kGaiBufferUnits = 1024;

inline constexpr auto kSocketBuiltins = std::to_array<Builtin>({
    host<::accept>("accept", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    constant<48>("addrinfo", Memory::kWrites),
    constant<0>("af_unspec", Memory::kWrites),
    constant<1>("ai_passive", Memory::kWrites),
    host<::bind>("bind", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::close>("closesocket", {ArgTest::kInteger}, Result::kSigned),
    host<::connect>("connect", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    special("fd_set", 0, handleFdSet, Memory::kWrites),
    special("freeaddrinfo", 1, handleFreeaddrinfo, Memory::kWrites),
    special("gai_strerror", 1, handleGaiStrerror, Memory::kWrites),
    special("getaddrinfo", 4, handleGetaddrinfo, Memory::kWrites),
    host<::gethostname>("gethostname", {ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::getnameinfo>("getnameinfo",
                        {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger,
                         ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger},
                        Result::kSigned),
    host<::getpeername>("getpeername", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger},
                        Result::kSigned),
    host<::htonl>("htonl", {ArgTest::kInteger}, Result::kSigned),
    host<::htons>("htons", {ArgTest::kInteger}, Result::kSigned),
    host<::inet_ntop>("inet_ntop", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger},
                      Result::kSigned),
    special("inet_pton", 3, handleInetPton, Memory::kWrites),
    host<::listen>("listen", {ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    host<::ntohl>("ntohl", {ArgTest::kInteger}, Result::kUnsigned),
    host<::ntohs>("ntohs", {ArgTest::kInteger}, Result::kUnsigned),
    host<::recv>("recv", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger},
                 Result::kSigned),
    host<::recvfrom>("recvfrom",
                     {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger,
                      ArgTest::kInteger, ArgTest::kInteger},
                     Result::kSigned),
    host<::send>("send", {ArgTest::kInteger, ArgTest::kPointer, ArgTest::kInteger, ArgTest::kInteger},
                 Result::kSigned),
    host<::sendto>("sendto",
                   {ArgTest::kInteger, ArgTest::kPointer, ArgTest::kInteger, ArgTest::kInteger,
                    ArgTest::kInteger, ArgTest::kInteger},
                   Result::kSigned),
    host<::setsockopt>("setsockopt",
                       {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger,
                        ArgTest::kInteger},
                       Result::kSigned),
    host<::shutdown>("shutdown", {ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
    constant<1>("sock_stream", Memory::kWrites),
    host<::socket>("socket", {ArgTest::kInteger, ArgTest::kInteger, ArgTest::kInteger}, Result::kSigned),
});

}  // namespace tarn
