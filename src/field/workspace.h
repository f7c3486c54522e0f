// A workspace: the named list of the fields of one kind, with the entry that handlers
// work on. A macro never holds a field in a variable; it names entries here, and the
// left side of "new := image.sub a b" is such a name. Names are stored in capitals, so
// they are case-insensitive. Entries are only appended; they leave all at once by a
// reset. The list owns its fields: each is one heap record that the list's pointers free.
//
// One definition serves the six kinds. A kind brings its words and the routines
// fieldcreate(field, kind), fieldrelease(field) and fielddescription(field); the grid
// fields also show their size when they are selected and take part in the target rule.
#pragma once
#include <new>
#include <vector>

#include "field/arrays.h"
#include "field/grid.h"
#include "field/owned.h"
#include "shell/console.h"

struct tworkspacewords {
  const char* kind;   // "image": "Use image: ", "Attention, target image field ..."
  const char* dump;   // "image": "***** dump.image *****"
  const char* inuse;  // "  Image ("
  const char* empty;  // "  Imagelist empty!"
  const char* field;  // "imagefield": the lookups' errors
};

template <class F>
struct tworkspacelist {
  const tworkspacewords* words = nullptr;
  uint8_t startkind = 0;    // the default kind at program start and after a reset
  uint8_t defaultkind = 0;  // the kind that the next new field takes
  F* current = nullptr;     // the field handlers work on; never nil once created
  int64_t index = 0;        // its position, from 1
  std::vector<tfieldptr<F>> objects;  // parallel to names
  tnamelist names{};

  constexpr explicit tworkspacelist(const tworkspacewords* w = nullptr, uint8_t kind = 0)
      : words(w), startkind(kind), defaultkind(kind) {}
  tworkspacelist(const tworkspacelist&) = delete;
  tworkspacelist& operator=(const tworkspacelist&) = delete;
  // The fields go with their pointers; the names are a guarded record, given back by hand.
  ~tworkspacelist() { names.release(); }
};

template <class F>
int64_t workspacecount(const tworkspacelist<F>& w) {
  return static_cast<int64_t>(w.objects.size());
}

// Capitals in the low byte plane, the high plane as it is.
utf16 workspacekey(const utf16& name);
// The key of a target or operand name: an empty name means DEFAULT.
utf16 lookupkey(const utf16& name);

// The entry at position i (from 1); nil outside the list.
template <class F>
F* workspaceentry(const tworkspacelist<F>& w, int64_t i) {
  return i >= 1 && i <= workspacecount(w) ? w.objects[static_cast<size_t>(i - 1)].get() : nullptr;
}

// The first entry of the name, 0 when there is none.
template <class F>
int64_t workspacefind(const tworkspacelist<F>& w, const utf16& name) {
  return w.names.find(workspacekey(name));
}

// A new empty field of the default kind under the name; its position, or 0 when not even
// the record could be had.
template <class F>
int64_t workspaceappend(tworkspacelist<F>& w, const utf16& name) {
  tfieldptr<F> f(new (std::nothrow) F{});
  if (!f) return 0;
  fieldcreate(*f, w.defaultkind);
  const int64_t i = workspacecount(w) + 1;
  try {
    w.objects.push_back(std::move(f));
  } catch (const std::bad_alloc&) {
    return 0;
  }
  w.names.add(workspacekey(name));
  if (w.names.length == i) return i;
  // A name list that could not grow: the field goes again, the lists stay parallel.
  w.objects.pop_back();
  return 0;
}

// Fresh lists with one empty field of the default kind, DEFAULT, as the current entry.
template <class F>
void workspacecreate(tworkspacelist<F>& w) {
  w.objects.clear();
  w.names.createdynamic();
  w.index = workspaceappend(w, "DEFAULT");
  w.current = workspaceentry(w, w.index);
}

template <class F>
void workspacerelease(tworkspacelist<F>& w) {
  w.names.release();
  w.objects.clear();
  w.current = nullptr;
  w.index = 0;
}

// clean, clear and new: the start state again, the default kind included.
template <class F>
void workspacereset(tworkspacelist<F>& w) {
  w.defaultkind = w.startkind;
  workspacerelease(w);
  workspacecreate(w);
}

// The list as handlers find it. A program start creates it; where none did (a test, a
// fuzzer), the first use does.
template <class F>
tworkspacelist<F>& ready(tworkspacelist<F>& w) {
  if (!w.current) workspacecreate(w);
  return w;
}

template <class F>
F& currentfield(tworkspacelist<F>& w) {
  return *ready(w).current;
}

// Selects the entry of the name, or a new empty one; a grid field shows name and size.
template <class F>
void workspaceuse(tworkspacelist<F>& w, const utf16& name) {
  ready(w);
  int64_t i = workspacefind(w, name);
  if (i == 0) i = workspaceappend(w, name);
  if (i == 0) return;
  w.index = i;
  w.current = workspaceentry(w, i);
  if constexpr (tgridfield<F>)
    println("Use " + utf16(w.words->kind) + ": " + w.names.get(i) + " (" + dimensionstext(*w.current) + ")");
}

// Only the names move: the current field stays and bears the other name.
template <class F>
void workspaceswap(tworkspacelist<F>& w, const utf16& a, const utf16& b) {
  ready(w);
  const int64_t i = workspacefind(w, a), j = workspacefind(w, b);
  if (i == 0 || j == 0) {
    println("  Not swapped (" + w.names.getchecked(i) + ") <-> (" + w.names.getchecked(j) + ")!");
    return;
  }
  w.names.put(i, workspacekey(b));
  w.names.put(j, workspacekey(a));
}

// No test for a double: the lookups then find the first entry of the name.
template <class F>
void workspacerename(tworkspacelist<F>& w, const utf16& name) {
  ready(w);
  if (w.index >= 1 && w.index <= w.names.length) w.names.put(w.index, workspacekey(name));
}

template <class F>
void workspacedump(const tworkspacelist<F>& w) {
  const tworkspacewords& words = *w.words;
  println("***** dump." + utf16(words.dump) + " *****");
  if (workspacecount(w) < 1) {
    println(words.empty);
  } else {
    if (w.index >= 1 && w.index <= w.names.length)
      println(words.inuse + nattext(w.index) + ") in use: " + w.names.get(w.index));
    for (int64_t i = 1; i <= workspacecount(w); ++i) {
      const F* f = workspaceentry(w, i);
      println("  (" + nattext(i) + "):" + (f ? fielddescription(*f) : utf16("nil")) + ":" + w.names.getchecked(i));
    }
  }
  println("***** dump." + utf16(words.dump) + " end *****");
}

// The result field of a command: the entry of the name, or a new empty one under it.
// The current field may be the target. Nil only when no record could be had.
template <class F>
F* workspacetarget(tworkspacelist<F>& w, const utf16& name) {
  ready(w);
  const utf16 key = lookupkey(name);
  int64_t i = workspacefind(w, key);
  if (i == 0) i = workspaceappend(w, key);
  return workspaceentry(w, i);
}

// How a result meets its target. An empty target is sized as the command chooses, keeps
// its storage kind, and takes the place in space of the first operand (true). A filled one
// is kept with a warning, and the command runs over the target's own size (false).
template <tgridfield F>
bool prepareresult(const tworkspacelist<F>& w, F& target, const F& source, const tnatvector& size) {
  if (!fieldempty(target)) {
    println("Attention, target " + utf16(w.words->kind) + " field seems not to be empty!");
    return false;
  }
  fieldcreate(target, target.kind ? target.kind : w.defaultkind, size);
  target.space = source.space;
  return true;
}
