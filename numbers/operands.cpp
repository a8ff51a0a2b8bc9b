// Operand texts, the double of a numeric operand, and the new texts and
// vectors that the operators build. Results are made at their final size and
// filled in place: a join or a repetition copies each byte once.
#include "numbers/operands.h"

#include <cstdio>
#include <cstring>

#include "terms/failure.h"
#include "numbers/hint.h"
#include "numbers/model.h"
#include "numbers/numb.h"
#include "runtime/annotate.h"
#include "terms/alphabet.h"
#include "terms/texts.h"

namespace tarn {

namespace {

Term noAnswer() { return leafByte('Z'); }

// A text leaf of n content bytes, for the caller to fill at `payload`: a blob
// ("(", the count in alphabet digits, ")", bytes) or a bracket literal ("[",
// bytes, "]"). A count too large for any memory makes the allocator fail.
Term rawText(bool blob, size_t n, unsigned char*& payload) {
  if (blob) {
    std::string count = alphabetNumber(n);
    Term t = rawLeaf(2 + count.size() + n);
    unsigned char* p = rawBytes(t);
    p[0] = '(';
    std::memcpy(p + 1, count.data(), count.size());
    p[1 + count.size()] = ')';
    payload = p + 2 + count.size();
    return t;
  }
  Term t = rawLeaf(n + 2);
  unsigned char* p = rawBytes(t);
  p[0] = '[';
  p[n + 1] = ']';
  payload = p + 1;
  return t;
}

// Records the length of a bracket literal in its size field (blobs carry
// their length in their header).
Term sealed(bool blob, Term t, size_t n) {
  if (!blob) sealLeaf(t, n + 2);
  return t;
}

Term textOfBytes(bool blob, std::string_view bytes) {
  unsigned char* p;
  Term t = rawText(blob, bytes.size(), p);
  if (!bytes.empty()) std::memcpy(p, bytes.data(), bytes.size());
  return sealed(blob, std::move(t), bytes.size());
}

// A new vector of n slots whose slot `to + i` shares element `from + i` of
// x, for i below `count`.
void copyElements(const Term& into, size_t to, const Term& x, size_t from, size_t count) {
  for (size_t i = 0; i < count; i++) {
    if (Node* e = x.node()->element(from + i)) setElement(into, to + i, Term::share(e));
  }
}

// The element that an extension adds: the leaf "U" makes an empty slot.
void putExtension(const Term& into, size_t at, const Term& e) {
  if (!isByteLeaf(e, 'U')) setElement(into, at, e);
}

}  // namespace

OperandBytes::OperandBytes(const Term& t, Kind kind) {
  switch (kind) {
    case Kind::kBlob:
      view_ = blobBytes(t);
      return;
    case Kind::kBracket:
      if (t.isLeaf()) {
        std::string_view s = textOf(t);
        view_ = s.substr(1, s.size() - 2);
      } else {
        owned_ = flatten(t);
        view_ = std::string_view(owned_).substr(1, owned_.size() - 2);
      }
      return;
    case Kind::kInteger:
    case Kind::kFraction:
      if (t.isLeaf()) {
        view_ = textOf(t);
      } else {
        owned_ = numberText(t);
        view_ = owned_;
      }
      return;
    case Kind::kReal: {
      char buf[100];
      int n = std::snprintf(buf, sizeof buf, "%e", realValue(t));
      owned_.assign(buf, size_t(n));
      view_ = owned_;
      return;
    }
    default:
      TARN_FAIL();
  }
}

double toReal(const Term& t) {
  switch (kindOf(t)) {
    case Kind::kReal: return realValue(t);
    case Kind::kInteger: return hintToReal(t);
    case Kind::kFraction: return numbToReal(t);
    default: internalFailure("truecast");
  }
}

// ---- Texts ---------------------------------------------------------------------------

Term textJoin(bool blob, std::string_view a, std::string_view b) {
  unsigned char* p;
  Term t = rawText(blob, a.size() + b.size(), p);
  if (!a.empty()) std::memcpy(p, a.data(), a.size());
  if (!b.empty()) std::memcpy(p + a.size(), b.data(), b.size());
  return sealed(blob, std::move(t), a.size() + b.size());
}

Term textRemove(bool blob, std::string_view bytes, int64_t n) {
  uint64_t m = n < 0 ? 0 - uint64_t(n) : uint64_t(n);
  uint64_t len = bytes.size();
  if (m == len) return textOfBytes(blob, {});
  if (m > len) return noAnswer();
  // From the front for a positive count, from the back otherwise.
  return textOfBytes(blob, n >= 1 ? bytes.substr(m) : bytes.substr(0, len - m));
}

Term textRepeat(bool blob, std::string_view bytes, int64_t n) {
  if (n < 0) return noAnswer();
  size_t total;
  // A length past any memory asks the allocator for everything, and it fails.
  if (__builtin_mul_overflow(bytes.size(), uint64_t(n), &total)) total = ~size_t(0) >> 2;
  unsigned char* p;
  Term t = rawText(blob, total, p);
  // Doubling: each round copies everything written so far.
  size_t done = 0;
  if (total > 0) {
    std::memcpy(p, bytes.data(), bytes.size());
    done = bytes.size();
    while (done < total) {
      size_t chunk = done <= total - done ? done : total - done;
      std::memcpy(p + done, p, chunk);
      done += chunk;
    }
  }
  return sealed(blob, std::move(t), total);
}

// ---- Vectors ----------------------------------------------------------------------------

Term vectorJoin(const Term& x, const Term& y) {
  size_t sx = x.node()->size(), sy = y.node()->size();
  if (sx + sy >= header::kSizeLimit) return noAnswer();
  Term v = vectorLeaf(sx + sy);
  copyElements(v, 0, x, 0, sx);
  copyElements(v, sx, y, 0, sy);
  return v;
}

Term vectorRemove(const Term& x, int64_t n) {
  uint64_t m = n < 0 ? 0 - uint64_t(n) : uint64_t(n);
  size_t len = x.node()->size();
  if (m > len) return noAnswer();
  size_t keep = len - size_t(m);
  Term v = vectorLeaf(keep);
  // A positive count drops the last elements, any other count the first.
  copyElements(v, 0, x, n > 0 ? 0 : size_t(m), keep);
  return v;
}

Term vectorRepeat(const Term& x, int64_t n) {
  if (n < 0) return noAnswer();
  size_t len = x.node()->size();
  size_t total;
  // A count past the size field is the fatal assertion of vectorLeaf.
  if (__builtin_mul_overflow(len, uint64_t(n), &total)) total = header::kSizeLimit;
  Term v = vectorLeaf(total);
  for (size_t at = 0; at < total; at += len) copyElements(v, at, x, 0, len);
  return v;
}

Term vectorExtendBack(const Term& x, const Term& e) {
  size_t len = x.node()->size();
  Term v = vectorLeaf(len + 1);
  copyElements(v, 0, x, 0, len);
  putExtension(v, len, e);
  return v;
}

Term vectorExtendFront(const Term& e, const Term& x) {
  size_t len = x.node()->size();
  Term v = vectorLeaf(len + 1);
  putExtension(v, 0, e);
  copyElements(v, 1, x, 0, len);
  return v;
}

}  // namespace tarn
