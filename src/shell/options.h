// The command line and the ini file as name and value pairs. Each declared option prints
// one help line with its value, so the start of every run documents the settings in force.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "script/utf16.h"

struct toptions {
  utf16 productname, versionline, yearsline, programpath, currentdirectory, versiontext;
  int64_t year = 0, month = 0, day = 0;
  std::vector<utf16> optnames, optvalues;  // a plain word has an empty name
  utf16 usagetext;
  bool showhelp = false, waitforhelp = false;
  utf16 helpword;  // "-h WORD": the commands whose names contain WORD are listed after the help
  bool quiet = false;
  std::vector<std::string> arguments;  // the command line without the program name
};

extern toptions options;

// The site whose update path -update fetches from.
extern const char* const updatesite;

void init(toptions& o, int argc, char** argv, const utf16& productname, const utf16& site, const utf16& author,
          int64_t firstyear);
void setusage(toptions& o, const utf16& text);
void section(const toptions& o, const utf16& title);
void note(const toptions& o, const utf16& text);
bool optbool(toptions& o, const utf16& name, bool fallback, const utf16& description);
utf16 opttext(toptions& o, const utf16& name, const utf16& fallback, const utf16& description);
void helpfooter(toptions& o, const utf16& example);
int64_t unknowncount(const toptions& o);
bool unknownoption(const toptions& o, int64_t i, utf16& name, utf16& value);
utf16 lastword(const toptions& o);
// Drops both lists; ends the process with code 1 when help was shown.
void finish(toptions& o);
// The version text from the build date: (year - first year) "." month "." day.
utf16 versionfromdate(const std::string& builddate, int64_t firstyear);
// Parses the joined argument text into the two lists (also used for the ini file's lines).
void parsearguments(toptions& o, const utf16& joined);
