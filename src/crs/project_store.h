#pragma once
// A survey project: one GeoPackage holding the points of a job, written
// and read through GDAL's GeoPackage driver in the coordinate system
// module (GDAL loads when a project is first opened, never at start-up).
// Every change is one transaction; a second writer, a damaged or foreign
// file and a project from a newer Tervalo each get the program's own word.

#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "crs/crs.h"

namespace tervalo {

class ProjectError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct ProjectPoint {
  long long id = 0;  // the file's own key of a stored point; 0 for one not stored yet
  std::string number;
  double northing = 0, easting = 0;
  std::optional<double> elevation{};  // unknown: empty, never 0
  std::string description, feature, evidence;
  std::string source;    // the tool and run that made or last changed it
  std::string modified;  // when, as ISO 8601 UTC
};

// What the project keeps of itself, beside its points.
struct ProjectSettings {
  std::string unit = "ft";  // "ft" or "m": the unit of the coordinates
  CrsChoice crs{};          // none: local coordinates in the unit, placed nowhere on the earth
  // Who signs the project's plats: the surveyor, the license, the firm; empty where not given.
  std::string surveyor{}, license{}, firm{};
};

enum class OnDuplicate { Skip, Replace, Renumber };

struct StoreCounts {
  int read = 0, stored = 0, skipped = 0, replaced = 0, renumbered = 0;
  // What the store changed, so that it can be taken back as one step: the
  // numbers it added, and the points it replaced as they were.
  std::vector<std::string> added{};
  std::vector<ProjectPoint> replacedPoints{};
};

// The points a window asks for, and their order. Numbers sort as a surveyor
// reads them: whole numbers by value, before the numbers with letters.
struct PointQuery {
  enum class Column { Stored, Number, Northing, Easting, Elevation, Description, Feature, Evidence, Source, Modified };
  std::optional<long long> fromNumber{}, toNumber{};  // whole numbers in this range only
  std::string description{};                          // holding this text, in any case
  std::string feature{}, evidence{};                  // exactly these, in any case
  Column order = Column::Stored;
  bool descending = false;
  bool filters() const { return fromNumber || toNumber || !description.empty() || !feature.empty() || !evidence.empty(); }
  bool all() const { return !filters() && order == Column::Stored && !descending; }
};

// One edit of the project: the points numbered `remove` go, then each of
// `put` is stored, taking the place of the point with its number. A point
// with no `modified` is stamped now; one with a `source` keeps it.
struct ProjectEdit {
  std::vector<std::string> remove;
  std::vector<ProjectPoint> put;
};

// An alignment kept in the project: its definition as the file it came
// from gave it (an alignment file's JSON, or LandXML), and its centreline
// as a line GIS programs draw.
struct StoredAlignment {
  std::string name;
  std::string format;      // "alignment" (the alignment file's JSON) or "landxml"
  std::string definition;  // the text itself
  std::vector<std::pair<double, double>> centreline{};  // northing, easting
  std::string modified{};
};

class ProjectFile {
 public:
  virtual ~ProjectFile() = default;
  virtual const ProjectSettings& settings() const = 0;
  // Every point, in the order stored.
  virtual std::vector<ProjectPoint> points() = 0;
  // One point by its number, through the index on numbers.
  virtual std::optional<ProjectPoint> find(const std::string& number) = 0;
  // The points in one transaction: all stored, or none (ProjectError).
  // A number the project holds already is skipped, replaced, or given the
  // next free number, as `onDuplicate` says.
  virtual StoreCounts store(std::vector<ProjectPoint> points, OnDuplicate onDuplicate, const std::string& source) = 0;
  // The points with these numbers that the project holds, found by the index.
  virtual std::vector<ProjectPoint> findAll(const std::vector<std::string>& numbers) = 0;
  // How many points the project holds.
  virtual long long count() = 0;
  // `limit` points from the `offset`th, in the order stored: a window
  // shows a large project a screen at a time.
  virtual std::vector<ProjectPoint> page(long long offset, int limit) = 0;
  // The keys of the points `query` asks for, in its order.
  virtual std::vector<long long> select(const PointQuery& query) = 0;
  // The points with these keys, in the order given (a key no longer there is passed over).
  virtual std::vector<ProjectPoint> byIds(const std::vector<long long>& ids) = 0;
  // The different texts the points hold in "feature" or "evidence", sorted, at most `most`.
  virtual std::vector<std::string> values(const std::string& field, int most) = 0;
  // Where the point with key `id` stands in the order stored: how many points come before it.
  virtual long long rank(long long id) = 0;
  // The edit in one transaction, journalled under `source`: all or nothing.
  virtual void apply(const ProjectEdit& edit, const std::string& source) = 0;
  // The file the project is.
  virtual const std::filesystem::path& path() const = 0;
  // Who signs the project's plats (surveyor, license, firm of `people`), kept in one transaction.
  virtual void setSigner(const ProjectSettings& people) = 0;
  // An alignment kept under its name, taking the place of one of that name, in one transaction.
  virtual void storeAlignment(const StoredAlignment& alignment) = 0;
  // The alignments kept, by name.
  virtual std::vector<StoredAlignment> alignments() = 0;
};

// A new project at `file` (refused when the file exists), or the one there.
// A project of an older Tervalo is brought up to date, after a copy of it
// as it was is kept beside it (NAME.vN.gpkg, N its version).
std::unique_ptr<ProjectFile> createProject(const std::filesystem::path& file, const ProjectSettings& settings);
std::unique_ptr<ProjectFile> openProject(const std::filesystem::path& file);

}  // namespace tervalo
