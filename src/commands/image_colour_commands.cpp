// The image family's colour work: compositing, focus stacking, masks by a band of values,
// extraction and split by colour, and colour images made of gray ones.
#include "commands/combine_handlers.h"
#include "commands/fieldrows.h"
#include "ops/compose.h"
#include "ops/split.h"

namespace {

using namespace combinewords;
constexpr auto& W = imageworkspace;
constexpr char reductionnote[] = "Fullgray images are divided by 256 (shr 8) and rgb converted to gray to fit in 8bit!";

// An empty target becomes rgba; one of another kind takes the passes in its own.
void overcmd(tscript& s) {
  if (!checkcount(s, operandlist)) return;
  auto c = combination<W>(s, 1, paramcount(s), tsizing::largest, imagergba);
  if (!c) return;
  if (c.target->kind != imagergba) println("Missing alpha channel!");
  imageover(*c.target, c.operands);
}

void stackingcmd(tscript& s) {
  if (!checkcount(s, operandlist)) return;
  auto c = combination<W>(s, 1, paramcount(s));
  if (c) imagestacking(*c.target, c.operands);
}

// old1 mask same [t]: old1 where the mask lies within same - t .. same + t (`inside`), or
// outside it. The band is cut to the range of the target's kind; colour compares red,
// green and blue, and a pixel is inside only when all three are.
template <bool inside>
void bandmaskcmd(tscript& s) {
  if (!checkcount(s, {3, 4})) return;
  const double t = paramcount(s) == 4 ? textreal(param(s, 4)) : 0;
  auto c = combination<W>(s, 1, 3);
  if (!c) return;
  const int channels = targetchannels(c);
  const auto top = static_cast<double>(sampletop(*c.target));
  runcombination(c, inside ? maskingsame : maskingdifferent, [=](const tpixel& p, int64_t* out) {
    bool within = true;
    for (int k = 0; k < std::min(channels, 3) && within; ++k) {
      const auto same = static_cast<double>(p.get(2, k)), mask = static_cast<double>(p.get(1, k));
      within = std::max(0.0, same - t) <= mask && mask <= std::min(top, same + t);
    }
    if (within != inside) return;
    for (int k = 0; k < channels; ++k) out[k] = p.get(0, k);
  });
}

// old1 and colours <r, g, b> (or gray values).
void extractcolorcmd(tscript& s) {
  if (!checkcount(s, operandlist)) return;
  std::vector<int64_t> keys;
  for (int64_t i = 2; i <= paramcount(s); ++i) keys.push_back(textkey(param(s, i)));
  auto c = combination<W>(s, 1, 1, tsizing::first);
  if (c) imageextract(*c.target, *c.operands[0], keys);
}

// old1 and points <x, y> of old1 whose colours are kept.
void extractcolorpointcmd(tscript& s) {
  if (!checkcount(s, operandlist)) return;
  auto c = combination<W>(s, 1, 1, tsizing::first);
  if (!c) return;
  std::vector<int64_t> keys;
  for (int64_t i = 2; i <= paramcount(s); ++i) {
    const tnatvector at = textnatvector(param(s, i));
    keys.push_back(pixelkey(*c.operands[0], at[0], at[1]));
  }
  imageextract(*c.target, *c.operands[0], keys);
}

// The entries "name.suffix" of the current field, found or created by the lookup of use;
// the current entry stays. Empty when one could not be had.
std::vector<timagefield*> splitentries(std::span<const utf16> suffixes) {
  const utf16 name = ready(W).names.getchecked(W.index);
  std::vector<timagefield*> planes;
  for (const utf16& suffix : suffixes) {
    timagefield* f = workspacetarget(W, name + "." + suffix);
    if (!f) return {};
    planes.push_back(f);
  }
  return planes;
}

// The current field and the entries of the suffixes; the note when 8 bits do not hold it.
template <class Split>
void splitcurrent(std::span<const utf16> suffixes, bool togray, Split split) {
  const timagefield& source = currentfield(W);
  const std::vector<timagefield*> planes = splitentries(suffixes);
  if (planes.empty()) return;
  if (splitreduces(source, togray)) println(reductionnote);
  split(source, std::span<timagefield* const>(planes));
}

template <size_t count>
std::vector<utf16> suffixesof(const char* const (&names)[count], size_t n = count) {
  return std::vector<utf16>(names, names + n);
}

template <size_t planes>
void splitrgbcmd(tscript& s) {
  if (!checkparams(s, 0)) return;
  splitcurrent(suffixesof(rgbaplanes, planes), false, [](const timagefield& f, auto out) { splitrgb(f, out); });
}

void rainbow(int shift) {
  splitcurrent(suffixesof(rainbowplanes), false,
               [shift](const timagefield& f, auto out) { splitrainbow(f, shift, out); });
}
void splitrainbowcmd(tscript& s) {
  if (checkparams(s, 0)) rainbow(0);
}
void splitrainbowshiftcmd(tscript& s) {
  if (checkparams(s, 1)) rainbow(static_cast<int>(std::clamp<int64_t>(textnat(param(s, 1)), 0, 8)));
}

// name.1, name.2 ... by the nearest of the colours.
void bynearest(const std::vector<trgb>& colours) {
  std::vector<utf16> suffixes;
  for (size_t k = 1; k <= colours.size(); ++k) suffixes.push_back(nattext(static_cast<int64_t>(k)));
  splitcurrent(suffixes, true, [&](const timagefield& f, auto out) { splitcolours(f, colours, out); });
}
void splitcolorcmd(tscript& s) {
  if (!checkcount(s, {1, maxoperands})) return;
  std::vector<trgb> colours;
  for (int64_t i = 1; i <= paramcount(s); ++i) colours.push_back(textcolour(param(s, i)));
  bynearest(colours);
}
void splitcolorpointcmd(tscript& s) {
  if (!checkcount(s, {1, maxoperands})) return;
  const timagefield& source = currentfield(W);
  std::vector<trgb> colours;
  for (int64_t i = 1; i <= paramcount(s); ++i) {
    const tnatvector at = textnatvector(param(s, i));
    colours.push_back(splitcolour(source, at[0], at[1]));
  }
  bynearest(colours);
}

// Two to four gray images into one of colour: rgb of two or three, rgba of four.
void combinecmd(tscript& s) {
  if (!checkcount(s, {2, 4})) return;
  const int64_t n = paramcount(s);
  auto c = combination<W>(s, 1, n, tsizing::largest, n == 4 ? imagergba : imagergb);
  if (c) imagecombineplanes(*c.target, c.operands);
}

using enum tcommandkind;
const tcommand rows[] = {
    eitherway("over", overcmd,
              "new := over old1 old2 ... // old2 over old1 by its alpha, then old3 over that ...: an rgba image"),
    eitherway("stacking", stackingcmd, "new := stacking old1 old2 ... // focus stacking: the sharp parts of 2 to 99 images"),
    eitherway("mask.same", bandmaskcmd<true>,
              "new := mask.same old mask same [t] // old where mask lies within same - t .. same + t"),
    eitherway("mask.different", bandmaskcmd<false>,
              "new := mask.different old mask same [t] // old where mask lies outside same - t .. same + t"),
    eitherway("extract.color", extractcolorcmd,
              "new := extract.color old <255, 0, 0> 128 ... // old where its colour (or gray value) is one of those"),
    eitherway("extract.colorpoint", extractcolorpointcmd,
              "new := extract.colorpoint old <10, 20> ... // old where its colour is that of one of the points"),
    {"split.rgb", procedure, splitrgbcmd<3>, nullptr, "split.rgb // the current image into gray images name.red, name.green, name.blue"},
    {"split.rgba", procedure, splitrgbcmd<4>, nullptr, "split.rgba // the same and name.alpha"},
    {"split.rainbow", procedure, splitrainbowcmd, nullptr,
     "split.rainbow // name.red, .green, .blue, .yellow, .cyan, .purple, .gray by the strongest components"},
    {"split.rainbow.shift", procedure, splitrainbowshiftcmd, nullptr,
     "split.rainbow.shift 2 // the same, components compared with 8 - 2 bits"},
    {"split.color", procedure, splitcolorcmd, nullptr, "split.color <255, 0, 0> <0, 0, 255> ... // name.1, name.2 ... by the nearest colour"},
    {"split.colorpoint", procedure, splitcolorpointcmd, nullptr,
     "split.colorpoint <10, 20> <30, 40> ... // the same with the colours at the points"},
    eitherway("combine", combinecmd,
              "new := combine red blue // or red green blue [alpha]: a colour image of 2 to 4 gray images"),
};

}  // namespace

std::span<const tcommand> imagecolourrows() { return rows; }
