#include "export/section_dxf.h"
#include "export/dxf_drawing.h"

#include <dl_dxf.h>

#include <algorithm>
#include <cmath>
#include <charconv>
#include <cstdio>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>

#include "app/output_file.h"
#include "secsub/grid_lines.h"
#include "text/angle.h"
#include "text/format.h"

namespace tervalo {
namespace {

// Layers and their colours (the CAD colour index): the line groups as the
// GEOPAK file names them, then the corners and the annotations.
constexpr Layer kLayers[] = {{"SEC", 7},    {"EWQ", 5},      {"NSQ", 5},  {"EWSX", 4, "DASHED"}, {"NSSX", 4, "DASHED"},
                             {"POINTS", 1}, {"EVIDENCE", 2}, {"ANNO", 3}, {"RESTORED", 6},      {"CRS", 8},
                             {"TRAV", 7}};

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

constexpr double kPi = 3.14159265358979323846;

DL_Attributes on(const char* layer) { return DL_Attributes(layer, 256, -1, "BYLAYER", 1.0); }

// The degree sign as CAD text writes it.
std::string cadAngle(double azimuth) {
  std::string text = decimalToDmsCarried(azimuth);
  const std::string degree = "\u00B0";
  if (const auto at = text.find(degree); at != std::string::npos) text.replace(at, degree.size(), "%%d");
  return text;
}

// The ground the drawing covers, in its units, and where a CAD program's
// first view looks: the drawing's middle, its height, its width to height.

// The active viewport: centred on the drawing, high enough to show it
// whole with a margin, so a CAD program opens on the section.
void writeViewport(DL_WriterA& dw, const Extents& e) {
  dw.table("VPORT", 1, 8);
  dw.dxfString(0, "VPORT");
  dw.handle();
  dw.dxfString(100, "AcDbSymbolTableRecord");
  dw.dxfString(100, "AcDbViewportTableRecord");
  dw.dxfString(2, "*Active");
  dw.dxfInt(70, 0);
  constexpr double aspect = 1.5;  // a landscape window's width to height
  const double height = std::max(e.height(), e.width() / aspect) * 1.1;
  const std::pair<int, double> view[] = {{10, 0.0}, {20, 0.0}, {11, 1.0}, {21, 1.0}, {12, (e.minX + e.maxX) / 2},
                                         {22, (e.minY + e.maxY) / 2}, {13, 0.0}, {23, 0.0}, {14, 10.0}, {24, 10.0},
                                         {15, 10.0}, {25, 10.0}, {16, 0.0}, {26, 0.0}, {36, 1.0}, {17, 0.0}, {27, 0.0},
                                         {37, 0.0}, {40, height}, {41, aspect}, {42, 50.0}, {43, 0.0}, {44, 0.0},
                                         {50, 0.0}, {51, 0.0}};
  for (const auto& [code, value] : view) dw.dxfReal(code, value);
  for (const auto& [code, value] : {std::pair{71, 0}, {72, 100}, {73, 1}, {74, 3}, {75, 0}, {76, 0}, {77, 0}, {78, 0}})
    dw.dxfInt(code, value);
  dw.tableEnd();
}

// Model space and paper space, each its block record and block: no more,
// so a reader finds no block without its layout.
constexpr std::pair<const char*, int> kSpaces[] = {{"*Model_Space", 0x1F}, {"*Paper_Space", 0x1B}};

void writeTables(DL_Dxf& dxf, DL_WriterA& dw, const Extents& extents, const std::vector<Layer>& layers) {
  dw.sectionTables();
  writeViewport(dw, extents);
  dw.tableLinetypes(4);
  dxf.writeLinetype(dw, DL_LinetypeData("BYBLOCK", "", 0, 0, 0.0));
  dxf.writeLinetype(dw, DL_LinetypeData("BYLAYER", "", 0, 0, 0.0));
  dxf.writeLinetype(dw, DL_LinetypeData("CONTINUOUS", "Solid line", 0, 0, 0.0));
  // The sixteenth lines dashed as on screen; $LTSCALE sizes the dashes to the drawing.
  double dashed[] = {0.5, -0.25};
  dxf.writeLinetype(dw, DL_LinetypeData("DASHED", "Dashed __ __ __", 0, 2, 0.75, dashed));
  dw.tableEnd();
  dw.tableLayers(static_cast<int>(layers.size()) + 1);
  dxf.writeLayer(dw, DL_LayerData("0", 0), DL_Attributes("", 7, -1, "CONTINUOUS", 1.0));
  for (const Layer& l : layers) dxf.writeLayer(dw, DL_LayerData(l.name, 0), DL_Attributes("", l.color, -1, l.linetype, 1.0));
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
  dw.table("BLOCK_RECORD", static_cast<int>(std::size(kSpaces)), 1);
  for (const auto& [name, handle] : kSpaces) {
    dw.dxfString(0, "BLOCK_RECORD");
    dw.dxfHex(5, handle);
    dw.dxfString(100, "AcDbSymbolTableRecord");
    dw.dxfString(100, "AcDbBlockTableRecord");
    dw.dxfString(2, name);
  }
  dw.tableEnd();
  dw.sectionEnd();
  dw.sectionBlocks();
  for (const auto& [name, handle] : kSpaces) {
    dxf.writeBlock(dw, DL_BlockData(name, 0, 0.0, 0.0, 0.0));
    dxf.writeEndBlock(dw, name);
  }
  dw.sectionEnd();
}

// The objects a drawing of this version must have, each with its owner: the
// root dictionary and its group dictionary.
void writeObjects(DL_WriterA& dw) {
  dw.sectionObjects();
  dw.dxfString(0, "DICTIONARY");
  dw.dxfHex(5, 0xC);
  dw.dxfString(330, "0");
  dw.dxfString(100, "AcDbDictionary");
  dw.dxfInt(281, 1);
  dw.dxfString(3, "ACAD_GROUP");
  dw.dxfHex(350, 0xD);
  dw.dxfString(0, "DICTIONARY");
  dw.dxfHex(5, 0xD);
  dw.dxfHex(330, 0xC);
  dw.dxfString(100, "AcDbDictionary");
  dw.dxfInt(281, 1);
  dw.sectionEnd();
}

// A text's angle along a line at `degrees` from east, turned to read left to
// right, and bottom to top along a line within ten degrees of north and
// south (as a plat writes it): between -80 and 100 degrees.
double uprightAngle(double degrees) {
  while (degrees > 100) degrees -= 180;
  while (degrees <= -80) degrees += 180;
  return degrees;
}

}  // namespace

void writeDxfDrawing(const std::filesystem::path& file, const Extents& extents, const std::vector<Layer>& layers, int units,
                     double linetypeScale, const std::function<void(DL_Dxf&, DL_WriterA*)>& entities) {
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
    dw->dxfInt(70, units);  // the coordinates' unit, as the LandXML files say
    dw->dxfString(9, "$MEASUREMENT");
    dw->dxfInt(70, units == 6 ? 1 : 0);  // metric drawings say so: 1 metric, 0 imperial
    dw->dxfString(9, "$EXTMIN");
    dw->coord(10, extents.minX, extents.minY);
    dw->dxfString(9, "$EXTMAX");
    dw->coord(10, extents.maxX, extents.maxY);
    dw->dxfString(9, "$LTSCALE");
    dw->dxfReal(40, linetypeScale);
    dw->sectionEnd();
    writeTables(dxf, *dw, extents, layers);
    dw->sectionEntities();
    entities(dxf, dw.get());
    dw->sectionEnd();
    writeObjects(*dw);
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

void writeCornerDxf(const CornerMap& map, const std::filesystem::path& file) {
  requireOneNamePerPosition(map);
  // Text sizes follow the drawing's size, so a section of any extent reads alike.
  double minX = std::numeric_limits<double>::max(), maxX = -minX, minY = minX, maxY = -minX;
  for (const MapPoint& c : map.points)
    minX = std::min(minX, c.x), maxX = std::max(maxX, c.x), minY = std::min(minY, c.y), maxY = std::max(maxY, c.y);
  const bool drawn = minX <= maxX;
  if (!drawn) minX = maxX = minY = maxY = 0;
  const double span = drawn ? std::max({maxX - minX, maxY - minY, 1.0}) : 1.0;
  const double nameHeight = span / 120, annoHeight = span / 220, evidenceHeight = span / 180;
  // Texts run out past the corners (names to the right, the system's line
  // below): the extents take them in, as a CAD program measures them.
  const double widthPerCharacter = 1.0;  // of the height, generously
  double right = maxX, bottom = minY - 3 * nameHeight;
  std::size_t systemLength = ("Coordinate system: " + map.system.title).size();
  right = std::max(right, minX + static_cast<double>(systemLength) * nameHeight * widthPerCharacter);
  for (const MapPoint& c : map.points) {
    right = std::max(right, c.x + nameHeight / 2 + static_cast<double>(c.name.size()) * nameHeight * widthPerCharacter);
    if (!c.evidence.empty())
      right = std::max(right, c.x + nameHeight / 2 + static_cast<double>(c.evidence.size()) * evidenceHeight * widthPerCharacter);
  }
  const Extents extents{minX - nameHeight, bottom - nameHeight, right, maxY + 2 * nameHeight};

  std::vector<Layer> layers(std::begin(kLayers), std::end(kLayers));
  writeDxfDrawing(file, extents, layers, map.system.dxfUnits, span / 60, [&](DL_Dxf& dxf, DL_WriterA* dw) {
    for (const MapLine& l : map.lines) {
      const MapPoint &a = map.points[l.from], &b = map.points[l.to];
      dxf.writeLine(*dw, DL_LineData(a.x, a.y, 0.0, b.x, b.y, 0.0), on(l.feature.c_str()));
      const double length = std::hypot(b.x - a.x, b.y - a.y);
      if (length == 0) continue;  // coincident corners: no direction to annotate
      const double bearing = std::atan2(b.y - a.y, b.x - a.x) * 180 / kPi;
      const double angle = uprightAngle(bearing);
      const double azimuth = std::fmod(90 - bearing + 360, 360);
      const std::string label = Format(length, "0.000") + "' " + cadAngle(azimuth);
      // Centred on the line's middle, just above it (horizontal 1 centre,
      // vertical 1 bottom): the middle is the alignment point; the insertion
      // point is where such a text starts, half its width back along the line.
      const double midX = (a.x + b.x) / 2, midY = (a.y + b.y) / 2, radians = angle * kPi / 180;
      const double half = static_cast<double>(label.size()) * annoHeight * 0.6 / 2;
      dxf.writeText(*dw,
                    DL_TextData(midX - half * std::cos(radians), midY - half * std::sin(radians), 0.0, midX, midY, 0.0,
                                annoHeight, 1.0, 0, 1, 1, label, "Standard", radians),
                    on("ANNO"));
    }
    for (const MapPoint& c : map.points) {
      dxf.writePoint(*dw, DL_PointData(c.x, c.y, 0.0), on("POINTS"));
      // A restored corner is ringed on a layer of its own.
      if (c.status == "restored") dxf.writeCircle(*dw, DL_CircleData(c.x, c.y, 0.0, nameHeight), on("RESTORED"));
      // Left on the baseline: the insertion point is the alignment point.
      const double x = c.x + nameHeight / 2, y = c.y + nameHeight / 2;
      dxf.writeText(*dw, DL_TextData(x, y, 0.0, x, y, 0.0, nameHeight, 1.0, 0, 0, 0, c.name, "Standard", 0.0), on("POINTS"));
      // What was found there, under the name.
      if (!c.evidence.empty()) {
        const double below = c.y - nameHeight / 2 - evidenceHeight;
        dxf.writeText(*dw, DL_TextData(x, below, 0.0, x, below, 0.0, evidenceHeight, 1.0, 0, 0, 0, c.evidence, "Standard", 0.0),
                      on("EVIDENCE"));
      }
    }
    // The system the coordinates are in, written under the drawing.
    if (drawn) {
      const double y = minY - 3 * nameHeight;
      dxf.writeText(*dw, DL_TextData(minX, y, 0.0, minX, y, 0.0, nameHeight, 1.0, 0, 0, 0, "Coordinate system: " + map.system.title,
                                     "Standard", 0.0),
                    on("CRS"));
    }
  });
}

}  // namespace tervalo
