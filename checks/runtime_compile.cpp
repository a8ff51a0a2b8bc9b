// road and load: the front end and the definition passes on a private table,
// the commit into `globals`, and the nested reduction of the main expression.
#include "checks/runtime_compile.h"

#include <bit>
#include <map>
#include <set>
#include <unordered_set>
#include <vector>

#include "checks/check.h"
#include "checks/passes.h"
#include "frontend/compile.h"
#include "frontend/scan.h"
#include "numbers/model.h"
#include "reduction/canonical.h"
#include "reduction/machine.h"
#include "runtime/annotate.h"
#include "runtime/globals.h"
#include "terms/texts.h"

namespace tarn {

namespace {

// The text's own definitions, by name in byte order; the empty name holds
// its main expression. Names defined in call form are kept apart, as the
// start-up compile keeps them in `callForms`.
struct NewGlobals {
  std::map<std::string, Term> entries;
  std::set<std::string> callForms;
};

// A name is sound when either table has it.
bool isDefined(const NewGlobals& table, const std::string& name) {
  return table.entries.count(name) != 0 || hasGlobal(name);
}

Report roadsReport(std::string_view name) {
  Report r;
  r.say = "Attempt to redefine function " + std::string(name) + " using the road function.";
  r.tag = "roads";
  r.vip = shortName(name);
  return r;
}

// The alive walk from the main expression. It does not enter definitions
// that `globals` already has: the start-up checks have proved that they
// reach only defined names.
Report checkAlive(const NewGlobals& table) {
  return walkAlive(
      [&](const std::string& name, const Term*& body) {
        if (!isDefined(table, name)) return false;
        auto entry = table.entries.find(name);
        body = entry == table.entries.end() ? nullptr : &entry->second;
        return true;
      },
      "function ");
}

// Taint over the new definitions: one that reaches an undefined name,
// directly or through other new definitions, is dropped from the table.
void dropTainted(NewGlobals& table) {
  std::vector<std::pair<std::string, const Term*>> bodies;
  for (const auto& [d, body] : table.entries) bodies.emplace_back(d, &body);
  std::set<std::string> tainted =
      taintedDefinitions(bodies, [&](const std::string& name) { return isDefined(table, name); });
  for (const std::string& x : tainted) table.entries.erase(x);
}

// Places, arity and funky keys, each over the whole table in turn.
Report checkShapes(NewGlobals& table) {
  for (auto& [name, body] : table.entries)
    if (!placeLocals(body)) return placeReport(name);
  for (const auto& [name, body] : table.entries)
    if (leadingBinders(body) > kMaxParameters) return arityReport(name);
  for (const auto& [name, body] : table.entries)
    if (const Term* key = findFunkyKey(body)) return funkyReport(name, *key);
  return Report{};
}

void commit(const NewGlobals& table) {
  for (const std::string& name : table.callForms) setCallForm(name, true);
  for (const auto& [name, body] : table.entries)
    if (!name.empty()) setGlobal(name, body);
}

Report checkUnboundLocals(const NewGlobals& table) {
  for (const auto& [name, body] : table.entries)
    if (uint32_t free = freeSet(body)) return localReport(name, char('a' + std::countr_zero(free)));
  return Report{};
}

// Drops from `seenTerms` every node of the table's terms that is not a
// value. The terms are canonical, so each node is its own entry.
void dropSeenNonValues(const NewGlobals& table) {
  std::unordered_set<const Node*> visited;
  std::vector<Term> work;
  for (const auto& entry : table.entries) work.push_back(entry.second);
  while (!work.empty()) {
    Term t = std::move(work.back());
    work.pop_back();
    if (!visited.insert(t.node()).second) continue;
    if (!isValue(t)) eraseSeen(t);
    if (t.isApp()) {
      work.push_back(t.left());
      work.push_back(t.right());
    }
  }
}

}  // namespace

std::optional<std::string> sourceTextOf(const Term& argument) {
  switch (kindOf(argument)) {
    case Kind::kBlob: return std::string(blobBytes(argument));
    case Kind::kInteger:
      // A cell whose chain is no list of truth values spells no number.
      if (argument.isApp() && (!isBitList(argument) || bitsOf(argument).empty())) return std::nullopt;
      return numberText(argument);
    case Kind::kBracket: {
      std::string text = flatten(argument);
      return text.substr(1, text.size() - 2);
    }
    case Kind::kVector: return std::string();  // a vector compiles as the empty text
    default: return std::nullopt;
  }
}

Term failureTerm(const Report& report) { return App(leafByte(']'), leaf(reportText(report))); }

Term compileAtRunTime(std::string_view source, CompileMode mode) {
  auto fail = [mode](Report report) { return mode == CompileMode::kRoad ? failureTerm(report) : leafByte('Z'); };
  bool road = mode == CompileMode::kRoad;

  // 1. Bracket structure; a mismatch says so in `way`.
  Report report;
  long position = 0;
  if (!checkStructure(source, report, position)) {
    if (report.tag == "match") report.way = "yes";
    return fail(std::move(report));
  }

  // 2 to 5. The main expression and the definitions, into the private table.
  std::string text = normalise(source);
  ProgramText program = readProgramText(text, BuiltWording::kBare);
  if (!program.report.ok()) return fail(std::move(program.report));
  NewGlobals table;
  table.entries[""] = std::move(program.main);
  for (PieceDefinition& d : program.definitions) {
    table.entries[d.name] = std::move(d.body);
    if (d.callForm) table.callForms.insert(d.name);
    else table.callForms.erase(d.name);
  }

  // 6. A text can only add: no name that `globals` has, prelude capitals included.
  for (const auto& entry : table.entries)
    if (!entry.first.empty() && hasGlobal(entry.first)) return fail(roadsReport(entry.first));

  // 7. Pair patterns in wings.
  for (auto& entry : table.entries) entry.second = expandPairWings(entry.second);

  // 8 and 9. Reachable names must be defined; dead new ones that are not go.
  if (Report alive = checkAlive(table); !alive.ok()) return fail(std::move(alive));
  dropTainted(table);

  // 10. Places, arity, funky keys: not the start-up order.
  if (Report shapes = checkShapes(table); !shapes.ok()) return fail(std::move(shapes));

  // load makes its terms canonical here, before the compile-time evaluation.
  if (!road)
    for (auto& entry : table.entries) entry.second = tern(entry.second);

  // 11. Compile-time evaluation.
  for (auto& entry : table.entries) entry.second = foldQuotes(entry.second);

  // 12. The commit: from here on the new definitions stay.
  commit(table);

  // load's pass that keeps only values canonical. It reads annotations, which
  // name the new definitions, so it runs once they are committed.
  if (!road) dropSeenNonValues(table);

  // 13. No entry may have a free local variable.
  if (Report local = checkUnboundLocals(table); !local.ok()) return fail(std::move(local));

  // 14. Sharing, as at start-up: only values stay canonical.
  if (road) {
    for (auto& [name, body] : table.entries) {
      body = tern(body);
      if (!name.empty()) setGlobal(name, body);
    }
    eraseSeenNonValues();
  }

  // 15. The value of the main expression, by a nested machine.
  return reduce(std::move(table.entries[""]));
}

Term handleRoad(const Builtin&, const Args& args) {
  std::optional<std::string> source = sourceTextOf(args[0]);
  if (!source) return leafByte('Z');
  return compileAtRunTime(*source, CompileMode::kRoad);
}

Term handleLoad(const Builtin&, const Args& args) {
  std::optional<std::string> source = sourceTextOf(args[0]);
  if (!source) return leafByte('Z');
  return compileAtRunTime(*source, CompileMode::kLoad);
}

}  // namespace tarn
