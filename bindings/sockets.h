// Sockets: descriptors, addresses, name lookup and byte order.
//
// Contract: each builtin of this family is one row of the table below; the
// binding frame (bindings/frame.h) gives every plain row its tests, its one
// host call and its result.
#pragma once

#include <array>

#include "bindings/frame.h"

namespace tarn {

inline constexpr auto kSocketBuiltins = std::to_array<Builtin>({
    unwritten("accept", 3),
    unwritten("addrinfo", 0),
    unwritten("af_unspec", 0),
    unwritten("ai_passive", 0),
    unwritten("bind", 3),
    unwritten("closesocket", 1),
    unwritten("connect", 3),
    unwritten("fd_set", 0),
    unwritten("freeaddrinfo", 1),
    unwritten("gai_strerror", 1),
    unwritten("getaddrinfo", 4),
    unwritten("gethostname", 2),
    unwritten("getnameinfo", 7),
    unwritten("getpeername", 3),
    unwritten("htonl", 1),
    unwritten("htons", 1),
    unwritten("inet_ntop", 4),
    unwritten("inet_pton", 3),
    unwritten("listen", 2),
    unwritten("ntohl", 1),
    unwritten("ntohs", 1),
    unwritten("recv", 4),
    unwritten("recvfrom", 6),
    unwritten("send", 4),
    unwritten("sendto", 6),
    unwritten("setsockopt", 5),
    unwritten("shutdown", 2),
    unwritten("sock_stream", 0),
    unwritten("socket", 3),
});

}  // namespace tarn
