#include "commands/fieldrows.h"

#include <deque>
#include <string>

std::vector<tcommand> prefixed(const char* prefix, std::initializer_list<std::span<const tcommand>> parts) {
  // The tables live for the process and point into this store; a deque never moves its texts.
  static std::deque<std::string> docs;
  std::vector<tcommand> rows;
  for (const std::span<const tcommand> part : parts) {
    for (tcommand row : part) {
      if (*row.doc) row.doc = docs.emplace_back(std::string(prefix) + row.doc).c_str();
      rows.push_back(row);
    }
  }
  return rows;
}
