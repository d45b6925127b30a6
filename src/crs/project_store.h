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
};

enum class OnDuplicate { Skip, Replace, Renumber };

struct StoreCounts {
  int read = 0, stored = 0, skipped = 0, replaced = 0, renumbered = 0;
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
};

// A new project at `file` (refused when the file exists), or the one there.
std::unique_ptr<ProjectFile> createProject(const std::filesystem::path& file, const ProjectSettings& settings);
std::unique_ptr<ProjectFile> openProject(const std::filesystem::path& file);

}  // namespace tervalo
