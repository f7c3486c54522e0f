// The syntax members: registering commands, finding them (newest first, with the plural
// rule), calling them, and the interface through which handlers read parameters and
// return results. Every parameter and syntax error of the language is reported here.
#pragma once
#include <cstdint>

#include "script/tscript.h"

// Registrars. K0 and K1 procedures, K2 functions, K3 one name as both, K4 variable functions.
void regproc0(tscript& s, const utf16& name, thandler h);
void regproc(tscript& s, const utf16& name, thandler h);
void regfunc(tscript& s, const utf16& name, thandler h);
void regboth(tscript& s, const utf16& name, thandler hproc, thandler hfunc);
void regvarfunc(tscript& s, const utf16& name, thandler h);
void regblock(tscript& s, const utf16& name, thandler enter, thandler leave);
// Script members (procedure, function, sub); false if a double in the same scope.
bool regscript(tscript& s, const utf16& name, int64_t level, uint8_t kind, int64_t bodyline,
               const utf16& text1 = utf16(), const utf16& text2 = utf16(), const utf16& text3 = utf16());
// True when a member of any kind has exactly this full name.
bool ismember(const tscript& s, const utf16& fullname);
// Drops all members of `level` and above (the end of a block, the start of a run).
void dropmembers(tscript& s, int64_t level);
void setprefix(tscript& s, const utf16& text);
void clearprefix(tscript& s);

// Lookups return the member index from 0, or -1. They raise the use count of a hit.
enum class tlookup { procedure, function, varfunction };
int64_t lookup(tscript& s, const utf16& name, tlookup what);
// The same without touching use counts: for tests of existence while passing over blocks.
bool isregistered(const tscript& s, const utf16& name, tlookup what);
// A procedure with low nibble 1 (a block), for the pass-over walk.
bool isblockmember(tscript& s, const utf16& name);

// Calls. The parameters have been split into s.params before.
void callproc(tscript& s, int64_t line, const utf16& name);
void callfunc(tscript& s, const utf16& name);
// Evaluates a variable function inside a parameter; false when unknown (reported).
bool callvarfunc(tscript& s, const utf16& name, utf16& out);

// Handler interface.
int64_t paramcount(const tscript& s);
bool param(tscript& s, utf16& out, int64_t i);
utf16 param(tscript& s, int64_t i);
utf16 optparam(const tscript& s, int64_t i);
bool rawparam(tscript& s, utf16& out, int64_t i);
bool checkparams(tscript& s, int64_t n);
void reportcount(tscript& s, int64_t n);
void reportmin(tscript& s, int64_t n);
void reportmax(tscript& s, int64_t n);
void setresult(tscript& s, const utf16& text);
utf16 getresult(const tscript& s);
utf16 gettarget(const tscript& s);
void settarget(tscript& s, const utf16& text);

// Reporters: print, store the text in lasterror, set halted. The handler just returns.
void reporterror(tscript& s, const utf16& text);
void reportsyntax(tscript& s, const utf16& text);
void reportunknown(tscript& s, const utf16& text, const char* what);  // ")! Unknown <what>!"
void reportparameter(tscript& s, const utf16& text);                 // "Parameter error! ..."
// " in line <n> (<file>)" for the current line.
utf16 lineplace(const tscript& s);
