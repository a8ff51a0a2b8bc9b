// Argument tests and conversions shared by every host binding.
#include "bindings/frame.h"

#include "runtime/annotate.h"
#include "terms/failure.h"

namespace tarn {

bool isHostPointer(const Term& t) {
  Kind k = kindOf(t);
  return k == Kind::kBlob || k == Kind::kInteger || k == Kind::kBracket;
}

bool isHostReal(const Term& t) { return t.isLeaf() && t.first() == ' '; }

void* termToPointer(const Term& t) {
  switch (kindOf(t)) {
    case Kind::kInteger: return reinterpret_cast<void*>(static_cast<intptr_t>(termToInt64(t)));
    case Kind::kBracket: return t.node()->bytes();
    case Kind::kBlob: return const_cast<char*>(blobBytes(t).data());
    default: TARN_FAIL();
  }
}

bool passesTest(ArgTest test, const Term& t) {
  switch (test) {
    case ArgTest::kInteger: return isHostInteger(t);
    case ArgTest::kNatural: return isHostNatural(t);
    case ArgTest::kPointer: return isHostPointer(t);
    case ArgTest::kReal: return isHostReal(t);
    case ArgTest::kNone:
    case ArgTest::kUnchecked: return true;
  }
  TARN_FAIL();
}

double termToReal(const Term& t) { return realValue(t); }

Term realToTerm(double v) { return realLeaf(v); }

Term truthToTerm(bool v) { return leafByte(v ? 'K' : 'H'); }

Term pointerToTerm(const void* p) { return int64ToTerm(static_cast<int64_t>(reinterpret_cast<intptr_t>(p))); }

}  // namespace tarn
