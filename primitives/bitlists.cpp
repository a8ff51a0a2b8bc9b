// Opening values into lists and folding lists back: `lots` and `lits`.
//
// A bit list is K (empty) or J b rest, b being K for a 1 bit and H for a 0
// bit, lowest bit first: the list spelling of a number. `lots` opens a value
// into such a list (or, for bracket data, into a tree of applications);
// `lits` folds a list, or the bytes of a text, into a number.
#include <cstring>
#include <string>
#include <vector>

#include "numbers/bits.h"
#include "numbers/model.h"
#include "numbers/numb.h"
#include "primitives/builtins.h"
#include "primitives/data.h"
#include "runtime/annotate.h"
#include "terms/texts.h"

namespace tarn {

namespace {

using data::noAnswer;

// The list of a bit string: from the element below the sentinel down to
// element 0, each wrapped around the list so far, so element 0 is outermost.
// One leaf each of J, K and H serves every cell.
Term listOfBits(const BitString& bits) {
  Term j = leafByte('J'), one = leafByte('K'), zero = leafByte('H');
  Term list = one;
  size_t n = bitLength(bits);
  for (size_t i = n > 0 ? n - 1 : 0; i-- > 0;) list = App2(j, getBit(bits, i) ? one : zero, std::move(list));
  return list;
}

// The number N of a blob's bytes: with k trailing NUL bytes stripped and the
// rest read as x (first byte lowest), N = 2x, then k times N = 2N + 1, then
// N + 1; that is x * 2^(k+1) + 2^k. The NUL count survives as the place of
// N's lowest set bit; the empty blob gives 1, the empty list.
BitString blobNumber(std::string_view bytes) {
  size_t end = bytes.size();
  while (end > 0 && bytes[end - 1] == 0) end--;
  size_t k = bytes.size() - end;
  size_t shift = k + 1;
  BitString n((shift + 8 * end) / 8 + 1, char(0));
  setBit(n, k);
  for (size_t i = 0; i < 8 * end; i++)
    if ((static_cast<unsigned char>(bytes[i / 8]) >> (i % 8)) & 1) setBit(n, shift + i);
  stripZeros(n);
  return n;
}

// The opened form of a list text: "[]" stays a leaf; otherwise the list is
// the application of its opened left part to its opened last element, except
// that a list whose last element is a shorthand key (a character) is kept
// whole as text. Elements are found from the right, as the tree reads them.
Term openedText(std::string_view text) {
  if (text.size() <= 2) return leaf(text);
  std::vector<Term> rights;  // opened last elements, outermost first
  size_t end = text.size() - 1;  // the closing bracket of the part in hand
  Term base;
  while (end > 1) {
    size_t start = end - 1;
    if (text[start] == ']') {
      long depth = 0;
      for (;;) {
        if (text[start] == ']') depth++;
        else if (text[start] == '[') depth--;
        if (depth == 0) break;
        TARN_ASSERT(start > 1);
        start--;
      }
    }
    std::string_view element = text.substr(start, end - start);
    bool key = element.size() == 1 ? !shorthandText(static_cast<unsigned char>(element[0])).empty()
                                   : shorthandByte(element) >= 0;
    TARN_ASSERT(element.size() > 1 || key);  // a bare bracket is no element
    if (key) {
      std::string part(text.substr(0, end));
      part.push_back(']');
      base = leaf(part);
      break;
    }
    rights.push_back(openedText(element));
    end = start;
  }
  if (!base) base = leaf("[]");
  for (size_t i = rights.size(); i-- > 0;) base = App(std::move(base), std::move(rights[i]));
  return base;
}

// The opened form of bracket data; an application is split at its children.
Term openedTree(const Term& t) {
  std::vector<Term> rights;
  const Term* cur = &t;
  Term base;
  while (cur->isApp()) {
    if (shorthandByte(flatten(cur->right())) >= 0) {
      base = leaf(flatten(*cur));
      break;
    }
    rights.push_back(openedTree(cur->right()));
    cur = &cur->left();
  }
  if (!base) base = openedText(textOf(*cur));
  for (size_t i = rights.size(); i-- > 0;) base = App(std::move(base), std::move(rights[i]));
  return base;
}

// The first 8 bytes of a text (fewer if it is shorter), first byte lowest, as
// a signed 64-bit integer.
Term leadingInteger(std::string_view bytes) {
  uint64_t v = 0;
  size_t n = bytes.size() < 8 ? bytes.size() : 8;
  for (size_t i = 0; i < n; i++) v |= uint64_t(static_cast<unsigned char>(bytes[i])) << (8 * i);
  return int64ToTerm(static_cast<int64_t>(v));
}

// The walk of `lits` over a list: cells J b rest with b the leaf H or K, ended
// by K or continued by a digit leaf. A malformed cell reads as the empty
// number K on purpose; any other final leaf gives Z.
Term foldList(const Term& t) {
  if (t.isLeaf() && isDigit(t.first())) return t;  // a number is its own fold
  BitString bits(1, char(1));
  size_t end = 0;  // index of the sentinel
  const Term* cur = &t;
  while (cur->isApp()) {
    if (!data::isJCell(*cur) || !data::isTruth(cur->left().right())) return leafByte('K');
    setBit(bits, end, isByteLeaf(cur->left().right(), 'K'));
    setBit(bits, ++end);
    cur = &cur->right();
  }
  if (isDigit(cur->first())) {
    // The digit leaf's list follows the collected elements.
    BitString tail = bitsFromText(textOf(*cur));
    size_t n = bitLength(tail);
    setBit(bits, end, false);
    for (size_t i = 0; i + 1 < n; i++)
      if (getBit(tail, i)) setBit(bits, end + i);
    setBit(bits, end + n - 1);
  } else if (!isByteLeaf(*cur, 'K')) {
    return noAnswer();
  }
  return numberFromBits(bits);
}

}  // namespace

// lots x: x opened into a bit list (blobs, reals, numbers) or a tree of
// applications (bracket data); K stays K; Z for anything else.
Term handleLots(const Builtin&, const Args& args) {
  const Term& x = args[0];
  switch (kindOf(x)) {
    case Kind::kBlob: return listOfBits(blobNumber(blobBytes(x)));
    case Kind::kReal: {
      // The 64 bits of the double, lowest first, and the sentinel above them.
      BitString bits(9, char(0));
      std::memcpy(bits.data(), x.node()->bytes() + 1, 8);
      bits[8] = 1;
      return listOfBits(bits);
    }
    case Kind::kInteger:
    case Kind::kFraction:
      if (x.isApp()) return x;  // already a list
      return listOfBits(bitsOf(x));
    case Kind::kBracket: return openedTree(x);
    default: return isByteLeaf(x, 'K') ? x : noAnswer();
  }
}

// lits x: x folded into a number: a list by its walk, a text by its first
// eight bytes, a real by its exact value. Z for functions and the like.
Term handleLits(const Builtin&, const Args& args) {
  const Term& x = args[0];
  switch (kindOf(x)) {
    case Kind::kOther: return noAnswer();
    case Kind::kReal: return realToNumb(realValue(x));
    case Kind::kBracket: {
      std::string flat;
      return leadingInteger(data::innerText(x, flat));
    }
    case Kind::kBlob: return leadingInteger(blobBytes(x));
    default: return foldList(x);  // integers, numbs and vectors
  }
}

}  // namespace tarn
