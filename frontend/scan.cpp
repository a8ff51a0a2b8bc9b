// The bracket-structure check, normalisation, bracket matching and
// splitting outside brackets.
#include "frontend/scan.h"

#include <array>

#include "terms/failure.h"
#include "terms/texts.h"

namespace tarn {

namespace {

inline bool inSet(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }

// Bytes around which white space is layout, and before which a parenthesis
// cannot open a call list: newline, space and the operator punctuation.
// "!", double quote, "$", "~", backquote and the brackets are not among them.
constexpr std::array<bool, 256> makeOperatorBytes() {
  std::array<bool, 256> t{};
  for (char c : std::string_view("\n #%&'*+,-./:;<=>?@\\^|")) t[static_cast<unsigned char>(c)] = true;
  return t;
}
constexpr auto kOperatorByte = makeOperatorBytes();
inline bool isOperatorByte(char c) { return kOperatorByte[static_cast<unsigned char>(c)]; }

inline bool isSpace(char c) { return c == ' ' || c == '\n'; }
inline bool isOpener(char c) { return c == '(' || c == '{' || c == '['; }
inline bool isCloser(char c) { return c == ')' || c == '}' || c == ']'; }

char closerOf(char open) { return open == '(' ? ')' : open == '{' ? '}' : ']'; }

const char* bracketWord(char c) {
  if (c == '(' || c == ')') return "parenthesis";
  if (c == '{' || c == '}') return "wing";
  return "bracket";
}

// The four structure messages. Each names its subject by position text in
// vip and hands the numeric index back through `position`.
bool dangling(Report& report, long& position, const char* side, std::string_view text, long at) {
  std::string pos = positionText(at);
  report.say = std::string("Dangling ") + side + "-" + bracketWord(text[size_t(at)]) + " at [" + pos + "].";
  report.tag = "match";
  report.vip = pos;
  report.tip.clear();
  position = at;
  return false;
}

bool mismatch(Report& report, long& position, std::string_view text, long open, long close) {
  std::string openPos = positionText(open), closePos = positionText(close);
  report.say = std::string("'") + text[size_t(open)] + "' at [" + openPos + "] doesn't fit '" +
               text[size_t(close)] + "' at [" + closePos + "].";
  report.tag = "match";
  report.vip = openPos;
  report.tip = closePos;
  position = open;
  return false;
}

bool badComma(Report& report, long& position, long at) {
  std::string pos = positionText(at);
  report.say = "Comma at [" + pos + "] is not part of a valid call list.";
  report.tag = "comma";
  report.vip = pos;
  report.tip.clear();
  position = at;
  return false;
}

// The comma rule, on text whose brackets balance. A comma inside parentheses
// is legal only when those parentheses follow something that can be called.
// Walking backwards, a stack holds the closers of the open groups and, above
// a ")", the leftmost comma seen so far inside it; at the "(" the byte before
// decides whether the group is a call list.
bool checkCommas(std::string_view text, Report& report, long& position) {
  std::vector<long> stack;
  auto topIs = [&](char c) { return !stack.empty() && text[size_t(stack.back())] == c; };
  for (long i = long(text.size()) - 1; i >= 0; i--) {
    char c = text[size_t(i)];
    if (c == ']') {
      i = matchBracket(text, i);  // literals are inert
    } else if (c == ')' || c == '}') {
      stack.push_back(i);
    } else if (c == ',') {
      if (topIs(')')) stack.push_back(i);
      else if (topIs(',')) stack.back() = i;
      // Commas in wings and outside all brackets are free.
    } else if (c == '{') {
      if (!stack.empty()) stack.pop_back();
    } else if (c == '(') {
      if (i > 0) {
        // Closers are no operator bytes: "f(a)(b,c)" and "[f](a,b)" pass.
        if (topIs(',') && isOperatorByte(text[size_t(i - 1)])) return badComma(report, position, stack.back());
      } else if (stack.size() == 2) {
        // A group at the very start of the text, holding a comma.
        return badComma(report, position, stack.back());
      }
      if (topIs(',')) stack.pop_back();
      if (!stack.empty()) stack.pop_back();
    }
  }
  return true;
}

}  // namespace

bool checkStructure(std::string_view text, Report& report, long& position) {
  // Forward pass: every bracket finds its partner. Inside a literal only "["
  // and "]" count.
  std::vector<long> open;
  for (long i = 0; i < long(text.size()); i++) {
    char c = text[size_t(i)];
    if (!open.empty() && text[size_t(open.back())] == '[') {
      if (c == ']') open.pop_back();
      else if (c == '[') open.push_back(i);
      continue;
    }
    if (isOpener(c)) {
      open.push_back(i);
      continue;
    }
    if (!isCloser(c)) continue;
    if (open.empty()) return dangling(report, position, "right", text, i);
    if (closerOf(text[size_t(open.back())]) != c) return mismatch(report, position, text, open.back(), i);
    open.pop_back();
  }
  // The innermost bracket left open is the one reported.
  if (!open.empty()) return dangling(report, position, "left", text, open.back());
  return checkCommas(text, report, position);
}

std::string normalise(std::string_view text) {
  size_t begin = 0, end = text.size();
  while (begin < end && isSpace(text[begin])) begin++;
  while (end > begin && isSpace(text[end - 1])) end--;
  std::string out;
  out.reserve(end - begin);
  size_t i = begin;
  while (i < end) {
    char c = text[i];
    if (c == '[') {
      // A literal is copied whole, its white space included.
      long depth = 0;
      do {
        char b = text[i++];
        out += b;
        if (b == '[') depth++;
        else if (b == ']') depth--;
      } while (depth > 0 && i < end);
    } else if (isSpace(c)) {
      // A run of white space between two bytes: layout next to operators
      // and inside parentheses or wings, otherwise one separator.
      bool newline = false;
      size_t j = i;
      while (isSpace(text[j])) newline |= text[j++] == '\n';
      char p = text[i - 1], n = text[j];
      bool layout = isOperatorByte(p) || isOperatorByte(n) || p == '(' || p == '{' || p == '}' ||
                    n == ')' || n == '}' || n == '{';
      if (!layout) out += newline ? '\n' : ' ';
      i = j;
    } else {
      out += c;
      i++;
    }
  }
  return out;
}

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
      // A literal inside code counts for nothing: jump to its far end, which
      // must lie in the walking direction.
      long j = matchBracket(text, i);
      TARN_ASSERT((j - i) * dir > 0);
      i = j;
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
