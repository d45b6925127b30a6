#pragma once
// A deed's calls as courses on the ground: lines by bearing and distance,
// curves by radius with their arc, chord or delta, tangent to the course
// before or turned by a chord bearing or a radial bearing; the figure's
// closure, perimeter and area (the arcs' segments counted), and whether it
// crosses itself. The COGO command MAPCHECK, the Mapcheck window, the
// aliquot parts and the plat all run on these.

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tervalo {

// A call that cannot be followed, or a figure that cannot be a parcel; the
// message says why in the call's own numbers.
class DeedError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct DeedCall {
  bool curve = false;
  double azimuth = 0;   // a line's, in degrees from north
  double distance = 0;  // a line's
  bool right = false;   // a curve's turn
  double radius = 0;
  enum class By { Arc, Chord, Delta } by = By::Arc;
  double value = 0;  // the arc length, the chord, or the delta in degrees
  std::optional<double> chordAzimuth{};   // a curve not tangent: its chord's bearing
  std::optional<double> radialAzimuth{};  // or the bearing from its start to its center
};

// One course followed from (n, e).
struct Course {
  bool curve = false;
  double fromN = 0, fromE = 0, toN = 0, toE = 0;
  double azimuth = 0;  // a line's, or a curve's chord's
  double length = 0;   // a line's, or a curve's chord
  double radius = 0, delta = 0, arc = 0;  // a curve's: delta in degrees
  bool right = false;
  double centerN = 0, centerE = 0;
  double tangentOut = 0;  // the azimuth leaving the course's end
};

// Follows `call` from (n, e); `before` is the azimuth leaving the course
// before, which a tangent curve continues. DeedError when the call cannot
// be followed (a radius or distance of 0 or less, a chord longer than the
// diameter, a first curve with no bearing of its own).
Course follow(const DeedCall& call, double n, double e, std::optional<double> before);

// A course as points along it, northing and easting: a line's two ends, an
// arc in `steps` equal chords, its last point the course's end exactly.
struct CoursePoint {
  double n = 0, e = 0;
};
std::vector<CoursePoint> tracedCourse(const Course& course, int steps = 24);

// A figure's closure: the misclosure from the last course's end back to the
// start, its azimuth, the precision as N of 1:N (none when it closes to
// within a millionth of the unit), the perimeter along the arcs and the
// area of the figure closed by its misclosure, each arc's segment counted.
struct FigureClosure {
  double latitude = 0, departure = 0;  // the error, end minus start
  double distance = 0;
  std::optional<double> azimuth{};
  std::optional<long long> precision{};
  double perimeter = 0;
  double area = 0;
};
FigureClosure closureOf(const std::vector<Course>& courses);

// Two courses of the figure that cross (1-based), or none; adjacent courses
// meeting at their shared corner do not count.
std::optional<std::pair<int, int>> crossingCourses(const std::vector<Course>& courses);

// Refuses a figure that is no parcel: fewer than three courses, or courses
// that cross. `names` names a course for the message ("line 4").
void requireParcel(const std::vector<Course>& courses, const std::vector<std::string>& names);

// An acre in the unit's square: 43,560 square feet, or the international acre in square metres.
double squareUnitsPerAcre(const std::string& unit);

}  // namespace tervalo
