#include "shell/program.h"

#include <thread>

#include "commands/commandtable.h"
#include "script/run.h"
#include "script/tscript.h"
#include "script/variables.h"
#include "shell/console.h"
#include "shell/files.h"
#include "shell/options.h"

tscript script;

namespace {

const char* const firstruntext = "This is your first run of the program, please specify the file voxmill.macro!";

// One layer of double quotes, then one of single quotes, off both ends.
utf16 stripquotes(const utf16& name) {
  utf16 out = name;
  for (uint16_t q : {uint16_t('"'), uint16_t('\'')})
    if (length(out) >= 2 && charat(out, 1) == q && charat(out, length(out)) == q) out = copy(out, 2, length(out) - 2);
  return out;
}

// Options with a script meaning are kept as variables of scope 0 under their own name.
void scriptoption(const utf16& variable, const utf16& value) { setvarquiet(script, variable, value); }

void declareoptions(bool& first, utf16& macro) {
  first = optbool(options, "first", false, "Write first macro file example");
  macro = opttext(options, "macro", "voxmill.macro", "macro file");
  section(options, "Input Options");
  for (const auto& [name, fallback] : {std::pair<const char*, const char*>{"image.input", "image.ppm"},
                                       {"scalar.input", "scalar.nii.gz"},
                                       {"vector.input", "vector.nii.gz"},
                                       {"tensor.input", "tensor.nii.gz"},
                                       {"mesh.input", "input.obj"}})
    scriptoption(name, opttext(options, name, fallback, "input file"));
  section(options, "Image options");
  optbool(options, "freeimage", true, "use FreeImage where it is installed");
  optbool(options, "imagemagick", true, "use ImageMagick where it is installed");
  section(options, "Transformation Options");
  scriptoption("mesh.split", opttext(options, "mesh.split", "", "split mesh"));
  scriptoption("mesh.smooth", opttext(options, "mesh.smooth", "", "smooth mesh"));
  scriptoption("mesh.rotate", opttext(options, "mesh.rotate", "", "rotate mesh"));
  // Read as mesh.transform, kept as mesh.translate: both names stay as users know them.
  scriptoption("mesh.translate", opttext(options, "mesh.transform", "", "translate mesh"));
  scriptoption("mesh.scale", opttext(options, "mesh.scale", "", "scale mesh"));
  section(options, "Output Options");
  for (const char* name : {"image.type", "scalar.type", "vector.type", "tensor.type", "mesh.type"})
    scriptoption(name, opttext(options, name, "", "output file type"));
}

void commandlinevariables() {
  const int64_t n = unknowncount(options);
  for (int64_t i = 1; i <= n; ++i) {
    utf16 name, value;
    if (unknownoption(options, i, name, value)) setvarquiet(script, utf16("parameter.") + name, value);
  }
  const utf16 last = lastword(options);
  if (!empty(last)) setvarquiet(script, "parameter.last", last);
}

void writeexample() {
  tfile f;
  if (writefile(f, "voxmill.macro", true)) {
    for (const std::string& line : examplemacro(utf16toutf8(options.versiontext))) writetext(f, line + "\n");
    closefile(f);
  }
  println(firstruntext);
}

}  // namespace

int runprogram(int argc, char** argv) {
  init(options, argc, argv, "Voxmill", updatesite, "the voxmill developers", 2017);
  setusage(options, "voxmill [<options>]");
  bool first = false;
  utf16 macro;
  declareoptions(first, macro);
  helpfooter(options, "voxmill -image.input=*.ppm -image.type=png");
  commandlinevariables();
  finish(options);
  setvarquiet(script, "thread.max", utf16(std::to_string(std::max(1u, std::thread::hardware_concurrency()))));
  registerallcommands(script);

  const utf16 macrofile = stripquotes(macro);
  if (!first && fileexists(macrofile)) {
    load(script.store, macrofile);
  } else {
    writeexample();
  }
  runscript(script);
  script = tscript();
  flushconsole();
  logclose();
  return 0;
}
