// The scalar field's files: loading, saving, headers, appending and label files.
#include "commands/fieldrows.h"
#include "commands/scalar_rows.h"
#include "field/workspaces.h"
#include "formats/scalarfile.h"
#include "formats/volumeformats.h"

namespace {

tscalarfield& current() { return currentfield(scalarworkspace); }
uint8_t loadkind() { return scalarworkspace.defaultkind; }

void loadcmd(tscript& s) {
  if (checkparams(s, 1)) scalarload(current(), loadkind(), param(s, 1));
}

void loadvolumecmd(tscript& s) {
  if (checkparams(s, 1)) scalarloadnifti(current(), loadkind(), param(s, 1));
}

template <tscalarreader read>
void loadformatcmd(tscript& s) {
  if (checkparams(s, 1)) scalarloadwith(current(), loadkind(), param(s, 1), read);
}

void loadrawcmd(tscript& s) {
  if (checkparams(s, 4))
    scalarloadraw(current(), loadkind(), param(s, 1), textnat(param(s, 2)), param(s, 3), textnatvector(param(s, 4)));
}

void loadscalecmd(tscript& s) {
  if (checkparams(s, 2)) scalarloadscale(current(), loadkind(), param(s, 1), textvector(param(s, 2)));
}

void propertiescmd(tscript& s) {
  if (checkparams(s, 1)) scalarloadproperties(current(), param(s, 1));
}

template <bool center>
void appendcmd(tscript& s) {
  if (checkparams(s, 1)) scalarappend(current(), param(s, 1), center);
}

void savecmd(tscript& s) {
  if (checkparams(s, 1)) scalarsave(current(), param(s, 1));
}

void infocmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportmin(s, 1);
  if (n > 2) return reportmax(s, 2);
  scalarinfo(param(s, 1), optparam(s, 2));
}

void loadlabelscmd(tscript& s) {
  if (checkparams(s, 1)) labelload(current(), param(s, 1));
}

void savelabelscmd(tscript& s) {
  if (checkparams(s, 1)) labelsave(current(), param(s, 1));
}

using enum tcommandkind;
const tcommand rows[] = {
    {"load", procedure, loadcmd, nullptr, "load \"name\" // volume by extension (nii, nii.gz, hdr, img, mif, mdf, mifx, pcr, am, vtk, vgl), else a stack of images (*.png)"},
    {"load.hdr", procedure, loadvolumecmd, nullptr, "load.hdr \"name\" // HDR (IMG)           : Analyze 7.5"},
    {"loadhdr", procedure, loadvolumecmd, nullptr, ""},
    {"load.nii", procedure, loadvolumecmd, nullptr, "load.nii \"name\" // NIfTI-1 in one file"},
    {"loadnii", procedure, loadvolumecmd, nullptr, ""},
    {"load.nii.gz", procedure, loadvolumecmd, nullptr, "load.nii.gz \"name\" // NIfTI-1, gzip compressed"},
    {"loadnii.gz", procedure, loadvolumecmd, nullptr, ""},
    {"load.mif", procedure, loadformatcmd<mifload>, nullptr, "load.mif \"name\" // MIF with MDF data, or MIFX with RAW data"},
    {"loadmif", procedure, loadformatcmd<mifload>, nullptr, ""},
    {"load.pcr", procedure, loadformatcmd<pcrload>, nullptr, "load.pcr \"name\" // PCR header with VOL data"},
    {"loadpcr", procedure, loadformatcmd<pcrload>, nullptr, ""},
    {"load.xml", procedure, loadformatcmd<xmlclipload>, nullptr, "load.xml \"name\" // XML clip of float slices"},
    {"loadxml", procedure, loadformatcmd<xmlclipload>, nullptr, ""},
    {"load.amira", procedure, loadformatcmd<amiraload>, nullptr, "load.amira \"name\" // AmiraMesh lattice: raw, HxByteRLE, HxZip"},
    {"loadamira", procedure, loadformatcmd<amiraload>, nullptr, ""},
    {"load.arf", procedure, loadformatcmd<arfload>, nullptr, "load.arf \"name\" // ARF movie, one frame a slice"},
    {"loadarf", procedure, loadformatcmd<arfload>, nullptr, ""},
    {"load.raw", procedure, loadrawcmd, nullptr, "load.raw \"name\" header \"word\" <x, y, z> // headerless: byte, signbyte, word, signword, longword, signlongword, quadword, signquadword, single, double, extended, rgb, rgba, wordrgb, wordrgba"},
    {"loadraw", procedure, loadrawcmd, nullptr, ""},
    {"load.scale", procedure, loadscalecmd, nullptr, "load.scale \"*.png\" <x, y, z> // stack of images with this voxel size"},
    {"load.properties", procedure, propertiescmd, nullptr, "load.properties \"name\" // only offset and matrix of the file"},
    {"append", procedure, appendcmd<false>, nullptr, "append \"name\" // merge a file into the field through global space"},
    {"appendcenter", procedure, appendcmd<true>, nullptr, "appendcenter \"name\" // the same, both centres on one another"},
    {"save", procedure, savecmd, nullptr, "save \"name\" // nii, nii.gz, hdr, or one image a slice (name_001.png)"},
    {"info", procedure, infocmd, nullptr, "info \"name\" \"out.txt\" // header as text, to the log or into a file"},
    {"load.labels", procedure, loadlabelscmd, nullptr, "load.labels \"name\" // maximal 0-999 labels"},
    {"save.labels", procedure, savelabelscmd, nullptr, "save.labels \"name\" // maximal 0-999 labels"},
};

}  // namespace

std::span<const tcommand> scalarfilerows() { return rows; }
