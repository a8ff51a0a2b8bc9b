// Leaf texts: source positions, the shapes of names, the byte table, bracket
// codes and the byte shorthand, and the bracket-tree view of literals.
//
// Contract: everything here is a pure function of its arguments or of tables
// built once per process and never changed. Malformed input is an internal
// fault (fatal assertion or internal failure), never a language error: the
// scanner has rejected malformed source before any of this runs.
//
// Bracket trees. A bracket literal is a binary tree in text form: "[]" is the
// empty tree, and any other list reads as the pair (all but its last element,
// its last element). Inside a literal a plain byte is an element too: the
// shorthand for the bracket list that the byte table pairs with it. Taking an
// element out expands the shorthand, putting one in contracts it, so lists of
// characters stay text. An application of two bracket values is the same tree
// not yet flattened.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "terms/term.h"

namespace tarn {

// ---- Positions and names ------------------------------------------------------

// Five alphabet digits, most significant first ("_____" is 0); the value
// 0x40000000 exactly is "!!!!!". Outside 0..0x40000000: fatal assertion.
std::string positionText(long position);

// A run of "_" and a-z, or one byte that is a control byte (1..31), a capital,
// a byte of 127 or more, or one of the 27 operator bytes.
bool isName(std::string_view text);
// As isName, but an operator byte only in its bracketed form "[op]".
bool isDefinableName(std::string_view text);
// The definable name with "[op]" reduced to op. Not definable: fatal assertion.
std::string_view plainName(std::string_view text);
// Exactly one byte, a to z.
bool isLocalLetter(std::string_view text);

// The 27 bytes that make one-byte operator names.
inline constexpr std::string_view kOperatorBytes = "{,}~!@#$%^&*<>-|+/=\\.`'\":;?";

// ---- The byte table -------------------------------------------------------------

// Index i of the two parallel tables holds a (class, glyph) pair, and the 256
// pairs denote the 256 byte values once each. Class 3: the byte is the glyph.
// Class 1: the glyph plus 128. Class 2: a fixed code over letters, digits and
// punctuation (see byteOfPair).
namespace detail {
constexpr std::array<uint8_t, 256> makeByteClass() {
  std::array<uint8_t, 256> t{};
  // Runs of 53 "2", 92 "3", 94 "1", 7 "2", 2 "3", 8 "2".
  const int runs[][2] = {{53, 2}, {92, 3}, {94, 1}, {7, 2}, {2, 3}, {8, 2}};
  int i = 0;
  for (const auto& run : runs)
    for (int k = 0; k < run[0]; k++) t[size_t(i++)] = uint8_t(run[1]);
  return t;
}
}  // namespace detail

inline constexpr std::array<uint8_t, 256> byteClass = detail::makeByteClass();
inline constexpr std::string_view byteGlyph =
    "0123456789ABCDEFGHIJKLMNOPQRUSTVWZXY~!@#$%^&*<>-|+/=__abcdefghijklmnopqrustvwzxy0123456789"
    "ABCDEFGHIJKLMNOPQRUSTVWZXY~!@#$%^&*<>-|+/=\\.`'\":;?(){},_abcdefghijklmnopqrustvwzxy01234567"
    "89ABCDEFGHIJKLMNOPQRUSTVWZXY~!@#$%^&*<>-|+/=\\.`'\":;?(){},[][](){},[]\\.`'\":;?";
static_assert(byteGlyph.size() == 256);

// The byte that a (class, glyph) pair denotes. A class-2 glyph outside the
// class-2 code is the internal failure "nopqchar".
unsigned char byteOfPair(uint8_t cls, unsigned char glyph);
// The byte denoted by table entry i.
unsigned char tableByte(int index);
// The table index whose pair denotes byte b (the inverse of tableByte).
int tableIndexOf(unsigned char b);

// ---- Bracket codes and the byte shorthand ------------------------------------

// The bracket text numbered n, 0 <= n <= 676 (n above: fatal assertion):
// "[]" for 0; otherwise the pair numbered n along the square shells, written
// as a list whose head is the second member and whose tail is the first.
std::string_view bracketCode(int n);

// The shorthand pairs: the byte of table entry i stands for
// bracketCode(i + 145). "[" and "]" have no shorthand.
// The bracket list of byte b; empty for "[" and "]".
std::string_view shorthandText(unsigned char b);
// The byte whose bracket list is `text`, or -1 when text is no such list.
int shorthandByte(std::string_view text);

// ---- Bracket trees ----------------------------------------------------------------

// All but the last element of a non-empty bracket value, and its last element
// (a one-byte element expanded to its list). An application gives its left or
// right child directly. The empty tree "[]": fatal assertion.
Term bracketLeft(const Term& t);
Term bracketRight(const Term& t);
// Texts of the same two parts of a bracket literal's text.
std::string bracketLeftText(std::string_view text);
std::string bracketRightText(std::string_view text);
// The list `left` with the element `right` appended; an element that has a
// one-byte shorthand is written as that byte.
std::string bracketJoin(std::string_view left, std::string_view right);
// The text of a bracket value: a leaf's own text, or the join of an
// application's flattened children. Works without native recursion, so
// trees of any depth flatten.
std::string flatten(const Term& t);

}  // namespace tarn
