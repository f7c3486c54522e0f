#include "drawing/draw.h"

#include <algorithm>
#include <cstdlib>

namespace {

struct tfontrange {
  uint32_t first, last, index;
};
#include "drawing/fontdata.inc"

}  // namespace

const uint8_t* glyphrows(uint32_t c) {
  if (c == 0) return nullptr;
  if (c < 32 || (c >= 127 && c < 160)) return fontglyphs[0];
  for (const tfontrange& r : fontranges)
    if (c >= r.first && c <= r.last) return fontglyphs[r.index + (c - r.first)];
  return fontglyphs[0];
}

int64_t textwidth(const utf16& text, tfontstyle style) {
  int64_t width = 0;
  for (int64_t i = 1; i <= length(text); ++i)
    if (!combining(charat(text, i))) width += style == tfontstyle::narrow ? 7 : 8;
  return width;
}

void drawpoint(timagefield& f, int64_t x, int64_t y, const trgba& c) {
  if (x < 1 || y < 1 || x > imagesizex(f) || y > imagesizey(f)) return;
  const int64_t a = std::clamp<int64_t>(c[3], 0, 255);
  if (a == 0) return;
  trgb out{c[0], c[1], c[2]};
  if (a < 255) {
    const trgb old = getrgb(f, x, y);
    for (int i = 0; i < 3; ++i) out[i] = old[i] + (c[i] - old[i]) * a / 255;
  }
  setrgb(f, x, y, out);
}

tpixels textpixels(int64_t x, int64_t y, const utf16& text, tfontstyle style) {
  const int64_t advance = style == tfontstyle::narrow ? 7 : 8;
  int64_t cursor = x;
  tpixels out;
  for (int64_t i = 1; i <= length(text); ++i) {
    const uint32_t code = charat(text, i);
    const uint8_t* rows = glyphrows(code);
    if (!rows) continue;
    const int64_t left = combining(code) ? cursor - advance : cursor;
    for (int64_t row = 0; row < 16; ++row) {
      uint32_t bits = rows[row];
      if (style == tfontstyle::bold) bits |= bits >> 1;  // each column doubled to the right
      for (int64_t col = 0; col < advance; ++col)
        if (bits & (0x80u >> col)) out.push_back({left + col, y + row});
    }
    if (!combining(code)) cursor += advance;
  }
  return out;
}

void drawtext(timagefield& f, int64_t x, int64_t y, const utf16& text, const trgba& c, tfontstyle style) {
  for (const auto& p : textpixels(x, y, text, style)) drawpoint(f, p[0], p[1], c);
}

void drawline(timagefield& f, int64_t x0, int64_t y0, int64_t x1, int64_t y1, const trgba& c) {
  const int64_t dx = std::abs(x1 - x0), dy = -std::abs(y1 - y0);
  const int64_t sx = x0 < x1 ? 1 : -1, sy = y0 < y1 ? 1 : -1;
  int64_t error = dx + dy;
  for (;;) {
    drawpoint(f, x0, y0, c);
    if (x0 == x1 && y0 == y1) return;
    const int64_t twice = 2 * error;
    if (twice >= dy) error += dy, x0 += sx;
    if (twice <= dx) error += dx, y0 += sy;
  }
}

void drawrectangle(timagefield& f, int64_t x0, int64_t y0, int64_t x1, int64_t y1, const trgba& c) {
  drawline(f, x0, y0, x1, y0, c);
  if (y1 != y0) drawline(f, x0, y1, x1, y1, c);
  for (int64_t y = std::min(y0, y1) + 1; y < std::max(y0, y1); ++y) {
    drawpoint(f, x0, y, c);
    if (x1 != x0) drawpoint(f, x1, y, c);
  }
}

void fillrectangle(timagefield& f, int64_t x0, int64_t y0, int64_t x1, int64_t y1, const trgba& c) {
  const int64_t left = std::max<int64_t>(1, std::min(x0, x1)), right = std::min(imagesizex(f), std::max(x0, x1));
  const int64_t top = std::max<int64_t>(1, std::min(y0, y1)), bottom = std::min(imagesizey(f), std::max(y0, y1));
  for (int64_t y = top; y <= bottom; ++y)
    for (int64_t x = left; x <= right; ++x) drawpoint(f, x, y, c);
}

tpixels circlepixels(int64_t cx, int64_t cy, int64_t r) {
  // The midpoint circle in its eight octants; points met twice are kept once, so that a
  // blended outline has no darker dots.
  tpixels outline;
  for (int64_t x = r, y = 0, error = 1 - r; x >= y;) {
    for (const auto& p : {std::array<int64_t, 2>{x, y}, {y, x}, {-y, x}, {-x, y}, {-x, -y}, {-y, -x}, {y, -x}, {x, -y}})
      outline.push_back({cx + p[0], cy + p[1]});
    ++y;
    if (error < 0) {
      error += 2 * y + 1;
    } else {
      --x;
      error += 2 * (y - x) + 1;
    }
  }
  std::sort(outline.begin(), outline.end());
  outline.erase(std::unique(outline.begin(), outline.end()), outline.end());
  return outline;
}

void drawcircle(timagefield& f, int64_t cx, int64_t cy, int64_t r, const trgba& c) {
  for (const auto& p : circlepixels(cx, cy, r)) drawpoint(f, p[0], p[1], c);
}

void drawpolygon(timagefield& f, const std::vector<std::array<int64_t, 2>>& points, const trgba& c) {
  for (size_t i = 0; i < points.size(); ++i) {
    const auto& a = points[i];
    const auto& b = points[(i + 1) % points.size()];
    drawline(f, a[0], a[1], b[0], b[1], c);
  }
}

void drawtextup(timagefield& f, int64_t x, int64_t y, const utf16& text, const trgba& c) {
  int64_t cursor = y;
  for (int64_t i = 1; i <= length(text); ++i) {
    const uint32_t code = charat(text, i);
    const uint8_t* rows = glyphrows(code);
    if (!rows) continue;
    const int64_t start = combining(code) ? cursor + 8 : cursor;
    for (int64_t row = 0; row < 16; ++row)
      for (int64_t col = 0; col < 8; ++col)
        if (rows[row] & (0x80u >> col)) drawpoint(f, x + row, start - col, c);
    if (!combining(code)) cursor -= 8;
  }
}
