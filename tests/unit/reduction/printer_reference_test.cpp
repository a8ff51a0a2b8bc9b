// The printer against the rules applied literally to whole strings, on random
// terms. The reference joins the children's texts and inspects them; the
// printer decides from composed facts and writes the text once.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "frontend/scan.h"
#include "reduction/printer.h"
#include "terms/alphabet.h"

namespace tarn {
namespace {

char classOf(unsigned char c) { return isWordByte(c) ? 'l' : isDigit(c) ? 'n' : 'm'; }

std::string refPrint(const Term& t);

std::string refLeaf(const Term& t) {
  unsigned char c = t.first();
  if (c == 0 || c == ')' || c == ']') return "()";
  if (c == '\n') {
    std::string p = "cray";
    for (size_t i = 0; i < t.node()->size(); i++) {
      Node* e = t.node()->element(i);  // elements sit unaligned: copied out
      p = "(/ " + p + " " + (e ? refPrint(Term::share(e)) : "Z") + ")";
    }
    return p;
  }
  if (c == ' ') {
    double v;
    std::memcpy(&v, t.node()->bytes() + 1, sizeof v);
    char buf[64];
    std::snprintf(buf, sizeof buf, "%e", v);
    return "real[" + std::string(buf) + "]";
  }
  std::string_view text = textOf(t);
  if (c == '(') {
    std::string s = "cape[";
    for (char b : text.substr(text.find(')') + 1)) {
      if (b == '\n') s += "[p]";
      else if (b == '[') s += "[q]";
      else if (b == ']') s += "[r]";
      else s += b;
    }
    return s + "]";
  }
  return std::string(text);
}

std::string refPrint(const Term& t) {
  if (t.isLeaf()) return refLeaf(t);
  std::string L = refPrint(t.left());
  std::string R = refPrint(t.right());
  if (L[0] == '(' && L[1] != ')') return L.substr(0, L.size() - 1) + " " + R + ")";
  if (R[0] == '[' && matchBracket(R, 0) == long(R.size()) - 1) return L + R;
  char c = classOf(static_cast<unsigned char>(R[0]));
  bool mixed = false;
  for (size_t i = 1; i < R.size(); i++) mixed |= classOf(static_cast<unsigned char>(R[i])) != c;
  if (R.size() > 1 && (mixed || c == 'm')) return "(" + L + " " + R + ")";
  unsigned char e = static_cast<unsigned char>(L.back());
  if ((c == 'l' && isWordByte(e)) || (c == 'n' && isDigit(e))) return "(" + L + " " + R + ")";
  return L + R;
}

class TermMaker {
 public:
  explicit TermMaker(unsigned seed) : rng_(seed) {}
  Term make(int depth) {
    int choice = pick(depth <= 0 ? 3 : 6);
    if (choice == 0) {
      static const char* const words[] = {"a", "xy", "_", "7", "12", "S", "K", "+", "\\", "}",
                                          "[a]", "[[b]c]", "[]", "[x][y]", ")m", "]r", "[(]"};
      return leaf(words[pick(std::size(words))]);
    }
    if (choice == 1) {
      double v = std::uniform_real_distribution<double>(-1e6, 1e6)(rng_);
      std::string text(9, ' ');
      std::memcpy(text.data() + 1, &v, sizeof v);
      return pick(2) ? leaf(text) : emptyLeaf();
    }
    if (choice == 2) {
      std::string bytes = std::string("a[\n]b)", size_t(pick(7)));
      return leaf("(" + alphabetNumber(bytes.size()) + ")" + bytes);
    }
    if (choice == 3) {
      Term v = vectorLeaf(size_t(pick(3)));
      for (size_t i = 0; i < v.node()->size(); i++)
        if (pick(4)) setElement(v, i, make(depth - 2));
      return v;
    }
    return App(make(depth - 1), make(depth - 1));
  }

 private:
  int pick(size_t n) { return std::uniform_int_distribution<int>(0, int(n) - 1)(rng_); }
  std::mt19937 rng_;
};

TEST(PrinterReference, RandomTermsPrintAsTheRulesSay) {
  TermMaker maker(5);
  for (int i = 0; i < 20000; i++) {
    Term t = maker.make(6);
    std::string want = refPrint(t);
    ASSERT_EQ(printTerm(t), want);
  }
}

}  // namespace
}  // namespace tarn
