// Reals from every kind, and the three unary builtins that act on numbers
// and texts alike: `buck` (sign, first byte, left part), `wave` (negation,
// rest, right part) and `cape` (the bracket escapes of a text).
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "numbers/hint.h"
#include "numbers/model.h"
#include "numbers/numb.h"
#include "numbers/operands.h"
#include "numbers/operators.h"
#include "runtime/annotate.h"
#include "terms/texts.h"

namespace tarn {

namespace {

Term noAnswer() { return leafByte('Z'); }
Term truth(bool v) { return leafByte(v ? 'K' : 'H'); }

// (V l r), with the halves checked down to `levels` further levels; at the
// bottom any leaf will do (its value is read later).
bool isTreeOf(const Term& t, int levels) {
  if (levels == 0) return t.isLeaf();
  if (!t.isApp() || !t.left().isApp() || !isByteLeaf(t.left().left(), 'V')) return false;
  return isTreeOf(t.left().right(), levels - 1) && isTreeOf(t.right(), levels - 1);
}

// Appends the leaves of a tree of `levels` levels to w, leftmost first, as
// bits from `bit` upward.
void readTree(const Term& t, int levels, unsigned& bit, uint64_t& w) {
  if (levels == 0) {
    bool one = isByteLeaf(t, 'K');
    TARN_ASSERT(one || isByteLeaf(t, 'H'));
    if (one) w |= uint64_t(1) << bit;
    bit++;
    return;
  }
  readTree(t.left().right(), levels - 1, bit, w);
  readTree(t.right(), levels - 1, bit, w);
}

// The escape group "[p]", "[q]" or "[r]" at s[i] ('['), as the byte it
// stands for; -1 for any other form.
int escapedByte(std::string_view s, size_t i) {
  if (i + 2 >= s.size() || s[i + 2] != ']') return -1;
  switch (s[i + 1]) {
    case 'p': return '\n';
    case 'q': return '[';
    case 'r': return ']';
    default: return -1;
  }
}

}  // namespace

bool isRealTree(const Term& t) { return isTreeOf(t, 6); }

double realOfTree(const Term& t) {
  TARN_ASSERT(isRealTree(t));
  unsigned bit = 0;
  uint64_t w = 0;
  readTree(t, 6, bit, w);
  double v;
  std::memcpy(&v, &w, sizeof v);
  return v;
}

Term valueReal(const Term& x) {
  switch (kindOf(x)) {
    case Kind::kReal: return x;
    case Kind::kBlob: {
      // The payload up to its first NUL; no number in it reads as 0.0.
      std::string text(blobBytes(x));
      return realLeaf(std::strtod(text.c_str(), nullptr));
    }
    case Kind::kInteger: return realLeaf(hintToReal(x));
    case Kind::kFraction: return realLeaf(numbToReal(x));
    case Kind::kBracket: {
      OperandBytes interior(x, Kind::kBracket);
      std::string text(interior.view());
      return realLeaf(std::atof(text.c_str()));
    }
    default: return isRealTree(x) ? realLeaf(realOfTree(x)) : noAnswer();
  }
}

Term valueBuck(const Term& x) {
  switch (kindOf(x)) {
    case Kind::kBlob: {
      // The first byte as a one-element bracket list; the three bytes that
      // can't stand in a literal are escaped.
      std::string_view bytes = blobBytes(x);
      if (bytes.empty()) return noAnswer();
      switch (bytes[0]) {
        case '\n': return leaf("[[p]]");
        case '[': return leaf("[[q]]");
        case ']': return leaf("[[r]]");
        default: {
          const char text[3] = {'[', bytes[0], ']'};
          return leaf(std::string_view(text, 3));
        }
      }
    }
    case Kind::kReal: return truth(!std::signbit(realValue(x)));  // -0.0 and -NaN too
    case Kind::kInteger: return truth(hintSign(x));
    case Kind::kFraction: return truth(numbFlag(x));  // list element 2, not the sign
    case Kind::kBracket: return isEmptyList(x) ? noAnswer() : bracketLeft(x);
    default: return noAnswer();
  }
}

Term valueWave(const Term& x) {
  switch (kindOf(x)) {
    case Kind::kBlob: {
      std::string_view bytes = blobBytes(x);
      if (bytes.empty()) return noAnswer();
      return blobLeaf(bytes.substr(1));
    }
    case Kind::kReal: return realLeaf(-realValue(x));  // the sign flips, also for 0.0
    case Kind::kInteger: return hintNegate(x);
    case Kind::kFraction: return numbFromBits(numbOpposite(numbBits(x)));
    case Kind::kBracket: return isEmptyList(x) ? noAnswer() : bracketRight(x);
    default: return noAnswer();
  }
}

// Blob to bracket literal escapes only the brackets; bracket literal to blob
// undoes all three escapes. So a newline survives only one direction.
Term valueCape(const Term& x) {
  switch (kindOf(x)) {
    case Kind::kBlob: {
      std::string_view bytes = blobBytes(x);
      std::string out = "[";
      out.reserve(bytes.size() + 2);
      for (char c : bytes) {
        if (c == '[') out += "[q]";
        else if (c == ']') out += "[r]";
        else out += c;
      }
      out += ']';
      return leaf(out);
    }
    case Kind::kBracket: {
      OperandBytes interior(x, Kind::kBracket);
      std::string_view s = interior.view();
      std::string out;
      out.reserve(s.size());
      for (size_t i = 0; i < s.size(); i++) {
        if (s[i] == ']') return noAnswer();
        if (s[i] != '[') {
          out += s[i];
          continue;
        }
        int b = escapedByte(s, i);
        if (b < 0) return noAnswer();
        out += char(b);
        i += 2;
      }
      return blobLeaf(out);
    }
    default: return noAnswer();
  }
}

}  // namespace tarn
