// The optional libraries decode and encode in a child process (see base/childdecode.h):
// a crash, a limit or a hang there ends in the caller's usual message, and the script goes
// on. Pixels travel as rows from the top, 1, 3 or 4 channels of 1 or 2 byte samples: red,
// green, blue, alpha in this order.
#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/childdecode.h"
#include "field/imagefield.h"

// The least time a library gets before its decode or encode counts as hung; a fuzzer that
// feeds thousands of damaged files lowers it.
extern double librarybaseseconds;

// The child's side of a load or a save.
struct timagechild {
  tchildoutput& out;
  // A line for the parent to print (the library's error text).
  void note(std::string_view line);
  // The rows of a decoded image, to be filled; nullptr when there is no memory for them.
  uint8_t* rows(int64_t w, int64_t h, int channels, int samplebytes);
};

// Load: a header that claims what the file cannot hold never reaches decode (false, with no
// message). Otherwise decode runs in the child with limits from the file's size, the claimed
// size and the memory; its rows fill f (label: the progress label) when it succeeded.
bool isolatedload(timagefield& f, const utf16& name, const char* label,
                  const std::function<bool(timagechild&)>& decode);

// Save: the rows of f (channels and sample size as given) go to the child; encode writes them
// to `path`, a temporary name beside the final one with the same extension, which takes the
// final name only when the child succeeded.
struct tencoderows {
  const uint8_t* data;
  int64_t w, h;
  int channels, samplebytes;
};
bool isolatedsave(timagefield& f, const utf16& name, const char* label, int channels, int samplebytes,
                  const std::function<bool(timagechild&, const tencoderows&, const std::string& path)>& encode);
