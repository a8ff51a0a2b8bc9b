// Definition passes over raw definition bodies.
//
// The read-only walks (funky keys, references, binding occurrences) recurse
// on the left child and loop on the right, so a long right-leaning list
// costs them no native stack. The rewriting walks recurse on both children,
// one small frame per level: the interpreter runs on a large stack.
#include "checks/passes.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "terms/failure.h"
#include "runtime/annotate.h"
#include "reduction/machine.h"
#include "reduction/printer.h"
#include "terms/texts.h"

namespace tarn {

std::string_view nameText(const Term& t) {
  if (t.isApp() || t.first() == '\n') return {};
  return textOf(t);
}

std::string_view boundName(const Term& p) {
  std::string_view text = nameText(p);
  return isDefinableName(text) ? plainName(text) : text;
}

namespace {

// ((({ p) w) y) parts, for a term whose spineShape is a wing.
inline const Term& wingHead(const Term& t) { return t.left().left().left(); }
inline const Term& wingPattern(const Term& t) { return t.left().left().right(); }
inline const Term& wingValue(const Term& t) { return t.left().right(); }
// ((\ p) b) parts, for a term whose spineShape is a binder.
inline const Term& binderPattern(const Term& t) { return t.left().right(); }

inline bool isDefinableLeaf(const Term& t) { return t.isLeaf() && isDefinableName(nameText(t)); }

// The application (l r) that replaces t, or t itself when both parts are the
// nodes it already has.
inline Term rebuilt(const Term& t, Term l, Term r) {
  if (l.same(t.left()) && r.same(t.right())) return t;
  return App(std::move(l), std::move(r));
}

}  // namespace

// ---- Pair wings -------------------------------------------------------------

Term expandPairWings(const Term& t) {
  if (t.isLeaf()) return t;
  Term l = expandPairWings(t.left());
  Term r = expandPairWings(t.right());
  Term u = rebuilt(t, std::move(l), std::move(r));
  if (spineShape(u) != Shape::kWing) return u;
  const Term& pattern = wingPattern(u);
  if (!pattern.isApp() || !isDefinableLeaf(pattern.left()) || !isDefinableLeaf(pattern.right()))
    return u;
  // ({ x2 w ({ x1 (p K) ({ x2 (p H) y))): w is bound once, under the second
  // name; the first name takes its left element, then the second name is
  // shadowed by its right element.
  const Term& wing = wingHead(u);
  const Term& x1 = pattern.left();
  const Term& x2 = pattern.right();
  Term p = leaf(plainName(textOf(x2)));
  Term second = App3(wing, x2, App(p, leafByte('H')), u.right());
  Term first = App3(wing, x1, App(p, leafByte('K')), std::move(second));
  return App3(wing, x2, wingValue(u), std::move(first));
}

// ---- Funky keys ---------------------------------------------------------------

const Term* findFunkyKey(const Term& t) {
  const Term* cur = &t;
  for (;;) {
    if (cur->isLeaf()) return nullptr;
    const Term& l = cur->left();
    const Term& r = cur->right();
    // (l r), l a leaf: only r can hold a key.
    if (l.isLeaf()) {
      cur = &r;
      continue;
    }
    const Term& g = l.left();
    const Term& a = l.right();
    if (g.isLeaf()) {
      // ((\ a) r): a binder; its variable must be a definable name.
      if (textIs(g, "\\")) {
        if (!isDefinableLeaf(a)) return cur;
        cur = &r;
        continue;
      }
      if (const Term* found = findFunkyKey(a)) return found;
      cur = &r;
      continue;
    }
    // ((({ p) w) r): a wing; its pattern must be a definable name.
    const Term& h = g.left();
    if (h.isLeaf() && textIs(h, "{")) {
      if (!isDefinableLeaf(g.right())) return cur;
      if (const Term* found = findFunkyKey(a)) return found;
      cur = &r;
      continue;
    }
    if (const Term* found = findFunkyKey(l)) return found;
    cur = &r;
  }
}

// ---- References -----------------------------------------------------------------

namespace {

// The free names of a term: a walk that keeps the names bound on the path
// from the root. A name occurrence is free unless a binder or wing above it
// (over that occurrence) binds the same plain name. This is the same set as
// removing each bound name from its scope's set on the way up.
class RefWalk {
 public:
  void walk(const Term& t) {
    const Term* cur = &t;
    for (;;) {
      if (cur->isLeaf()) return visitLeaf(*cur);
      switch (spineShape(*cur)) {
        case Shape::kBinder: {
          std::string_view p = boundName(binderPattern(*cur));
          bind(p);
          walk(cur->right());
          unbind(p);
          return;
        }
        case Shape::kWing: {
          walk(wingValue(*cur));
          std::string_view p = boundName(wingPattern(*cur));
          bind(p);
          walk(cur->right());
          unbind(p);
          return;
        }
        default:
          walk(cur->left());
          cur = &cur->right();
      }
    }
  }

  NameList result() {
    std::sort(found_.begin(), found_.end());
    found_.erase(std::unique(found_.begin(), found_.end()), found_.end());
    NameList list;
    list.names.assign(found_.begin(), found_.end());
    return list;
  }

 private:
  void visitLeaf(const Term& leafTerm) {
    std::string_view text = nameText(leafTerm);
    if (!isName(text) || text == "\\" || text == "{") return;
    for (const auto& [name, depth] : bound_)
      if (depth > 0 && name == text) return;
    found_.push_back(text);
  }
  // Bound names with their nesting counts; names stay once seen, so the
  // scan is over the distinct names bound on any path (few, in practice).
  void bind(std::string_view name) {
    for (auto& [n, depth] : bound_)
      if (n == name) {
        depth++;
        return;
      }
    bound_.emplace_back(name, 1);
  }
  void unbind(std::string_view name) {
    for (auto& [n, depth] : bound_)
      if (n == name) {
        depth--;
        return;
      }
    TARN_FAIL();
  }

  std::vector<std::pair<std::string_view, int>> bound_;
  std::vector<std::string_view> found_;
};

// Binding occurrences: the right child of every (\ p) or ({ p) whose p is a
// leaf, split into single letters and all others.
void collectBindings(const Term& t, std::vector<std::string_view>& letters,
                     std::vector<std::string_view>& longs) {
  const Term* cur = &t;
  while (cur->isApp()) {
    const Term& l = cur->left();
    const Term& r = cur->right();
    if (l.isLeaf() && (l.first() == '{' || l.first() == '\\') && r.isLeaf()) {
      std::string_view text = nameText(r);
      (isLocalLetter(text) ? letters : longs).push_back(text);
    }
    collectBindings(l, letters, longs);
    cur = &r;
  }
}

NameList sortedNames(std::vector<std::string_view>& v) {
  std::sort(v.begin(), v.end());
  v.erase(std::unique(v.begin(), v.end()), v.end());
  NameList list;
  list.names.assign(v.begin(), v.end());
  return list;
}

}  // namespace

NameList globalRefs(const Term& t) {
  RefWalk walk;
  walk.walk(t);
  return walk.result();
}

NameList letterLocals(const Term& t) {
  std::vector<std::string_view> letters, longs;
  collectBindings(t, letters, longs);
  return sortedNames(letters);
}

NameList longLocals(const Term& t) {
  std::vector<std::string_view> letters, longs;
  collectBindings(t, letters, longs);
  return sortedNames(longs);
}

// ---- Renaming ---------------------------------------------------------------------

namespace {

// Several renamings at once: each long name to its letter leaf. Renamings
// of distinct names never interact (a target letter is never a long name),
// so one walk does what a sequence of renameLocal calls would.
struct Renaming {
  std::vector<std::pair<std::string, Term>> pairs;  // plain name, letter leaf

  const Term* find(std::string_view name) const {
    for (const auto& [n, letter] : pairs)
      if (n == name) return &letter;
    return nullptr;
  }
};

Term renameAll(const Term& t, const Renaming& ren) {
  if (t.isLeaf()) {
    const Term* letter = ren.find(nameText(t));
    return letter ? *letter : t;
  }
  switch (spineShape(t)) {
    case Shape::kWing: {
      // ((({ p) w) y): p by its plain name, w and y by the same walk.
      const Term& p = wingPattern(t);
      const Term* letter = ren.find(boundName(p));
      Term newP = letter ? *letter : p;
      Term w = renameAll(wingValue(t), ren);
      Term y = renameAll(t.right(), ren);
      if (newP.same(p) && w.same(wingValue(t)) && y.same(t.right())) return t;
      return App3(wingHead(t), std::move(newP), std::move(w), std::move(y));
    }
    case Shape::kBinder: {
      const Term& p = binderPattern(t);
      const Term* letter = ren.find(boundName(p));
      Term body = renameAll(t.right(), ren);
      if (!letter && body.same(t.right())) return t;
      Term binder = letter ? App(t.left().left(), *letter) : t.left();
      return App(std::move(binder), std::move(body));
    }
    default: {
      Term l = renameAll(t.left(), ren);
      Term r = renameAll(t.right(), ren);
      return rebuilt(t, std::move(l), std::move(r));
    }
  }
}

}  // namespace

Term renameLocal(const Term& t, std::string_view name, unsigned char letter) {
  TARN_ASSERT(isLower(letter));
  Renaming ren;
  ren.pairs.emplace_back(std::string(name), leafByte(letter));
  return renameAll(t, ren);
}

bool placeLocals(Term& body) {
  std::vector<std::string_view> letterTexts, longTexts;
  collectBindings(body, letterTexts, longTexts);
  NameList longs = sortedNames(longTexts);
  uint32_t used = 0;  // letters a-z bound in the source, bit 0 = a
  size_t letterCount = sortedNames(letterTexts).names.size();
  for (std::string_view l : letterTexts) used |= 1u << (l[0] - 'a');
  if (countNames(longs) + letterCount > 26) return false;
  if (longs.names.empty()) return true;

  // Names in sorted order take the lowest letters the body leaves unused.
  Renaming ren;
  int next = 0;
  for (const std::string& name : longs.names) {
    while (used & (1u << next)) next++;
    TARN_ASSERT(next < 26);
    used |= 1u << next;
    std::string_view plain = isDefinableName(name) ? plainName(name) : std::string_view(name);
    ren.pairs.emplace_back(std::string(plain), leafByte(static_cast<unsigned char>('a' + next)));
  }
  body = renameAll(body, ren);
  return true;
}

int leadingBinders(const Term& t) {
  int n = 0;
  for (const Term* b = &t; spineShape(*b) == Shape::kBinder; b = &b->right()) n++;
  return n;
}

// ---- Compile-time evaluation ------------------------------------------------------

Term foldQuotes(const Term& t) {
  if (t.isLeaf()) return t;
  const Term& l = t.left();
  if (!(l.isLeaf() && l.first() == '`')) {
    // Left before right: folding runs the machine, whose effects are seen
    // in this order.
    Term a = foldQuotes(l);
    Term b = foldQuotes(t.right());
    return rebuilt(t, std::move(a), std::move(b));
  }
  const Term& x = t.right();
  Term y = foldQuotes(x);
  annotate(y);
  // The raw `size` field decides, not the free set: a number or a bracket
  // literal (whose size is its length) is quoted like an open expression.
  if (y.node()->size() != 0) {
    std::string quoted = "[";
    quoted += printTerm(x);
    quoted += ']';
    return App2(leafByte('V'), leaf(quoted), std::move(y));
  }
  return reduce(std::move(y));
}

std::set<std::string> taintedDefinitions(const std::vector<std::pair<std::string, const Term*>>& bodies,
                                         const std::function<bool(const std::string&)>& defined) {
  std::map<std::string, std::vector<std::string>> callers;
  std::set<std::string> frontier, tainted;
  for (const auto& [d, body] : bodies) {
    NameList refs = globalRefs(*body);
    for (std::string& ref : refs.names) {
      if (!defined(ref)) frontier.insert(d);
      callers[std::move(ref)].push_back(d);
    }
  }
  while (!frontier.empty()) {
    std::set<std::string> next;
    for (const std::string& x : frontier) {
      tainted.insert(x);
      auto it = callers.find(x);
      if (it == callers.end()) continue;
      for (const std::string& caller : it->second)
        if (!tainted.count(caller)) next.insert(caller);
    }
    frontier = std::move(next);
  }
  TARN_ASSERT(!tainted.count(""));
  return tainted;
}

}  // namespace tarn
