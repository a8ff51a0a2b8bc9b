// Positions, names, the byte table, bracket codes, the byte shorthand and the
// bracket-tree operations on literal texts.
#include "terms/texts.h"

#include <unordered_map>
#include <vector>

#include "terms/alphabet.h"

namespace tarn {

// ---- Positions and names ------------------------------------------------------

std::string positionText(long position) {
  TARN_ASSERT(position >= 0 && position <= 0x40000000);
  // 64^5 itself does not fit five digits; it has its own spelling.
  if (position == 0x40000000) return "!!!!!";
  std::string s(5, '_');
  for (int k = 4; k >= 0; k--) {
    s[size_t(k)] = kAlphabet[position & 63];
    position >>= 6;
  }
  return s;
}

namespace {

bool isOperatorByte(unsigned char c) {
  return c != 0 && kOperatorBytes.find(char(c)) != std::string_view::npos;
}

// One-byte names other than operators: control bytes, capitals, high bytes.
bool isPlainSymbolByte(unsigned char c) {
  return (c >= 1 && c <= 31) || (c >= 'A' && c <= 'Z') || c >= 127;
}

bool isWord(std::string_view text) {
  for (char c : text)
    if (!isWordByte(static_cast<unsigned char>(c))) return false;
  return true;
}

bool isBracketedOperator(std::string_view text) {
  return text.size() == 3 && text[0] == '[' && text[2] == ']' &&
         isOperatorByte(static_cast<unsigned char>(text[1]));
}

}  // namespace

bool isName(std::string_view text) {
  if (text.empty()) return false;
  auto c = static_cast<unsigned char>(text[0]);
  if (isWordByte(c)) return isWord(text);
  return text.size() == 1 && (isPlainSymbolByte(c) || isOperatorByte(c));
}

bool isDefinableName(std::string_view text) {
  if (text.empty()) return false;
  auto c = static_cast<unsigned char>(text[0]);
  if (isWordByte(c)) return isWord(text);
  if (text.size() == 1) return isPlainSymbolByte(c);
  return isBracketedOperator(text);
}

std::string_view plainName(std::string_view text) {
  TARN_ASSERT(isDefinableName(text));
  return isBracketedOperator(text) ? text.substr(1, 1) : text;
}

bool isLocalLetter(std::string_view text) {
  return text.size() == 1 && isLower(static_cast<unsigned char>(text[0]));
}

// ---- The byte table -------------------------------------------------------------

namespace {

// Class-2 glyphs and their bytes; -1 marks a glyph with no class-2 meaning.
constexpr std::array<int16_t, 256> makeClass2Table() {
  std::array<int16_t, 256> t{};
  for (auto& v : t) v = -1;
  // Letters in either case: a..i are 1..9, j is 0, k..z are 11..26.
  for (int i = 0; i < 26; i++) {
    int16_t b = int16_t(i == 9 ? 0 : i + 1);
    t[size_t('a' + i)] = b;
    t[size_t('A' + i)] = b;
  }
  t[size_t(',')] = 10;
  t[size_t('(')] = 27;
  t[size_t(')')] = 28;
  t[size_t('{')] = 29;
  t[size_t('}')] = 30;
  t[size_t('[')] = 31;
  t[size_t('_')] = 32;
  t[size_t('~')] = 127;
  // The punctuation run and the digits continue from 128 to 160.
  constexpr std::string_view run = "!@#$%^&*<>-|+/=\\.`'\":;?0123456789";
  for (size_t i = 0; i < run.size(); i++) t[static_cast<unsigned char>(run[i])] = int16_t(128 + i);
  t[size_t(']')] = 255;
  return t;
}
constexpr auto kClass2 = makeClass2Table();

constexpr int pairByteRaw(uint8_t cls, unsigned char glyph) {
  if (cls == 3) return glyph;
  if (cls == 1) return (glyph + 128) & 255;
  return kClass2[glyph];
}

struct ByteTables {
  std::array<uint8_t, 256> byteAt{};   // table index -> byte
  std::array<uint8_t, 256> indexOf{};  // byte -> table index
};

constexpr ByteTables makeByteTables() {
  ByteTables t{};
  for (int i = 0; i < 256; i++) {
    int b = pairByteRaw(byteClass[size_t(i)], static_cast<unsigned char>(byteGlyph[size_t(i)]));
    t.byteAt[size_t(i)] = uint8_t(b);
    t.indexOf[size_t(b)] = uint8_t(i);
  }
  return t;
}
constexpr ByteTables kByteTables = makeByteTables();

// The 256 pairs must denote every byte once.
constexpr bool tableIsBijective() {
  std::array<bool, 256> seen{};
  for (int i = 0; i < 256; i++) {
    int b = pairByteRaw(byteClass[size_t(i)], static_cast<unsigned char>(byteGlyph[size_t(i)]));
    if (b < 0 || seen[size_t(b)]) return false;
    seen[size_t(b)] = true;
  }
  return true;
}
static_assert(tableIsBijective());

}  // namespace

unsigned char byteOfPair(uint8_t cls, unsigned char glyph) {
  TARN_ASSERT(cls >= 1 && cls <= 3);
  int b = pairByteRaw(cls, glyph);
  if (b < 0) internalFailure("nopqchar");
  return static_cast<unsigned char>(b);
}

unsigned char tableByte(int index) {
  TARN_ASSERT(index >= 0 && index < 256);
  return kByteTables.byteAt[size_t(index)];
}

int tableIndexOf(unsigned char b) { return kByteTables.indexOf[b]; }

// ---- Bracket codes and the byte shorthand ------------------------------------

namespace {

constexpr int kLastCode = 676;
constexpr int kShorthandBase = 145;

const std::vector<std::string>& bracketCodes() {
  static const std::vector<std::string> codes = [] {
    std::vector<std::string> c(kLastCode + 1);
    c[0] = "[]";
    for (int n = 1; n <= kLastCode; n++) {
      // Shell s holds the pairs whose larger member is s; r walks them,
      // alternating (s, r/2) for even r and ((r-1)/2, s) for odd r.
      int s = 0;
      while ((s + 1) * (s + 1) <= n - 1) s++;
      int r = n - s * s - 1;
      int first = (r % 2) ? (r - 1) / 2 : s;
      int second = (r % 2) ? s : r / 2;
      // Head element bracketCode(second), tail the list bracketCode(first).
      c[size_t(n)] = "[" + c[size_t(second)] + c[size_t(first)].substr(1);
    }
    return c;
  }();
  return codes;
}

struct Shorthand {
  std::array<std::string_view, 256> textOf{};  // by byte; empty for [ and ]
  std::unordered_map<std::string_view, uint8_t> byteOf;
  size_t minLength = ~size_t(0);
  size_t maxLength = 0;
};

const Shorthand& shorthand() {
  static const Shorthand table = [] {
    Shorthand t;
    const auto& codes = bracketCodes();
    for (int i = 0; i < 256; i++) {
      unsigned char b = kByteTables.byteAt[size_t(i)];
      if (b == '[' || b == ']') continue;
      std::string_view text = codes[size_t(i + kShorthandBase)];
      t.textOf[b] = text;
      t.byteOf.emplace(text, b);
      if (text.size() < t.minLength) t.minLength = text.size();
      if (text.size() > t.maxLength) t.maxLength = text.size();
    }
    return t;
  }();
  return table;
}

}  // namespace

std::string_view bracketCode(int n) {
  TARN_ASSERT(n >= 0 && n <= kLastCode);
  return bracketCodes()[size_t(n)];
}

std::string_view shorthandText(unsigned char b) { return shorthand().textOf[b]; }

int shorthandByte(std::string_view text) {
  const Shorthand& t = shorthand();
  // Keys are all short; most texts are ruled out by their length alone.
  if (text.size() < t.minLength || text.size() > t.maxLength) return -1;
  auto it = t.byteOf.find(text);
  return it == t.byteOf.end() ? -1 : it->second;
}

// ---- Bracket trees ----------------------------------------------------------------

namespace {

// Index where the last element of a non-empty list text starts.
size_t lastElementStart(std::string_view text) {
  TARN_ASSERT(text.size() > 2 && text.front() == '[' && text.back() == ']');
  size_t p = text.size() - 2;
  if (text[p] != ']') return p;  // a one-byte element
  // Walk back over the nested list until its opening bracket.
  long depth = 0;
  for (;;) {
    if (text[p] == ']') depth++;
    else if (text[p] == '[') depth--;
    if (depth == 0) return p;
    TARN_ASSERT(p > 1);
    p--;
  }
}

}  // namespace

std::string bracketLeftText(std::string_view text) {
  size_t start = lastElementStart(text);
  std::string out(text.substr(0, start));
  out.push_back(']');
  return out;
}

std::string bracketRightText(std::string_view text) {
  size_t start = lastElementStart(text);
  std::string_view element = text.substr(start, text.size() - 1 - start);
  if (element.size() == 1) {
    // A plain byte stands for its bracket list.
    std::string_view expanded = shorthandText(static_cast<unsigned char>(element[0]));
    TARN_ASSERT(!expanded.empty());
    return std::string(expanded);
  }
  return std::string(element);
}

Term bracketLeft(const Term& t) {
  if (t.isApp()) return t.left();
  return leaf(bracketLeftText(textOf(t)));
}

Term bracketRight(const Term& t) {
  if (t.isApp()) return t.right();
  return leaf(bracketRightText(textOf(t)));
}

std::string bracketJoin(std::string_view left, std::string_view right) {
  TARN_ASSERT(!left.empty() && left.back() == ']');
  std::string out;
  out.reserve(left.size() + right.size());
  out.append(left.substr(0, left.size() - 1));
  int b = shorthandByte(right);
  if (b >= 0) out.push_back(char(b));
  else out.append(right);
  out.push_back(']');
  return out;
}

std::string flatten(const Term& t) {
  if (t.isLeaf()) return std::string(textOf(t));
  // Depth-first over the tree with an explicit stack, joining into one
  // buffer: a left part is written, its closing bracket taken back, the right
  // part written behind it (and contracted to its byte if it is a shorthand
  // key), and the bracket put back.
  struct Frame {
    const Term* term;
    size_t mark;  // where the right part's text starts in `out`
    int phase;    // 0: not started, 1: left done, 2: right done
  };
  std::string out;
  std::vector<Frame> stack;
  stack.push_back({&t, 0, 0});
  while (!stack.empty()) {
    Frame& f = stack.back();
    if (f.phase == 0 && f.term->isLeaf()) {
      out.append(textOf(*f.term));
      stack.pop_back();
    } else if (f.phase == 0) {
      f.phase = 1;
      stack.push_back({&f.term->left(), 0, 0});
    } else if (f.phase == 1) {
      TARN_ASSERT(!out.empty() && out.back() == ']');
      out.pop_back();
      f.mark = out.size();
      f.phase = 2;
      stack.push_back({&f.term->right(), 0, 0});
    } else {
      int b = shorthandByte(std::string_view(out).substr(f.mark));
      if (b >= 0) {
        out.resize(f.mark);
        out.push_back(char(b));
      }
      out.push_back(']');
      stack.pop_back();
    }
  }
  return out;
}

}  // namespace tarn
