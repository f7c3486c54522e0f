// The list workspace: named lists of numbers, vectors or short texts that a macro builds,
// reads and evaluates. Each list holds elements of one kind in a dynamic typed array,
// the value that new elements take, the background that a read outside returns, and a
// cursor. The kind is chosen for new lists only; a list keeps its kind until it is made
// anew.
#pragma once
#include <cstdint>
#include <span>
#include <variant>
#include <vector>

#include "field/arrays.h"
#include "field/workspace.h"

// The element of a chars list: a text of at most seven characters.
struct tchars7 {
  uint8_t length = 0;
  uint16_t chars[7] = {};
  bool operator==(const tchars7&) const = default;
};
using tcharslist = tarraylist<tchars7, 0>;

// The kinds, numbered as the workspace's kind byte; the order is that of the arrays below.
enum tlistkind : uint8_t { list_nat = 1, list_real, list_complex, list_vector, list_hyper, list_chars };

struct tlist {
  std::variant<tintlist, treallist, tpointlist, tvectorlist, tquadlist, tcharslist> items;
  utf16 value;        // the element that list.new fills in, read in the list's kind
  utf16 background;   // what a read outside the list returns, read in the list's kind
  int64_t cursor = 1;  // the element of list.get without parameter; 0 or length + 1 outside
};

// The workspace entry's life: an empty list of the kind; value and background stay.
void fieldcreate(tlist& l, uint8_t kind = list_real);
void fieldrelease(tlist& l);
utf16 fielddescription(const tlist& l);  // "real(5)"
extern tworkspacelist<tlist> listworkspace;
tlist& currentlist();

uint8_t listkind(const tlist& l);
int64_t listlength(const tlist& l);
// Element i as text (from 1); the background outside.
utf16 listget(const tlist& l, int64_t i);
// Appends texts read in the list's kind (a chars list keeps their first seven characters).
void listadd(tlist& l, std::span<const utf16> texts);
// Removes the last element into out; false on an empty list.
bool listpop(tlist& l, utf16& out);
void listsetbackground(tlist& l, const utf16& text);
// The list made anew in the kind with n elements of its value.
void listnew(tlist& l, uint8_t kind, int64_t n);
void listflip(tlist& l);
void listmovecursor(tlist& l, int64_t to);  // kept within 0..length + 1
// to becomes a copy of from: kind, elements, value and background.
void listcopy(const tlist& from, tlist& to);

// Elements as four-component values and back, the form of the operand stack.
std::vector<thyper> listhypers(const tlist& l);
void listaddhypers(tlist& l, std::span<const thyper> values);

// One value a line, numbers always with "." whatever the display settings are.
bool listload(tlist& l, const utf16& name);
bool listsave(const tlist& l, const utf16& name);
// One row per index, the lists' elements separated by tabs; a list shorter than the
// longest gives its background.
bool listsavetable(std::span<const tlist* const> lists, const utf16& name);

// The smallest or largest element: numbers by value, vectors component by component,
// texts in the language's text order (empty text for an empty chars list).
utf16 listmin(const tlist& l);
utf16 listmax(const tlist& l);
// Passes of the arrays' 1-2-1 smoothing, vectors component by component; texts stay.
void listsmooth(tlist& l, int64_t passes);

// The outlier band: median +/- factor * |q75 - q25|.
extern double outlierfactor;
// flags becomes a nat list with 1 for each element of l that lies outside the band of
// baseline in any component, 0 inside. flags may be l or baseline itself. Texts are read
// as numbers.
void listoutliers(const tlist& l, const tlist& baseline, tlist& flags);
