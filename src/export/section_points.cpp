#include "export/section_points.h"

#include "text/format.h"

namespace tervalo {
namespace {

std::string coordinate(double v) { return Format(v, "0.0000"); }

std::string joined(const std::vector<std::string>& parts, const char* between) {
  std::string text;
  for (const std::string& p : parts) text += (text.empty() ? "" : between) + p;
  return text;
}

}  // namespace

std::string csvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

std::vector<std::string> pnezdLines(const CornerMap& map) {
  requireOneNamePerPosition(map);
  // The header names the order, so that no reader (this program's among
  // them) takes the northing for X.
  // A township's corners, named uniquely, carry the surveyor's numbers in columns of their own.
  std::vector<std::string> lines{std::string(kPnezdHeader) + (map.uniqueNames ? ",Number,Other Numbers" : "")};
  for (const MapPoint& c : map.points) {
    lines.push_back(csvField(c.name) + "," + coordinate(c.y) + "," + coordinate(c.x) + "," + (c.z ? coordinate(*c.z) : "") + "," +
                    csvField(describedAsFound(c)));
    if (map.uniqueNames) lines.back() += "," + csvField(c.number) + "," + csvField(joined(c.otherNumbers, " "));
  }
  return lines;
}

std::string describedAsFound(const MapPoint& c) {
  return c.evidence.empty() ? c.description : c.description + " / " + c.evidence;
}

std::vector<std::string> tervaloPointLines(const CornerMap& map, bool latitudes) {
  requireOneNamePerPosition(map);
  std::vector<GeographicPosition> onEarth;
  if (latitudes) {
    if (map.system.crs.none()) throw ExportError("Latitudes and longitudes need a coordinate system: choose one first.");
    std::vector<PlanePosition> at;
    for (const MapPoint& c : map.points) at.push_back({c.x, c.y});
    try {
      onEarth = geo().geographic(map.system.crs, at);
    } catch (const CrsError& e) {
      throw ExportError(e.what());
    }
  }
  std::vector<std::string> lines;
  for (const MapPoint& c : map.points) {
    for (const auto& [field, text] :
         {std::pair{"name", &c.name}, {"feature code", &c.feature}, {"description", &c.description}, {"evidence", &c.evidence}})
      if (text->find_first_of(",;") != std::string::npos)
        throw ExportError("The " + std::string(field) + " of point " + c.name + " holds \",\" or \";\", which " +
                          "the Tervalo points format cannot hold. Export the points as CSV instead.");
    lines.push_back(c.name + "," + coordinate(c.x) + "," + coordinate(c.y) + "," + c.feature + "," + c.description + "," +
                    c.evidence);
    if (latitudes) {
      const GeographicPosition& g = onEarth[lines.size() - 1];
      lines.back() += "," + Format(g.latitude, "0.000000000") + "," + Format(g.longitude, "0.000000000");
    }
  }
  return lines;
}

}  // namespace tervalo
