// Tree primitives: taking data apart, testing it, and giving values identity.
#include <string>

#include "primitives/handlers.h"
#include "reduction/printer.h"

namespace tarn {

// lisp x: the printed text of x as a bracket literal, made as it stands.
Term handleLisp(const Term& chain) {
  std::string text = "[";
  text += printTerm(chain.right());
  text += ']';
  return leaf(text);
}

}  // namespace tarn
