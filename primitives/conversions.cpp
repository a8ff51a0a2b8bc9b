// Conversions between the forms of a value, and its size: `zits` (to a
// bracket literal), `init` (to a blob), `post` (host memory to a blob),
// `copy` (a value out to host memory) and `rank`.
//
// Each dispatches on the kind of its argument, one rule per kind; a kind the
// table has no rule for answers Z. Nothing here is cached: `zits`, `init` and
// `rank` of a bracket application walk the tree at each call.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "numbers/model.h"
#include "primitives/builtins.h"
#include "primitives/data.h"
#include "reduction/printer.h"
#include "runtime/annotate.h"
#include "terms/texts.h"

namespace tarn {

namespace {

using data::noAnswer;

// A number term whose chain of cells reads as a list. A chain that does not
// is no number, and the conversions answer Z for it.
bool isReadableNumber(const Term& t) { return t.isLeaf() || !bitsOf(t).empty(); }

// The decimal text of a number, as `rank` measures it.
std::string decimalText(const Term& t) {
  if (t.isLeaf()) return std::string(textOf(t));
  return numberText(t);
}

// The text of a double in the form "%e".
std::string realText(double v) {
  char buf[100];
  std::snprintf(buf, sizeof buf, "%e", v);
  return buf;
}

// The eight bytes of a real leaf's double, in memory order.
std::string_view realBytes(const Term& r) {
  return {reinterpret_cast<const char*>(r.node()->bytes()) + 1, 8};
}

// The blob scan: bytes that can stand between the brackets of a literal. No
// line break, and brackets that balance without ever closing more than they
// opened.
bool scansAsText(std::string_view bytes) {
  long depth = 0;
  for (unsigned char c : bytes) {
    if (c == '\n' || depth < 0) return false;
    if (c == '[') depth++;
    else if (c == ']') depth--;
  }
  return depth == 0;
}

// A vector's printed text: its elements in order, a nested vector by this same
// rule, an empty slot as Z, anything else through the printer. Nested vectors
// are walked with a stack of their own.
std::string vectorText(const Term& vec) {
  struct Place {
    const Node* vector;
    size_t next;
  };
  std::string out;
  std::vector<Place> stack{{vec.node(), 0}};
  while (!stack.empty()) {
    Place& p = stack.back();
    if (p.next == p.vector->size()) {
      stack.pop_back();
      continue;
    }
    Node* e = p.vector->element(p.next++);
    if (!e) out += 'Z';
    else if (e->isLeaf() && e->bytes()[0] == '\n') stack.push_back({e, 0});
    else out += printTerm(Term::share(e));
  }
  return out;
}

// The bracket text of a tagged tree's body: K is "[]", J C D the join of C's
// text and D's. The left part C of a long list is walked as a spine; right
// parts nest. False for any other body.
bool taggedText(const Term& body, std::string& out) {
  std::vector<const Term*> rights;
  const Term* b = &body;
  while (data::isJCell(*b)) {
    rights.push_back(&b->right());
    b = &b->left().right();
  }
  if (!isByteLeaf(*b, 'K')) return false;
  out = "[]";
  for (size_t i = rights.size(); i-- > 0;) {
    std::string part;
    if (!taggedText(*rights[i], part)) return false;
    // The join: the right part goes in before the closing bracket, as its
    // shorthand byte when it has one.
    out.pop_back();
    int b1 = shorthandByte(part);
    if (b1 >= 0) out.push_back(char(b1));
    else out += part;
    out.push_back(']');
  }
  return true;
}

// The bytes of a byte tree: K is empty, an integer leaf is the low byte of its
// value, J a b is a's bytes then b's. False for any other shape.
bool byteTreeBytes(const Term& t, std::string& out) {
  std::vector<const Term*> stack{&t};
  while (!stack.empty()) {
    const Term* x = stack.back();
    stack.pop_back();
    if (isByteLeaf(*x, 'K')) continue;
    if (x->isLeaf()) {
      if (!isDigit(x->first()) || !isHostInteger(*x)) return false;
      out.push_back(char(termToInt64(*x)));
      continue;
    }
    if (!data::isJCell(*x)) return false;
    stack.push_back(&x->right());
    stack.push_back(&x->left().right());
  }
  return true;
}

// The sum of the text lengths of a bracket value's leaves. An annotated data
// application that records the sum in its header answers at once.
size_t bracketTextSum(const Term& t) {
  size_t sum = 0;
  std::vector<const Node*> stack{t.node()};
  while (!stack.empty()) {
    const Node* n = stack.back();
    stack.pop_back();
    if (n->isLeaf()) sum += leafLength(n);
    else if (n->size() != 0) sum += n->size();
    else {
      stack.push_back(n->rightNode());
      stack.push_back(n->leftNode());
    }
  }
  return sum;
}

}  // namespace

// zits x: a bracket literal of x, or Z.
Term handleZits(const Builtin&, const Args& args) {
  const Term& x = args[0];
  switch (kindOf(x)) {
    case Kind::kBlob: {
      std::string_view bytes = blobBytes(x);
      if (!scansAsText(bytes)) return noAnswer();
      return data::bracketLiteral(bytes);
    }
    case Kind::kReal: return data::bracketLiteral(realText(realValue(x)));
    case Kind::kInteger: {
      if (!isReadableNumber(x)) return noAnswer();
      // One character; a bracket byte is written as its escape.
      unsigned char c = static_cast<unsigned char>(termToInt64(x));
      if (c == '[') return leaf("[[q]]");
      if (c == ']') return leaf("[[r]]");
      return data::bracketLiteral(std::string_view(reinterpret_cast<const char*>(&c), 1));
    }
    case Kind::kVector: return leaf(vectorText(x));  // as it stands, unchecked
    case Kind::kBracket: return x.isLeaf() ? x : leaf(flatten(x));
    case Kind::kOther: {
      std::string text;
      if (!data::isTaggedTree(x) || !taggedText(data::taggedBody(x), text)) return noAnswer();
      return leaf(text);
    }
    default: return noAnswer();  // a numb
  }
}

// init x: a blob of x, or Z.
Term handleInit(const Builtin&, const Args& args) {
  const Term& x = args[0];
  switch (kindOf(x)) {
    case Kind::kBlob: return x;
    case Kind::kReal: return blobLeaf(realBytes(x));
    case Kind::kInteger: {
      if (!isReadableNumber(x)) return noAnswer();
      char c = static_cast<char>(termToInt64(x));
      return blobLeaf(std::string_view(&c, 1));
    }
    case Kind::kBracket: {
      std::string flat;
      return blobLeaf(data::innerText(x, flat));
    }
    case Kind::kOther: {
      std::string bytes;
      if (!byteTreeBytes(x, bytes)) return noAnswer();
      return blobLeaf(bytes);
    }
    default: return noAnswer();  // a vector or a numb
  }
}

// post address length: a blob of `length` bytes copied from host memory at
// `address`. The memory is not checked in any way.
Term handlePost(const Builtin&, const Args& args) {
  if (!isHostInteger(args[0]) || !isHostInteger(args[1])) return noAnswer();
  int64_t length = termToInt64(args[1]);
  const char* address = reinterpret_cast<const char*>(static_cast<intptr_t>(termToInt64(args[0])));
  // A negative length asks for more memory than any allocator has: the
  // program ends as on exhausted memory.
  TARN_ASSERT(length >= 0);
  return blobLeaf(std::string_view(address, size_t(length)));
}

// copy value address: writes the value's bytes at the address, with no NUL
// behind them, and gives I. A vector writes its element addresses, borrowed:
// no count is raised for them.
Term handleCopy(const Builtin&, const Args& args) {
  const Term& value = args[0];
  if (!isHostInteger(args[1])) return noAnswer();
  std::string owned;
  std::string_view bytes;
  switch (kindOf(value)) {
    case Kind::kBlob: bytes = blobBytes(value); break;
    case Kind::kReal: bytes = realBytes(value); break;
    case Kind::kVector:
      bytes = {reinterpret_cast<const char*>(value.node()->bytes()) + 1, 8 * size_t(value.node()->size())};
      break;
    case Kind::kBracket:
      bytes = data::innerText(value, owned);
      break;
    case Kind::kInteger:
    case Kind::kFraction:
      if (!isReadableNumber(value)) return noAnswer();
      owned = decimalText(value);
      bytes = owned;
      break;
    default: return noAnswer();
  }
  char* address = reinterpret_cast<char*>(static_cast<intptr_t>(termToInt64(args[1])));
  if (!bytes.empty()) std::memmove(address, bytes.data(), bytes.size());
  return leafByte('I');
}

// rank x: the size of x: bytes of a blob, 8 for a real, digits of a number
// (its sign digit included), elements of a vector, text bytes of bracket data
// less its two outer brackets. Z for anything else.
Term handleRank(const Builtin&, const Args& args) {
  const Term& x = args[0];
  switch (kindOf(x)) {
    case Kind::kBlob: return int64ToTerm(int64_t(blobBytes(x).size()));
    case Kind::kReal: return int64ToTerm(8);
    case Kind::kInteger:
    case Kind::kFraction:
      if (!isReadableNumber(x)) return noAnswer();
      return int64ToTerm(int64_t(x.isLeaf() ? leafLength(x.node()) : decimalText(x).size()));
    case Kind::kVector: return int64ToTerm(int64_t(x.node()->size()));
    case Kind::kBracket: return int64ToTerm(int64_t(bracketTextSum(x)) - 2);
    default: return noAnswer();
  }
}

}  // namespace tarn
