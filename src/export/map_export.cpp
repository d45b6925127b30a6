#include "export/map_export.h"

#include <algorithm>

#include "app/output_file.h"
#include "export/export_file.h"
#include "export/gis_file.h"
#include "export/landxml.h"
#include "export/section_dxf.h"
#include "export/section_points.h"

namespace tervalo {

const std::vector<std::string>& mapExportFilters() {
  static const std::vector<std::string> filters{"CSV points, PNEZD (*.csv)", "Tervalo points (*.txt)", "LandXML 1.2 (*.xml)",
                                                "DXF drawing (*.dxf)", "GeoPackage (*.gpkg)", "GeoJSON (*.geojson)", "KML (*.kml)"};
  return filters;
}

namespace {

ExportWriters mapWriters(const CornerMap& map, const std::filesystem::path& file, const Date& today, bool latitudes) {
  const auto gis = [&map, file] { writeGisFile(map, file, gisDriver(exportKind(file))); };
  return {{".csv",
           [&map, file] {
             writeTextFile(file, pnezdLines(map));
             writePrjBeside(map, file);
           }},
          {".txt", [&map, file, latitudes] { writeTextFile(file, tervaloPointLines(map, latitudes)); }},
          {".xml", [&map, file, today] { writeDocument(file, cornerLandXml(map, stampOf(today))); }},
          {".dxf", [&map, file] { writeCornerDxf(map, file); }},
          {".gpkg", gis},
          {".geojson", gis},
          {".kml", gis}};
}

}  // namespace

void checkMapFileName(const std::filesystem::path& file) {
  const ExportWriters writers = mapWriters(CornerMap{}, file, Date{}, false);
  if (std::none_of(writers.begin(), writers.end(), [&file](const auto& w) { return w.first == exportKind(file); }))
    throw ExportError("Name the file with the ending of the kind you want: .csv, .txt, .xml, .dxf, .gpkg, .geojson or .kml.");
}

void writeMapFile(const CornerMap& map, const std::filesystem::path& file, const Date& today, bool latitudes) {
  checkMapFileName(file);
  const ExportWriters writers = mapWriters(map, file, today, latitudes);
  std::find_if(writers.begin(), writers.end(), [&file](const auto& w) { return w.first == exportKind(file); })->second();
}

std::optional<std::filesystem::path> exportMap(Shell& shell, const std::string& title, const std::filesystem::path& file,
                                               const CornerMap& map, bool latitudes) {
  return exportFile(shell, title, file, mapWriters(map, file, shell.today(), latitudes));
}

}  // namespace tervalo
