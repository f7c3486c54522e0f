// The format tables: one row per format and field kind, {extensions, kind, reader, writer},
// walked by the dispatch of that kind and printed as the help's notes. A new format is one
// file and one row; a format without a reader can never show up as loadable.
#pragma once
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>

#include "script/utf16.h"

enum class tfieldkind : uint8_t { image, scalar, vector, tensor, mesh, line };

// A row of the table of one field kind, with the reader and writer signatures of that kind.
// extensions: lower case, separated by blanks, a packed variant spelled out ("nii nii.gz");
// empty for the row that takes every name no other row takes. accepts tells which storage
// kinds the writer takes (nullptr: all). The notes are the words of the help; nullptr keeps
// the row out of it (a variant of a listed row).
template <class Reader, class Writer>
struct tformatrow {
  const char* extensions;
  tfieldkind kind;
  Reader read;   // nullptr where the format is not read
  Writer write;  // nullptr where it is not written
  bool (*accepts)(uint8_t storagekind);
  const char* readnote;
  const char* writenote;
};

// True when ext equals one of the words (ext already lower case).
bool oneof(const utf16& ext, std::initializer_list<const char*> words);
// True when ext is one of the blank-separated words of extensions.
bool formatextension(const char* extensions, const utf16& ext);

// The row whose extensions hold ext and that reads (writing false) or writes storage kind
// `storagekind` (writing true); else the row without extensions that does; else nullptr.
template <class Row>
const Row* formatrow(std::span<const Row> table, const utf16& ext, bool writing, uint8_t storagekind = 0) {
  const Row* fallback = nullptr;
  for (const Row& r : table) {
    const bool usable = writing ? r.write && (!r.accepts || r.accepts(storagekind)) : r.read != nullptr;
    if (!usable) continue;
    if (!*r.extensions) {
      if (!fallback) fallback = &r;
    } else if (formatextension(r.extensions, ext)) {
      return &r;
    }
  }
  return fallback;
}

// The help's note: the notes of the rows that read (or write), joined by ", ".
template <class Row>
std::string formatnotes(std::span<const Row> table, bool writing) {
  std::string out;
  for (const Row& r : table) {
    const char* note = writing ? r.writenote : r.readnote;
    if (!note || !(writing ? r.write != nullptr : r.read != nullptr)) continue;
    if (!out.empty()) out += ", ";
    out += note;
  }
  return out;
}
