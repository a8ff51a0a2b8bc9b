// Values of every kind for the operator tests, and their printed forms.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "frontend/compile.h"
#include "reduction/printer.h"
#include "terms/term.h"

namespace tarn::testing {

inline Term N(std::string_view text) { return leaf(text); }  // number or literal
inline Term blob(std::string_view bytes) { return blobLeaf(bytes); }
inline Term real(double v) { return realLeaf(v); }
inline Term sym(unsigned char b) { return leafByte(b); }
// A vector of the given elements; a null Term leaves its slot empty.
inline Term vec(std::initializer_list<Term> elements) {
  Term v = vectorLeaf(elements.size());
  size_t i = 0;
  for (const Term& e : elements) {
    if (e) setElement(v, i, e);
    i++;
  }
  return v;
}
// The list cell (J b rest), b the leaf K or H.
inline Term cell(bool k, Term rest) { return App(App(sym('J'), sym(k ? 'K' : 'H')), std::move(rest)); }

inline std::string show(const Term& t) { return printTerm(t); }
inline std::string text(const Term& t) { return std::string(textOf(t)); }

// Classification annotates symbol leaves, which needs the prelude's globals.
class Values : public ::testing::Test {
 protected:
  void SetUp() override { loadPrelude(); }
};

}  // namespace tarn::testing
