// checkProgram: the start-up checks, in their fixed order.
#include "checks/check.h"

#include <bit>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "checks/passes.h"
#include "terms/failure.h"
#include "runtime/globals.h"
#include "runtime/annotate.h"
#include "reduction/canonical.h"
#include "reduction/printer.h"

namespace tarn {

// ---- The global `_` ---------------------------------------------------------

namespace {

struct FieldLayout {
  const char* name;
  size_t size, offset;
};
struct RecordLayout {
  const char* name;
  size_t size;
  std::vector<FieldLayout> fields;  // in insertion order
};

const std::vector<RecordLayout>& recordLayouts() {
  static const std::vector<RecordLayout> records = {
      {"addrinfo", 48,
       {{"ai_flags", 4, 0}, {"ai_family", 4, 4}, {"ai_socktype", 4, 8}, {"ai_protocol", 4, 12},
        {"ai_addrlen", 8, 16}, {"ai_addr", 8, 32}, {"ai_canonname", 8, 24}, {"ai_next", 8, 40}}},
      {"dirent", 296,
       {{"d_ino", 4, 0}, {"d_off", 4, 4}, {"d_namlen", 8, 16}, {"d_reclen", 2, 8}, {"d_type", 4, 24},
        {"d_name", 261, 28}}},
      {"fd_set", 520, {}},
      {"size_t", 8, {}},
      {"socklen_t", 4, {}},
      {"time_t", 8, {}},
  };
  return records;
}

struct Segment {
  std::string name;  // empty: anonymous bytes
  size_t offset, size;
};

// "[name" then one "[field[n]]" per segment, "]"; a field that does not fall
// inside an anonymous segment makes the whole entry "69".
std::string recordEntry(const RecordLayout& rec) {
  std::vector<Segment> segs = {{"", 0, rec.size}};
  for (const FieldLayout& f : rec.fields) {
    size_t i = 0;
    while (i < segs.size() && !(segs[i].name.empty() && segs[i].offset <= f.offset &&
                                f.offset < segs[i].offset + segs[i].size))
      i++;
    if (i == segs.size() || f.offset + f.size > segs[i].offset + segs[i].size) return "69";
    Segment hole = segs[i];
    std::vector<Segment> parts;
    if (f.offset > hole.offset) parts.push_back({"", hole.offset, f.offset - hole.offset});
    parts.push_back({f.name, f.offset, f.size});
    size_t end = f.offset + f.size, holeEnd = hole.offset + hole.size;
    if (end < holeEnd) parts.push_back({"", end, holeEnd - end});
    segs.erase(segs.begin() + long(i));
    segs.insert(segs.begin() + long(i), parts.begin(), parts.end());
  }
  std::string text = "[";
  text += rec.name;
  for (const Segment& s : segs) text += "[" + s.name + "[" + std::to_string(s.size) + "]]";
  text += ']';
  return text;
}

}  // namespace

std::string recordLayoutText() {
  std::string text = "[";
  for (const RecordLayout& rec : recordLayouts()) text += recordEntry(rec);
  text += ']';
  return text;
}

// ---- Reports ------------------------------------------------------------------

Report funkyReport(std::string_view name, const Term& offending) {
  std::string e = printTerm(offending);
  Report r;
  r.say = "Funky key in expression " + e;
  if (!name.empty()) r.say += " in function " + std::string(name);
  r.say += '.';
  r.tag = "funky";
  r.vip = shortName(name);
  r.tip = excerptPlain(e);
  return r;
}

Report aliveReport(std::string_view referrer, std::string_view undefinedName, std::string_view what) {
  Report r;
  r.say = "Alive function " + std::string(referrer) + " references undefined " + std::string(what) +
          std::string(undefinedName) + ".";
  r.tag = "alive";
  r.vip = shortName(referrer);
  r.tip = shortName(undefinedName);
  return r;
}

Report placeReport(std::string_view name) {
  Report r;
  r.say = name.empty() ? "Place error." : "Place error in function " + std::string(name) + ".";
  r.tag = "place";
  r.vip = shortName(name);
  return r;
}

Report arityReport(std::string_view name) {
  Report r;
  r.say = "Arity of function " + std::string(name) + " may not exceed ten.";
  r.tag = "arity";
  r.vip = shortName(name);
  return r;
}

Report localReport(std::string_view name, char letter) {
  Report r;
  r.say = "Local variable " + std::string(1, letter) + " unbound";
  if (!name.empty()) r.say += " in function " + std::string(name);
  r.say += '.';
  r.tag = "local";
  r.vip = shortName(name);
  r.tip = std::string(1, letter);
  return r;
}

// ---- The passes -----------------------------------------------------------------

namespace {

const Term& bodyOf(std::string_view name) {
  const Term* body = findGlobal(name);
  TARN_ASSERT(body != nullptr);
  return *body;
}

// Stores a rewritten body; an unchanged one is left alone.
void replaceBody(const std::string& name, Term body) {
  if (!body.same(bodyOf(name))) setGlobal(name, std::move(body));
}

// The alive check: everything reachable from the main term must be defined.
Report checkAlive() {
  return walkAlive(
      [](const std::string& name, const Term*& body) {
        body = findGlobal(name);
        return body != nullptr;
      },
      "");
}

// Taint and removal: a definition that reaches an undefined name, directly or
// through its callees, is removed; a prelude name gets its prelude
// definition back.
void removeTainted(const std::vector<std::string>& names) {
  std::vector<std::pair<std::string, const Term*>> bodies;
  for (const std::string& d : names) bodies.emplace_back(d, &bodyOf(d));
  std::set<std::string> tainted =
      taintedDefinitions(bodies, [](const std::string& name) { return hasGlobal(name); });
  for (const std::string& x : tainted) {
    if (const Term* original = findPreludeGlobal(x)) setGlobal(x, *original);
    else eraseGlobal(x);
  }
  clearPreludeGlobals();
}

}  // namespace

Report walkAlive(const std::function<bool(const std::string& name, const Term*& body)>& lookup,
                 std::string_view what) {
  std::map<std::string, std::string> queue;  // name -> referrer
  std::set<std::string> seen;
  queue.emplace("", "nowhere");
  while (!queue.empty()) {
    auto first = queue.begin();
    std::string name = first->first;
    std::string referrer = first->second.empty() ? "TOP" : first->second;
    queue.erase(first);
    seen.insert(name);
    const Term* body = nullptr;
    if (!lookup(name, body)) return aliveReport(referrer, name, what);
    if (!body) continue;
    NameList refs = globalRefs(*body);
    for (std::string& ref : refs.names)
      if (!seen.count(ref)) queue[std::move(ref)] = name;
  }
  return Report{};
}

Report checkProgram() {
  // 1. The record layouts, visible to every program as `_`.
  setGlobal("_", leaf(recordLayoutText()));

  // 2. Pair patterns in wings.
  for (const std::string& name : globalNames()) replaceBody(name, expandPairWings(bodyOf(name)));

  // 3. Every binder and wing must bind a definable name.
  for (const std::string& name : globalNames())
    if (const Term* key = findFunkyKey(bodyOf(name))) return funkyReport(name, *key);

  // 4 to 6. Reachable names must be defined; dead ones that are not go.
  if (Report alive = checkAlive(); !alive.ok()) return alive;
  removeTainted(globalNames());

  // 7. Long local names into free letters.
  for (const std::string& name : globalNames()) {
    Term body = bodyOf(name);
    if (!placeLocals(body)) return placeReport(name);
    replaceBody(name, std::move(body));
  }

  // 8. At most ten parameters.
  for (const std::string& name : globalNames())
    if (leadingBinders(bodyOf(name)) > kMaxParameters) return arityReport(name);

  // 9. Compile-time evaluation. Each body is read when its turn comes (an
  // earlier evaluation may have memoised it) and held by a copy, since the
  // machine may overwrite the entry while the fold walks it.
  for (const std::string& name : globalNames()) {
    Term body = bodyOf(name);
    replaceBody(name, foldQuotes(body));
  }

  // 10. Sharing: equal subterms become one node; only values stay canonical.
  clearSeenTerms();
  for (const std::string& name : globalNames()) replaceBody(name, tern(bodyOf(name)));
  eraseSeenNonValues();

  // 11. No definition may have a free local variable.
  for (const std::string& name : globalNames())
    if (uint32_t free = freeSet(bodyOf(name))) return localReport(name, char('a' + std::countr_zero(free)));

  // 12. Every body fully annotated for the machine.
  for (const std::string& name : globalNames()) annotate(bodyOf(name));
  return Report{};
}

}  // namespace tarn
