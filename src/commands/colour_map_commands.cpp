// The colour table commands: maps by family and index, alpha shapes, reading entries.
#include "commands/families.h"
#include "drawing/colormap.h"
#include "script/registry.h"
#include "script/values.h"
#include "shell/console.h"

namespace {

// index, optional steps: the label of the map goes to the console and the log.
template <char family>
void mapcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportcount(s, 1);
  if (n > 2) return reportmax(s, 2);
  const utf16 label = colormapfill(family, textnat(param(s, 1)), n == 2 ? textnat(param(s, 2)) : 0);
  if (length(label) > 0) println(label);
}

template <talpharule rule>
void alphacmd(tscript& s) {
  if (checkparams(s, 0)) colormapalpha(rule);
}

// One parameter: an index that wraps; two: a value and its range <min, max>.
void getrgbcmd(tscript& s) {
  const int64_t n = paramcount(s);
  if (n < 1) return reportcount(s, 1);
  if (n > 2) return reportmax(s, 2);
  tcolour c;
  if (n == 1) {
    c = colormapentry(textnat(param(s, 1)));
  } else {
    const tvector range = textvector(param(s, 2));
    c = colormapvalue(textreal(param(s, 1)), range[0], range[1]);
  }
  setresult(s, vectortext({c[0], c[1], c[2]}));
}

using enum tcommandkind;
const tcommand rows[] = {
    {"color.map.default", procedure, mapcmd<'A'>, nullptr, "color.map.default 1 256 // BW, WB, RGB, RYGCBM, Rainbow"},
    {"color.map.special", procedure, mapcmd<'B'>, nullptr,
     "color.map.special 1 256 // Viridis, Magma, Plasma, Inferno, Turbo, Cividis, Mako, Rocket"},
    {"color.map.volume1", procedure, mapcmd<'C'>, nullptr, "color.map.volume1 5 100 // please define a colormap (100 means interpolation steps)"},
    {"color.map.volume2", procedure, mapcmd<'D'>, nullptr, "color.map.volume2 1 256 // Hot, Winter, Warm, Cool, ... X-Rain (24 maps)"},
    {"color.map.chart1", procedure, mapcmd<'E'>, nullptr, "color.map.chart1 1 // DarkBright, Medium, LightPale, Accent, ... Set3"},
    {"color.map.chart2", procedure, mapcmd<'F'>, nullptr, "color.map.chart2 1 9 // the ColorBrewer maps BrBG ... YlOrRd"},
    {"color.map.warn", procedure, mapcmd<'G'>, nullptr, "color.map.warn 1 // Four Horsemen, Bikini state, Torino scale, ..."},
    {"color.map.art", procedure, mapcmd<'H'>, nullptr, "color.map.art 1 // BottleRocket1 ... IsleofDogs2"},
    {"color.map.topo", procedure, mapcmd<'I'>, nullptr, "color.map.topo 1 256 // Topomap, Diercke, Alexander, Imhof"},
    {"color.alpha.bw", procedure, alphacmd<talpharule::rising>, nullptr, "color.alpha.bw // alpha 0 at the first entry to 255 at the last"},
    {"color.alpha.wb", procedure, alphacmd<talpharule::falling>, nullptr, "color.alpha.wb // alpha 255 at the first entry to 0 at the last"},
    {"color.alpha.black", procedure, alphacmd<talpharule::clear>, nullptr, "color.alpha.black // alpha 0 for all"},
    {"color.alpha.gray", procedure, alphacmd<talpharule::half>, nullptr, "color.alpha.gray // alpha 128 for all"},
    {"color.alpha.white", procedure, alphacmd<talpharule::opaque>, nullptr, "color.alpha.white // alpha 255 for all"},
    eitherway("color.getrgb", getrgbcmd,
              "color.getrgb 5 // entry 5 of the colour map (wraps); color.getrgb 0.3 <0, 1>: the entry of a value in a range"),
};

}  // namespace

tcommandfamily colourmapcommands() { return {"", rows}; }
