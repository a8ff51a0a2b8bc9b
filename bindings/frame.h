// The binding frame: how a builtin that binds a host function tests and
// converts its arguments and turns the host's result back into a term.
//
// Contract: a binding tests its arguments first to last; the first test that
// fails gives a fresh leaf Z and the host function is not called. Conversions
// follow the tests. Host pointers, streams, descriptors and sockets are plain
// integers; doubles are real leaves; truth values are K and H.
#pragma once

#include <cstdint>

#include "numbers/model.h"
#include "terms/term.h"

namespace tarn {

// A term of kind a (blob), i (integer) or u (bracket data).
bool isHostPointer(const Term& t);
// A real leaf.
bool isHostReal(const Term& t);

// i: the integer; u: the address of the literal's text (its "[" included);
// a: the address of the blob's first data byte. Any other kind: fatal
// assertion.
void* termToPointer(const Term& t);
double termToReal(const Term& t);
Term realToTerm(double v);
Term truthToTerm(bool v);
Term pointerToTerm(const void* p);

}  // namespace tarn
