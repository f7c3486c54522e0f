// Fetching a newer copy of the program through wget.
#pragma once
#include "script/utf16.h"

utf16 updateaddress(const utf16& site, const utf16& programpath);
void runupdate(const utf16& address, const utf16& programpath);
