#pragma once
// The plat sheet as data: every line, monument and label in inches on the
// paper (y up from the sheet's lower left), each label with the box it
// takes, so that the screen, the PDF and SVG files (the one painter) and the
// DXF drawing are the same sheet, and a test can check that no label
// overlaps another label or a line it does not belong to.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "app/picture.h"
#include "parcels/deed.h"

namespace tervalo {

enum class SheetSize { Letter, Tabloid, ArchD };
// "letter", "tabloid", "archd"; nothing for another word.
std::optional<SheetSize> sheetSizeOf(const std::string& word);

// Drawn on layers named for what they carry, as the DXF names them.
namespace layer {
inline constexpr const char* Border = "BORDER";
inline constexpr const char* Boundary = "BOUNDARY";      // the parcels' outer lines
inline constexpr const char* Parcel = "PARCEL-LINES";    // lines between parcels
inline constexpr const char* Monument = "MONUMENTS";
inline constexpr const char* Dimension = "BEARING-DISTANCE";
inline constexpr const char* Name = "PARCEL-NAMES";
inline constexpr const char* Point = "POINT-NUMBERS";
inline constexpr const char* Table = "TABLES";
inline constexpr const char* North = "NORTH-ARROW";
inline constexpr const char* Scale = "SCALE-BAR";
inline constexpr const char* Legend = "LEGEND";
inline constexpr const char* Title = "TITLE-BLOCK";
inline constexpr const char* Certificate = "CERTIFICATE";
inline constexpr const char* Notes = "NOTES";
}  // namespace layer

struct SheetLine {
  std::vector<PicturePoint> points;  // inches
  std::string layer;
  double weight = 0.25;  // pen width in millimetres
  bool dashed = false;
  bool filled = false;   // a closed shape filled (the north arrow's head, the scale bar's blocks)
};

// A monument by what is known of it: found in the field, set by the
// survey, or a computed position with nothing in the ground yet.
enum class Monument { Found, Set, Computed };

struct SheetMark {
  PicturePoint at;
  Monument kind = Monument::Computed;
  double size = 0.08;  // inches across
  std::string layer = layer::Monument;
};

struct SheetText {
  PicturePoint at;     // the start of the baseline, inches
  std::string text;
  double height = 0.08;  // capital height, inches
  double angle = 0;      // degrees counter-clockwise from the sheet's x
  double width = 0;      // along the baseline: the painter fits the text to it
  std::string layer;
  int line = -1;  // the sheet line this label belongs to, or -1
  bool bold = false;
  // Its box: the four corners from the baseline's start, counter-clockwise,
  // with room below the baseline for descenders.
  std::array<PicturePoint, 4> box() const;
};

struct Sheet {
  double width = 11, height = 8.5;  // inches
  std::string title;
  double scale = 0;  // units on the ground per inch on the paper
  std::vector<SheetLine> lines;
  std::vector<SheetMark> marks;
  std::vector<SheetText> texts;
  // Labels that found no clear room on the sheet and are left out, said
  // for the user ("NE 1/4 NW 1/4: its name").
  std::vector<std::string> unplaced;
};

// A text's width on the sheet at `height`: what the one painter fits it to.
double textWidth(const std::string& text, double height);

// What the plat draws.
struct PlatCorner {
  double n = 0, e = 0;
  std::string number;
  Monument kind = Monument::Computed;
};
struct PlatParcel {
  std::string name;                    // "NE 1/4 NW 1/4": where it is too wide, broken after its first "1/4"
  std::vector<std::string> areaLines;  // "40.00 AC.", "(40.01 AC. GROUND)"
  std::vector<Course> courses;
  std::string under{};                 // a line under the name: "SEC. 14" on a plat of many sections
};
struct PlatInput {
  std::string title;                   // "PLAT OF SECTION 14"
  std::vector<std::string> subtitle;   // "TOWNSHIP 115 NORTH, RANGE 22 WEST, FIFTH P.M."
  std::string unit = "ft";
  std::vector<PlatParcel> parcels;
  std::vector<PlatCorner> corners;
  std::vector<std::string> notes;      // the basis of bearings, grid or ground, the system
  std::string surveyor, license, firm, date;
  std::vector<std::string> certificate;  // the surveyor's certificate, one paragraph a line
  // Bearings as the courses run (a deed's calls, as its description reads);
  // otherwise each line's bearing toward the north, as a section's plat states it.
  bool courseBearings = false;
};

struct PlatOptions {
  SheetSize size = SheetSize::Letter;
  double scale = 0;  // units per inch; 0 picks the largest round scale that fits
};

// The plat on its sheet. DeedError when there is nothing to draw or the
// chosen scale does not let the parcels fit the sheet.
Sheet drawPlat(const PlatInput& input, const PlatOptions& options);

// Two labels whose boxes overlap, or a label over a line it does not belong
// to: "label \"N 0°12'00\" E\" overlaps label \"1320.00\"". Empty for a clean sheet.
std::vector<std::string> sheetClashes(const Sheet& sheet);

// The round scales a plat is drawn at, in units per inch.
const std::vector<double>& plattingScales();

}  // namespace tervalo
