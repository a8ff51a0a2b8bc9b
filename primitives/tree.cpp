// Tree primitives: taking data apart, testing it, giving values identity, and
// the builtins that end the process.
//
// A tree is spelled two ways: as bracket data (kind u), split at its last
// element, and as the tagged tree V (X J) B of ordinary terms, whose body is K
// (empty) or J C D (the pair of C and D). `left`, `rght` and `leaf` read both;
// the empty bracket tree has no parts and stops the process, while the empty
// tagged tree quietly answers Z.
#include <cstdlib>
#include <string>
#include <vector>

#include "numbers/model.h"
#include "primitives/builtins.h"
#include "primitives/data.h"
#include "reduction/canonical.h"
#include "reduction/printer.h"
#include "runtime/annotate.h"
#include "terms/texts.h"

namespace tarn {

namespace {

using data::noAnswer;

// The left or right part of a tree; the rule is one, mirrored.
Term treePart(const Term& t, bool leftPart) {
  if (kindOf(t) == Kind::kBracket) {
    // The program must ask `leaf` before it takes an empty tree apart.
    TARN_ASSERT(t.isApp() || textOf(t) != "[]");
    return leftPart ? bracketLeft(t) : bracketRight(t);
  }
  if (!data::isTaggedTree(t)) return noAnswer();
  const Term& body = data::taggedBody(t);
  if (!data::isJCell(body)) return noAnswer();  // K, the empty tagged tree, included
  return data::taggedTree(leftPart ? body.left().right() : body.right());
}

}  // namespace

// left t: all but the last element of a tree.
Term handleLeft(const Builtin&, const Args& args) { return treePart(args[0], true); }

// rght t: the last element of a tree.
Term handleRght(const Builtin&, const Args& args) { return treePart(args[0], false); }

// leaf t: K for an empty tree, H for any other tree, Z for what is no tree.
// A tagged body other than K answers H without being looked into.
Term handleLeaf(const Builtin&, const Args& args) {
  const Term& t = args[0];
  if (kindOf(t) == Kind::kBracket) return data::truth(t.isLeaf() && textOf(t) == "[]");
  if (!data::isTaggedTree(t)) return noAnswer();
  return data::truth(isByteLeaf(data::taggedBody(t), 'K'));
}

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

// leak x: the address of x's node as an integer. One reference is given up
// on purpose, so the node is never freed and the address stays good.
Term handleLeak(const Builtin&, const Args& args) {
  // The given-up references are listed where a leak checker can see them;
  // nothing reads the list.
  static auto* keptForEver = new std::vector<Node*>;
  Node* n = Term(args[0]).detach();
  keptForEver->push_back(n);
  return int64ToTerm(static_cast<int64_t>(reinterpret_cast<intptr_t>(n)));
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

// cray: the empty vector, one node for the whole process.
Term handleCray(const Builtin&, const Args&) {
  static Node* const empty = vectorLeaf(0).detach();  // kept for ever
  return Term::share(empty);
}

// assert b: I for K; the assertion report and an abort for H; Z otherwise.
// The one assertion a program can trigger on purpose.
Term handleAssert(const Builtin&, const Args& args) {
  const Term& b = args[0];
  if (isByteLeaf(b, 'K')) return leafByte('I');
  if (isByteLeaf(b, 'H')) TARN_FAIL();
  return noAnswer();
}

// exit n: ends the process with the host's exit (which flushes the streams);
// Z for anything but an integer.
Term handleExit(const Builtin&, const Args& args) {
  if (!isHostInteger(args[0])) return noAnswer();
  std::exit(static_cast<int>(termToInt64(args[0])));
}

// abort: the host's abort, with no message.
Term handleAbort(const Builtin&, const Args&) { std::abort(); }

}  // namespace tarn
