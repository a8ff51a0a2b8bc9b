// The maths family's own integer functions and its random number generator.
#include "bindings/maths.h"

namespace tarn::maths {

namespace {

uint32_t gRandomState = 1;  // the generator's state before any srand

}  // namespace

// |v| in 64 bits, computed unsigned so that the lowest value wraps to itself.
int64_t absolute(int64_t value) { return value < 0 ? int64_t(0 - uint64_t(value)) : value; }

// |low 32 bits| in 32 bits, then sign-extended: -2^31 stays negative.
int64_t absoluteLow32(int64_t value) {
  auto low = int32_t(uint32_t(uint64_t(value)));
  return low < 0 ? int32_t(0u - uint32_t(low)) : low;
}

void seedRandom(uint32_t seed) { gRandomState = seed; }

int randomNext() {
  gRandomState = gRandomState * 214013u + 2531011u;  // wraps mod 2^32
  return int((gRandomState >> 16) & 0x7fff);
}

}  // namespace tarn::maths
