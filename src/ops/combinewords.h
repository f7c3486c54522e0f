// The words of the progress display of the combining commands, shared by the image and
// the scalar family.
#pragma once

namespace combinewords {
inline constexpr char selection[] = "  Selection";
inline constexpr char stacking[] = "  Stacking";
inline constexpr char over[] = "  Over";
inline constexpr char subtraction[] = "  Subtraction";
inline constexpr char absolutesubtraction[] = "  Absolute subtraction";
inline constexpr char rangesubtraction[] = "  Range subtraction";
inline constexpr char neighborsubtraction[] = "  Neighbor subtraction";
inline constexpr char addition[] = "  Addition";
inline constexpr char minimal[] = "  Only minimal value";
inline constexpr char maximal[] = "  Only maximal value";
inline constexpr char multiply[] = "  Multiply";
inline constexpr char multiplygauss[] = "  Multiply (gauss)";
inline constexpr char divide[] = "  Divide";
inline constexpr char averaging[] = "  Averaging";
inline constexpr char median[] = "  Median calculation";
inline constexpr char intensity[] = "  Intensity mapping";
inline constexpr char masking[] = "  Masking";
inline constexpr char maskingsame[] = "  Masking (same)";
inline constexpr char maskingdifferent[] = "  Masking (different)";
inline constexpr char extracting[] = "  Extracting";
}  // namespace combinewords
