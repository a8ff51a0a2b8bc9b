// The prelude, the compile step and the main term.
//
// A program text is a main expression, then definitions, all separated by
// commas outside brackets. A definition is a piece that parses to the binder
// shape ((\ P) rest): P is the name (plain form), or the name applied to the
// empty-text leaf "}" (the call form, written name()\...). The definition
// keeps its parameter binders in `rest`, so a name's arity is the count of
// its leading binders, for builtin stubs and definitions alike.
#include "frontend/compile.h"

#include <string>
#include <vector>

#include "terms/failure.h"
#include "frontend/grammar.h"
#include "frontend/scan.h"
#include "runtime/globals.h"
#include "terms/texts.h"

namespace tarn {

namespace {

// The prelude: the capitals as combinators, the operators bound to builtins
// or combinators, logic over K (true) and H (false), and the reserved stubs
// of backslash and "{". The layout space in the "!" entry is normalised away.
constexpr std::string_view kPrelude =
    ",A\\a\\aS BKK,B\\a\\b\\c\\a b(c),C\\a\\b\\c\\a c b,D\\a\\b\\c\\d\\a b c(d)"
    ",E\\a\\b\\c\\d\\e\\a b c(d)e,F\\a\\b\\Vb a,G\\a\\VZ(BW BC DDV V(XJ)),H\\a\\I,I\\a\\a"
    ",J\\a\\b\\c\\Va b,K\\a\\b\\a,L\\a\\aK K(KH),M\\a\\a a,N\\a\\K,O\\a\\b\\b a(b)"
    ",P\\a\\a XS I,Q\\a\\aZK,R\\a\\aZH,U\\a\\b\\c\\d\\e\\e(Va b,Vc d)"
    ",S\\a\\b\\c\\a c b(c),T\\a\\b\\b a,V\\a\\b\\c\\c a b,W\\a\\b\\a b b,Z\\a\\Z"
    ",X\\a\\b\\c\\d\\Vb a(d)c,Y\\a\\b\\a Ya b,[\\]\\a\\b\\c\\Z,[{]\\a\\b\\c\\Z,[`]\\a\\Z"
    ",[!]\\p\\   p H K,[&]\\q\\r\\q r H,[|]\\q\\r\\q K r,[+]\\plus,[-]\\dash,[*]\\mult"
    ",[/]\\over,[%]\\cent,[^]\\powa,[<]\\less,[>]\\gteq,[=]\\same,[#]\\diff,[$]\\buck"
    ",[~]\\wave,[.]\\T,[@]\\T,[:]\\I,[?]\\I,[;]\\I,[']\\I,[\"]\\I,[,]\\I";

// The parts of a piece that has the binder shape ((\ P) rest).
struct Binder {
  const Term* pattern;
  const Term* rest;
};
bool asBinder(const Term& t, Binder& out) {
  if (!t.isApp() || !t.left().isApp() || !textIs(t.left().left(), "\\")) return false;
  out = {&t.left().right(), &t.right()};
  return true;
}

// A builtin's stub: ((\ a) ((\ b) ... Z)) with one binder per argument, so
// that its arity reads like a definition's.
Term builtinStub(int arity) {
  Term stub = leafByte('Z');
  for (int i = arity - 1; i >= 0; i--)
    stub = App2(leafByte('\\'), leafByte(static_cast<unsigned char>('a' + i)), std::move(stub));
  return stub;
}

// The pieces behind each comma of a normalised text, as [begin, end).
struct Piece {
  size_t begin, end;
};
std::vector<Piece> piecesAfterCommas(std::string_view text, const std::vector<long>& commas) {
  std::vector<Piece> pieces;
  for (size_t k = 0; k < commas.size(); k++)
    pieces.push_back({size_t(commas[k]) + 1, k + 1 < commas.size() ? size_t(commas[k + 1]) : text.size()});
  return pieces;
}

// Reads the definition of one piece. Returns false with the report filled
// when the name may not be defined; a piece that is no definition of a
// definable name adds nothing.
bool define(std::string_view text, Piece piece, BuiltWording wording, ProgramText& out) {
  Term t = parseExpression(text.substr(piece.begin, piece.end - piece.begin));
  Binder binder;
  if (!asBinder(t, binder)) return true;
  const Term& pattern = *binder.pattern;
  bool callForm = pattern.isApp();
  if (callForm && !textIs(pattern.right(), "}")) return true;
  std::string_view written = textOf(callForm ? pattern.left() : pattern);
  if (!isDefinableName(written)) return true;
  std::string_view name = plainName(written);

  bool lower = name.size() == 1 && isLower(static_cast<unsigned char>(name[0]));
  if (lower || name == "\\" || name == "{" || findBuiltin(name)) {
    Report& report = out.report;
    size_t first = piece.begin;  // the piece's first byte that is not a space
    while (first < piece.end && text[first] == ' ') first++;
    report.vip = positionText(long(first));
    report.tip = shortName(name);
    if (lower) {
      report.say = "Single lowercase letters (" + std::string(name) +
                   ") cannot be defined as global variables.";
      report.tag = "lower";
    } else {
      report.say = wording == BuiltWording::kBracketed
                       ? "Built in function [" + std::string(name) + "] cannot be re-defined."
                       : "Built in function " + std::string(name) + " cannot be re-defined.";
      report.tag = "built";
    }
    return false;
  }
  // A call form is wrapped in I and never memoised; a plain form drops the mark.
  Term body = callForm ? App(leafByte('I'), *binder.rest) : *binder.rest;
  out.definitions.push_back({std::string(name), std::move(body), callForm});
  return true;
}

}  // namespace

void loadPrelude() {
  clearGlobals();
  clearCallForms();
  clearPreludeGlobals();
  std::string text = normalise(kPrelude);
  for (Piece piece : piecesAfterCommas(text, splitPoints(text, ","))) {
    Term t = parseExpression(std::string_view(text).substr(piece.begin, piece.end - piece.begin));
    Binder binder;
    TARN_ASSERT(asBinder(t, binder));
    setGlobal(plainName(textOf(*binder.pattern)), *binder.rest);
  }
  snapshotPreludeGlobals();
}

ProgramText readProgramText(std::string_view text, BuiltWording wording) {
  ProgramText out;
  std::vector<long> commas = splitPoints(text, ",");
  size_t mainEnd = commas.empty() ? text.size() : size_t(commas[0]);
  out.main = parseExpression(text.substr(0, mainEnd));
  for (Piece piece : piecesAfterCommas(text, commas))
    if (!define(text, piece, wording, out)) break;
  return out;
}

Report compile(std::string_view source) {
  Report report;
  long position = 0;
  if (!checkStructure(source, report, position)) return report;
  for (const Builtin& b : builtinTable()) setGlobal(b.name, builtinStub(b.arity));

  std::string text = normalise(source);
  ProgramText program = readProgramText(text, BuiltWording::kBracketed);
  setGlobal("", std::move(program.main));
  for (PieceDefinition& d : program.definitions) {
    setGlobal(d.name, std::move(d.body));
    setCallForm(d.name, d.callForm);
  }
  return std::move(program.report);
}

Term mainTerm() {
  const Term* entry = findGlobal("");
  TARN_ASSERT(entry != nullptr);
  return *entry;
}

}  // namespace tarn
