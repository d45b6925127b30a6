#include "export/gis_file.h"

#include "app/output_file.h"

namespace tervalo {
namespace {

// The GEOPAK feature groups as the kinds of line a GIS user knows.
std::string group(const std::string& feature) {
  if (feature == "SEC") return "section";
  if (feature == "EWQ" || feature == "NSQ") return "quarter";
  if (feature == "TRAV") return "traverse";
  return "sixteenth";
}

}  // namespace

std::string gisDriver(const std::string& ending) {
  if (ending == ".gpkg") return "GPKG";
  if (ending == ".geojson") return "GeoJSON";
  if (ending == ".kml") return "KML";
  return "";
}

void writeGisFile(const CornerMap& map, const std::filesystem::path& file, const std::string& driver) {
  requireOneNamePerPosition(map);
  if (map.system.crs.none() && driver != "GPKG")
    throw ExportError(driver + " places the corners on the globe: choose the coordinate system of the coordinates first "
                               "(Coordinate System...), or export a GeoPackage in local coordinates.");
  GisDocument d;
  d.crs = map.system.crs;
  d.title = map.title;
  for (const MapPoint& p : map.points) {
    std::string others;
    for (const std::string& n : p.otherNumbers) others += (others.empty() ? "" : " ") + n;
    d.corners.push_back({p.name, p.number.empty() ? p.name : p.number, others, p.description, p.evidence, p.feature, p.status,
                         p.rule, {p.x, p.y}});
  }
  for (const MapLine& l : map.lines)
    d.lines.push_back({l.name, group(l.feature), {map.points[l.from].x, map.points[l.from].y}, {map.points[l.to].x, map.points[l.to].y}});
  try {
    writeFileWith(file, [&](const std::filesystem::path& temp) {
      std::filesystem::remove(temp);  // GDAL makes the file itself
      try {
        geo().writeGis(d, driver, temp);
      } catch (const CrsError&) {
        // GDAL names the SQL that failed; the surveyor is told the disk is full.
        if (diskFullAt(temp)) return false;
        throw;
      }
      return true;
    });
  } catch (const CrsError& e) {
    throw ExportError(e.what());
  }
}

void writePrjBeside(const CornerMap& map, const std::filesystem::path& csv) {
  if (map.system.prj.empty()) return;
  std::filesystem::path prj = csv;
  prj.replace_extension(".prj");
  writeBytesFile(prj, map.system.prj);
}

}  // namespace tervalo
