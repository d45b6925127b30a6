#pragma once
// The restoration file: lost corners with their controls, by point number
// from a source coordinate file or as typed X and Y, and the record
// distances; and its run: every corner restored (or refused, the rest going
// on), a restoration report and a coordinate file of the restored corners.

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "crs/crs.h"
#include "points/point_list.h"
#include "restore/proportion.h"

namespace tervalo {

// A file that is not a restoration file; the message names the place.
class RestorationFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

inline constexpr int kRestorationVersion = 1;

// A control as the file gives it: a point number, or X and Y.
struct GivenControl {
  std::string point;
  std::optional<Position> at;
  double record = 0;
};

struct CornerEntry {
  std::string name;
  RestoreMethod method = RestoreMethod::Auto;
  double index = 1;
  std::optional<GivenControl> north{}, south{}, east{}, west{};
  std::optional<double> azimuth{};  // degrees, one-point control
};

struct RestorationFile {
  std::string units = "ft";  // "ft" or "m"
  double basis = 0;          // degrees
  std::string source;        // a coordinate file; relative names are taken from the file's folder
  std::string project{};     // or a survey project (NAME.gpkg): controls read from it, restored corners stored in it
  std::vector<CornerEntry> corners;
  // The coordinate system of the coordinates; none: local.
  CrsChoice crs;
  // "basis": "true north": each corner's basis from the system's meridian
  // convergence at its controls (PROJ's), rather than one number.
  bool basisTrueNorth = false;

  double chain() const { return units == "m" ? kChainMetres : kChainFeet; }
};

// One corner's outcome.
struct CornerOutcome {
  std::string name;
  std::optional<Restored> restored;  // or
  std::string refused;               // why not
  LostCorner corner;                 // its controls with their positions, as used
  double basis = 0;                  // degrees from grid north to true north, as used
};

// Parses strictly: unknown keys, wrong kinds, a method or unit not known,
// a control with neither a point nor X and Y, or a newer version is a
// RestorationFileError naming the place ("corner 2 (NE COR) north:
// \"record\" must be a number of chains").
RestorationFile parseRestoration(const std::string& jsonText);
// One corner as the file writes it, for other files that hold one (a
// township plan's restored corner); `where` names its place in faults.
CornerEntry parseCornerEntry(const nlohmann::ordered_json& corner, const std::string& where);
nlohmann::ordered_json cornerEntryJson(const CornerEntry& corner);
// Restores one corner of a file, its controls by number looked up in
// `points` (a source read whole): the outcome, restored or refused.
// The bearing of true north from grid north, degrees clockwise, at `at`:
// minus the system's meridian convergence there, as PROJ gives it.
// RestoreError when the system cannot give it.
double basisToTrueNorth(const CrsChoice& crs, const PlanePosition& at);
// Where a corner's controls are on the whole: the mean of those given or found in `points`.
PlanePosition controlsCentre(const CornerEntry& entry, const PointList& points);
CornerOutcome restoreEntry(const CornerEntry& entry, const PointList& points, bool haveSource, double basis,
                           double chain);
RestorationFile readRestorationFile(const std::string& file);
// The file as the program writes it (Save Inputs of the restoration window).
std::string restorationText(const RestorationFile& file);

struct RestorationRun {
  std::vector<CornerOutcome> corners;
  std::vector<std::string> report;       // the restoration report
  std::vector<std::string> points;       // the restored corners as a coordinate file (Tervalo points)
  nlohmann::ordered_json result;         // corners, refused (files and messages added by the caller)
  bool allRestored() const;
};

// Restores every corner: controls by number are looked up in the source
// file (read whole by the program's readers); a corner that cannot be
// restored is refused with its reason and the rest go on. A source that
// cannot be read is a RestorationFileError. `today` dates the report.
RestorationRun runRestoration(const RestorationFile& file, const std::string& today);

// The files of a run: "<stem>-restored.rpt" and "<stem>-restored.txt" in `folder`.
std::pair<std::filesystem::path, std::filesystem::path> restorationOutputs(const std::filesystem::path& folder,
                                                                           const std::string& stem);

}  // namespace tervalo
