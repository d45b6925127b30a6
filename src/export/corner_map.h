#pragma once
// Corners and the lines between them, as every export writes them: a
// section's, or a whole township's with each shared corner and line once.

#include <array>
#include <cstddef>
#include <stdexcept>
#include <optional>
#include <string>
#include <vector>

#include "export/map_system.h"
#include "parcels/deed.h"
#include "secsub/section_record.h"
#include "secsub_out/names.h"

namespace tervalo {

struct MapPoint {
  std::string name;
  std::string description;
  std::string feature;
  double x = 0, y = 0;
  bool computed = false;
  int slot = -1;  // the section's position it stands for (the first, where slots share it)
  // "entered", "computed" or "restored"; for a restored corner the rule that placed it.
  std::string status = "entered";
  std::string rule{};
  std::string number{};    // the surveyor's point number, where the name is another
  std::string evidence{};  // what was found in the field ("FD STONE NW COR SEC 14")
  // In a township: the other numbers sections gave this corner, in the order met.
  std::vector<std::string> otherNumbers{};
  std::optional<double> z{};  // an elevation, where one is known (a raw file's shots)
};

// A name that two different positions of one map would be written under.
struct NameCollision {
  std::string name;
  std::vector<std::string> corners;  // "corner 4 (NE 14-115-22) at 512313.4890, 289841.9890", each position once
};

// An export that cannot hold what the run has; the message names the
// point and the fault, for a box.
class ExportError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct MapLine {
  std::string feature;  // the GEOPAK feature group: "SEC", "EWQ", "NSQ", "EWSX", "NSSX"
  std::string name;     // the segment's unique name
  std::size_t from = 0, to = 0;  // indices into the points
};

// A closed parcel of the map: its courses between the map's points, by name.
struct MapParcel {
  std::string name;  // "NE 1/4 NW 1/4", "Lot 3", "Section 14 Lot 3"
  std::string description;
  std::vector<Course> courses;
  // The point each course starts at, by name; none: the courses' own
  // coordinates are written (a mapcheck's calls have no points).
  std::vector<std::string> cornerNames{};
  double area = 0;
  double closure = 0;
  std::optional<double> closureAzimuth{};
};

struct CornerMap {
  std::string title;  // "Section 14 T115N R22W"
  MapSystem system;   // the coordinate system its coordinates are in
  std::vector<MapPoint> points;  // one per name
  std::vector<MapLine> lines;  // grouped by feature, in the groups' order
  std::vector<NameCollision> collisions;  // names given to two positions; no file may be written
  // Named by unique corner names (a township): the files carry the
  // surveyor's numbers beside the names.
  bool uniqueNames = false;
  // A section's aliquot parts and lots, as LandXML carries them.
  std::vector<MapParcel> parcels{};
};

// The feature groups, in the order the files list them.
inline constexpr std::array<const char*, 5> kFeatureGroups{"SEC", "EWQ", "NSQ", "EWSX", "NSSX"};

// The line groups a map has lines in: the section's in their order, then
// any other (a traverse's "TRAV") as first met.
std::vector<std::string> lineGroups(const CornerMap& map);

// A section's present positions in slot order and its drawn lines. Points
// are named by their point numbers, or by their unique corner names when
// `uniqueNames` is set. Slots sharing a name and a position (to the fourth
// decimal, as the files write it) are one point; a name given to two
// different positions is listed under `collisions`.
CornerMap sectionMap(const SectionRecord& record, const std::array<bool, slot::count>& computed, const CornerNaming& naming,
                     bool uniqueNames = false);

// Every writer's first step: an ExportError naming each colliding name and
// its corners, so that no file ever puts two positions under one name.
void requireOneNamePerPosition(const CornerMap& map);

}  // namespace tervalo
