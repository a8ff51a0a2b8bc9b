// The six arithmetic operators, each a table over the kinds of its operands,
// tested from the top. Two integer leaves, by far the most common pair, are
// recognised before any classification.
#include "numbers/operators.h"

#include <cmath>

#include "numbers/hint.h"
#include "numbers/model.h"
#include "numbers/numb.h"
#include "numbers/operands.h"
#include "runtime/annotate.h"

namespace tarn {

namespace {

enum class Op { kPlus, kDash, kMult, kOver, kCent, kPowa };

Term noAnswer() { return leafByte('Z'); }

double hostReal(Op op, double a, double b) {
  switch (op) {
    case Op::kPlus: return a + b;
    case Op::kDash: return a - b;
    case Op::kMult: return a * b;
    case Op::kOver: return a / b;
    case Op::kCent: return std::fmod(a, b);
    case Op::kPowa: return std::pow(a, b);
  }
  TARN_FAIL();
}

// Numeric operands of differing kinds (or a vector opposite a number, which
// no table row took). A real on either side, or a division or power: both
// become doubles. Otherwise an integer meets a numb: the integer becomes a
// numb and the exact numb operation runs; a vector there fails its form
// assertion.
Term promote(Op op, const Term& x, Kind kx, const Term& y, Kind ky) {
  if (kx == Kind::kReal || ky == Kind::kReal || op == Op::kOver || op == Op::kPowa) {
    double a = toReal(x);
    double b = toReal(y);
    return realLeaf(hostReal(op, a, b));
  }
  Term nx = kx == Kind::kInteger ? hintToNumb(x) : x;
  Term ny = ky == Kind::kInteger ? hintToNumb(y) : y;
  switch (op) {
    case Op::kPlus: return numbPlus(nx, ny);
    case Op::kDash: return numbDash(nx, ny);
    case Op::kMult: return numbMult(nx, ny);
    case Op::kCent: return numbCent(nx, ny);
    default: TARN_FAIL();
  }
}

// A join of two operands' texts, into a blob or a bracket literal.
Term joinTexts(bool blob, const Term& x, Kind kx, const Term& y, Kind ky) {
  OperandBytes a(x, kx), b(y, ky);
  return textJoin(blob, a.view(), b.view());
}


// Text and vector operands whose pair no row took: no answer. Shared by the
// tails of the tables of dash, mult, over, cent and powa.
inline bool textWithOther(Kind kx, Kind ky) { return isTextKind(kx) || isTextKind(ky); }

}  // namespace

Term valuePlus(const Term& x, const Term& y) {
  if (isHintLeaf(x) && isHintLeaf(y)) [[likely]] return hintPlus(x, y);
  Kind kx = kindOf(x), ky = kindOf(y);
  if (kx == Kind::kOther || ky == Kind::kOther) return noAnswer();
  if (kx == Kind::kVector && ky == Kind::kVector) return vectorJoin(x, y);
  if (kx == Kind::kVector || ky == Kind::kVector) return noAnswer();
  if (kx == ky) {
    switch (kx) {
      case Kind::kBlob: return joinTexts(true, x, kx, y, ky);
      case Kind::kBracket: return joinTexts(false, x, kx, y, ky);
      case Kind::kReal: return realLeaf(realValue(x) + realValue(y));
      case Kind::kInteger: return hintPlus(x, y);
      case Kind::kFraction: return numbPlus(x, y);
      default: return leaf("69");  // no kind reaches this
    }
  }
  // A blob wins over a bracket literal; a number stands as its text.
  if (kx == Kind::kBlob || ky == Kind::kBlob) return joinTexts(true, x, kx, y, ky);
  if (kx == Kind::kBracket || ky == Kind::kBracket) return joinTexts(false, x, kx, y, ky);
  return promote(Op::kPlus, x, kx, y, ky);
}

Term valueDash(const Term& x, const Term& y) {
  if (isHintLeaf(x) && isHintLeaf(y)) [[likely]] return hintDash(x, y);
  Kind kx = kindOf(x), ky = kindOf(y);
  if (kx == Kind::kOther || ky == Kind::kOther) return noAnswer();
  if (ky == Kind::kInteger) {
    switch (kx) {
      case Kind::kBlob: return textRemove(true, blobBytes(x), termToInt64(y));
      case Kind::kVector: return vectorRemove(x, termToInt64(y));
      case Kind::kBracket: {
        OperandBytes interior(x, kx);
        return textRemove(false, interior.view(), termToInt64(y));
      }
      default: break;
    }
  }
  if (kx == ky) {
    switch (kx) {
      case Kind::kReal: return realLeaf(realValue(x) - realValue(y));
      case Kind::kInteger: return hintDash(x, y);
      case Kind::kFraction: return numbDash(x, y);
      case Kind::kBracket: return App(x, y);  // two data terms are paired, not joined
      default: return noAnswer();
    }
  }
  if (textWithOther(kx, ky)) return noAnswer();
  return promote(Op::kDash, x, kx, y, ky);
}

Term valueMult(const Term& x, const Term& y) {
  if (isHintLeaf(x) && isHintLeaf(y)) [[likely]] return hintMult(x, y);
  Kind kx = kindOf(x), ky = kindOf(y);
  // The number goes to the right of a text or vector.
  if (kx == Kind::kInteger && (ky == Kind::kBlob || ky == Kind::kVector || ky == Kind::kBracket)) return valueMult(y, x);
  if (kx == Kind::kOther || ky == Kind::kOther) return noAnswer();
  if (ky == Kind::kInteger) {
    switch (kx) {
      case Kind::kBlob: return textRepeat(true, blobBytes(x), termToInt64(y));
      case Kind::kVector: return vectorRepeat(x, termToInt64(y));
      case Kind::kBracket: {
        OperandBytes interior(x, kx);
        return textRepeat(false, interior.view(), termToInt64(y));
      }
      default: break;
    }
  }
  if (kx == ky) {
    switch (kx) {
      case Kind::kReal: return realLeaf(realValue(x) * realValue(y));
      case Kind::kInteger: return hintMult(x, y);
      case Kind::kFraction: return numbMult(x, y);
      default: return noAnswer();
    }
  }
  if (textWithOther(kx, ky)) return noAnswer();
  return promote(Op::kMult, x, kx, y, ky);
}

// The vector rows come before the row of the w operands: any value extends a
// vector, the leaf U as an empty slot.
Term valueOver(const Term& x, const Term& y) {
  if (isHintLeaf(x) && isHintLeaf(y)) [[likely]] return hintOver(x, y);
  Kind kx = kindOf(x);
  if (kx == Kind::kVector) return x.node()->size() < 0x3ffffff ? vectorExtendBack(x, y) : noAnswer();
  Kind ky = kindOf(y);
  if (kx == Kind::kOther || ky == Kind::kOther) return noAnswer();
  if (kx == ky) {
    switch (kx) {
      case Kind::kReal: return realLeaf(realValue(x) / realValue(y));  // the host's infinities and NaNs
      case Kind::kInteger: return hintOver(x, y);
      default: return noAnswer();  // numbs have no division
    }
  }
  if (textWithOther(kx, ky)) return noAnswer();
  return promote(Op::kOver, x, kx, y, ky);
}

Term valueCent(const Term& x, const Term& y) {
  if (isHintLeaf(x) && isHintLeaf(y)) [[likely]] return hintCent(x, y);
  Kind ky = kindOf(y);
  if (ky == Kind::kVector) return y.node()->size() < 0x3ffffff ? vectorExtendFront(x, y) : noAnswer();
  Kind kx = kindOf(x);
  if (kx == Kind::kOther || ky == Kind::kOther) return noAnswer();
  if (kx == ky) {
    switch (kx) {
      case Kind::kReal: return realLeaf(std::fmod(realValue(x), realValue(y)));
      case Kind::kInteger: return hintCent(x, y);
      case Kind::kFraction: return numbCent(x, y);
      default: return noAnswer();
    }
  }
  if (textWithOther(kx, ky)) return noAnswer();
  return promote(Op::kCent, x, kx, y, ky);
}

// Unlike over, the extension at the back has no size check of its own.
Term valuePowa(const Term& x, const Term& y) {
  Kind kx = kindOf(x);
  if (kx == Kind::kVector) return vectorExtendBack(x, y);
  Kind ky = kindOf(y);
  if (kx == Kind::kOther || ky == Kind::kOther) return noAnswer();
  if (kx == Kind::kFraction && ky == Kind::kInteger) return numbPowa(x, y);
  if (kx == ky) {
    switch (kx) {
      case Kind::kReal: return realLeaf(std::pow(realValue(x), realValue(y)));
      case Kind::kInteger: return hintPowa(x, y);
      default: return noAnswer();  // numb to a numb too
    }
  }
  if (textWithOther(kx, ky)) return noAnswer();
  return promote(Op::kPowa, x, kx, y, ky);
}

}  // namespace tarn
