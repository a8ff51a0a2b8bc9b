// The socket rows with handlers of their own: name lookup with the record
// conversion, the lookup's messages, and the two bindings kept in their
// unusable forms (inet_pton, fd_set).
#include "bindings/sockets.h"

#include <cstring>

#include "bindings/addrinfo.h"
#include "terms/failure.h"

namespace tarn {

namespace {

template <typename T>
T* addressOf(int64_t v) {
  return reinterpret_cast<T*>(static_cast<intptr_t>(v));
}

}  // namespace

// getaddrinfo node service hints result: no tests, every argument an address
// (0 for null). On success the list stored at `result` is in the language
// layout from then on.
Term handleGetaddrinfo(const Builtin&, const Args& args) {
  int64_t result = termToInt64(args[3]);
  int64_t hints = termToInt64(args[2]);
  int64_t service = termToInt64(args[1]);
  int64_t node = termToInt64(args[0]);
  addrinfo hostHints{};
  const addrinfo* hintsArg = nullptr;
  if (hints != 0) {
    LanguageAddrinfo rec;
    std::memcpy(&rec, addressOf<const void>(hints), sizeof rec);
    hostHints = hostFromLanguage(rec);
    hintsArg = &hostHints;
  }
  addrinfo** out = addressOf<addrinfo*>(result);
  int code = ::getaddrinfo(addressOf<const char>(node), addressOf<const char>(service), hintsArg, out);
  if (code == 0) listToLanguage(*out);
  return int64ToTerm(code);
}

// freeaddrinfo list: no test; the list goes back to the host's layout first.
Term handleFreeaddrinfo(const Builtin&, const Args& args) {
  auto* list = addressOf<LanguageAddrinfo>(termToInt64(args[0]));
  listToHost(list);
  ::freeaddrinfo(reinterpret_cast<addrinfo*>(list));
  return leafByte('I');
}

// gai_strerror code: the message widened byte by byte into 16-bit units, cut
// to the buffer, NUL-terminated. `strlen` of the address sees one byte.
Term handleGaiStrerror(const Builtin&, const Args& args) {
  static char16_t buffer[kGaiBufferUnits];
  if (!isHostInteger(args[0])) return leafByte('Z');
  const char* message = ::gai_strerror(int(termToInt64(args[0])));
  size_t n = 0;
  for (; message[n] != 0 && n + 1 < kGaiBufferUnits; n++)
    buffer[n] = char16_t(static_cast<unsigned char>(message[n]));
  buffer[n] = 0;
  return pointerToTerm(buffer);
}

// inet_pton a b c: the first argument serves as family, text and destination.
Term handleInetPton(const Builtin&, const Args& args) {
  if (!isHostInteger(args[0])) return leafByte('Z');
  int64_t a = termToInt64(args[0]);
  return int64ToTerm(::inet_pton(int(a), addressOf<const char>(a), addressOf<void>(a)));
}

// fd_set: its chain is the bare head, which holds no arguments to read.
Term handleFdSet(const Builtin&, const Args& args) {
  TARN_ASSERT(args.size() >= 2);
  return fdSetInsert(args[0], args[1]);
}

Term fdSetInsert(const Term& socket, const Term& set) {
  if (!isHostInteger(socket) || !isHostInteger(set)) return leafByte('Z');
  auto s = static_cast<uint64_t>(termToInt64(socket));
  auto* bytes = addressOf<unsigned char>(termToInt64(set));
  uint32_t count;
  std::memcpy(&count, bytes + offsetof(LanguageFdSet, count), sizeof count);
  unsigned char* sockets = bytes + offsetof(LanguageFdSet, sockets);
  uint32_t i = 0;
  for (; i < count; i++) {
    uint64_t held;
    std::memcpy(&held, sockets + 8 * size_t(i), sizeof held);
    if (held == s) break;
  }
  if (i == count && count < 64) {
    std::memcpy(sockets + 8 * size_t(count), &s, sizeof s);
    count++;
    std::memcpy(bytes + offsetof(LanguageFdSet, count), &count, sizeof count);
  }
  return leafByte('I');
}

}  // namespace tarn
