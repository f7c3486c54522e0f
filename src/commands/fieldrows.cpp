#include "commands/fieldrows.h"

#include <deque>
#include <string>

namespace {

// "sub a b // ..." becomes "image.sub a b // ...", and "new := sub a b" "new := image.sub a b".
std::string withprefix(const char* prefix, const std::string& doc) {
  const size_t assignment = doc.find(":= "), comment = doc.find("//");
  if (assignment == std::string::npos || assignment > comment) return prefix + doc;
  return doc.substr(0, assignment + 3) + prefix + doc.substr(assignment + 3);
}

}  // namespace

std::vector<tcommand> prefixed(const char* prefix, std::initializer_list<std::span<const tcommand>> parts) {
  // The tables live for the process and point into this store; a deque never moves its texts.
  static std::deque<std::string> docs;
  std::vector<tcommand> rows;
  for (const std::span<const tcommand> part : parts) {
    for (tcommand row : part) {
      if (*row.doc) row.doc = docs.emplace_back(withprefix(prefix, row.doc)).c_str();
      rows.push_back(row);
    }
  }
  return rows;
}
