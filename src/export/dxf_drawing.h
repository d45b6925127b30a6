#pragma once
// The frame of every DXF drawing the program writes with dxflib: header,
// tables with the drawing's layers, a viewport on its extents, the entities
// the caller writes, the objects a reader expects; whole or not at all.

#include <filesystem>
#include <functional>
#include <vector>

class DL_Dxf;
class DL_WriterA;

namespace tervalo {

// A layer and its colour (the CAD colour index) and line type.
struct Layer {
  const char* name;
  int color;
  const char* linetype = "CONTINUOUS";
};

// What the drawing covers, in its units.
struct Extents {
  double minX, minY, maxX, maxY;
  double width() const { return maxX - minX; }
  double height() const { return maxY - minY; }
};

// Writes the drawing (a RunTimeError names the file and the fault); `units`
// is $INSUNITS (21 US survey feet, 2 feet, 6 metres, 1 inches).
void writeDxfDrawing(const std::filesystem::path& file, const Extents& extents, const std::vector<Layer>& layers, int units,
                     double linetypeScale, const std::function<void(DL_Dxf&, DL_WriterA*)>& entities);

}  // namespace tervalo
