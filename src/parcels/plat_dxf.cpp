#include "parcels/plat_dxf.h"

#include <dl_dxf.h>

#include <cmath>
#include <numbers>

#include "export/dxf_drawing.h"

namespace tervalo {
namespace {

const std::vector<Layer>& plattingLayers() {
  static const std::vector<Layer> layers{{layer::Border, 7},   {layer::Boundary, 7}, {layer::Parcel, 8},     {layer::Monument, 1},
                                         {layer::Dimension, 3}, {layer::Name, 7},     {layer::Point, 1},      {layer::Table, 3},
                                         {layer::North, 7},     {layer::Scale, 7},    {layer::Legend, 7},     {layer::Title, 7},
                                         {layer::Certificate, 7}, {layer::Notes, 7}};
  return layers;
}

DL_Attributes on(const std::string& layer, double weight = -1) {
  return DL_Attributes(layer, 256, weight < 0 ? -1 : static_cast<int>(std::lround(weight * 100)), "BYLAYER", 1.0);
}

// The degree sign as CAD text writes it.
std::string cadText(std::string text) {
  const std::string degree = "\u00B0";
  for (auto at = text.find(degree); at != std::string::npos; at = text.find(degree)) text.replace(at, degree.size(), "%%d");
  return text;
}

}  // namespace

void writePlatDxf(const Sheet& sheet, const std::filesystem::path& file) {
  const Extents extents{0, 0, sheet.width, sheet.height};
  writeDxfDrawing(file, extents, plattingLayers(), 1, 0.1, [&sheet](DL_Dxf& dxf, DL_WriterA* dw) {
    for (const SheetLine& l : sheet.lines) {
      if (l.filled && (l.points.size() == 4 || l.points.size() == 5)) {
        // A triangle or a block: a solid, its corners in the order CAD takes them (the last two crossed).
        const auto& p = l.points;
        const PicturePoint& d = p.size() == 5 ? p[3] : p[2];
        dxf.writeSolid(*dw, DL_SolidData(p[0].x, p[0].y, 0, p[1].x, p[1].y, 0, d.x, d.y, 0, p[2].x, p[2].y, 0, 0), on(l.layer));
        continue;
      }
      dxf.writePolyline(*dw, DL_PolylineData(static_cast<int>(l.points.size()), 0, 0, 0), on(l.layer, l.weight));
      for (const PicturePoint& q : l.points) dxf.writeVertex(*dw, DL_VertexData(q.x, q.y, 0, 0));
      dxf.writePolylineEnd(*dw);
    }
    for (const SheetMark& m : sheet.marks) {
      const double r = m.size / 2;
      switch (m.kind) {
        case Monument::Found:
          dxf.writeSolid(*dw, DL_SolidData(m.at.x - r, m.at.y - r, 0, m.at.x + r, m.at.y - r, 0, m.at.x - r, m.at.y + r, 0, m.at.x + r, m.at.y + r, 0, 0),
                         on(m.layer));
          break;
        case Monument::Set:
          dxf.writeCircle(*dw, DL_CircleData(m.at.x, m.at.y, 0, r), on(m.layer));
          break;
        case Monument::Computed: {
          dxf.writePolyline(*dw, DL_PolylineData(4, 0, 0, 0), on(m.layer));
          for (const auto& [dx, dy] : {std::pair{-r, -r * 0.8}, {r, -r * 0.8}, {0.0, r}, {-r, -r * 0.8}})
            dxf.writeVertex(*dw, DL_VertexData(m.at.x + dx, m.at.y + dy, 0, 0));
          dxf.writePolylineEnd(*dw);
          break;
        }
      }
    }
    for (const SheetText& t : sheet.texts) {
      // Fitted between the baseline's two ends: the text takes exactly its box's length.
      const double a = t.angle * std::numbers::pi / 180;
      const double ex = t.at.x + t.width * std::cos(a), ey = t.at.y + t.width * std::sin(a);
      dxf.writeText(*dw, DL_TextData(t.at.x, t.at.y, 0, ex, ey, 0, t.height, 1.0, 0, 5, 0, cadText(t.text), "Standard", a), on(t.layer));
    }
  });
}

}  // namespace tervalo
