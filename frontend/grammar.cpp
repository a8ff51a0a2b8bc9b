// The expression grammar by recursive splitting.
//
// Every level works on an index range [b, e) of the one normalised text
// instead of on copied substrings, and finds the partner of a bracket in a
// table made once per parse. A range handed to a level is always balanced, so
// the partner in the whole text is the partner in the range, and the trees are
// those of splitting copies. The infix levels 1-8 are one table-driven routine:
// a single scan of a range finds the loosest level that has an operator
// outside brackets, and levels with nothing to split are passed over without a
// call. Parenthesised nesting therefore costs a handful of frames per pair.
#include "frontend/grammar.h"

#include <array>
#include <cstdint>
#include <vector>

#include "terms/failure.h"

namespace tarn {

namespace {

// ---- Byte tables ------------------------------------------------------------

// The infix level (1-8) at which a byte splits a text, 0 for none. The eight
// sets are disjoint, so one byte names its level.
constexpr std::array<uint8_t, 256> kLevelOf = [] {
  std::array<uint8_t, 256> t{};
  const std::string_view levels[] = {";\\{", "?\n", "&|", "=<>#", "@ ", "+-:.", "*/%'", "^"};
  for (int l = 0; l < 8; l++)
    for (char c : levels[l]) t[static_cast<unsigned char>(c)] = uint8_t(l + 1);
  return t;
}();
constexpr int kInfixLevels = 8;
// Right-grouping levels: 1, 3, 4 and 8.
constexpr bool kGroupsRight[kInfixLevels + 1] = {false, true, false, true, true,
                                                  false, false, false, true};

// The five unary characters, prefix and postfix.
constexpr bool isUnary(unsigned char c) {
  return c == '~' || c == '!' || c == '"' || c == '$' || c == '`';
}

// Bytes that continue an element of the tight call chain instead of starting
// one: operators, brackets, space and newline. Words and digits continue or
// start by their own rules; anything else (a capital, a control or high byte)
// is an element of its own.
constexpr std::array<bool, 256> kChainPunctuation = [] {
  std::array<bool, 256> t{};
  for (char c : std::string_view("~!@#$%^&*<>-|+/=\\.`'\":;?(){},[] \n"))
    t[static_cast<unsigned char>(c)] = true;
  return t;
}();

// Does a new element of the call chain start at byte c after byte p?
inline bool startsElement(unsigned char p, unsigned char c) {
  if (p == ']' || p == ')') return true;
  if (c == '[' || c == '(') return true;
  if (!kChainPunctuation[c] && !isWordByte(c) && !isDigit(c)) return true;
  if (isWordByte(c)) return !isWordByte(p);
  if (isDigit(c)) return !isDigit(p);
  return false;
}

constexpr bool isOpener(unsigned char c) { return c == '(' || c == '{' || c == '['; }

// ---- The parser ---------------------------------------------------------------

class Parser {
 public:
  explicit Parser(std::string_view text);
  // The top level on [b, e).
  Term expression(size_t b, size_t e) { return fromLevel(1, b, e); }

 private:
  unsigned char at(size_t i) const { return static_cast<unsigned char>(text_[i]); }
  // The index behind the byte at i, jumping over a bracketed group.
  size_t after(size_t i) const { return (isOpener(at(i)) ? partner_[i] : i) + 1; }

  template <class Pred>
  std::vector<size_t> splitPoints(size_t b, size_t e, Pred inSet) const;

  Term fromLevel(int level, size_t b, size_t e);
  Term rightGrouped(int level, const std::vector<size_t>& points, size_t b, size_t e);
  Term leftGrouped(int level, const std::vector<size_t>& points, size_t b, size_t e);
  Term wingContents(size_t b, size_t e);
  Term postfix(size_t b, size_t e);
  Term prefix(size_t b, size_t e);
  Term operatorChain(size_t b, size_t e);
  size_t nextUnary(size_t from, size_t e) const;
  size_t elementEnd(size_t start, size_t e) const;
  Term callChain(size_t b, size_t e);
  Term atom(size_t b, size_t e);

  std::string_view text_;
  std::vector<uint32_t> partner_;  // meaningful at bracket bytes only
};

// Pairs every bracket with its partner: inside a literal only "[" and "]"
// count, in code "(" and "{" open alike.
Parser::Parser(std::string_view text) : text_(text), partner_(text.size()) {
  TARN_ASSERT(text.size() < UINT32_MAX);
  std::vector<uint32_t> open;
  for (uint32_t i = 0; i < text.size(); i++) {
    unsigned char c = at(i);
    bool inLiteral = !open.empty() && at(open.back()) == '[';
    if (inLiteral ? c == '[' : isOpener(c)) {
      open.push_back(i);
    } else if (inLiteral ? c == ']' : (c == ')' || c == '}' || c == ']')) {
      TARN_ASSERT(!open.empty());
      partner_[open.back()] = i;
      partner_[i] = open.back();
      open.pop_back();
    }
  }
  TARN_ASSERT(open.empty());
}

// Every index of [b, e) outside all brackets whose byte is in the set; an
// opener in the set is recorded and its contents skipped.
template <class Pred>
std::vector<size_t> Parser::splitPoints(size_t b, size_t e, Pred inSet) const {
  std::vector<size_t> points;
  for (size_t i = b; i < e; i = after(i))
    if (inSet(at(i))) points.push_back(i);
  return points;
}

// Levels 1-8. A level with no operator outside brackets hands the whole text
// to the next one, so the first level that splits is the loosest one present.
Term Parser::fromLevel(int level, size_t b, size_t e) {
  int loosest = kInfixLevels + 1;
  for (size_t i = b; i < e && loosest > level; i = after(i)) {
    int l = kLevelOf[at(i)];
    if (l >= level && l < loosest) loosest = l;
  }
  if (loosest > kInfixLevels) return postfix(b, e);
  auto points = splitPoints(b, e, [&](unsigned char c) { return kLevelOf[c] == loosest; });
  return kGroupsRight[loosest] ? rightGrouped(loosest, points, b, e)
                               : leftGrouped(loosest, points, b, e);
}

// a^b^c is (a ^ (b ^ c)): the term starts as the last piece and each piece
// before a split point becomes the left operand of what follows it. For "{"
// the split point's end is behind its partner "}", and the shape is the wing
// ((([{] x) w) y), which binds x to w in y.
Term Parser::rightGrouped(int level, const std::vector<size_t>& points, size_t b, size_t e) {
  auto endOf = [&](size_t s) { return at(s) == '{' ? size_t(partner_[s]) + 1 : s + 1; };
  Term term = fromLevel(level + 1, endOf(points.back()), e);
  for (size_t k = points.size(); k-- > 0;) {
    size_t s = points[k];
    Term x = fromLevel(level + 1, k == 0 ? b : endOf(points[k - 1]), s);
    if (at(s) == '{')
      term = App(App2(leafByte('{'), std::move(x), wingContents(s + 1, partner_[s])), std::move(term));
    else
      term = App2(leafByte(at(s)), std::move(x), std::move(term));
  }
  return term;
}

// a-b-c is ((a - b) - c). A space applies the term so far to the piece; a
// newline passes the term so far to the line below, (below above).
Term Parser::leftGrouped(int level, const std::vector<size_t>& points, size_t b, size_t e) {
  Term term = fromLevel(level + 1, b, points[0]);
  for (size_t k = 0; k < points.size(); k++) {
    size_t s = points[k];
    Term y = fromLevel(level + 1, s + 1, k + 1 < points.size() ? points[k + 1] : e);
    unsigned char c = at(s);
    if (c == ' ') term = App(std::move(term), std::move(y));
    else if (c == '\n') term = App(std::move(y), std::move(term));
    else term = App2(leafByte(c), std::move(term), std::move(y));
  }
  return term;
}

// The contents of a wing: right-grouped on ",", each piece a whole
// expression, so {a,b,c} holds (a , (b , c)).
Term Parser::wingContents(size_t b, size_t e) {
  auto points = splitPoints(b, e, [](unsigned char c) { return c == ','; });
  if (points.empty()) return expression(b, e);
  Term term = expression(points.back() + 1, e);
  for (size_t k = points.size(); k-- > 0;) {
    Term x = expression(k == 0 ? b : points[k - 1] + 1, points[k]);
    term = App2(leafByte(','), std::move(x), std::move(term));
  }
  return term;
}

// Level 9. The empty text is the leaf "}". Trailing unary bytes wrap the rest
// from the innermost (leftmost) outwards: x!~ is (~ (! x)), and "!" alone is
// (! }).
Term Parser::postfix(size_t b, size_t e) {
  size_t core = e;
  while (core > b && isUnary(at(core - 1))) core--;
  Term term = core == b ? leafByte('}') : prefix(b, core);
  for (size_t i = core; i < e; i++) term = App(leafByte(at(i)), std::move(term));
  return term;
}

// Level 10. Leading unary bytes wrap the rest: !~x is (! (~ x)). The text
// ends in a byte that is not unary (level 9 took those), so a rest remains.
Term Parser::prefix(size_t b, size_t e) {
  size_t core = b;
  while (core < e && isUnary(at(core))) core++;
  TARN_ASSERT(core < e);
  Term term = operatorChain(core, e);
  for (size_t i = core; i-- > b;) term = App(leafByte(at(i)), std::move(term));
  return term;
}

// The first index at or after `from`, outside brackets, holding a unary byte;
// e when there is none.
size_t Parser::nextUnary(size_t from, size_t e) const {
  for (size_t i = from; i < e; i = after(i))
    if (isUnary(at(i))) return i;
  return e;
}

// Level 11. Unary bytes inside a text cut it into a head and runs; each run
// is its unary bytes wrapped around the call chain behind them, and is applied
// to the term so far: f~x!y is ((f (~ x)) (! y)), f~!x is (f (~ (! x))).
Term Parser::operatorChain(size_t b, size_t e) {
  size_t hit = nextUnary(b, e);
  if (hit == e) return callChain(b, e);
  Term term = callChain(b, hit);
  while (hit < e) {
    size_t rest = hit;
    while (rest < e && isUnary(at(rest))) rest++;
    TARN_ASSERT(rest < e);  // a run has a byte behind its unary bytes
    size_t next = nextUnary(rest, e);
    Term run = callChain(rest, next);
    for (size_t i = rest; i-- > hit;) run = App(leafByte(at(i)), std::move(run));
    term = App(std::move(term), std::move(run));
    hit = next;
  }
  return term;
}

// The end of the element that starts at `start`: a "[" or "(" element is
// skipped whole, then bytes join it until the element rules start another.
size_t Parser::elementEnd(size_t start, size_t e) const {
  size_t i = after(start);
  while (i < e && !startsElement(at(i - 1), at(i))) i++;
  return i;
}

// Level 12. Elements written side by side, applied from the left: SKK is
// ((S K) K), ab1 is (ab 1), 12ab is (12 ab). An element that opens with "("
// after the first is an argument list: the term is applied to each of its
// comma-separated expressions in turn, so f(a,b)c is (((f a) b) c) and f()
// is (f }).
Term Parser::callChain(size_t b, size_t e) {
  TARN_ASSERT(b < e);
  size_t end = elementEnd(b, e);
  Term term = atom(b, end);
  while (end < e) {
    size_t start = end;
    end = elementEnd(start, e);
    if (at(start) != '(') {
      term = App(std::move(term), atom(start, end));
      continue;
    }
    size_t from = start + 1;
    for (size_t comma : splitPoints(from, end - 1, [](unsigned char c) { return c == ','; })) {
      term = App(std::move(term), expression(from, comma));
      from = comma + 1;
    }
    term = App(std::move(term), expression(from, end - 1));
  }
  return term;
}

// Level 13. Words and numbers are leaves of all their bytes (a stray byte
// behind a word stays in the leaf), a literal is a leaf with its brackets, a
// parenthesis holds a whole expression, and anything else is one byte. The
// byte 0 reads as the empty vector.
Term Parser::atom(size_t b, size_t e) {
  TARN_ASSERT(b < e);
  unsigned char c = at(b);
  if (isDigit(c) || isWordByte(c) || c == '[') return leaf(text_.substr(b, e - b));
  if (c == '(') return expression(b + 1, e - 1);
  TARN_ASSERT(e - b == 1);
  if (c == 0) return vectorLeaf(0);
  return leafByte(c);
}

}  // namespace

Term parseExpression(std::string_view normalisedText) {
  Parser parser(normalisedText);
  return parser.expression(0, normalisedText.size());
}

}  // namespace tarn
