// The parser against the plain splitting algorithm on random texts.
//
// The reference below copies every piece into a new string and rescans it
// with the scanning helpers, level by level, exactly as the grammar is
// described; the parser works on index ranges with a partner table and skips
// levels that have nothing to split. The trees must be the same.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "frontend/grammar.h"
#include "frontend/scan.h"
#include "tests/unit/frontend/tree_dump.h"

namespace tarn {
namespace {

const char* const kLevelChars[] = {";\\{", "?\n", "&|", "=<>#", "@ ", "+-:.", "*/%'", "^"};
const bool kRight[] = {true, false, true, true, false, false, false, true};
const std::string_view kUnaryChars = "~!\"$`";
bool unary(char c) { return kUnaryChars.find(c) != std::string_view::npos; }

Term refExpression(const std::string& t);
Term refPostfix(const std::string& t);
Term refCall(const std::string& t);

Term refLevel(int level, const std::string& t) {
  if (level > 8) return refPostfix(t);
  std::vector<long> points = splitPoints(t, kLevelChars[level - 1]);
  if (points.empty()) return refLevel(level + 1, t);
  if (kRight[level - 1]) {
    auto endOf = [&](long s) { return t[size_t(s)] == '{' ? matchBracket(t, s) + 1 : s + 1; };
    Term term = refLevel(level + 1, t.substr(size_t(endOf(points.back()))));
    for (size_t k = points.size(); k-- > 0;) {
      long s = points[k];
      long from = k == 0 ? 0 : endOf(points[k - 1]);
      Term x = refLevel(level + 1, t.substr(size_t(from), size_t(s - from)));
      char c = t[size_t(s)];
      if (c == '{') {
        std::string inside = t.substr(size_t(s) + 1, size_t(matchBracket(t, s) - s - 1));
        std::vector<long> commas = splitPoints(inside, ",");
        Term w = refExpression(inside.substr(commas.empty() ? 0 : size_t(commas.back()) + 1));
        for (size_t j = commas.size(); j-- > 0;) {
          long f = j == 0 ? 0 : commas[j - 1] + 1;
          w = App2(leafByte(','), refExpression(inside.substr(size_t(f), size_t(commas[j] - f))), w);
        }
        term = App(App2(leafByte('{'), x, w), term);
      } else {
        term = App2(leafByte(static_cast<unsigned char>(c)), x, term);
      }
    }
    return term;
  }
  Term term = refLevel(level + 1, t.substr(0, size_t(points[0])));
  for (size_t k = 0; k < points.size(); k++) {
    long s = points[k];
    long to = k + 1 < points.size() ? points[k + 1] : long(t.size());
    Term y = refLevel(level + 1, t.substr(size_t(s) + 1, size_t(to - s - 1)));
    char c = t[size_t(s)];
    if (c == ' ') term = App(term, y);
    else if (c == '\n') term = App(y, term);
    else term = App2(leafByte(static_cast<unsigned char>(c)), term, y);
  }
  return term;
}

Term refExpression(const std::string& t) { return refLevel(1, t); }

Term refPrefix(const std::string& t);
Term refRun(const std::string& r);
Term refOperatorChain(const std::string& t);

Term refPostfix(const std::string& t) {
  if (t.empty()) return leafByte('}');
  if (unary(t.back()))
    return App(leafByte(static_cast<unsigned char>(t.back())), refPostfix(t.substr(0, t.size() - 1)));
  return refPrefix(t);
}

Term refPrefix(const std::string& t) {
  if (unary(t[0])) return App(leafByte(static_cast<unsigned char>(t[0])), refPrefix(t.substr(1)));
  return refOperatorChain(t);
}

Term refOperatorChain(const std::string& t) {
  std::vector<long> hits;
  for (long h = findOutside(0, t, kUnaryChars); h >= 0;) {
    hits.push_back(h);
    long k = h;
    while (k < long(t.size()) && unary(t[size_t(k)])) k++;
    h = findOutside(k, t, kUnaryChars);
  }
  if (hits.empty()) return refCall(t);
  Term term = refCall(t.substr(0, size_t(hits[0])));
  for (size_t k = 0; k < hits.size(); k++) {
    long to = k + 1 < hits.size() ? hits[k + 1] : long(t.size());
    term = App(term, refRun(t.substr(size_t(hits[k]), size_t(to - hits[k]))));
  }
  return term;
}

Term refRun(const std::string& r) {
  EXPECT_GE(r.size(), 2u);
  Term rest = unary(r[1]) ? refRun(r.substr(1)) : refCall(r.substr(1));
  return App(leafByte(static_cast<unsigned char>(r[0])), rest);
}

Term refAtom(const std::string& t) {
  unsigned char c = static_cast<unsigned char>(t[0]);
  if (isDigit(c) || isWordByte(c) || c == '[') return leaf(t);
  if (c == '(') return refExpression(t.substr(1, t.size() - 2));
  EXPECT_EQ(t.size(), 1u);
  return c == 0 ? vectorLeaf(0) : leafByte(c);
}

bool newElement(unsigned char p, unsigned char c) {
  static const std::string_view punct("~!@#$%^&*<>-|+/=\\.`'\":;?(){},[] \n");
  if (p == ']' || p == ')' || c == '[' || c == '(') return true;
  if (punct.find(char(c)) == std::string_view::npos && !isWordByte(c) && !isDigit(c)) return true;
  if (isWordByte(c)) return !isWordByte(p);
  if (isDigit(c)) return !isDigit(p);
  return false;
}

Term refCall(const std::string& t) {
  std::vector<std::string> elements;
  size_t start = 0;
  size_t i = size_t(matchBracket(t, 0)) + 1;
  for (; i <= t.size(); i++) {
    if (i < t.size() && !newElement(static_cast<unsigned char>(t[i - 1]), static_cast<unsigned char>(t[i])))
      continue;
    elements.push_back(t.substr(start, i - start));
    if (i == t.size()) break;
    start = i;
    i = size_t(matchBracket(t, long(i)));
  }
  Term term = refAtom(elements[0]);
  for (size_t k = 1; k < elements.size(); k++) {
    const std::string& e = elements[k];
    if (e[0] != '(') {
      term = App(term, refAtom(e));
      continue;
    }
    std::string inside = e.substr(1, e.size() - 2);
    long from = 0;
    for (long comma : splitPoints(inside, ",")) {
      term = App(term, refExpression(inside.substr(size_t(from), size_t(comma - from))));
      from = comma + 1;
    }
    term = App(term, refExpression(inside.substr(size_t(from))));
  }
  return term;
}

// Random texts that are balanced and keep commas to call lists and wings.
class TextMaker {
 public:
  explicit TextMaker(unsigned seed) : rng_(seed) {}
  std::string make(int depth) {
    int choice = pick(depth <= 0 ? 3 : 12);
    switch (choice) {
      case 0: return one({"a", "xy", "a_b", "_", "7", "12", "S", "K", "V", "[a b]", "[(]", "[{]x"});
      case 1: return one({"", "\x01", std::string(1, '\0'), "\xff", "Z"});
      case 2: return one({"f", "g", "ab", "1", "B"}) + make(depth - 1);
      case 3: return make(depth - 1) + one({";", "\\", "?", "\n", "&", "|", "=", "<", ">", "#", "@",
                                           " ", "+", "-", ":", ".", "*", "/", "%", "'", "^"}) +
                     make(depth - 1);
      case 4: return make(depth - 1) + "{" + list(depth - 1) + "}" + make(depth - 1);
      case 5: return one({"~", "!", "\"", "$", "`"}) + make(depth - 1);
      case 6: return make(depth - 1) + one({"~", "!", "\"", "$", "`", "~!"});
      case 7: return "(" + make(depth - 1) + ")";
      case 8: return one({"f", "S", "ab", "x1"}) + "(" + list(depth - 1) + ")";
      case 9: return make(depth - 1) + make(depth - 1);
      case 10: return make(depth - 1) + one({"~", "!~", "$"}) + make(depth - 1);
      default: return make(depth - 1) + "[" + make(0) + "]";
    }
  }

 private:
  int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng_); }
  std::string one(std::initializer_list<std::string> options) {
    return *(options.begin() + pick(int(options.size())));
  }
  std::string list(int depth) {
    std::string s = make(depth);
    for (int n = pick(3); n > 0; n--) s += "," + make(depth);
    return s;
  }
  std::mt19937 rng_;
};

TEST(GrammarReference, RandomTextsGiveTheSameTrees) {
  TextMaker maker(20261121);
  for (int i = 0; i < 20000; i++) {
    std::string text = maker.make(5);
    std::string want = testing::treeOf(refExpression(text));
    std::string got = testing::treeOf(parseExpression(text));
    ASSERT_EQ(got, want) << "text: " << text;
  }
}

}  // namespace
}  // namespace tarn
