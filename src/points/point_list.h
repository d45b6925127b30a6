#pragma once
// The shared list of points read from the source coordinate file.

#include <vector>
#include <cstdint>
#include <optional>
#include <string>

namespace tervalo {

struct PointRecord {
  double x = 0;             // easting, the file's first coordinate
  double y = 0;             // northing
  std::string feature;      // feature code as written in the file
  std::string description;  // as written in the file
  std::string name;         // point name or number, compared as text
  // The evidence found at the point, when the file gives it apart from the
  // description: the sixth column of a comma-delimited line (Tervalo's own
  // points write the designation as the description and the evidence after it).
  std::optional<std::string> evidence{};
};

struct PointList {
  // The section form's list: indices 0 to 150, and a 152nd point is a
  // subscript fault, as it always was.
  static constexpr int kSourceCapacity = 151;
  int capacity = kSourceCapacity;
  std::vector<PointRecord> records = std::vector<PointRecord>(kSourceCapacity);
  // The last index a lookup searches. Its meaning differs by format: the
  // last point's index after SDMS, the point count plus 1 after a
  // comma-delimited file or an X-Y report, 1 after an N-E report. Records
  // beyond the points read are empty, so a search over them finds nothing.
  std::int16_t pointCount = 0;

  // Empties names, features and descriptions and zeroes the coordinates of
  // records first to last; the count is left as it is.
  void clearRecords(int first, int last);

  // A list without that limit, growing as a reader fills it: a township
  // plan's source file (a county's control points) read whole.
  static PointList unbounded();
};

// Which format each recognition found. Flags are only ever set, never
// cleared, for the life of the program: a later file is read by the reader
// of the first flag set in the order CD, XY, NE, SDMS, whatever its format.
struct FormatFlags {
  bool xy = false;
  bool ne = false;
  bool cd = false;
  bool sdms = false;
};

}  // namespace tervalo
