// The parts of a file name, as the io.get* functions and the file list give them, and the
// forms of a name for the shell and for repair.
#pragma once
#include "script/utf16.h"

utf16 namedir(const utf16& name);         // "a/b/c.txt": "a/b/"; "" without a directory
utf16 namefile(const utf16& name);        // "c.txt"
utf16 nameshortfile(const utf16& name);   // "c": the file without its last suffix
utf16 namestem(const utf16& name);        // "a/b/c": the name without its last suffix
utf16 nameshortdir(const utf16& name);    // "b": the innermost directory
utf16 namelastsuffix(const utf16& name);  // "txt"; "gz" of "c.nii.gz"
// The extension of the readers (with "nii" in front of "gz") is fileextension.

// Each backslash, blank, "(", ")", "?", "!", "'" and double quote behind a backslash; the
// backslashes first, so that no escape is escaped again.
utf16 bashname(const utf16& name);
// The file part with blanks and the characters the shell would need escaped made "_".
utf16 repairedname(const utf16& name);
// The last number in the file part without its suffix, 0 when there is none.
double namenumber(const utf16& name);
