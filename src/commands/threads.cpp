#include "commands/threads.h"

#include <cmath>

#include "script/values.h"
#include "script/variables.h"

int64_t threadlimit(const tscript& s) {
  const double v = textreal(getvar(s, "thread.max"));
  if (!(v >= 1)) return 1;
  return v > 4096 ? 4096 : std::llround(v);
}
