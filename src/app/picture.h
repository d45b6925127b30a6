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

// What a stroke or label is for; the painter picks its colour from the palette.
enum class Ink { Main, Accent, Quiet };

struct PictureLine {
  std::vector<PicturePoint> points;  // a polyline
  Ink ink = Ink::Main;
  bool dashed = false;
};

struct PictureMark {
  PicturePoint at;
  Ink ink = Ink::Main;
};

// Where a label stands from its anchor.
enum class Place { Above, Below, Right, Left };

struct PictureText {
  PicturePoint at;  // the label's anchor, beside which it is written
  std::string text;
  Ink ink = Ink::Main;
  Place place = Place::Above;
};

struct Picture {
  std::vector<PictureLine> lines;
  std::vector<PictureMark> marks;
  std::vector<PictureText> texts;
  std::string caption;  // under the picture ("Δ 30°00'00.00"  R 1000.0000")
  std::string hint;     // shown instead of an empty picture

  bool empty() const { return lines.empty() && marks.empty(); }
};

// How many times taller than the horizontal a profile or cross-section
// `run` long and `rise` high is drawn so that it fills a picture about
// 2.5 times as wide as high: 1, 2, 5, 10, 20, 50, ...
double verticalExaggeration(double run, double rise);

}  // namespace tervalo
