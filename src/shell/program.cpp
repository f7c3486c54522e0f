#include "shell/program.h"

#include <algorithm>
#include <thread>
#include <vector>

#include "commands/commandtable.h"
#include "library/table.h"
#include "field/workspaces.h"
#include "formats/imagefile.h"
#include "formats/imagelibs.h"
#include "formats/lineformats.h"
#include "formats/meshfile.h"
#include "formats/scalarfile.h"
#include "formats/tensorfile.h"
#include "formats/vectorfile.h"
#include "script/run.h"
#include "script/tscript.h"
#include "script/variables.h"
#include "shell/cluster.h"
#include "shell/console.h"
#include "shell/files.h"
#include "shell/firstrun.h"
#include "shell/options.h"

tscript script;

namespace {

// One layer of double quotes, then one of single quotes, off both ends.
utf16 stripquotes(const utf16& name) {
  utf16 out = name;
  for (uint16_t q : {uint16_t('"'), uint16_t('\'')})
    if (length(out) >= 2 && charat(out, 1) == q && charat(out, length(out)) == q) out = copy(out, 2, length(out) - 2);
  return out;
}

// An option with a script meaning: kept as the variable `variable` (usually its own name).
struct tscriptoption {
  const char* name;
  const char* variable;
  const char* fallback;
  const char* description;
  const char* formats;  // the note line behind it; nullptr for none
  std::string (*tablenotes)() = nullptr;  // or the note made from the kind's format table
  std::string (*linenotes)() = nullptr;   // the line files, shown with the mesh files
};

std::string lineinputs() { return "lines: " + lineinputnote(); }
std::string lineoutputs() { return "lines: " + lineoutputnote(); }

constexpr tscriptoption inputoptions[] = {
    {"image.input", "image.input", "image.ppm", "image input file", nullptr, imageinputnote},
    {"scalar.input", "scalar.input", "scalar.nii.gz", "scalar field input file", nullptr, scalarinputnote},
    {"vector.input", "vector.input", "vector.nii.gz", "vector field input file", nullptr, vectorinputnote},
    {"tensor.input", "tensor.input", "tensor.nii.gz", "tensor field input file", nullptr, tensorinputnote},
    {"mesh.input", "mesh.input", "input.obj", "mesh input file", nullptr, meshinputnote, lineinputs},
};

constexpr tscriptoption transformoptions[] = {
    {"mesh.split", "mesh.split", "", "split the mesh into its objects", nullptr},
    {"mesh.smooth", "mesh.smooth", "", "smooth the mesh", nullptr},
    {"mesh.rotate", "mesh.rotate", "", "rotate the mesh by <x, y, z> degrees", nullptr},
    // Read as mesh.transform, kept as mesh.translate: both names stay as users know them.
    {"mesh.transform", "mesh.translate", "", "translate the mesh by <x, y, z>", nullptr},
    {"mesh.scale", "mesh.scale", "", "scale the mesh by <x, y, z>", nullptr},
};

constexpr tscriptoption outputoptions[] = {
    {"image.type", "image.type", "png", "image output type", nullptr, imageoutputnote},
    {"scalar.type", "scalar.type", "nii.gz", "scalar field output type", nullptr, scalaroutputnote},
    {"vector.type", "vector.type", "nii.gz", "vector field output type", nullptr, vectoroutputnote},
    {"tensor.type", "tensor.type", "nii.gz", "tensor field output type", nullptr, tensoroutputnote},
    {"mesh.type", "mesh.type", "obj", "mesh output type", nullptr, meshoutputnote, lineoutputs},
};

template <size_t n>
void declaregroup(const char* title, const tscriptoption (&group)[n], bool lowercase) {
  section(options, title);
  for (const tscriptoption& o : group) {
    const utf16 value = opttext(options, o.name, o.fallback, o.description);
    if (o.formats) note(options, o.formats);
    if (o.tablenotes) note(options, o.tablenotes().c_str());
    if (o.linenotes) note(options, o.linenotes().c_str());
    setvarquiet(script, o.variable, lowercase ? lower(value) : value);
  }
}

void declareoptions(bool& first, utf16& macro) {
  first = optbool(options, "first", false, "Write first macro file example");
  macro = opttext(options, "macro", "voxmill.macro", "macro file");
  declaregroup("Input Options", inputoptions, false);
  section(options, "Image options");
  // The libraries are searched before their options, whose lines show their versions.
  imagelibrariesopen();
  const std::string fistatus = imagelibrarystatus(freeimage), imstatus = imagelibrarystatus(imagemagick);
  imagelibraryenable(freeimage, optbool(options, "freeimage", true, fistatus.empty() ? "use FreeImage where it is installed" : fistatus));
  imagelibraryenable(imagemagick,
                     optbool(options, "imagemagick", true, imstatus.empty() ? "use ImageMagick where it is installed" : imstatus));
  declaregroup("Transformation Options", transformoptions, false);
  declaregroup("Output Options", outputoptions, true);
}

void commandlinevariables() {
  const int64_t n = unknowncount(options);
  std::vector<utf16> seen;
  for (int64_t i = 1; i <= n; ++i) {
    utf16 name, value;
    if (!unknownoption(options, i, name, value)) continue;
    // The command line comes before the ini file, and the first of a name wins.
    const utf16 key = lower(name);
    if (std::find(seen.begin(), seen.end(), key) != seen.end()) continue;
    seen.push_back(key);
    setvarquiet(script, utf16("parameter.") + name, value);
  }
  const utf16 last = lastword(options);
  if (!empty(last)) setvarquiet(script, "parameter.last", last);
}

// After the help of "-h WORD": the documentation of the commands whose names contain WORD.
void listcommands(const std::string& word) {
  printlnempty();
  println("Commands with \"" + word + "\":");
  for (const std::string& line : commandsmatching(word)) println(line);
}

}  // namespace

int runprogram(int argc, char** argv) {
  init(options, argc, argv, "Voxmill", updatesite, "the voxmill developers", 2017);
  setusage(options, "voxmill [<options>]");
  bool first = false;
  utf16 macro;
  declareoptions(first, macro);
  const tclustersetting cluster = declareclusteroptions(options);
  helpfooter(options, "voxmill -image.input=*.ppm -image.type=png");
  if (options.showhelp && !empty(options.helpword)) listcommands(utf16toutf8(options.helpword));
  commandlinevariables();
  finish(options);
  setvarquiet(script, "thread.max", utf16(std::to_string(std::max(1u, std::thread::hardware_concurrency()))));
  setvarquiet(script, "parallel.part", utf16(std::to_string(cluster.part)));
  setvarquiet(script, "parallel.total", utf16(std::to_string(cluster.total)));
  script.parallelpart = cluster.part;
  script.paralleltotal = cluster.total;
  createworkspaces();
  registerallcommands(script);

  const utf16 macrofile = stripquotes(macro);
  if (!first && fileexists(macrofile)) {
    load(script.store, macrofile);
  } else {
    writefirstmacro(examplemacro(utf16toutf8(options.versiontext)));
  }
  runscript(script);
  const bool failed = !script.lasterror.isempty();
  workspacerelease(tableworkspace);
  releaseworkspaces();
  imagelibrariesclose();
  script = tscript();
  flushconsole();
  logclose();
  return cluster.exitcode && failed ? 1 : 0;
}
