// The string family's own loops and handlers.
#include "bindings/strings.h"

#include "bindings/process.h"
#include "terms/failure.h"

namespace tarn::strings {

int64_t textLength(const char* text) {
  int64_t n = 0;
  while (text[n] != '\0') n++;
  return n;
}

char* copyText(char* destination, const char* source) {
  char* d = destination;
  while ((*d++ = *source++) != '\0') {
  }
  return destination;
}

char* appendText(char* destination, const char* source) {
  char* d = destination;
  while (*d != '\0') d++;
  copyText(d, source);
  return destination;
}

int compareText(const char* a, const char* b) {
  const auto* x = reinterpret_cast<const unsigned char*>(a);
  const auto* y = reinterpret_cast<const unsigned char*>(b);
  for (; *x == *y; x++, y++)
    if (*x == '\0') return 0;
  return *x < *y ? -1 : 1;
}

int isAsciiLow32(int64_t value) { return uint32_t(uint64_t(value)) < 128u; }

char* errorText(int languageNumber) { return ::strerror(hostErrorNumber(languageNumber)); }

// The handler reads three arguments (text, address of the end, base) from a
// chain that the registered arity 2 saturates with two: the walk to the
// first argument reaches the builtin's head leaf, and taking a child of a
// leaf is a fatal assertion. Both the arity and the reading are kept, so a
// saturated `strtol` or `strtoul` always stops the process here.
template <bool Unsigned>
Term convertToLong(const Builtin&, const Args& args) {
  TARN_ASSERT(args.size() == 3);
  for (int i = 0; i < 3; i++)
    if (!passesTest(i == 0 ? ArgTest::kPointer : ArgTest::kInteger, args[i])) return leafByte('Z');
  int base = int(termToInt64(args[2]));
  auto* end = reinterpret_cast<char**>(static_cast<intptr_t>(termToInt64(args[1])));
  auto* text = static_cast<const char*>(termToPointer(args[0]));
  // Both call the signed conversion; strtoul prints the sign-widened value unsigned.
  long value = ::strtol(text, end, base);
  return Unsigned ? uint64ToTerm(uint64_t(int64_t(value))) : int64ToTerm(value);
}

template Term convertToLong<false>(const Builtin&, const Args&);
template Term convertToLong<true>(const Builtin&, const Args&);

}  // namespace tarn::strings
