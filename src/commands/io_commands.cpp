// Files and directories: the script's file list and directory list with their cursors,
// the file and directory operations and the parts of names.
#include <vector>

#include "commands/families.h"
#include "base/filebuffer.h"
#include "library/filelist.h"
#include "library/filenames.h"
#include "library/fileops.h"
#include "script/registry.h"
#include "script/values.h"
#include "script/variables.h"
#include "shell/files.h"

namespace {

using tnamepart = utf16 (*)(const utf16&);
utf16 wholename(const utf16& name) { return name; }

// A flag set by its parameter, on without one.
template <bool& flag>
void flagcmd(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  flag = paramcount(s) == 0 || textbool(param(s, 1));
}

void fileshort(tscript& s) {
  if (checkparams(s, 2)) setvar(s, param(s, 1), nameshortfile(param(s, 2)));
}

// --- the two lists: each handler is written once for both ---------------------------

// Without a parameter the list stays and the cursor goes to the first entry.
template <tfilelist& L, bool recursive>
void listnew(tscript& s) {
  if (paramcount(s) > 1) return reportmax(s, 1);
  if (paramcount(s) == 1) filelistnew(L, param(s, 1), recursive);
  filelistgo(L, 1);
}

template <tfilelist& L, bool recursive>
void listadd(tscript& s) {
  if (checkparams(s, 1)) filelistadd(L, param(s, 1), recursive);
}

// Adds with full paths: a relative pattern is taken from the working directory.
template <tfilelist& L>
void listcompleteadd(tscript& s) {
  if (!checkparams(s, 1)) return;
  const utf16 pattern = param(s, 1);
  filelistadd(L, charat(pattern, 1) == '/' ? pattern : workingdir() + "/" + pattern);
}

template <tfilelist& L, bool reset>
void listfromfile(tscript& s) {
  if (checkparams(s, 1) && filelistfromfile(L, param(s, 1), reset) && reset) filelistgo(L, 1);
}

template <tfilelist& L, bool weak>
void listsub(tscript& s) {
  if (checkparams(s, 1)) filelistsub(L, param(s, 1), weak);
}

template <tfilelist& L>
void listclear(tscript& s) {
  if (checkparams(s, 0)) filelistclear(L);
}

template <tfilelist& L>
void listcount(tscript& s) {
  setresult(s, nattext(filelistcount(L)));
}

template <tfilelist& L>
void listrest(tscript& s) {
  setresult(s, nattext(filelistrest(L)));
}

// A part of the entry at the cursor plus offset; empty outside the list.
template <tfilelist& L, int offset, tnamepart part>
void listget(tscript& s) {
  const tfileentry* e = filelistat(L, offset);
  setresult(s, e ? part(e->name) : utf16());
}

template <tfilelist& L>
void listcomplete(tscript& s) {
  const tfileentry* e = filelistat(L);
  if (!e) return setresult(s, utf16());
  setresult(s, charat(e->name, 1) == '/' ? e->name : workingdir() + "/" + e->name);
}

// first (where 1), last (where 2), before (-1) and next (+1, or + n with a parameter).
template <tfilelist& L, int where>
void listmove(tscript& s) {
  if (where == 1 && paramcount(s) > 1) return reportmax(s, 1);
  if (where != 1 && !checkparams(s, 0)) return;
  if (where == 0) filelistgo(L, 1);
  if (where == 2) filelistgo(L, filelistcount(L));
  if (where == -1) filelistgo(L, L.cursor - 1);
  if (where == 1) filelistgo(L, L.cursor + (paramcount(s) == 1 ? textnat(param(s, 1)) : 1));
}

template <tfilelist& L, tfileorder order>
void listsort(tscript& s) {
  if (checkparams(s, 0)) filelistsort(L, order);
}

template <tfilelist& L>
void listflip(tscript& s) {
  if (checkparams(s, 0)) filelistflip(L);
}

template <tfilelist& L>
void listreplace(tscript& s) {
  if (checkparams(s, 2)) filelistreplace(L, param(s, 1), param(s, 2));
}

// --- files -----------------------------------------------------------------------

void filedelete(tscript& s) {
  if (checkparams(s, 1)) deletefiles(param(s, 1));
}

void filejoin(tscript& s) {
  if (paramcount(s) < 2) return reportmin(s, 2);
  std::vector<utf16> sources;
  for (int64_t i = 1; i < paramcount(s); ++i) sources.push_back(param(s, i));
  joinfiles(sources, param(s, paramcount(s)));
}

void copymethod(tscript& s) {
  if (checkparams(s, 1)) filecopymethod = textnat(param(s, 1));
}

bool copyone(const utf16& from, const utf16& to) { return copyfile(from, to); }

// A two-name operation, and its .to form: each file of the pattern into the directory.
template <bool (*operation)(const utf16&, const utf16&), bool todir>
void filepair(tscript& s) {
  if (!checkparams(s, 2)) return;
  const utf16 from = param(s, 1), to = param(s, 2);
  if (!todir) {
    operation(from, to);
    return;
  }
  std::vector<tfileentry> found;
  expandpattern(from, false, found);
  if (found.empty()) checkio(from, io_notfound);
  for (const tfileentry& e : found) operation(e.name, intodir(to, e.name));
}

void filerepair(tscript& s) {
  if (checkparams(s, 1)) repairfiles(param(s, 1));
}

void filegetsize(tscript& s) {
  if (checkparams(s, 1)) setresult(s, nattext(filesize(param(s, 1))));
}

void filegetage(tscript& s) {
  if (checkparams(s, 1)) setresult(s, nattext(fileage(param(s, 1))));
}

void filegetattr(tscript& s) {
  if (checkparams(s, 1)) setresult(s, fileattributes(param(s, 1)));
}

void workdir(tscript& s) { setresult(s, workingdir()); }

// --- directories -------------------------------------------------------------------

// A one-name operation on a directory.
template <bool (*operation)(const utf16&)>
void dirone(tscript& s) {
  if (checkparams(s, 1)) operation(param(s, 1));
}

bool hardchange(const utf16& name) { return makedirs(name) && changedir(name); }

// --- names ---------------------------------------------------------------------------

template <tnamepart part>
void namepart(tscript& s) {
  if (checkparams(s, 1)) setresult(s, part(param(s, 1)));
}

using enum tcommandkind;
constexpr tfilelist& files = scriptfiles;
constexpr tfilelist& dirs = scriptdirs;

constexpr tcommand rows[] = {
    {"io.sorting", procedure, flagcmd<expandsorted>, nullptr, "io.sorting 1 // sort the files of a pattern by name (default on)"},
    {"io.align", procedure, flagcmd<stringcomparealigned>, nullptr, "io.align 1 // compare names character by character, not shorter first"},
    {"io.fileshort", procedure, fileshort, nullptr, "io.fileshort name \"a/b.txt\" // the constant name gets the short name (b)"},
    {"io.files", procedure, listnew<files, false>, nullptr, "io.files \"*.png\" // file list from a pattern; without one go to the first"},
    {"io.files.new", procedure, listnew<files, false>, nullptr, "io.files.new \"data/*.nii.gz\" // same as io.files"},
    {"io.files.length", variablefunction, listcount<files>, nullptr, "a := io.files.length // number of files in the list"},
    {"io.files.size", variablefunction, listcount<files>, nullptr, "a := io.files.size // same as io.files.length"},
    {"io.files.rest", variablefunction, listrest<files>, nullptr, "a := io.files.rest // the current file and those behind it"},
    {"io.files.get", variablefunction, listget<files, 0, wholename>, nullptr, "a := io.files.get // full name of the current file"},
    {"io.files.getdir", variablefunction, listget<files, 0, namedir>, nullptr, "a := io.files.getdir // directory of the current file"},
    {"io.files.getprec", variablefunction, listget<files, -1, wholename>, nullptr, "a := io.files.getprec // full name of the file before"},
    {"io.files.getfile", variablefunction, listget<files, 0, namefile>, nullptr, "a := io.files.getfile // current file with extension, no directory"},
    {"io.files.getsucc", variablefunction, listget<files, 1, wholename>, nullptr, "a := io.files.getsucc // full name of the file behind"},
    {"io.files.getname", variablefunction, listget<files, 0, namestem>, nullptr, "a := io.files.getname // current name without its extension"},
    {"io.files.getshort", variablefunction, listget<files, 0, nameshortfile>, nullptr, "a := io.files.getshort // current file without directory and extension"},
    {"io.files.getfileextension", variablefunction, listget<files, 0, namelastsuffix>, nullptr, "a := io.files.getfileextension // last extension (gz)"},
    {"io.files.getextension", variablefunction, listget<files, 0, fileextension>, nullptr, "a := io.files.getextension // extension (nii.gz)"},
    {"io.files.fromfile", procedure, listfromfile<files, true>, nullptr, "io.files.fromfile \"list.txt\" // file list from the lines of a text file"},
    {"io.files.add", procedure, listadd<files, false>, nullptr, "io.files.add \"*.tif\" // add the files of a pattern"},
    {"io.files.add.fromfile", procedure, listfromfile<files, false>, nullptr, "io.files.add.fromfile \"list.txt\" // add the files named in a text file"},
    {"io.files.sub", procedure, listsub<files, false>, nullptr, "io.files.sub \"data/x*\" // remove the files whose names match"},
    {"io.files.subweak", procedure, listsub<files, true>, nullptr, "io.files.subweak \"x*\" // remove matches, directories ignored"},
    {"io.files.clear", procedure, listclear<files>, nullptr, "io.files.clear // empty the file list"},
    {"io.files.first", procedure, listmove<files, 0>, nullptr, "io.files.first // go to the first file"},
    {"io.files.next", procedure, listmove<files, 1>, nullptr, "io.files.next // go to the next file; io.files.next 3 skips three"},
    {"io.files.before", procedure, listmove<files, -1>, nullptr, "io.files.before // go to the file before"},
    {"io.files.last", procedure, listmove<files, 2>, nullptr, "io.files.last // go to the last file"},
    {"io.files.sort", procedure, listsort<files, tfileorder::name>, nullptr, "io.files.sort // sort by name"},
    {"io.files.sort.real", procedure, listsort<files, tfileorder::number>, nullptr, "io.files.sort.real // sort by the number in the name"},
    {"io.files.number", procedure, listsort<files, tfileorder::number>, nullptr, "io.files.number // same as io.files.sort.real"},
    {"io.files.sort.size", procedure, listsort<files, tfileorder::size>, nullptr, "io.files.sort.size // sort by size"},
    {"io.files.sort.date", procedure, listsort<files, tfileorder::date>, nullptr, "io.files.sort.date // sort by date, oldest first"},
    {"io.files.flip", procedure, listflip<files>, nullptr, "io.files.flip // reverse the order"},
    {"io.files.replacetxt", procedure, listreplace<files>, nullptr, "io.files.replacetxt \"old\" \"new\" // replace a text in all names"},
    {"io.file.delete", procedure, filedelete, nullptr, "io.file.delete \"*.tmp\" // delete the files of a pattern"},
    {"io.file.remove", procedure, filedelete, nullptr, "io.file.remove \"*.tmp\" // same as io.file.delete"},
    {"io.file.erase", procedure, filedelete, nullptr, "io.file.erase \"*.tmp\" // same as io.file.delete"},
    {"io.file.join", procedure, filejoin, nullptr, "io.file.join \"a.txt\" \"b.txt\" \"ab.txt\" // the files one after the other into the last"},
    {"io.file.copy.method", procedure, copymethod, nullptr, "io.file.copy.method 0 // the copy method"},
    {"io.file.copy", procedure, filepair<copyone, false>, nullptr, "io.file.copy \"a.txt\" \"a.txt.gz\" // copy; \".gz\" on one side packs or unpacks"},
    {"io.file.copy.to", procedure, filepair<copyone, true>, nullptr, "io.file.copy.to \"*.txt\" \"backup\" // copy the files into a directory"},
    {"io.file.move", procedure, filepair<movefile, false>, nullptr, "io.file.move \"a.txt\" \"b.txt\" // move a file; an existing target is replaced"},
    {"io.file.move.to", procedure, filepair<movefile, true>, nullptr, "io.file.move.to \"*.txt\" \"done\" // move the files into a directory"},
    {"io.file.rename", procedure, filepair<renamefile, false>, nullptr, "io.file.rename \"a.txt\" \"b.txt\" // rename a file"},
    {"io.file.repair", procedure, filerepair, nullptr, "io.file.repair \"*\" // blanks and shell characters in file names become _"},
    {"io.file.getsize", function, filegetsize, nullptr, "a := io.file.getsize \"a.txt\" // size in bytes; -1 when missing"},
    {"io.file.getage", function, filegetage, nullptr, "a := io.file.getage \"a.txt\" // seconds since the last change"},
    {"io.file.getattr", function, filegetattr, nullptr, "a := io.file.getattr \"a.txt\" // attributes as -rw-r--r--"},
    {"io.workdir", variablefunction, workdir, nullptr, "a := io.workdir // the working directory"},
    {"io.dirs", procedure, listnew<dirs, false>, nullptr, "io.dirs \"data/*\" // directory list from a pattern"},
    {"io.dirs.new", procedure, listnew<dirs, false>, nullptr, "io.dirs.new \"data/*\" // same as io.dirs"},
    {"io.dirs.rnew", procedure, listnew<dirs, true>, nullptr, "io.dirs.rnew \"data/*\" // directory list with all directories below"},
    {"io.dirs.length", variablefunction, listcount<dirs>, nullptr, "a := io.dirs.length // number of directories in the list"},
    {"io.dirs.size", variablefunction, listcount<dirs>, nullptr, "a := io.dirs.size // same as io.dirs.length"},
    {"io.dirs.rest", variablefunction, listrest<dirs>, nullptr, "a := io.dirs.rest // the current directory and those behind it"},
    {"io.dirs.get", variablefunction, listget<dirs, 0, wholename>, nullptr, "a := io.dirs.get // the current directory"},
    {"io.dirs.complete", variablefunction, listcomplete<dirs>, nullptr, "a := io.dirs.complete // the current directory as a full path"},
    {"io.dirs.add", procedure, listadd<dirs, false>, nullptr, "io.dirs.add \"more/*\" // add the directories of a pattern"},
    {"io.dirs.radd", procedure, listadd<dirs, true>, nullptr, "io.dirs.radd \"more/*\" // add them with all directories below"},
    {"io.dirs.complete.add", procedure, listcompleteadd<dirs>, nullptr, "io.dirs.complete.add \"more/*\" // add them as full paths"},
    {"io.dirs.sub", procedure, listsub<dirs, false>, nullptr, "io.dirs.sub \"data/x*\" // remove the directories whose names match"},
    {"io.dirs.subweak", procedure, listsub<dirs, true>, nullptr, "io.dirs.subweak \"x*\" // remove matches, parents ignored"},
    {"io.dirs.clear", procedure, listclear<dirs>, nullptr, "io.dirs.clear // empty the directory list"},
    {"io.dirs.first", procedure, listmove<dirs, 0>, nullptr, "io.dirs.first // go to the first directory"},
    {"io.dirs.next", procedure, listmove<dirs, 1>, nullptr, "io.dirs.next // go to the next directory"},
    {"io.dirs.before", procedure, listmove<dirs, -1>, nullptr, "io.dirs.before // go to the directory before"},
    {"io.dirs.last", procedure, listmove<dirs, 2>, nullptr, "io.dirs.last // go to the last directory"},
    {"io.dirs.sort", procedure, listsort<dirs, tfileorder::name>, nullptr, "io.dirs.sort // sort by name"},
    {"io.dirs.sort.real", procedure, listsort<dirs, tfileorder::number>, nullptr, "io.dirs.sort.real // sort by the number in the name"},
    {"io.dirs.number", procedure, listsort<dirs, tfileorder::number>, nullptr, "io.dirs.number // same as io.dirs.sort.real"},
    {"io.dirs.sort.date", procedure, listsort<dirs, tfileorder::date>, nullptr, "io.dirs.sort.date // sort by date, oldest first"},
    {"io.dirs.flip", procedure, listflip<dirs>, nullptr, "io.dirs.flip // reverse the order"},
    {"io.dir.make", procedure, dirone<makedirs>, nullptr, "io.dir.make \"out/a/b\" // make a directory with its parents"},
    {"io.dir.delete", procedure, dirone<deleteemptydir>, nullptr, "io.dir.delete \"out\" // remove an empty directory"},
    {"io.dir.remove", procedure, dirone<deleteemptydir>, nullptr, "io.dir.remove \"out\" // same as io.dir.delete"},
    {"io.dir.erase", procedure, dirone<deleteemptydir>, nullptr, "io.dir.erase \"out\" // same as io.dir.delete"},
    {"io.dir.harddelete", procedure, dirone<harddeletedir>, nullptr, "io.dir.harddelete \"out\" // remove a directory with all it holds"},
    {"io.dir.hardremove", procedure, dirone<harddeletedir>, nullptr, "io.dir.hardremove \"out\" // same as io.dir.harddelete"},
    {"io.dir.harderase", procedure, dirone<harddeletedir>, nullptr, "io.dir.harderase \"out\" // same as io.dir.harddelete"},
    {"io.dir.copy", procedure, filepair<copydir, false>, nullptr, "io.dir.copy \"data\" \"backup\" // copy a directory tree"},
    {"io.dir.rename", procedure, filepair<renamedir, false>, nullptr, "io.dir.rename \"old\" \"new\" // rename a directory"},
    {"io.dir.change", procedure, dirone<changedir>, nullptr, "io.dir.change \"data\" // change the working directory"},
    {"io.dir.hardchange", procedure, dirone<hardchange>, nullptr, "io.dir.hardchange \"out\" // make the directory if needed and change to it"},
    {"io.getdir", function, namepart<namedir>, nullptr, "a := io.getdir \"a/b/c.nii.gz\" // a/b/"},
    {"io.getfile", function, namepart<namefile>, nullptr, "a := io.getfile \"a/b/c.nii.gz\" // c.nii.gz"},
    {"io.getfilename", function, namepart<namestem>, nullptr, "a := io.getfilename \"a/b/c.nii.gz\" // a/b/c.nii"},
    {"io.getshortfilename", function, namepart<nameshortfile>, nullptr, "a := io.getshortfilename \"a/b/c.nii.gz\" // c.nii"},
    {"io.getfullfileextension", function, namepart<fileextension>, nullptr, "a := io.getfullfileextension \"a/b/c.nii.gz\" // nii.gz"},
    {"io.getfileextension", function, namepart<namelastsuffix>, nullptr, "a := io.getfileextension \"a/b/c.nii.gz\" // gz"},
    {"io.getshortdir", function, namepart<nameshortdir>, nullptr, "a := io.getshortdir \"a/b/c.nii.gz\" // b"},
    {"io.getbash", function, namepart<bashname>, nullptr, "a := io.getbash \"my file (1).txt\" // the name escaped for the shell"},
};

}  // namespace

tcommandfamily iocommands() { return {"", rows}; }
