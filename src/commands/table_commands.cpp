// Placeholder family, filled by its library.
#include "commands/families.h"

tcommandfamily tablecommands() { return {"", {}}; }
