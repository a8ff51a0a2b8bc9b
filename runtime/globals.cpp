// Globals, call forms and the prelude's copy: named slots with cached lookups.
#include <algorithm>
#include <deque>
#include <map>
#include <unordered_map>

#include "runtime/globals.h"

namespace tarn {

namespace {

struct Tables {
  std::deque<GlobalSlot> slots;
  std::unordered_map<std::string, uint32_t> index;
  std::map<std::string, Term, std::less<>> prelude;
};

Tables& tables() {
  static Tables* t = new Tables;  // lives to the end of the process
  return *t;
}

}  // namespace

uint32_t gMemoryEpoch = 1;
uint32_t gGlobalsStamp = 1;

GlobalSlot& slotOf(std::string_view name) {
  Tables& t = tables();
  auto it = t.index.find(std::string(name));
  if (it != t.index.end()) return t.slots[it->second];
  uint32_t i = uint32_t(t.slots.size());
  GlobalSlot& s = t.slots.emplace_back();
  s.name = std::string(name);
  s.builtin = findBuiltin(name);
  t.index.emplace(s.name, i);
  return s;
}

GlobalSlot& slotOfLeafSlow(const Term& nameLeaf) {
  // Fresh one-byte leaves (K and H from every comparison) are common: their
  // slots are kept by byte, so annotating them costs no hashing.
  static GlobalSlot* byByte[256] = {};
  std::string_view text = textOf(nameLeaf);
  GlobalSlot* found;
  if (text.size() == 1) {
    GlobalSlot*& cached = byByte[static_cast<unsigned char>(text[0])];
    if (!cached) cached = &slotOf(text);
    found = cached;
  } else {
    found = &slotOf(text);
  }
  GlobalSlot& s = *found;
  LeafPrefix* pre = prefixOf(nameLeaf.node());
  pre->cacheEpoch = gMemoryEpoch;
  pre->cacheSlot = &s;
  return s;
}

const Term* findGlobal(std::string_view name) {
  Tables& t = tables();
  auto it = t.index.find(std::string(name));
  if (it == t.index.end()) return nullptr;
  const GlobalSlot& s = t.slots[it->second];
  return s.value ? &s.value : nullptr;
}

void setSlotValue(GlobalSlot& slot, Term value) {
  slot.value = std::move(value);
  slot.version++;
  gGlobalsStamp++;
  slot.body = Term();
}

void setGlobal(std::string_view name, Term value) { setSlotValue(slotOf(name), std::move(value)); }

void eraseGlobal(std::string_view name) {
  Tables& t = tables();
  auto it = t.index.find(std::string(name));
  if (it == t.index.end()) return;
  setSlotValue(t.slots[it->second], Term());
}

std::vector<std::string> globalNames() {
  std::vector<std::string> names;
  for (const GlobalSlot& s : tables().slots)
    if (s.value) names.push_back(s.name);
  std::sort(names.begin(), names.end());
  return names;
}

void clearGlobals() {
  for (GlobalSlot& s : tables().slots) {
    setSlotValue(s, Term());
    s.callForm = false;
  }
}

bool isCallForm(std::string_view name) {
  Tables& t = tables();
  auto it = t.index.find(std::string(name));
  return it != t.index.end() && t.slots[it->second].callForm;
}

void setCallForm(std::string_view name, bool on) { slotOf(name).callForm = on; }

void clearCallForms() {
  for (GlobalSlot& s : tables().slots) s.callForm = false;
}

const Term* findPreludeGlobal(std::string_view name) {
  Tables& t = tables();
  auto it = t.prelude.find(name);
  return it == t.prelude.end() ? nullptr : &it->second;
}

void snapshotPreludeGlobals() {
  Tables& t = tables();
  t.prelude.clear();
  for (const GlobalSlot& s : t.slots)
    if (s.value) t.prelude.emplace(s.name, s.value);
}

void clearPreludeGlobals() { tables().prelude.clear(); }

}  // namespace tarn
