// Process-wide tables: the globals, the prelude's copy of
// the globals and the call forms.
//
// Contract: the tables are created on first use and live to the end of the
// process; nothing guards them (one thread). `globals` maps a name to its
// definition; the empty name holds the main term. A name that has ever been
// looked up keeps a numbered slot for the rest of the run, with or without an
// entry, so the machine can cache a name's slot number in the name's leaf.
// Entries change only through `setGlobal`/`eraseGlobal`, which keep the
// per-slot caches right.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/builtins.h"
#include "terms/term.h"

namespace tarn {

// ---- Globals ----------------------------------------------------------------

struct DirectCode;  // the reduction layer's compiled form of a definition

struct GlobalSlot {
  std::string name;
  Term value;               // the definition; null when the name has no entry
  bool callForm = false;    // defined as name()\body: never memoised
  const Builtin* builtin = nullptr;
  uint32_t version = 0;     // advanced whenever `value` changes
  // The machine's cache of the leading binders of `value`: the parameter
  // letters and the body under them, valid for one version and memory epoch.
  std::string params;
  Term body;
  uint32_t peeledVersion = ~0u;
  uint32_t peeledEpoch = 0;
  // The reduction layer's direct code for the definition, checked against
  // the stamp and versions below before each use; owned by that layer.
  DirectCode* direct = nullptr;
};

// Advanced whenever any slot's value changes: caches built from several
// definitions compare one number before they look at each slot's version.
extern uint32_t gGlobalsStamp;
inline uint32_t globalsStamp() { return gGlobalsStamp; }

// The memory epoch: advanced after every builtin that may write memory.
// Caches keyed on leaf bytes are valid only within one epoch.
extern uint32_t gMemoryEpoch;
inline uint32_t memoryEpoch() { return gMemoryEpoch; }
inline void advanceMemoryEpoch() {
  if (++gMemoryEpoch == 0) gMemoryEpoch = 1;  // 0 marks "no cache" in a leaf
}

// The slot of a name, made on first use (without an entry). Slots never move.
GlobalSlot& slotOf(std::string_view name);
GlobalSlot& slotOfLeafSlow(const Term& nameLeaf);
// The slot of a name leaf, through the cache in the leaf's hidden prefix.
inline GlobalSlot& slotOfLeaf(const Term& nameLeaf) {
  LeafPrefix* pre = prefixOf(nameLeaf.node());
  if (pre->cacheEpoch == gMemoryEpoch) [[likely]] return *static_cast<GlobalSlot*>(pre->cacheSlot);
  return slotOfLeafSlow(nameLeaf);
}

// The entry of a name, or null.
const Term* findGlobal(std::string_view name);
inline bool hasGlobal(std::string_view name) { return findGlobal(name) != nullptr; }
void setGlobal(std::string_view name, Term value);
void setSlotValue(GlobalSlot& slot, Term value);
void eraseGlobal(std::string_view name);
// The names that have entries, in byte order.
std::vector<std::string> globalNames();
// Removes every entry and every call-form mark.
void clearGlobals();

bool isCallForm(std::string_view name);
void setCallForm(std::string_view name, bool on);
void clearCallForms();

// The copy of the globals taken when the prelude was loaded.
const Term* findPreludeGlobal(std::string_view name);
void snapshotPreludeGlobals();
void clearPreludeGlobals();

}  // namespace tarn
