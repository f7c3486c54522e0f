// The two output sinks, console and log, and the self-rewriting progress line.
// Only the script thread prints.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "script/utf16.h"

extern bool consoleon;    // console echo (option verbose)
extern bool logon;        // the log file is open
extern bool interactive;  // console input and colours allowed; off after -strict

void print(std::string_view utf8);
void print(const utf16& text);
void println(std::string_view utf8);
void println(const utf16& text);
void printlnempty();
inline void print(const char* utf8) { print(std::string_view(utf8)); }
inline void print(const std::string& utf8) { print(std::string_view(utf8)); }
inline void println(const char* utf8) { println(std::string_view(utf8)); }
inline void println(const std::string& utf8) { println(std::string_view(utf8)); }
void flushconsole();

// A line from the console, or an empty text when the console may not be read.
utf16 readline();
// The same, false when the console may not be read or its input has ended.
bool readconsoleline(utf16& out);

// ANSI colour codes of the colour prints; empty unless interactive.
enum class tcolor { red, green, blue, yellow, cyan, purple };
std::string colorbegin(tcolor c);
std::string colorend();

bool logopen(const std::string& path);  // append mode; false leaves logon off
void logclose();

// Progress: the line is rewritten in place with a carriage return and never reaches the log.
void waitbegin(const utf16& text);
void waittick(const utf16& text, int64_t i, int64_t n);
void waitready(const utf16& text, int64_t i, int64_t n);
void progress(const utf16& text, double fraction);
void progressend();

// A duration by its two largest units: "0 sec", "1 min 5 sec", "3 sec 20 100sec".
std::string timetext(double seconds);
