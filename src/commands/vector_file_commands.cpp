// The vector and tensor fields' files: loading, saving, headers and appending.
#include "commands/vectorfile_rows.h"
#include "field/workspaces.h"
#include "formats/scalarfile.h"
#include "formats/tensorfile.h"
#include "formats/vectorfile.h"
#include "formats/vectorformats.h"
#include "formats/vectornifti.h"
#include "script/registry.h"
#include "script/values.h"

namespace {

// The one switch from the field to its formats.
bool fileload(tvectorfield& f, uint8_t kind, const utf16& name) { return vectorload(f, kind, name); }
bool fileload(ttensorfield& f, uint8_t kind, const utf16& name) { return tensorload(f, kind, name); }
bool niftiload(tvectorfield& f, uint8_t kind, const utf16& name) { return vectorniftiload(f, kind, name); }
bool niftiload(ttensorfield& f, uint8_t kind, const utf16& name) { return tensorniftiload(f, kind, name); }
void fileappend(tvectorfield& f, const utf16& name) { vectorappend(f, name); }
void fileappend(ttensorfield& f, const utf16& name) { tensorappend(f, name); }

template <auto& W>
void loadcmd(tscript& s) {
  if (checkparams(s, 1)) fileload(currentfield(W), W.defaultkind, param(s, 1));
}

template <auto& W>
void loadniftcmd(tscript& s) {
  if (checkparams(s, 1)) niftiload(currentfield(W), W.defaultkind, param(s, 1));
}

template <auto& W>
void propertiescmd(tscript& s) {
  if (checkparams(s, 1)) loadspaceproperties(currentfield(W).space, param(s, 1));
}

template <auto& W>
void appendcmd(tscript& s) {
  if (checkparams(s, 1)) fileappend(currentfield(W), param(s, 1));
}

// With a scale for each component the file is AmiraMesh, whatever its name.
void vectorsavecmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportmin(s, 1);
  if (n > 2) return reportmax(s, 2);
  const tvectorfield& f = currentfield(vectorworkspace);
  if (n == 2)
    amirasave(f, param(s, 1), textvector(param(s, 2)));
  else
    vectorsave(f, param(s, 1), {1, 1, 1});
}

void loadtextcmd(tscript& s) {
  if (checkparams(s, 1)) pairtextload(currentfield(vectorworkspace), vectorworkspace.defaultkind, param(s, 1));
}

void tensorsavecmd(tscript& s) {
  if (checkparams(s, 1)) tensorsave(currentfield(tensorworkspace), param(s, 1));
}

void infocmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportmin(s, 1);
  if (n > 2) return reportmax(s, 2);
  scalarinfo(param(s, 1), optparam(s, 2));
}

using enum tcommandkind;
template <auto& W>
constexpr tcommand readrows[] = {
    {"load", procedure, loadcmd<W>, nullptr, "load \"name\" // field by extension (nii, nii.gz, hdr, img; vectors also txt and image stacks)"},
    {"load.nii", procedure, loadniftcmd<W>, nullptr, "load.nii \"name\" // NIfTI-1 field in one file"},
    {"loadnii", procedure, loadniftcmd<W>, nullptr, ""},
    {"load.nii.gz", procedure, loadniftcmd<W>, nullptr, "load.nii.gz \"name\" // NIfTI-1 field, gzip compressed"},
    {"loadnii.gz", procedure, loadniftcmd<W>, nullptr, ""},
    {"load.properties", procedure, propertiescmd<W>, nullptr, "load.properties \"name\" // only offset and matrix of the file"},
    {"append", procedure, appendcmd<W>, nullptr, "append \"name\" // merge a file into the field through global space"},
};

const tcommand inforow[] = {
    {"info", procedure, infocmd, nullptr, "info \"name\" \"out.txt\" // header as text, to the log or into a file"},
};

const tcommand vectorsaverow[] = {
    {"load.txt", procedure, loadtextcmd, nullptr, "load.txt \"name\" // position and tip lines into the field's voxels"},
    {"loadtxt", procedure, loadtextcmd, nullptr, ""},
    {"save", procedure, vectorsavecmd, nullptr, "save \"name\" <1, 1, 1> // nii, nii.gz, hdr, fld, am, tessler, else text; with a scale: AmiraMesh"},
};
const tcommand tensorsaverow[] = {
    {"save", procedure, tensorsavecmd, nullptr, "save \"name\" // nii, nii.gz, hdr, nhdr (with .raw), else nrrd (xx, xy, xz, yy, yz, zz)"},
};

std::vector<tcommand> joined(std::span<const tcommand> a, std::span<const tcommand> b) {
  std::vector<tcommand> out(a.begin(), a.end());
  out.insert(out.end(), b.begin(), b.end());
  out.insert(out.end(), std::begin(inforow), std::end(inforow));
  return out;
}

}  // namespace

std::span<const tcommand> vectorfilerows() {
  static const std::vector<tcommand> rows = joined(readrows<vectorworkspace>, vectorsaverow);
  return rows;
}

std::span<const tcommand> tensorfilerows() {
  static const std::vector<tcommand> rows = joined(readrows<tensorworkspace>, tensorsaverow);
  return rows;
}
