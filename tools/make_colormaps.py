#!/usr/bin/python3
"""Writes src/drawing/colormapdata.inc, the anchors of the 108 named colour maps.

  tools/make_colormaps.py > src/drawing/colormapdata.inc

The perceptual maps (viridis and its kin, turbo, cividis), jet, hot, bone, winter, cool and
the ColorBrewer tables come from Debian's python3-matplotlib; the Wes Anderson palettes
from the public wesanderson palette list; the rest are plain ramps written here.
"""
import matplotlib

matplotlib.use("Agg")
import matplotlib as mpl  # noqa: E402
from matplotlib import _cm  # noqa: E402


def byte(v):
    return max(0, min(255, int(round(v * 255))))


def listed(name):
    return [tuple(byte(c) for c in rgb[:3]) for rgb in mpl.colormaps[name].colors]


def sampled(name, positions):
    cmap = mpl.colormaps[name]
    return [(p, tuple(byte(c) for c in cmap(p)[:3])) for p in positions]


def brewer(name):
    return [tuple(byte(c) for c in rgb) for rgb in _cm.datad[name]]


def hexes(text):
    return [tuple(int(h[i:i + 2], 16) for i in (1, 3, 5)) for h in text.split()]


# family letter: list of (name, anchors, discrete); anchors are colours equally spaced,
# or (position, colour) pairs.
MAPS = {
    "A": [("BW", [(0, 0, 0), (255, 255, 255)], False),
          ("WB", [(255, 255, 255), (0, 0, 0)], False),
          ("RGB", [(255, 0, 0), (0, 255, 0), (0, 0, 255)], False),
          ("RYGCBM", [(255, 0, 0), (255, 255, 0), (0, 255, 0), (0, 255, 255), (0, 0, 255), (255, 0, 255)], False),
          ("Rainbow", [(255, 0, 0), (255, 127, 0), (255, 255, 0), (0, 255, 0), (0, 0, 255), (75, 0, 130), (148, 0, 211)], False)],
    "B": [("Viridis", listed("viridis"), False), ("Magma", listed("magma"), False), ("Plasma", listed("plasma"), False),
          ("Inferno", listed("inferno"), False), ("Turbo", listed("turbo"), False), ("Cividis", listed("cividis"), False),
          ("Mako", [(11, 4, 5), (62, 53, 107), (53, 123, 162), (73, 193, 173), (222, 245, 229)], False),
          ("Rocket", [(3, 5, 26), (112, 31, 87), (203, 27, 79), (243, 120, 88), (250, 235, 221)], False)],
    "C": [("Cool to Warm", [(59, 76, 192), (221, 221, 221), (180, 4, 38)], False),
          ("Black, Blue and White", [(0, 0, 0), (0, 0, 255), (255, 255, 255)], False),
          ("Linear Green (Gr4L)", [(8, 40, 12), (54, 130, 60), (170, 220, 150), (240, 250, 235)], False),
          ("Hot and Cold", [(0, 255, 255), (0, 0, 255), (0, 0, 0), (255, 0, 0), (255, 255, 0)], False),
          ("Jet", sampled("jet", [0, 0.125, 0.375, 0.625, 0.875, 1]), False)],
    "D": [("Hot", sampled("hot", [0, 0.365079, 0.746032, 1]), False),
          ("Winter", sampled("winter", [0, 1]), False),
          ("Warm", [(128, 0, 0), (255, 80, 0), (255, 200, 40), (255, 255, 180)], False),
          ("Cool", sampled("cool", [0, 1]), False),
          ("Blue-Green", [(8, 48, 107), (33, 145, 140), (120, 220, 120)], False),
          ("ACTC", [(0, 0, 0), (0, 0, 128), (0, 160, 0), (255, 255, 0), (255, 0, 0)], False),
          ("Bone", sampled("bone", [0, 0.365079, 0.746032, 1]), False),
          ("Carp", [(0, 0, 0), (30, 60, 150), (40, 200, 180), (250, 220, 60), (255, 255, 255)], False),
          ("CT Bones", [(0, (0, 0, 0)), (0.4, (140, 70, 30)), (0.7, (230, 200, 150)), (1, (255, 255, 255))], False),
          ("CT Kidneys", [(0, (0, 0, 0)), (0.3, (120, 30, 20)), (0.6, (230, 120, 90)), (1, (255, 240, 220))], False),
          ("CT Liver", [(0, (0, 0, 0)), (0.35, (110, 40, 20)), (0.7, (200, 110, 60)), (1, (255, 220, 170))], False),
          ("CT Lungs", [(0, (0, 0, 0)), (0.2, (80, 40, 40)), (0.5, (200, 150, 140)), (1, (255, 255, 255))], False),
          ("CT Muscles", [(0, (0, 0, 0)), (0.4, (150, 30, 30)), (0.75, (230, 110, 90)), (1, (255, 230, 210))], False),
          ("CT Skin", [(0, (0, 0, 0)), (0.3, (150, 90, 60)), (0.65, (235, 180, 140)), (1, (255, 240, 225))], False),
          ("CT Vessels", [(0, (0, 0, 0)), (0.5, (180, 0, 0)), (0.8, (255, 80, 60)), (1, (255, 230, 230))], False),
          ("Electric blue", [(0, 0, 0), (0, 40, 120), (0, 150, 255), (200, 240, 255)], False),
          ("GE color", [(0, 0, 0), (0, 128, 125), (128, 0, 128), (255, 128, 0), (255, 255, 255)], False),
          ("Gold", [(0, 0, 0), (128, 80, 0), (255, 200, 40), (255, 255, 200)], False),
          ("HotIron", [(0, 0, 0), (128, 0, 0), (255, 128, 0), (255, 255, 128), (255, 255, 255)], False),
          ("Rainramp", [(0, 0, 128), (0, 0, 255), (0, 255, 255), (0, 255, 0), (255, 255, 0), (255, 0, 0)], False),
          ("Red-Yellow1", [(128, 0, 0), (255, 0, 0), (255, 255, 0)], False),
          ("Red-Yellow2", [(255, 0, 0), (255, 255, 0)], False),
          ("Surface", [(60, 60, 60), (180, 180, 180), (255, 255, 255)], False),
          ("X-Rain", [(0, 0, 0), (80, 0, 120), (0, 0, 255), (0, 200, 255), (0, 255, 0), (255, 255, 0), (255, 0, 0),
                      (255, 255, 255)], False)],
    "E": [("DarkBright", hexes("#1F77B4 #FF7F0E #2CA02C #D62728 #9467BD #8C564B #E377C2 #7F7F7F"), True),
          ("Medium", hexes("#729ECE #FF9E4A #67BF5C #ED665D #AD8BC9 #A8786E #ED97CA #A2A2A2"), True),
          ("LightPale", hexes("#AEC7E8 #FFBB78 #98DF8A #FF9896 #C5B0D5 #C49C94 #F7B6D2 #C7C7C7"), True)]
    + [(n, listed(n), True) for n in ("Accent", "Dark2", "Paired", "Pastel1", "Pastel2", "Set1", "Set2", "Set3")],
    "F": [(n, brewer(n), False) for n in (
        "BrBG", "PiYG", "PRGn", "PuOr", "RdBu", "RdGy", "RdYlBu", "RdYlGn", "Spectral", "Blues", "BuGn", "BuPu",
        "GnBu", "Greens", "Greys", "Oranges", "OrRd", "PuBu", "PuBuGn", "PuRd", "Purples", "RdPu", "Reds", "YlGn",
        "YlGnBu", "YlOrBr", "YlOrRd")],
    "G": [("Four Horsemen", [(255, 255, 255), (200, 0, 0), (0, 0, 0), (193, 205, 160)], True),
          ("Bikini state", [(255, 255, 255), (30, 30, 30), (0, 0, 0), (255, 191, 0), (255, 0, 0)], True),
          ("Torino scale", [(255, 255, 255), (0, 176, 80), (255, 255, 0), (255, 165, 0), (255, 0, 0)], True),
          ("Vigipirate", [(255, 255, 255), (255, 255, 0), (255, 165, 0), (255, 0, 0), (170, 0, 0)], True),
          ("Hsas chart", [(0, 128, 0), (0, 0, 255), (255, 255, 0), (255, 165, 0), (255, 0, 0)], True),
          ("Cyber Division", [(0, 160, 0), (0, 100, 255), (255, 220, 0), (255, 120, 0), (200, 0, 0)], True)],
    "H": [(n, hexes(h), True) for n, h in (
        ("BottleRocket1", "#A42820 #5F5647 #9B110E #3F5151 #4E2A1E #550307 #0C1707"),
        ("BottleRocket2", "#FAD510 #CB2314 #273046 #354823 #1E1E1E"),
        ("Rushmore", "#E1BD6D #EABE94 #0B775E #35274A #F2300F"),
        ("Royal1", "#899DA4 #C93312 #FAEFD1 #DC863B"),
        ("Royal2", "#9A8822 #F5CDB4 #F8AFA8 #FDDDA0 #74A089"),
        ("Zissou", "#3B9AB2 #78B7C5 #EBCC2A #E1AF00 #F21A00"),
        ("Darjeeling1", "#FF0000 #00A08A #F2AD00 #F98400 #5BBCD6"),
        ("Darjeeling2", "#ECCBAE #046C9A #D69C4E #ABDDDE #000000"),
        ("Chevalier", "#446455 #FDD262 #D3DDDC #C7B19C"),
        ("FantasticFox", "#DD8D29 #E2D200 #46ACC8 #E58601 #B40F20"),
        ("Moonrise1", "#F3DF6C #CEAB07 #D5D5D3 #24281A"),
        ("Moonrise2", "#798E87 #C27D38 #CCC591 #29211F"),
        ("Moonrise3", "#85D4E3 #F4B5BD #9C964A #CDC08C #FAD77B"),
        ("Cavalcanti", "#D8B70A #02401B #A2A475 #81A88D #972D15"),
        ("GrandBudapest1", "#F1BB7B #FD6467 #5B1A18 #D67236"),
        ("GrandBudapest2", "#E6A0C4 #C6CDF7 #D8A499 #7294D4"),
        ("IsleofDogs1", "#9986A5 #79402E #CCBA72 #0F0D0E #D9D0D3 #8D8680"),
        ("IsleofDogs2", "#EAD3BF #AA9486 #B6854D #39312F #1C1718"))],
    # Heights: the position is (height - lowest) / (highest - lowest); water below 0 m.
    "I": [("Topomap (0..4000)", [(0, (0, 97, 71)), (0.05, (16, 122, 47)), (0.125, (232, 215, 125)), (0.25, (161, 67, 0)),
                                 (0.5, (158, 0, 0)), (0.75, (110, 110, 110)), (1, (255, 255, 255))], False),
          ("Diercke (-300..5000)", [(0, (50, 100, 200)), (0.0566, (180, 220, 255)), (0.0567, (0, 130, 60)),
                                    (0.1, (120, 180, 80)), (0.2, (240, 230, 140)), (0.4, (200, 130, 50)),
                                    (0.7, (140, 70, 30)), (1, (255, 255, 255))], False),
          ("Alexander (-300..4000)", [(0, (30, 80, 180)), (0.0697, (170, 210, 250)), (0.0698, (60, 140, 70)),
                                      (0.2, (200, 210, 120)), (0.45, (210, 150, 80)), (0.8, (150, 90, 60)),
                                      (1, (250, 250, 250))], False),
          ("Imhof (-300..4000)", [(0, (60, 100, 160)), (0.0697, (190, 215, 235)), (0.0698, (150, 180, 120)),
                                  (0.3, (220, 210, 160)), (0.6, (230, 220, 200)), (1, (255, 255, 255))], False)],
}


def main():
    anchors, maps = [], []
    for family, entries in MAPS.items():
        for name, colours, discrete in entries:
            first = len(anchors)
            for k, a in enumerate(colours):
                position, rgb = a if isinstance(a[1], tuple) else (k / max(1, len(colours) - 1), a)
                anchors.append("{%.6g, %d, %d, %d}" % (position, *rgb))
            maps.append('{\'%s\', "%s", %d, %d, %s}' % (family, name, first, len(colours), "true" if discrete else "false"))
    assert len(maps) == 108, len(maps)
    print("// Generated by tools/make_colormaps.py. Anchors: {position 0..1, red, green, blue}.")
    print("constexpr tcolouranchor colouranchors[] = {")
    for i in range(0, len(anchors), 6):
        print("    " + ", ".join(anchors[i:i + 6]) + ",")
    print("};")
    print("// {family, name, first anchor, anchors, discrete}, in index order within each family.")
    print("constexpr tcolourmapdef colourmaps[] = {")
    for m in maps:
        print("    " + m + ",")
    print("};")


if __name__ == "__main__":
    main()
