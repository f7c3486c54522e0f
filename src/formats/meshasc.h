// ASC, CSV and PRN: point lists, and the NORM_ASCII mesh form.
#pragma once
#include "formats/meshfile.h"

bool ascread(tmesh& m, const utf16& name);
