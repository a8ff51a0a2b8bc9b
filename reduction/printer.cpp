// The term printer in two iterative passes.
//
// Which of the five application rules applies depends only on a few facts
// about the texts L and R: their first two bytes, L's last byte, whether R is
// longer than one byte, the set of byte classes in R, and whether R's opening
// bracket closes exactly at its end. The first pass computes these facts
// bottom-up (a `Shape` per text, composed from the children's) and records the
// rule of every application; the second pass writes the text top-down with
// the recorded rules. Neither pass recurses, and no text is copied twice, so a
// right-nested list prints in linear time where joining whole strings would
// be quadratic.
#include "reduction/printer.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <vector>

namespace tarn {

namespace {

// ---- Facts about a text ---------------------------------------------------

// Byte classes, as bits of a set: "_" and a-z, digits, anything else.
constexpr uint8_t kWord = 1, kDigit = 2, kOther = 4;
inline uint8_t classOf(unsigned char c) {
  return isWordByte(c) ? kWord : isDigit(c) ? kDigit : kOther;
}

// The bracket profile of a text: "[" counts +1, "]" counts -1. The opening
// byte of a text that starts with "[" is closed exactly by its last byte when
// every proper prefix sums to at least 1 and the whole text sums to 0. The
// profile composes over concatenation, so the test needs no text.
constexpr int64_t kNoPrefix = std::numeric_limits<int64_t>::max();
struct Depth {
  int64_t total;      // sum over the whole text
  int64_t minAll;     // least sum over the prefixes of length 1..n
  int64_t minProper;  // least sum over the prefixes of length 1..n-1
};
Depth concat(const Depth& x, const Depth& y) {
  int64_t properY = y.minProper == kNoPrefix ? kNoPrefix : x.total + y.minProper;
  return {x.total + y.total, std::min(x.minAll, x.total + y.minAll), std::min(x.minAll, properY)};
}

struct Shape {
  unsigned char first = 0;
  unsigned char second = 0;  // 0 for a one-byte text
  unsigned char last = 0;
  bool multi = false;  // longer than one byte
  uint8_t classes = 0;
  Depth depth{};
  uint64_t length = 0;
};

Shape shapeOf(std::string_view t) {
  Shape s;
  s.first = static_cast<unsigned char>(t[0]);
  s.second = t.size() > 1 ? static_cast<unsigned char>(t[1]) : 0;
  s.last = static_cast<unsigned char>(t.back());
  s.multi = t.size() > 1;
  s.length = t.size();
  int64_t sum = 0;
  s.depth = {0, kNoPrefix, kNoPrefix};
  for (size_t i = 0; i < t.size(); i++) {
    unsigned char c = static_cast<unsigned char>(t[i]);
    s.classes |= classOf(c);
    if (i + 1 == t.size()) s.depth.minProper = s.depth.minAll;
    sum += c == '[' ? 1 : c == ']' ? -1 : 0;
    s.depth.minAll = std::min(s.depth.minAll, sum);
  }
  s.depth.total = sum;
  return s;
}

// Builds the shape of a concatenation piece by piece.
class ShapeBuilder {
 public:
  void add(const Shape& p) {
    if (empty_) {
      s_ = p;
      empty_ = false;
      return;
    }
    if (!s_.multi) s_.second = p.first;
    s_.multi = true;
    s_.last = p.last;
    s_.classes |= p.classes;
    s_.depth = concat(s_.depth, p.depth);
    s_.length += p.length;
  }
  void add(std::string_view t) { add(shapeOf(t)); }
  // Drops the last byte, a ")" that counts for nothing. Only the least sum
  // over all prefixes matters for what is appended next.
  void dropLast() {
    s_.depth.minAll = s_.depth.minProper;
    s_.length--;
  }
  const Shape& shape() const { return s_; }

 private:
  Shape s_;
  bool empty_ = true;
};

// ---- The application rules ------------------------------------------------

enum class Rule : uint8_t {
  Extend,     // "(... R)": L's list gets R as one more element
  SideBySide, // L R
  Enclose,    // (L R)
};

Rule ruleFor(const Shape& l, const Shape& r) {
  if (l.first == '(' && l.second != ')') return Rule::Extend;
  if (r.first == '[' && r.depth.total == 0 && r.depth.minProper >= 1) return Rule::SideBySide;
  uint8_t c = classOf(r.first);
  if (r.multi && (r.classes != c || c == kOther)) return Rule::Enclose;
  if ((c == kWord && isWordByte(l.last)) || (c == kDigit && isDigit(l.last))) return Rule::Enclose;
  return Rule::SideBySide;
}

Shape compose(Rule rule, const Shape& l, const Shape& r) {
  ShapeBuilder b;
  switch (rule) {
    case Rule::Extend:
      b.add(l);
      b.dropLast();
      b.add(" ");
      b.add(r);
      b.add(")");
      break;
    case Rule::SideBySide:
      b.add(l);
      b.add(r);
      break;
    case Rule::Enclose:
      b.add("(");
      b.add(l);
      b.add(" ");
      b.add(r);
      b.add(")");
      break;
  }
  return b.shape();
}

// ---- Leaves ---------------------------------------------------------------

bool isFilledVector(const Node* n) { return n->isLeaf() && n->firstByte() == '\n' && n->size() > 0; }

// The text of any leaf but a vector with elements; special forms are built in
// `scratch`.
std::string_view leafText(const Node* n, std::string& scratch) {
  const unsigned char* bytes = n->bytes();
  switch (bytes[0]) {
    case 0:
    case ')':
    case ']':
      return "()";  // the markers print like an empty pair
    case '\n':
      return "cray";
    case ' ': {
      double v;
      std::memcpy(&v, bytes + 1, sizeof v);
      char buf[64];
      int len = std::snprintf(buf, sizeof buf, "%e", v);
      scratch = "real[";
      scratch.append(buf, size_t(len));
      scratch += ']';
      return scratch;
    }
    case '(': {
      // "(" count ")" then the bytes; line breaks and brackets are written
      // as [p], [q] and [r] so that the text stays balanced.
      size_t length = leafLength(n);
      size_t i = 1;
      while (bytes[i] != ')') i++;
      scratch = "cape[";
      for (i++; i < length; i++) {
        unsigned char c = bytes[i];
        if (c == '\n') scratch += "[p]";
        else if (c == '[') scratch += "[q]";
        else if (c == ']') scratch += "[r]";
        else scratch += char(c);
      }
      scratch += ']';
      return scratch;
    }
    default:
      return {reinterpret_cast<const char*>(bytes), leafLength(n)};
  }
}

// An empty vector slot prints as the leaf "Z".
constexpr std::string_view kEmptySlot = "Z";

// ---- The two passes ---------------------------------------------------------

// First pass: the shape of the whole text, and the rule of every application
// in the order in which the second pass meets them (left before right).
Shape measure(const Node* root, std::vector<Rule>& rules) {
  struct Step {
    const Node* node;  // null: an empty vector slot
    size_t rule;       // an application's slot in `rules`
    bool childrenDone;
  };
  std::vector<Step> work{{root, 0, false}};
  std::vector<Shape> shapes;  // shapes of finished texts, innermost last
  std::string scratch;
  while (!work.empty()) {
    Step step = work.back();
    work.pop_back();
    const Node* n = step.node;
    if (!n) {
      shapes.push_back(shapeOf(kEmptySlot));
    } else if (step.childrenDone && !n->isLeaf()) {
      Shape r = shapes.back();
      shapes.pop_back();
      Shape l = shapes.back();
      Rule rule = ruleFor(l, r);
      rules[step.rule] = rule;
      shapes.back() = compose(rule, l, r);
    } else if (step.childrenDone) {
      // A vector: "(/ " once per element, "cray", then " " element ")" each.
      size_t count = n->size();
      ShapeBuilder b;
      for (size_t i = 0; i < count; i++) b.add("(/ ");
      b.add("cray");
      for (size_t i = shapes.size() - count; i < shapes.size(); i++) {
        b.add(" ");
        b.add(shapes[i]);
        b.add(")");
      }
      shapes.resize(shapes.size() - count);
      shapes.push_back(b.shape());
    } else if (!n->isLeaf()) {
      rules.push_back(Rule::SideBySide);
      work.push_back({n, rules.size() - 1, true});
      work.push_back({n->rightNode(), 0, false});
      work.push_back({n->leftNode(), 0, false});
    } else if (isFilledVector(n)) {
      work.push_back({n, 0, true});
      for (size_t i = n->size(); i-- > 0;) work.push_back({n->element(i), 0, false});
    } else {
      shapes.push_back(shapeOf(leafText(n, scratch)));
    }
  }
  return shapes.back();
}

// Second pass: writes the text, taking the applications' rules in order.
void write(const Node* root, const std::vector<Rule>& rules, std::string& out) {
  struct Task {
    enum Kind : uint8_t { Visit, Text, DropLast } kind;
    const Node* node;
    std::string_view text;
  };
  std::vector<Task> work{{Task::Visit, root, {}}};
  std::string scratch;
  size_t next = 0;
  auto text = [](std::string_view t) { return Task{Task::Text, nullptr, t}; };
  auto visit = [](const Node* n) { return Task{Task::Visit, n, {}}; };
  while (!work.empty()) {
    Task task = work.back();
    work.pop_back();
    if (task.kind == Task::Text) {
      out += task.text;
      continue;
    }
    if (task.kind == Task::DropLast) {
      out.pop_back();
      continue;
    }
    const Node* n = task.node;
    if (!n) {
      out += kEmptySlot;
    } else if (!n->isLeaf()) {
      // Tasks go on the stack in reverse order of output.
      switch (rules[next++]) {
        case Rule::Extend:
          work.insert(work.end(), {text(")"), visit(n->rightNode()), text(" "),
                                   Task{Task::DropLast, nullptr, {}}, visit(n->leftNode())});
          break;
        case Rule::SideBySide:
          work.insert(work.end(), {visit(n->rightNode()), visit(n->leftNode())});
          break;
        case Rule::Enclose:
          out += '(';
          work.insert(work.end(), {text(")"), visit(n->rightNode()), text(" "), visit(n->leftNode())});
          break;
      }
    } else if (isFilledVector(n)) {
      size_t count = n->size();
      for (size_t i = 0; i < count; i++) out += "(/ ";
      out += "cray";
      for (size_t i = count; i-- > 0;)
        work.insert(work.end(), {text(")"), visit(n->element(i)), text(" ")});
    } else {
      out += leafText(n, scratch);
    }
  }
}

}  // namespace

std::string printTerm(const Term& term) {
  std::vector<Rule> rules;
  Shape whole = measure(term.node(), rules);
  std::string out;
  out.reserve(whole.length);
  write(term.node(), rules, out);
  return out;
}

}  // namespace tarn
