#pragma once
// A traverse: from a known point and a backsight direction, courses of a
// direction (azimuth, bearing, angle right from the backsight, deflection
// from the line produced) and a horizontal distance (or a slope distance
// and zenith angle), closed on its start (a loop) or on another known
// point (a link). Its angular misclosure is shared equally among the
// angles; its linear misclosure is adjusted by the compass rule, the
// transit rule or Crandall's method, or the whole traverse by least squares.
// X east, Y north; azimuths in degrees clockwise from north.

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "crs/crs.h"
#include "points/point_list.h"

namespace tervalo {

// A traverse that cannot be computed as given; the message names the place
// ("course 3 (to 4)") and the fault.
class TraverseError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class Turn { Azimuth, Bearing, AngleRight, Deflection };

struct CourseEntry {
  std::string to;  // the station the course reaches
  Turn turn = Turn::Azimuth;
  // Degrees: the azimuth (a bearing's too), the angle right, or the
  // deflection (right positive, left negative).
  double angle = 0;
  std::optional<double> distance{};             // horizontal, or
  std::optional<double> slope{}, zenith{};      // a slope distance and its zenith angle
  // Grid = ground x factor, where ground distances are reduced to a system's grid; set by the run.
  double factor = 1;
  double horizontal() const;  // on the grid, where reduced
};

// A known point: by its number in the source file, or at X and Y.
struct KnownStation {
  std::string point;
  std::optional<PlanePosition> at{};
};

// A shot from a station to a point off the traverse, turned from the
// station's backsight.
struct SideShot {
  std::string from, to;
  double angleRight = 0;
  double distance = 0;  // horizontal
  std::string note{};
  double factor = 1;  // grid = ground x factor, as for a course
};

enum class AdjustRule { None, Compass, Transit, Crandall, LeastSquares };

// "none", "compass", "transit", "crandall", "least-squares"; and back.
const char* ruleName(AdjustRule rule);
std::optional<AdjustRule> ruleNamed(const std::string& name);

struct TraverseInput {
  std::string units = "ft";  // "ft" or "m"
  std::string source;        // a coordinate file for points given by number
  std::string project{};     // or a survey project (NAME.gpkg): points read from it, the adjusted ones stored in it
  KnownStation start;
  // The backsight: a known point, a direction, or both (a traverse station
  // whose direction from the start is known: the loop's last station).
  std::optional<KnownStation> backsightPoint{};
  std::optional<double> backsightAzimuth{};
  std::vector<CourseEntry> courses;
  KnownStation close;  // the start (a loop) or another known point
  // The known azimuth of the closing direction, and the angle right turned
  // at the closing point from the last station to it.
  std::optional<double> closeAzimuth{}, closeAngle{};
  AdjustRule adjust = AdjustRule::Compass;
  // The standard errors of the observations, for least squares.
  double sigmaAngle = 5;       // seconds
  double sigmaDistance = 0.01; // in the unit, plus
  double ppm = 0;              // parts per million of the distance
  // What the closure may be: a precision of 1:N at least, and an angular
  // misclosure of k seconds times the square root of the angles at most.
  double allowablePrecision = 5000;
  double allowableAngular = 10;
  std::vector<SideShot> sideShots{};
  CrsChoice crs{};
  // The distances were measured on the ground: each is reduced to the
  // system's grid by its line's combined factor (grid scale and elevation).
  bool ground = false;
  // What reading a raw file met and did not use ("line 12: a GPS record,
  // not used"), for the report.
  std::vector<std::string> notes{};
  // A raw file's elevations by trigonometric levelling from the start's:
  // each station and side shot with a zenith, a slope distance and the
  // heights of instrument and rod; by upper-case name.
  std::map<std::string, double> elevations{};
};

struct CourseResult {
  std::string from, to;
  double measured = 0;  // azimuth as the observations give it
  double azimuth = 0;   // after the angular misclosure is shared
  double distance = 0;  // horizontal
  double lat = 0, dep = 0;
  double cLat = 0, cDep = 0;  // the adjustment's corrections
  double adjustedDistance = 0, adjustedAzimuth = 0;
};

// A point's standard error ellipse (least squares): the semi-axes and the
// azimuth of the major one.
struct ErrorEllipse {
  double sigmaX = 0, sigmaY = 0;
  double major = 0, minor = 0, azimuth = 0;
};

struct StationResult {
  std::string name;
  bool known = false;  // held: the start, a known closing point
  PlanePosition unadjusted, adjusted;
  std::optional<ErrorEllipse> ellipse{};
  std::string note{};  // a side shot's: "from 2"
};

struct Closure {
  bool loop = false;
  // Seconds: the computed closing direction less the known one; nothing
  // where no direction is known at the end.
  std::optional<double> angular{};
  int angles = 0;  // the angles it is shared among
  std::string angularAgainst;  // what the closing direction was compared with
  // A loop turned by angles right alone: their sum and what it should be.
  std::optional<double> angleSum{}, angleSumShould{};
  double lat = 0, dep = 0;  // computed end less the known end
  double length = 0, direction = 0, perimeter = 0;
  std::optional<double> precision{};  // N of 1:N; nothing for an exact closure
};

struct Residual {
  std::string observation;  // "distance 1-2", "angle at 2 from 1 to 3"
  double observed = 0, adjusted = 0, residual = 0;
  bool angular = false;  // degrees (residual in seconds) rather than lengths
  double standardized = 0;  // Baarda's w
  double redundancy = 0;
  bool flagged = false;     // the likely blunder
};

struct LeastSquaresReport {
  std::vector<Residual> residuals;
  int redundancy = 0;
  double referenceVariance = 0;  // a posteriori; 1 without redundancy
  int iterations = 0;
  double chiSquare = 0, lower = 0, upper = 0;  // the global test at 95 %
  bool passed = true;
  double critical = 0;  // of |w|
  std::string flagged{};  // the observation flagged as the likely blunder
};

struct TraverseResult {
  AdjustRule rule = AdjustRule::Compass;
  std::vector<CourseResult> courses;
  std::vector<StationResult> stations;  // in the order met, each once
  std::vector<StationResult> sideShots;
  Closure closure;
  std::optional<LeastSquaresReport> leastSquares{};
};

// The known points given by number are looked up in `points` (exactly, or
// in upper case); `haveSource` says whether a source file was read.
TraverseResult computeTraverse(const TraverseInput& input, const PointList& points, bool haveSource);

// Degrees of a bearing ("S 10-20-00 W", "N45.5E") as an azimuth; of a
// deflection ("12-30-00 L", "R 5-00-00"), right positive. Nothing for
// another text.
std::optional<double> bearingAzimuth(const std::string& text);
std::optional<double> deflectionAngle(const std::string& text);
// "N 45°30'15.00\" E" for an azimuth.
std::string bearingText(double azimuth);
// An azimuth between 0 and 360.
double normalAzimuth(double degrees);
// The azimuth from `a` to `b`.
double azimuthBetween(const PlanePosition& a, const PlanePosition& b);

}  // namespace tervalo
