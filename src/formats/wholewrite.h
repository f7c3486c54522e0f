// A file written in one piece under a passing name and renamed at the end, so that a failed
// write never leaves a half file under the name asked for. An empty body makes an empty file.
#pragma once
#include <bit>
#include <string>
#include <string_view>

#include "script/utf16.h"

// "Write file (name)." and the bytes, deflated when pack is set.
bool writewhole(const utf16& name, std::string_view bytes, bool pack = false);

// The bytes of a number as they lie in memory, which is the little-endian order of the files.
template <class T>
void appendnumber(std::string& out, T v) {
  static_assert(std::endian::native == std::endian::little, "the files are little-endian");
  out.append(reinterpret_cast<const char*>(&v), sizeof v);
}
