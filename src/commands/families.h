// The command families, one table each, in the order they are registered.
#pragma once
#include "commands/commandtable.h"

tcommandfamily printcommands();
tcommandfamily librarycommands();
tcommandfamily mathsettingscommands();
tcommandfamily mathcommands();
tcommandfamily dumpcommands();
tcommandfamily subprogramcommands();
tcommandfamily iocommands();
tcommandfamily tablecommands();
tcommandfamily textcommands();
tcommandfamily listcommands();
tcommandfamily stackcommands();
// color.map.*, color.alpha.*, color.getrgb: the one colour table.
tcommandfamily colourmapcommands();
// The global clear, clean, new and dump; library families register before them.
tcommandfamily workspacecommands();
// freeimage.* and imagemagick.*: global names behind the workspace ones.
tcommandfamily imagelibrarycommands();
tcommandfamily imagecommands();
tcommandfamily scalarcommands();
tcommandfamily vectorcommands();
tcommandfamily tensorcommands();
tcommandfamily meshcommands();
tcommandfamily linecommands();
