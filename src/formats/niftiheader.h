// The 348-byte NIfTI-1 header, shared by the volume files of all field kinds: its record,
// the byte swap of foreign files, the way between header and place in space, and the
// header as text.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "field/spatial.h"
#include "script/utf16.h"

struct tniftiheader {
  int32_t sizeof_hdr;
  char data_type[10];
  char db_name[18];
  int32_t extents;
  int16_t session_error;
  char regular;
  char dim_info;
  int16_t dim[8];
  float intent_p1, intent_p2, intent_p3;
  int16_t intent_code;
  int16_t datatype;
  int16_t bitpix;
  int16_t slice_start;
  float pixdim[8];
  float vox_offset;
  float scl_slope;
  float scl_inter;
  int16_t slice_end;
  uint8_t slice_code;
  uint8_t xyzt_units;
  float cal_max, cal_min;
  float slice_duration;
  float toffset;
  int32_t glmax, glmin;
  char descrip[80];
  char aux_file[24];
  int16_t qform_code;
  int16_t sform_code;
  float quatern_b, quatern_c, quatern_d;
  float qoffset_x, qoffset_y, qoffset_z;
  float srow_x[4], srow_y[4], srow_z[4];
  char intent_name[16];
  char magic[4];
};
static_assert(sizeof(tniftiheader) == 348);
static_assert(offsetof(tniftiheader, dim) == 40 && offsetof(tniftiheader, pixdim) == 76);
static_assert(offsetof(tniftiheader, glmax) == 140 && offsetof(tniftiheader, qform_code) == 252);
static_assert(offsetof(tniftiheader, srow_x) == 280 && offsetof(tniftiheader, magic) == 344);

constexpr int32_t niftisize = 348;
constexpr int32_t nifti2size = 540;
constexpr int64_t niftidatastart = 352;  // header and the four bytes of the absent extension

// Every numeric field byte-reversed in place.
void swapheader(tniftiheader& h);
// The header from 348 bytes; a sizeof_hdr that is neither 348 nor 540 means a file of the
// other byte order: the header is swapped and the result is true.
bool takeheader(tniftiheader& h, const void* bytes);

// Offset and matrix of a header: sform first, then the quaternion, then pixdim; a zero
// axis falls back to the pixdim diagonal or the identity.
tspatial headerspace(const tniftiheader& h);
// srow, quaternion and qoffset of a place in space.
void spaceheader(const tspatial& s, tniftiheader& h);
// (b, c, d) as this program writes them from the nine matrix numbers, row after row.
tvector headerquaternion(const trows& m);

// The header's "  Transformation: " text; when split, four lines of at most 70 characters.
std::vector<utf16> transformationlines(const tspatial& s, bool split);

// The header as the info commands show it, one text a line.
std::vector<utf16> headertext(const tniftiheader& h);
const char* datatypename(int datatype);

// The type code of a (bitpix, datatype) pair, 0 for a pair that isn't read.
int niftitypecode(int bitpix, int datatype);
