#include "field/workspace.h"

utf16 workspacekey(const utf16& name) { return upper(name); }

utf16 lookupkey(const utf16& name) { return empty(name) ? utf16("DEFAULT") : workspacekey(name); }
