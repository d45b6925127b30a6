#pragma once
// Lost corners restored by proportionate measurement, from found corners and
// the original record. Coordinates are plane X (east) and Y (north) in the
// coordinate file's unit; record distances are in chains (66 feet, or
// 20.1168 m for metric coordinates). The rules work in cardinal
// coordinates, east and north of the true meridian: the basis b is the
// bearing of true north from the coordinates' north, clockwise, and
//   E' = X cos b - Y sin b,   N' = X sin b + Y cos b.

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tervalo {

struct Position {
  double x = 0, y = 0;
};

// A found corner with the record distance from the lost corner to it.
struct Control {
  std::string point;  // its number in the source file, for the record; "" when typed
  Position at;
  double record = 0;  // chains
};

enum class RestoreMethod { Auto, Single, Double, ThreePoint, TwoPoint, OnePoint };

// "auto", "single", "double", "three-point", "two-point", "one-point".
const char* methodName(RestoreMethod method);
std::optional<RestoreMethod> methodNamed(const std::string& name);

struct LostCorner {
  std::string name;
  RestoreMethod method = RestoreMethod::Auto;
  // Scales record chains used as lengths (three-, two- and one-point
  // control), for a known correction of the original chain's length.
  double index = 1;
  std::optional<Control> north{}, south{}, east{}, west{};
  // One-point control: the record azimuth from the control toward the lost
  // corner, degrees from true north; by default the cardinal direction.
  std::optional<double> azimuth{};
};

// Where a method put a point on the way (the single-proportion points on
// each line of a double proportion, say), for the picture and the report.
struct TemporaryPoint {
  std::string name;  // "on the north-south line"
  Position at;
};

struct Restored {
  Position at;
  RestoreMethod method = RestoreMethod::Single;  // the method used, never Auto
  std::vector<TemporaryPoint> temporary;
  std::string text;  // the rule in words
};

// A corner that cannot be restored as asked: the message says why.
class RestoreError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The chain in the coordinates' unit.
inline constexpr double kChainFeet = 66.0;
inline constexpr double kChainMetres = 20.1168;

// Restores one lost corner by the method asked for, or with Auto by the
// method its controls call for (single, double, three-point, two-point,
// one-point, in that order). `basis` in degrees, `chain` in the
// coordinates' unit. RestoreError for controls that do not fit the method,
// a record distance that is not positive, or two controls on one point.
Restored restoreCorner(const LostCorner& corner, double basis, double chain);

}  // namespace tervalo
