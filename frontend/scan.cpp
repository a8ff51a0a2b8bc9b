// Bracket matching and splitting outside brackets.
#include "frontend/scan.h"

#include "driver/failure.h"

namespace tarn {

namespace {

inline bool inSet(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }

}  // namespace

long matchBracket(std::string_view text, long index) {
  TARN_ASSERT(index >= 0 && index < long(text.size()));
  char c = text[size_t(index)];
  long dir;
  bool literal;
  switch (c) {
    case '[': dir = 1; literal = true; break;
    case ']': dir = -1; literal = true; break;
    case '(': case '{': dir = 1; literal = false; break;
    case ')': case '}': dir = -1; literal = false; break;
    default: return index;
  }
  long depth = 0;
  long i = index;
  for (;;) {
    TARN_ASSERT(i >= 0 && i < long(text.size()));
    char b = text[size_t(i)];
    if (literal) {
      if (b == '[') depth += dir;
      else if (b == ']') depth -= dir;
    } else if (b == '(' || b == '{') {
      depth += dir;
    } else if (b == ')' || b == '}') {
      depth -= dir;
    } else if (b == '[' || b == ']') {
      i = matchBracket(text, i);  // a literal inside code counts for nothing
    }
    TARN_ASSERT(depth >= 0);
    if (depth == 0) return i;
    i += dir;
  }
}

std::vector<long> splitPoints(std::string_view text, std::string_view set) {
  std::vector<long> points;
  for (long i = 0; i < long(text.size()); i++) {
    if (inSet(set, text[size_t(i)])) points.push_back(i);
    i = matchBracket(text, i);
  }
  return points;
}

long findOutside(long start, std::string_view text, std::string_view set) {
  long d = 0, saved = 0;
  for (long i = start; i < long(text.size()); i++) {
    char c = text[size_t(i)];
    if (d == 0) {
      if (inSet(set, c)) return i;
      if (c == '[') {
        saved = 0;
        d = 1;
      } else if (c == '(' || c == '{') {
        d = -1;
      }
    } else if (d > 0) {
      if (c == '[') d++;
      else if (c == ']' && --d == 0) d = saved;
    } else {
      if (c == ')' || c == '}') d++;
      else if (c == '[') {
        saved = d;
        d = 1;
      } else if (c == '(' || c == '{') {
        d--;
      }
    }
  }
  return -1;
}

}  // namespace tarn
