// Tree primitives: taking data apart, testing it, and giving values identity.
#include <string>

#include "primitives/builtins.h"
#include "runtime/annotate.h"
#include "reduction/canonical.h"
#include "reduction/printer.h"

namespace tarn {

// lisp x: the printed text of x as a bracket literal, made as it stands.
Term handleLisp(const Builtin&, const Args& args) {
  std::string text = "[";
  text += printTerm(args[0]);
  text += ']';
  return leaf(text);
}

// raws x y: K when both are the same node, H otherwise; never Z.
Term handleRaws(const Builtin&, const Args& args) {
  return leafByte(args[0].same(args[1]) ? 'K' : 'H');
}

// type x: the name of x's kind as a canonical literal, so that equal answers
// are one node. No kind gives another letter; the 69 stays as a guard.
Term handleType(const Builtin&, const Args& args) {
  const char* name;
  switch (kindOf(args[0])) {
    case Kind::kBlob: name = "[post]"; break;
    case Kind::kReal: name = "[real]"; break;
    case Kind::kInteger: name = "[hint]"; break;
    case Kind::kVector: name = "[cray]"; break;
    case Kind::kFraction: name = "[numb]"; break;
    case Kind::kBracket: name = "[zits]"; break;
    case Kind::kOther: name = "[void]"; break;
    default: return leaf("69");
  }
  return tern(leaf(name));
}

}  // namespace tarn
