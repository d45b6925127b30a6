#pragma once
// A survey project: the points of a job in one GeoPackage, or in a
// PostgreSQL database with PostGIS that a firm's crews and office share,
// in the coordinate system module (GDAL and libpq load when a project is
// first opened, never at start-up). Every change is one transaction; a
// second writer, a damaged or foreign store, a lost server and a project
// from a newer Tervalo each get the program's own word.

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "crs/crs.h"

namespace tervalo {

// 1: points, project and journal; 2: indexes on feature and evidence, which the Points window filters by.
inline constexpr int kProjectSchema = 2;

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
  long long version = 0;  // a shared project's mark of the point's last change, new at each; 0 in a GeoPackage
};

// An edit of a shared project refused because another user changed a point
// since it was read: the message names the point, what it holds and when.
class ProjectConflict : public ProjectError {
 public:
  ProjectConflict(const std::string& what, std::optional<ProjectPoint> held) : ProjectError(what), now(std::move(held)) {}
  std::optional<ProjectPoint> now;  // the point as it is now; empty when it was deleted
};

// Now, as a project stamps its changes: ISO 8601 UTC to the second.
inline std::string stampNow() {
  const std::time_t t = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm utc{};
  gmtime_r(&t, &utc);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text;
}

// One row of the project's journal.
struct JournalEntry {
  std::string changed, source, what;
};

// What the project keeps of itself, beside its points.
struct ProjectSettings {
  std::string unit = "ft";  // "ft" or "m": the unit of the coordinates
  CrsChoice crs{};          // none: local coordinates in the unit, placed nowhere on the earth
  // Who signs the project's plats: the surveyor, the license, the firm; empty where not given.
  std::string surveyor{}, license{}, firm{};
};

// The settings as a project's `tervalo_project` table keeps them, key by key.
inline ProjectSettings settingsOf(const std::map<std::string, std::string>& values) {
  const auto value = [&values](const char* key) {
    const auto it = values.find(key);
    return it == values.end() ? std::string() : it->second;
  };
  ProjectSettings s;
  s.unit = value("unit") == "m" ? "m" : "ft";
  s.crs.epsg = std::atoi(value("epsg").c_str());
  s.crs.foot = value("foot");
  s.surveyor = value("surveyor");
  s.license = value("license");
  s.firm = value("firm");
  return s;
}

enum class OnDuplicate { Skip, Replace, Renumber };

struct StoreCounts {
  int read = 0, stored = 0, skipped = 0, replaced = 0, renumbered = 0;
  // What the store changed, so that it can be taken back as one step: the
  // numbers it added, and the points it replaced as they were.
  std::vector<std::string> added{};
  std::vector<ProjectPoint> replacedPoints{};
  // A shared project's version of each point stored, by number.
  std::map<std::string, long long> versions{};
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
// In a shared project, `expect` holds the version each named point was
// read at (0: the number was free): where another user has changed one
// since, the whole edit is refused with ProjectConflict.
struct ProjectEdit {
  std::vector<std::string> remove;
  std::vector<ProjectPoint> put;
  std::map<std::string, long long> expect{};
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
  // next free number, as `onDuplicate` says. In a shared project `expect`
  // holds, as ProjectEdit's does, the versions of the points the caller read.
  virtual StoreCounts store(std::vector<ProjectPoint> points, OnDuplicate onDuplicate, const std::string& source,
                            const std::map<std::string, long long>& expect = {}) = 0;
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
  // Returns a shared project's version of every point the edit named, by
  // number (0 for one it removed), for the edit that takes it back.
  virtual std::map<std::string, long long> apply(const ProjectEdit& edit, const std::string& source) = 0;
  // The file the project is, or its PostgreSQL connection ("PG:service=firm").
  virtual const std::filesystem::path& path() const = 0;
  // The project's name for people: its file's without the ending, or its database's.
  virtual std::string name() const = 0;
  // Whether another user has changed the points since this was last asked
  // (a shared project's notices; a GeoPackage has one writer at a time).
  virtual bool changedElsewhere() { return false; }
  // The journal, oldest first.
  virtual std::vector<JournalEntry> history() = 0;
  // Points and journal rows as another project holds them (numbers, keys'
  // order, sources and stamps kept) into this new, empty one, in one transaction.
  virtual void append(const std::vector<ProjectPoint>& points, const std::vector<JournalEntry>& journal) = 0;
  // Who signs the project's plats (surveyor, license, firm of `people`), kept in one transaction.
  virtual void setSigner(const ProjectSettings& people) = 0;
  // An alignment kept under its name, taking the place of one of that name, in one transaction.
  virtual void storeAlignment(const StoredAlignment& alignment) = 0;
  // The alignments kept, by name.
  virtual std::vector<StoredAlignment> alignments() = 0;
};

// A new project at `file` (refused when the file exists), or the one there.
// A project of an older Tervalo is brought up to date, after a copy of it
// as it was is kept beside it (NAME.vN.gpkg, N its version). A `file`
// beginning "PG:" is a PostgreSQL connection in GDAL's form: the project
// is made in, or opened from, that database, which must have PostGIS.
std::unique_ptr<ProjectFile> createProject(const std::filesystem::path& file, const ProjectSettings& settings);
std::unique_ptr<ProjectFile> openProject(const std::filesystem::path& file);
// Whether `project` names a PostgreSQL connection rather than a file.
inline bool sharedProject(const std::string& project) { return project.rfind("PG:", 0) == 0; }
// A project a file names, as the file's folder makes it: a relative file
// name lies in `folder`; a connection, an absolute name or none stay.
std::string projectBeside(const std::string& project, const std::filesystem::path& folder);
// The project `from` made again at `to` (which must not be a project yet):
// settings, every point as it is, the journal and the alignments. Returns
// how many points were copied.
long long copyProject(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace tervalo
