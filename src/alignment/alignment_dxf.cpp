#include "alignment/alignment_dxf.h"

#include <dl_dxf.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "export/dxf_drawing.h"

namespace tervalo {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kDegree = kPi / 180;

DL_Attributes on(const char* layer) { return DL_Attributes(layer, 256, -1, "BYLAYER", 1.0); }

}  // namespace

void writeAlignmentDxf(const Alignment& a, const std::filesystem::path& file) {
  // The drawing's extents from the centreline, sampled.
  Extents ext{1e300, 1e300, -1e300, -1e300};
  for (double s = 0;; s = std::min(a.length(), s + a.length() / 400)) {
    const Pose p = a.at(s);
    ext.minX = std::min(ext.minX, p.easting), ext.maxX = std::max(ext.maxX, p.easting);
    ext.minY = std::min(ext.minY, p.northing), ext.maxY = std::max(ext.maxY, p.northing);
    if (s >= a.length()) break;
  }
  const double size = std::max(ext.width(), ext.height());
  // Text about a two-hundredth of the drawing, a round figure; ticks twice that either side.
  const double height = std::pow(10.0, std::floor(std::log10(std::max(size / 200, 1e-6)))) * (size / 200 >= 5 * std::pow(10.0, std::floor(std::log10(size / 200))) ? 5 : 1);
  const double tick = 2 * height;
  ext = {ext.minX - 10 * height, ext.minY - 10 * height, ext.maxX + 10 * height, ext.maxY + 10 * height};
  const std::vector<Layer> layers{{"ALIGN", 7}, {"STATION", 3}, {"KEYPOINT", 1}};
  const int units = a.input().units == "m" ? 6 : 21;
  writeDxfDrawing(file, ext, layers, units, height, [&](DL_Dxf& dxf, DL_WriterA* dw) {
    for (const Element& e : a.elements()) {
      if (e.kind == ElementKind::Line) {
        dxf.writeLine(*dw, DL_LineData(e.easting, e.northing, 0, e.endEasting, e.endNorthing, 0), on("ALIGN"));
      } else if (e.kind == ElementKind::Arc) {
        // An arc runs counter-clockwise in the drawing from its first angle to its second.
        const double right = e.azimuth + kPi / 2;
        const double cx = e.easting + std::sin(right) / e.k0, cy = e.northing + std::cos(right) / e.k0;
        const double from = std::atan2(e.northing - cy, e.easting - cx) / kDegree, to = std::atan2(e.endNorthing - cy, e.endEasting - cx) / kDegree;
        const bool clockwise = e.k0 > 0;
        dxf.writeArc(*dw, DL_ArcData(cx, cy, 0, 1 / std::fabs(e.k0), clockwise ? to : from, clockwise ? from : to), on("ALIGN"));
      } else {
        const int pieces = std::max(16, static_cast<int>(e.length / height));
        dxf.writePolyline(*dw, DL_PolylineData(pieces + 1, 0, 0, 0), on("ALIGN"));
        for (int i = 0; i <= pieces; ++i) {
          const Pose p = poseOn(e, e.length * i / pieces);
          dxf.writeVertex(*dw, DL_VertexData(p.easting, p.northing, 0, 0));
        }
        dxf.writePolylineEnd(*dw);
      }
    }
    // A tick across the line and a label reading along it, to the left.
    const auto mark = [&](double along, const std::string& text, const char* layer, double length) {
      const Pose l = a.at(along, -length), r = a.at(along, length), label = a.at(along, -length - height * 0.5);
      dxf.writeLine(*dw, DL_LineData(l.easting, l.northing, 0, r.easting, r.northing, 0), on(layer));
      // The label along the tick, away from the line, reading left to right where it can.
      double angle = 90 - (a.at(along).azimuth - 90);
      double x = label.easting, y = label.northing;
      while (angle > 180) angle -= 360;
      while (angle <= -180) angle += 360;
      int align = 0;  // left-aligned: the text runs on from the tick's end
      if (angle > 90 || angle < -90) {
        angle += angle > 0 ? -180 : 180;  // turned to read left to right, it ends at the tick
        align = 2;
      }
      dxf.writeText(*dw, DL_TextData(x, y, 0, x, y, 0, height, 1.0, 0, align, 2, text, "Standard", angle * kDegree), on(layer));  // radians
    };
    const double step = 100;
    const double first = a.stationAt(0), last = a.stationAt(a.length());
    for (double s = std::ceil(first / step - 1e-9) * step; s <= last + 1e-9; s += step) {
      // An equation's back station is its ahead station's point, named by the equation's own label.
      if (std::any_of(a.input().equations.begin(), a.input().equations.end(), [&](const StationEquation& q) { return std::fabs(q.back - s) < 1e-9; }))
        continue;
      double along = 0;
      try {
        along = a.alongAt(s);
      } catch (const AlignmentError&) {
        continue;  // in an equation's gap: no such station
      }
      std::string text = a.stationText(s);
      text = text.substr(0, text.find('+') + (a.input().units == "m" ? 4 : 3));
      mark(along, text, "STATION", tick);
    }
    for (const KeyPoint& k : a.keyPoints()) mark(k.along, k.name + " " + a.stationText(a.stationAt(k.along)), "KEYPOINT", 2 * tick);
    for (const StationEquation& q : a.input().equations)
      mark(a.alongAt(q.back), "EQ " + a.stationText(q.back) + " BK = " + a.stationText(q.ahead) + " AH", "KEYPOINT", 2 * tick);
  });
}

}  // namespace tervalo
