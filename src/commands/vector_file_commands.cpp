// The vector field's files: loading, saving, headers and appending.
#include "commands/vectorfile_rows.h"
#include "field/workspaces.h"
#include "formats/scalarfile.h"
#include "formats/vectorfile.h"
#include "formats/vectornifti.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

tvectorfield& current() { return currentfield(vectorworkspace); }
uint8_t loadkind() { return vectorworkspace.defaultkind; }

void loadcmd(tscript& s) {
  if (checkparams(s, 1)) vectorload(current(), loadkind(), param(s, 1));
}

void loadniftcmd(tscript& s) {
  if (checkparams(s, 1)) vectorniftiload(current(), loadkind(), param(s, 1));
}

void propertiescmd(tscript& s) {
  if (checkparams(s, 1)) vectorloadproperties(current(), param(s, 1));
}

void appendcmd(tscript& s) {
  if (checkparams(s, 1)) vectorappend(current(), param(s, 1));
}

// An optional second parameter scales each component while writing.
void savecmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportmin(s, 1);
  if (n > 2) return reportmax(s, 2);
  vectorsave(current(), param(s, 1), n == 2 ? textvector(param(s, 2)) : tvector{1, 1, 1});
}

void infocmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportmin(s, 1);
  if (n > 2) return reportmax(s, 2);
  scalarinfo(param(s, 1), optparam(s, 2));
}

using enum tcommandkind;
const tcommand rows[] = {
    {"load", procedure, loadcmd, nullptr, "load \"name\" // vector field by extension (nii, nii.gz, hdr, img)"},
    {"load.nii", procedure, loadniftcmd, nullptr, "load.nii \"name\" // NIfTI-1 vector field in one file"},
    {"loadnii", procedure, loadniftcmd, nullptr, ""},
    {"load.nii.gz", procedure, loadniftcmd, nullptr, "load.nii.gz \"name\" // NIfTI-1 vector field, gzip compressed"},
    {"loadnii.gz", procedure, loadniftcmd, nullptr, ""},
    {"load.properties", procedure, propertiescmd, nullptr, "load.properties \"name\" // only offset and matrix of the file"},
    {"append", procedure, appendcmd, nullptr, "append \"name\" // merge a file into the field through global space"},
    {"save", procedure, savecmd, nullptr, "save \"name\" <1, 1, 1> // nii, nii.gz, hdr; optional scale of each component"},
    {"info", procedure, infocmd, nullptr, "info \"name\" \"out.txt\" // header as text, to the log or into a file"},
};

}  // namespace

std::span<const tcommand> vectorfilerows() { return rows; }
