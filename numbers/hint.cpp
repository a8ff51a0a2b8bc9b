// Integer arithmetic on Terms. Short operands (the texts of up to 18 bytes,
// whose values fit a machine word with room for a sum) are worked on as
// int64 and their result written into a new leaf; everything else goes to
// the decimal core, which writes the result text straight into its leaf.
#include "numbers/hint.h"

#include <cstdlib>
#include <string>

#include "terms/failure.h"
#include "numbers/bignum/decimal.h"
#include "numbers/model.h"

namespace tarn {

namespace {

// Texts of at most this many bytes, the sign byte included, have at most 18
// digits: their values and the sum or difference of two of them fit in int64.
constexpr size_t kShortText = 18;

// The value of a short hint leaf; false for anything else (a long text, the
// leaf K, a cell spelling), which takes the general path.
inline bool shortValue(const Term& t, int64_t& v) {
  const Node* n = t.node();
  if (!n->isLeaf()) return false;
  const unsigned char* s = n->bytes();
  if (!isDigit(s[0])) return false;
  size_t len = n->size();  // a number leaf this short always has its size
  if (len == 0 || len > kShortText) return false;
  bool negative = len > 1 && s[0] == '0';
  uint64_t m = 0;
  for (size_t i = negative; i < len; i++) m = m * 10 + unsigned(s[i] - '0');
  v = negative ? -int64_t(m) : int64_t(m);
  return true;
}

Term shortLeaf(int64_t v) {
  char buf[24];
  size_t n = writeSmallHint(v, buf);
  return leaf(std::string_view(buf, n));
}

// The text of an integer operand: a leaf's own text, read in place, or the
// canonical text of a cell spelling, held here.
class HintText {
 public:
  explicit HintText(const Term& t) {
    TARN_ASSERT(isHostInteger(t));
    if (t.isLeaf()) {
      view_ = textOf(t);
    } else {
      owned_ = numberText(t);
      view_ = owned_;
    }
  }
  HintText(const HintText&) = delete;
  HintText& operator=(const HintText&) = delete;
  std::string_view view() const { return view_; }

 private:
  std::string owned_;
  std::string_view view_;
};

// A sink that makes the result leaf at the length the core asks for, so the
// digits are written once, in place.
struct LeafSink {
  Term result;
  size_t length = 0;

  TextSink sink() {
    auto room = [](void* context, size_t n) {
      auto* self = static_cast<LeafSink*>(context);
      self->result = rawLeaf(n);
      self->length = n;
      return reinterpret_cast<char*>(rawBytes(self->result));
    };
    return {room, this};
  }
  Term take() {
    sealLeaf(result, length);
    return std::move(result);
  }
};

Term noAnswer() { return leafByte('Z'); }

// A product leaf is born annotated with arity +2; zero stays an ordinary leaf.
Term asProduct(Term t) {
  if (!isByteLeaf(t, '0')) t.node()->setTop(header::kProductLeafTop);
  return t;
}

}  // namespace

Term hintPlus(const Term& x, const Term& y) {
  int64_t a, b;
  if (shortValue(x, a) && shortValue(y, b)) [[likely]] return shortLeaf(a + b);
  HintText tx(x), ty(y);
  LeafSink out;
  hintAddInto(tx.view(), ty.view(), out.sink());
  return out.take();
}

Term hintDash(const Term& x, const Term& y) {
  int64_t a, b;
  if (shortValue(x, a) && shortValue(y, b)) [[likely]] return shortLeaf(a - b);
  HintText tx(x), ty(y);
  LeafSink out;
  hintSubInto(tx.view(), ty.view(), out.sink());
  return out.take();
}

Term hintMult(const Term& x, const Term& y) {
  int64_t a, b, p;
  if (shortValue(x, a) && shortValue(y, b) && !__builtin_mul_overflow(a, b, &p)) [[likely]]
    return asProduct(shortLeaf(p));
  HintText tx(x), ty(y);
  LeafSink out;
  hintMulInto(tx.view(), ty.view(), out.sink());
  return asProduct(out.take());
}

// q = floor(x / y): the truncated quotient, one lower when the signs differ
// and the division is not exact. Zero divisor: no answer.
Term hintOver(const Term& x, const Term& y) {
  int64_t a, b;
  if (shortValue(x, a) && shortValue(y, b)) [[likely]] {
    if (b == 0) return noAnswer();
    int64_t q = a / b;
    if (a % b != 0 && (a < 0) != (b < 0)) q--;
    return shortLeaf(q);
  }
  if (hintIsZero(y)) return noAnswer();
  HintText tx(x), ty(y);
  LeafSink out;
  if (!hintOverInto(tx.view(), ty.view(), out.sink())) return noAnswer();
  return out.take();
}

// r = |x| mod |y| for equal signs, |y| - r (0 when r is 0) for differing
// signs, zero counting as positive. Zero divisor: no answer.
Term hintCent(const Term& x, const Term& y) {
  int64_t a, b;
  if (shortValue(x, a) && shortValue(y, b)) [[likely]] {
    if (b == 0) return noAnswer();
    int64_t ma = a < 0 ? -a : a, mb = b < 0 ? -b : b;
    int64_t r = ma % mb;
    if ((a < 0) != (b < 0) && r != 0) r = mb - r;
    return shortLeaf(r);
  }
  if (hintIsZero(y)) return noAnswer();
  HintText tx(x), ty(y);
  LeafSink out;
  if (!hintCentInto(tx.view(), ty.view(), out.sink())) return noAnswer();
  return out.take();
}

Term hintPowa(const Term& x, const Term& y) {
  HintText tx(x), ty(y);
  LeafSink out;
  hintPowaInto(tx.view(), ty.view(), out.sink());
  return out.take();
}

bool hintLess(const Term& x, const Term& y) {
  int64_t a, b;
  if (shortValue(x, a) && shortValue(y, b)) [[likely]] return a < b;
  HintText tx(x), ty(y);
  return hintLessText(tx.view(), ty.view());
}

bool hintGreaterEq(const Term& x, const Term& y) {
  int64_t a, b;
  if (shortValue(x, a) && shortValue(y, b)) [[likely]] return a >= b;
  HintText tx(x), ty(y);
  return hintGreaterEqText(tx.view(), ty.view());
}

bool hintSame(const Term& x, const Term& y) {
  HintText tx(x), ty(y);
  return tx.view() == ty.view();
}

// strtod rounds correctly and symmetrically, so the magnitude is converted
// and negated: the same double as the text with "-" in front.
double hintToReal(const Term& x) {
  HintText tx(x);
  std::string_view s = tx.view();
  bool negative = s.size() > 1 && s[0] == '0';
  // A leaf's text and a std::string both end in a NUL, so strtod can read
  // the digits where they are.
  double v = std::strtod(s.data() + (negative ? 1 : 0), nullptr);
  return negative ? -v : v;
}

}  // namespace tarn
