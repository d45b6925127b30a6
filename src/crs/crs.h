#pragma once
// Coordinate systems: the one a job's corners are in, and what PROJ and
// GDAL do with it (latitude and longitude, grid factors, the system's WKT,
// GIS files). PROJ and GDAL live in a module of their own, loaded the first
// time a system is used, never at start-up: the main window needs neither.
// Nothing geodetic is computed here; every transformation is PROJ's.

#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace tervalo {

// The system a job's coordinates are in: none (local coordinates), or a
// projected system by EPSG code, with the foot of the coordinates where the
// system's own unit is the metre ("us" or "international": coordinates in
// that foot, the system's metres got by PROJ's unit factor).
struct CrsChoice {
  int epsg = 0;      // 0: none
  std::string foot;  // "", "us" or "international"
  // The mean project elevation, in the coordinates' unit, taken as the
  // height above the ellipsoid: for ground lengths. None: grid only.
  std::optional<double> elevation{};
  bool none() const { return epsg == 0; }
  bool operator==(const CrsChoice&) const = default;
};

// A coordinate system choice that cannot be taken; the message says why.
class CrsError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The "crs" key of jobs, saved inputs, plans, restoration and traverse
// files: {"epsg": 3419} with "foot" where the system leaves it open and
// "elevation" where a mean project elevation is given. Absent
// (null) is none. CrsError for anything else, saying what is wrong.
// Farther from the ellipsoid than any place on the earth, in feet or metres.
inline constexpr double kMostElevation = 100000;

CrsChoice crsFromJson(const nlohmann::ordered_json& value);
// The same, for a file about to run: the system must also be a projected
// system in PROJ's database, in the foot given, or nothing runs.
CrsChoice usableCrsFromJson(const nlohmann::ordered_json& value);
nlohmann::ordered_json crsToJson(const CrsChoice& crs);  // null for none

// A position in the job's coordinates.
struct PlanePosition {
  double x = 0, y = 0;
};

struct CrsDescription {
  int epsg = 0;
  std::string name;      // "NAD83 / Kansas South (ftUS)"
  std::string datum;     // "North American Datum 1983"
  std::string unit;      // the system's linear unit: "US survey foot", "foot", "metre"
  double metresPerUnit = 1;
  std::string area;      // where it is used
};

struct GeographicPosition {
  double latitude = 0, longitude = 0;  // degrees, on the system's own datum
};

// The grid scale factor (k) and the meridian convergence at a point, as
// PROJ gives them; convergence in degrees, as PROJ signs it.
struct GridFactors {
  double scale = 1;
  double convergence = 0;
};

struct CrsListEntry {
  int epsg = 0;
  std::string name;
};

// What a GIS file holds: the corners and the lines between them.
struct GisCorner {
  std::string name, number, otherNumbers, description, evidence, feature, status, rule;
  PlanePosition at;
};
struct GisLine {
  std::string name, group;  // group: "section", "quarter" or "sixteenth"
  PlanePosition from, to;
};
struct GisDocument {
  CrsChoice crs;
  std::string title;
  std::vector<GisCorner> corners;
  std::vector<GisLine> lines;
};

class ProjectFile;
struct ProjectSettings;

// The module's work, behind the loader.
class Geo {
 public:
  virtual ~Geo() = default;
  // The system, or CrsError when the code is not a projected system PROJ knows.
  virtual CrsDescription describe(int epsg) = 0;
  // Projected systems of PROJ's database whose name or code holds `text`
  // (State Plane zones, UTM), at most `most`, not deprecated.
  virtual std::vector<CrsListEntry> search(const std::string& text, std::size_t most) = 0;
  virtual std::vector<GeographicPosition> geographic(const CrsChoice& crs, const std::vector<PlanePosition>& at) = 0;
  // Latitudes and longitudes on the system's own datum to its grid.
  virtual std::vector<PlanePosition> plane(const CrsChoice& crs, const std::vector<GeographicPosition>& at) = 0;
  virtual std::vector<GridFactors> factors(const CrsChoice& crs, const std::vector<PlanePosition>& at) = 0;
  // The system's WKT: ESRI's dialect for a .prj beside a CSV, else WKT2.
  virtual std::string wkt(const CrsChoice& crs, bool esri) = 0;
  // The mean radius of curvature of the system's ellipsoid at `latitude`,
  // in the job's unit: for the elevation factor of ground distances.
  virtual double meanRadius(const CrsChoice& crs, double latitude) = 0;
  // A GIS file by GDAL's driver "GPKG", "GeoJSON" or "KML", written to `file`
  // (the caller puts it in place): RunTimeError-like CrsError on a fault.
  virtual void writeGis(const GisDocument& document, const std::string& driver, const std::filesystem::path& file) = 0;
  // A survey project's GeoPackage: made new with `create`'s settings, or
  // opened. ProjectError saying why not.
  virtual std::unique_ptr<ProjectFile> project(const std::filesystem::path& file, const ProjectSettings* create) = 0;
};

// The module, loaded on first use. CrsError when it cannot be loaded.
Geo& geo();
// Whether the module has been loaded (start-up must not have).
bool geoLoaded();

// The linear unit the job's coordinates are in, by its LandXML name:
// "USSurveyFoot", "foot" or "meter"; US survey feet for none.
std::string landXmlUnit(const CrsChoice& crs, const CrsDescription* system);
// A system for people: "EPSG:3419 NAD83 / Kansas South (ftUS)", "local coordinates" for none.
std::string crsTitle(const CrsChoice& crs);

}  // namespace tervalo
