// The one operand stack of the script: four-component values and the small stack
// language that the stack command speaks. A value with fewer components has zeros behind.
#pragma once
#include <cstdint>

#include "field/arrays.h"
#include "script/utf16.h"
#include "script/values.h"

// The stack, bottom first; created on first use.
tquadlist& operandstack();
int64_t stackdepth();
void stackpush(const thyper& h);
// The top, removed or left; an empty stack gives the zero value, so a word short of
// operands reads the missing ones as 0.
thyper stackpop();
thyper stackpeek();
void stackclear();
void stackflip();

// Applies the operator word (compared in lower case) and returns true, or returns false
// and leaves the stack alone when the word is no operator.
bool stackoperator(const utf16& word);
// One word as the stack command takes it: an operator acts, anything else is read as a
// number or vector and pushed. raw is the word as written, value what it stands for.
void stackword(const utf16& raw, const utf16& value);
