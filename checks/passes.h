// Definition passes: the rewrites and walks that prepare one definition's
// body for the machine.
//
// Contract: every pass is pure with respect to its term argument. Nodes are
// shared and never changed; a pass returns a new term that shares every
// unchanged subterm with its argument (an unchanged term comes back as the
// same node), and the caller stores the result. Only `foldQuotes` has an
// effect beyond its result: it runs the machine, which can write memo values
// into `globals` and can run builtins.
//
// Shapes (as the parser builds them): a binder is ((\ p) body), a wing is
// ((({ p) w) y) and binds p to w in y. A binding occurrence p names its
// variable by its plain name ("[+]" binds "+"). The walks recurse over the
// depth of a term: run them on the large stack (driver/stack.h).
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "checks/names.h"
#include "terms/term.h"

namespace tarn {

// The text by which a leaf can name something: its text, except that a
// vector leaf (whose bytes are element references) and an application name
// nothing and give the empty text.
std::string_view nameText(const Term& t);
// The name a binding occurrence binds: the plain name of a definable name,
// otherwise the leaf's name text as it stands.
std::string_view boundName(const Term& p);

// Pair patterns in wings unfolded, bottom-up: ({ (x1 x2) w y), x1 and x2
// definable names, becomes ({ x2 w ({ x1 (p K) ({ x2 (p H) y))) with p the
// plain name of x2. Any other pattern stays for findFunkyKey.
Term expandPairWings(const Term& t);

// The first binder or wing, depth first and left to right, whose variable is
// no definable name; null when there is none. The result is borrowed from t.
const Term* findFunkyKey(const Term& t);

// The names t refers to and does not bind (globals and free letters alike),
// the two binding leaves "\" and "{" excepted.
NameList globalRefs(const Term& t);

// Taint: the definitions among `bodies` (name, body) that reach a name for
// which `defined` is false, directly or through other definitions of
// `bodies`. The main term (the empty name) never reaches one once the alive
// check has passed: finding it tainted is a fatal assertion.
std::set<std::string> taintedDefinitions(const std::vector<std::pair<std::string, const Term*>>& bodies,
                                         const std::function<bool(const std::string&)>& defined);
// Binding occurrences: leaves in the place of p in (\ p) or ({ p). Those that
// are one letter a-z, and all the others (by their text).
NameList letterLocals(const Term& t);
NameList longLocals(const Term& t);

// Every binding occurrence whose plain name is `name`, and every other leaf
// whose text is `name`, replaced by the leaf of `letter` (a-z, else fatal).
Term renameLocal(const Term& t, std::string_view name, unsigned char letter);
// Squeezes the long local names of a body into the letters a-z that the body
// leaves unused, in sorted order of the names and ascending order of the
// letters; one name takes one letter in all its scopes. Returns false, with
// the body unchanged, when the body has more than 26 local names in all.
bool placeLocals(Term& body);

// The number of leading binders of a definition: its parameters.
int leadingBinders(const Term& t);

// Compile-time evaluation. (` x) becomes the value of x when x, after its own
// quotes are folded, has a zero `size` field (closed); otherwise it becomes
// (V L x') with L the bracket literal of x's printed text.
Term foldQuotes(const Term& t);

}  // namespace tarn
