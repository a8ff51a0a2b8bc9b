// In-place conversion of address lists between the host's addrinfo and the
// language's. Each record is read whole into a local before its bytes are
// rewritten, since the two layouts overlap field by field.
#include "bindings/addrinfo.h"

#include <cstring>

namespace tarn {

addrinfo hostFromLanguage(const LanguageAddrinfo& rec) {
  addrinfo h{};
  h.ai_flags = rec.flags;
  h.ai_family = rec.family;
  h.ai_socktype = rec.socktype;
  h.ai_protocol = rec.protocol;
  h.ai_addrlen = socklen_t(rec.addrlen);
  h.ai_canonname = rec.canonname;
  h.ai_addr = rec.addr;
  h.ai_next = reinterpret_cast<addrinfo*>(rec.next);
  return h;
}

void listToLanguage(addrinfo* list) {
  while (list) {
    addrinfo h;
    std::memcpy(&h, list, sizeof h);
    LanguageAddrinfo rec{};
    rec.flags = h.ai_flags;
    rec.family = h.ai_family;
    rec.socktype = h.ai_socktype;
    rec.protocol = h.ai_protocol;
    rec.addrlen = h.ai_addrlen;
    rec.canonname = h.ai_canonname;
    rec.addr = h.ai_addr;
    rec.next = reinterpret_cast<LanguageAddrinfo*>(h.ai_next);
    std::memcpy(static_cast<void*>(list), &rec, sizeof rec);
    list = h.ai_next;
  }
}

void listToHost(LanguageAddrinfo* list) {
  while (list) {
    LanguageAddrinfo rec;
    std::memcpy(&rec, list, sizeof rec);
    addrinfo h = hostFromLanguage(rec);
    std::memcpy(static_cast<void*>(list), &h, sizeof h);
    list = rec.next;
  }
}

}  // namespace tarn
