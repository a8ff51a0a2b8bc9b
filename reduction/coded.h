// Coded data: how compact leaves look to the language when they are opened,
// and the readers that turn a fully coded term back into bytes or a datum.
//
// Coded shapes: K ends a list (and is the empty tree); (J a b) is a cell; a
// byte is a three-level tree of J nodes over eight leaves I (1) or H (0),
// lowest bit first; a real is a six-level tree of V nodes over 64 leaves K (1)
// or H (0). All functions build fresh nodes and change nothing.
#pragma once

#include <string>
#include <string_view>

#include "terms/term.h"

namespace tarn {

// The whole datum as (J left right) cells ending in K.
Term encodeData(const Term& data);
// First element of a number's list: H for a text starting "00", else K.
Term numberHead(std::string_view text);
// The rest of a number's list: K for a one-element list, else a number leaf.
Term numberTail(std::string_view text);
// The first m bytes (m the largest power of two below the count) and the rest.
Term blobFront(const Term& blob);
Term blobBack(const Term& blob);
// A one-byte blob as an opened byte: the byte tree with V at the top.
Term byteTree(const Term& blob);
// A real leaf as its tree of 64 truth values.
Term realTree(const Term& real);

bool isByteTree(const Term& t);
int byteValue(const Term& t);
bool isCodedText(const Term& t);
std::string codedText(const Term& t);  // after isCodedText has held
// The bracket literal a coded tree spells, or the leaf Z.
Term codedData(const Term& t);

}  // namespace tarn
