// The language's `addrinfo` record and its conversion to and from the host's.
//
// Invariant: a program sees every record of an address list in the
// language's 48-byte layout, whatever the host's layout is. The record that
// `getaddrinfo` hands out is the host's own allocation, rewritten in place;
// `freeaddrinfo` rewrites it back before the host frees it, so between the
// two calls the host's list is never read by the host. Hints come from the
// program in the language layout and are copied into a host record for the
// one call.
//
// The layout is that of the `addrinfo` entry of the global `_`, which
// programs read with the memory builtins:
//
//   offset  size  field
//        0     4  ai_flags      flags of the lookup (1: passive)
//        4     4  ai_family     address family (0: unspecified, 2: IPv4)
//        8     4  ai_socktype   socket type (1: stream)
//       12     4  ai_protocol   protocol number
//       16     8  ai_addrlen    byte length of *ai_addr, widened to 64 bits
//       24     8  ai_canonname  canonical name of the host, or null
//       32     8  ai_addr       the socket address, as `bind` and `connect` take it
//       40     8  ai_next       the next record, or null
//
// Linux's record differs: ai_addrlen is 4 bytes (4 bytes of padding after
// it), and ai_addr and ai_canonname swap places. Socket addresses
// (`sockaddr_in`, `sockaddr_in6`) are the same on both hosts.
#pragma once

#include <netdb.h>

#include <cstddef>
#include <cstdint>

namespace tarn {

struct LanguageAddrinfo {
  int32_t flags;        // ai_flags
  int32_t family;       // ai_family
  int32_t socktype;     // ai_socktype
  int32_t protocol;     // ai_protocol
  uint64_t addrlen;     // ai_addrlen, 8 bytes wide
  char* canonname;      // ai_canonname, before ai_addr (the host has them swapped)
  sockaddr* addr;       // ai_addr
  LanguageAddrinfo* next;  // ai_next: the next record at the same address the host gave
};
static_assert(sizeof(LanguageAddrinfo) == 48, "the language's addrinfo is 48 bytes");
static_assert(offsetof(LanguageAddrinfo, flags) == 0);
static_assert(offsetof(LanguageAddrinfo, family) == 4);
static_assert(offsetof(LanguageAddrinfo, socktype) == 8);
static_assert(offsetof(LanguageAddrinfo, protocol) == 12);
static_assert(offsetof(LanguageAddrinfo, addrlen) == 16);
static_assert(offsetof(LanguageAddrinfo, canonname) == 24);
static_assert(offsetof(LanguageAddrinfo, addr) == 32);
static_assert(offsetof(LanguageAddrinfo, next) == 40);
// The conversion is in place: both records must take the same bytes.
static_assert(sizeof(addrinfo) == sizeof(LanguageAddrinfo), "the host record is converted in place");

// The host record with the fields of a language record (hints).
addrinfo hostFromLanguage(const LanguageAddrinfo& rec);

// Rewrites every record of a host list, from `list` on, into the language
// layout; the list's addresses stay as they are.
void listToLanguage(addrinfo* list);
// The reverse, for a list that listToLanguage made.
void listToHost(LanguageAddrinfo* list);

}  // namespace tarn
