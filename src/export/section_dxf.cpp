#include "export/section_dxf.h"

#include <dl_dxf.h>

#include <algorithm>
#include <cmath>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <limits>
#include <memory>

#include "app/output_file.h"
#include "secsub_out/grid_lines.h"
#include "text/angle.h"
#include "text/format.h"

namespace tervalo {
namespace {

// Layers and their colours (the CAD colour index): the line groups as the
// GEOPAK file names them, then the corners and the annotations.
struct Layer {
  const char* name;
  int color;
};
constexpr Layer kLayers[] = {{"SEC", 7},    {"EWQ", 5},  {"NSQ", 5},      {"EWSX", 4},
                             {"NSSX", 4},   {"POINTS", 1}, {"ANNO", 3}, {"RESTORED", 6}, {"CRS", 8}};

// dxflib's writer, less the flush it makes after every number: a township
// drawing holds hundreds of thousands of them. Numbers are written as
// dxflib writes them, fixed with 16 decimals less the trailing zeros.
class DrawingWriter : public DL_WriterA {
 public:
  using DL_WriterA::DL_WriterA;
  void dxfReal(int gc, double value) const override {
    char text[400];
    // As printf's "%.16f" writes it, without its cost.
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 16).ptr;
    std::string digits(text, end);
    const auto dot = digits.find('.');
    if (dot != std::string::npos) {
      const auto last = digits.find_last_not_of('0');
      digits.resize(std::max(last + 1, dot + 2));
    }
    dxfString(gc, digits);
  }
};

DL_Attributes on(const char* layer) { return DL_Attributes(layer, 256, -1, "BYLAYER", 1.0); }

// The degree sign as CAD text writes it.
std::string cadAngle(double azimuth) {
  std::string text = decimalToDmsCarried(azimuth);
  const std::string degree = "\u00B0";
  if (const auto at = text.find(degree); at != std::string::npos) text.replace(at, degree.size(), "%%d");
  return text;
}

void writeTables(DL_Dxf& dxf, DL_WriterA& dw) {
  dw.sectionTables();
  dxf.writeVPort(dw);
  dw.tableLinetypes(3);
  dxf.writeLinetype(dw, DL_LinetypeData("BYBLOCK", "", 0, 0, 0.0));
  dxf.writeLinetype(dw, DL_LinetypeData("BYLAYER", "", 0, 0, 0.0));
  dxf.writeLinetype(dw, DL_LinetypeData("CONTINUOUS", "Solid line", 0, 0, 0.0));
  dw.tableEnd();
  dw.tableLayers(static_cast<int>(std::size(kLayers)) + 1);
  dxf.writeLayer(dw, DL_LayerData("0", 0), DL_Attributes("", 7, -1, "CONTINUOUS", 1.0));
  for (const Layer& l : kLayers) dxf.writeLayer(dw, DL_LayerData(l.name, 0), DL_Attributes("", l.color, -1, "CONTINUOUS", 1.0));
  dw.tableEnd();
  dw.tableStyle(1);
  dxf.writeStyle(dw, DL_StyleData("Standard", 0, 0.0, 1.0, 0.0, 0, 2.5, "txt", ""));
  dw.tableEnd();
  dxf.writeView(dw);
  dxf.writeUcs(dw);
  dw.tableAppid(1);
  dxf.writeAppid(dw, "ACAD");
  dw.tableEnd();
  dxf.writeDimStyle(dw, 2.5, 0.625, 0.625, 0.625, 2.5);
  dxf.writeBlockRecord(dw);
  dw.tableEnd();
  dw.sectionEnd();
  dw.sectionBlocks();
  for (const char* space : {"*Model_Space", "*Paper_Space", "*Paper_Space0"}) {
    dxf.writeBlock(dw, DL_BlockData(space, 0, 0.0, 0.0, 0.0));
    dxf.writeEndBlock(dw, space);
  }
  dw.sectionEnd();
}

}  // namespace

void writeCornerDxf(const CornerMap& map, const std::filesystem::path& file) {
  requireOneNamePerPosition(map);
  // Text sizes follow the drawing's size, so a section of any extent reads alike.
  double minX = std::numeric_limits<double>::max(), maxX = -minX, minY = minX, maxY = -minX;
  for (const MapPoint& c : map.points)
    minX = std::min(minX, c.x), maxX = std::max(maxX, c.x), minY = std::min(minY, c.y), maxY = std::max(maxY, c.y);
  const double span = minX <= maxX ? std::max({maxX - minX, maxY - minY, 1.0}) : 1.0;
  const double nameHeight = span / 120, annoHeight = span / 220;

  writeFileWith(file, [&](const std::filesystem::path& temp) {
    DL_Dxf dxf;
    // The library opens its own writer (and takes the drawing's version from it); ours replaces it.
    std::unique_ptr<DL_WriterA> opened(dxf.out(temp.c_str(), DL_Codes::AC1015));
    if (!opened) return false;
    opened.reset();
    auto dw = std::make_unique<DrawingWriter>(temp.c_str(), DL_Codes::AC1015);
    if (dw->openFailed()) return false;
    dxf.writeHeader(*dw);
    dw->dxfString(9, "$INSUNITS");
    dw->dxfInt(70, map.system.dxfUnits);  // the coordinates' unit, as the LandXML files say
    dw->dxfString(9, "$MEASUREMENT");
    dw->dxfInt(70, 0);  // imperial
    dw->sectionEnd();
    writeTables(dxf, *dw);

    dw->sectionEntities();
    for (const MapLine& l : map.lines) {
      const MapPoint &a = map.points[l.from], &b = map.points[l.to];
      dxf.writeLine(*dw, DL_LineData(a.x, a.y, 0.0, b.x, b.y, 0.0), on(l.feature.c_str()));
      const double length = std::hypot(b.x - a.x, b.y - a.y);
      if (length == 0) continue;  // coincident corners: no direction to annotate
      // Along the line and upright: the text's angle from east, turned to read left to right.
      double angle = std::atan2(b.y - a.y, b.x - a.x) * 180 / 3.14159265358979;
      if (angle > 90) angle -= 180;
      if (angle <= -90) angle += 180;
      const double azimuth = std::fmod(90 - std::atan2(b.y - a.y, b.x - a.x) * 180 / 3.14159265358979 + 360, 360);
      const double midX = (a.x + b.x) / 2, midY = (a.y + b.y) / 2;
      const std::string label = Format(length, "0.000") + "' " + cadAngle(azimuth);
      // Centred on the line's middle, just above it (horizontal 1 centre, vertical 1 bottom);
      // dxflib takes the angle in radians.
      dxf.writeText(*dw,
                    DL_TextData(midX, midY, 0.0, midX, midY, 0.0, annoHeight, 1.0, 0, 1, 1, label, "Standard",
                                angle * 3.14159265358979 / 180),
                    on("ANNO"));
    }
    for (const MapPoint& c : map.points) {
      dxf.writePoint(*dw, DL_PointData(c.x, c.y, 0.0), on("POINTS"));
      // A restored corner is ringed on a layer of its own.
      if (c.status == "restored") dxf.writeCircle(*dw, DL_CircleData(c.x, c.y, 0.0, nameHeight), on("RESTORED"));
      dxf.writeText(*dw, DL_TextData(c.x + nameHeight / 2, c.y + nameHeight / 2, 0.0, 0.0, 0.0, 0.0, nameHeight, 1.0, 0, 0, 0,
                                     c.name, "Standard", 0.0),
                    on("POINTS"));
    }
    // The system the coordinates are in, written under the drawing.
    if (minX <= maxX)
      dxf.writeText(*dw, DL_TextData(minX, minY - 3 * nameHeight, 0.0, 0.0, 0.0, 0.0, nameHeight, 1.0, 0, 0, 0,
                                     "Coordinate system: " + map.system.title, "Standard", 0.0),
                    on("CRS"));
    dw->sectionEnd();
    dxf.writeObjects(*dw);
    dxf.writeObjectsEnd(*dw);
    dw->dxfEOF();
    dw->close();
    // dxflib reports no write errors: a complete drawing ends with its EOF mark.
    std::ifstream written(temp, std::ios::binary | std::ios::ate);
    const auto size = written.tellg();
    if (size < 4) return false;
    written.seekg(size - std::streamoff(4));
    std::string tail(4, '\0');
    written.read(tail.data(), 4);
    return tail.find("EOF") != std::string::npos;
  });
}

}  // namespace tervalo
