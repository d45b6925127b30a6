#pragma once
// A picture as data: lines, marks and labels in world units (feet or
// metres, y north or up), with the role each plays rather than a colour, so
// that one painter draws it on screen and into files in the window's
// palette. Calculators build their pictures; tests read them as data.

#include <string>
#include <vector>

namespace tervalo {

struct PicturePoint {
  double x = 0;
  double y = 0;
};

// What a stroke or label is for; the painter picks its colour from the
// palette (Alert: something the user must look at twice).
enum class Ink { Main, Accent, Quiet, Alert };

struct PictureLine {
  std::vector<PicturePoint> points;  // a polyline
  Ink ink = Ink::Main;
  bool dashed = false;
  bool heavy = false;  // a boundary, drawn thicker than the lines inside it
  std::string tip{};   // what the line is, shown when the pointer rests on it
};

enum class Shape { Circle, Square, Diamond };

struct PictureMark {
  PicturePoint at;
  Ink ink = Ink::Main;
  Shape shape = Shape::Circle;
  bool filled = false;
  double radius = 4;  // pixels, whatever the scale
  std::string tip;    // what the mark is, shown when the pointer rests on it
};

// A plain round mark.
inline PictureMark markAt(PicturePoint at, Ink ink = Ink::Main) {
  PictureMark m;
  m.at = at;
  m.ink = ink;
  return m;
}

// A corner, by what the surveyor knows of it, in one symbol in every
// picture: entered (found and typed or looked up) a filled square,
// computed an open circle, restored a filled diamond.
enum class CornerKind { Entered, Computed, Restored };
PictureMark cornerMark(PicturePoint at, CornerKind kind);
// The symbols in words, for a picture's caption.
std::string cornerLegend(bool restored = true);

// Where a label stands from its anchor.
// Centre: over the anchor itself, in a clear space (a section's number in
// the middle of a quarter-quarter).
enum class Place { Above, Below, Right, Left, AboveRight, Centre };

struct PictureText {
  PicturePoint at;  // the label's anchor, beside which it is written
  std::string text;
  Ink ink = Ink::Main;
  Place place = Place::Above;
  // Written along a line at this bearing (degrees counter-clockwise from
  // +x), on the side `place` names (Above or Below); 0 writes level.
  double along = 0;
  // Written only where it has room of its own beside its anchor, clear of
  // the drawing, else left out: a map's many names come as it is zoomed in.
  bool ifRoom = false;
  // Other anchors a Centre label may stand on, in turn, where its own is
  // not clear of the marks and the other labels.
  std::vector<PicturePoint> elsewhere{};
};

struct Picture {
  std::vector<PictureLine> lines;
  std::vector<PictureMark> marks;
  std::vector<PictureText> texts;
  std::string caption;  // under the picture ("Δ 30°00'00.00"  R 1000.0000"); lines split at '\n'
  std::string hint;     // shown instead of an empty picture
  // A map rather than a sketch: true to scale with north up, so it carries
  // a north arrow and a scale bar in these units ("ft").
  std::string mapUnits;

  bool empty() const { return lines.empty() && marks.empty(); }
};

// How many times taller than the horizontal a profile or cross-section
// `run` long and `rise` high is drawn so that it fills a picture about
// 2.5 times as wide as high: 1, 2, 5, 10, 20, 50, ...
double verticalExaggeration(double run, double rise);

// The length of a map's scale bar for a map `width` long: the longest round
// length (1, 2 or 5 times a power of ten) not beyond a quarter of it.
double scaleBarLength(double width);

}  // namespace tervalo
