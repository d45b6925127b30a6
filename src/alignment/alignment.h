#pragma once
// A highway alignment: a chain of tangents, circular curves and clothoid
// spirals built from its PIs (each with a radius and entry and exit spiral
// lengths), stationed from a start station through station equations.
// Its key points with the curve and spiral data; the point at a station
// and offset; the station and offset of a point, on every element it
// projects onto; a stakeout listing. Azimuths in degrees clockwise from
// north, lengths in the alignment's unit; an offset is right of the
// direction of stationing when positive.

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tervalo {

// An alignment that cannot be built or a question it cannot answer; the
// message names the PI, element or equation and the numbers.
class AlignmentError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct AlignmentPi {
  double northing = 0, easting = 0;
  std::optional<double> radius{};  // none: an angle point without a curve
  double spiralIn = 0, spiralOut = 0;
};

struct StationEquation {
  double back = 0, ahead = 0;  // the station given up and the one taken up in its place
};

struct AlignmentInput {
  std::string units = "ft";  // "ft" (100-foot stations) or "m" (1000-metre stations)
  double start = 0;          // the station of the first PI
  std::vector<AlignmentPi> pis;
  std::vector<StationEquation> equations;
  bool chord = false;  // circular curves by chord definition (degree per 100-foot chord)
};

enum class ElementKind { Line, Arc, Spiral };

// One element along the alignment. Its curvature runs from k0 to k1
// (1/radius; positive turning right), constant on an arc, zero on a line.
struct Element {
  ElementKind kind = ElementKind::Line;
  double start = 0;   // along the alignment from its beginning, before any equation
  double length = 0;  // along the stationing
  double northing = 0, easting = 0, azimuth = 0;  // at its start; azimuth in radians
  double k0 = 0, k1 = 0;
  double arcScale = 1;  // an arc by chord definition: its true length over its stationed length
  double endNorthing = 0, endEasting = 0, endAzimuth = 0;  // at its end, kept: a spiral's is an integral
  int pi = -1;          // the PI whose curve it belongs to, -1 for a tangent
};

struct Pose {
  double northing = 0, easting = 0;
  double azimuth = 0;  // degrees, of the direction of stationing
};

// What a PI's curve is: the circular curve's elements as the Horizontal
// Curve window gives them for the same delta and radius, and each spiral's.
struct SpiralData {
  double length = 0, theta = 0;  // theta in degrees
  double x = 0, y = 0;           // at the spiral's end, along and across its tangent
  double p = 0, k = 0;           // the circle's shift and the distance along to it
  double longTangent = 0, shortTangent = 0, longChord = 0;
};

struct PiCurve {
  int pi = 0;                  // index in the input
  double delta = 0;            // degrees, the tangents' deflection; positive right
  double radius = 0;
  double circleDelta = 0;      // degrees, of the circular part
  double degree = 0;           // of curve, per 100 feet under the alignment's definition
  double tangentIn = 0, tangentOut = 0;  // PI to TS (PC) and PI to ST (PT)
  double circleLength = 0;     // stationed
  double external = 0, midOrdinate = 0, chord = 0;  // of the circular part
  std::optional<SpiralData> in{}, out{};
};

struct KeyPoint {
  std::string name;  // POT, PC, PT, TS, SC, CS, ST, PI
  double along = 0;  // from the beginning, before equations
  double northing = 0, easting = 0;
  int pi = -1;
};

// A point's station and offset on one element.
struct Projection {
  double along = 0, offset = 0;
  int element = 0;
  ElementKind kind = ElementKind::Line;
};

class Alignment {
 public:
  // AlignmentError naming the PI or equation at fault: fewer than two PIs,
  // two PIs at one place, a radius of 0 or less, a negative spiral, spirals
  // turning more than the tangents do, curves whose tangents overlap,
  // equations out of order or beyond the alignment.
  explicit Alignment(const AlignmentInput& input);
  // An alignment as another program gives it, element by element (each
  // from its own start, so a gap of a tenth of a millimetre between two
  // stays as it is), stationed from `input.start` with `input.equations`
  // standing at `equationAlong` from the beginning. Its key points are
  // named by the elements they join; its PIs and curve data are the file's
  // to give, so `curves()` is empty.
  Alignment(const AlignmentInput& input, std::vector<Element> elements, std::vector<double> equationAlong);

  const AlignmentInput& input() const { return input_; }
  const std::vector<Element>& elements() const { return elements_; }
  const std::vector<KeyPoint>& keyPoints() const { return keys_; }
  const std::vector<PiCurve>& curves() const { return curves_; }
  double length() const { return length_; }

  // The station shown at a distance along the alignment, equations applied.
  double stationAt(double along) const;
  // The distance along for a station: a station at or beyond an equation's
  // back station is read in the ahead stationing, as the Proportion window
  // reads it. AlignmentError for a station in an equation's gap or beyond
  // the ends.
  double alongAt(double station) const;

  // The point at a distance along and an offset (right positive).
  Pose at(double along, double offset = 0) const;
  // Every element the point projects onto, nearest first. AlignmentError
  // when it projects onto none (beyond the ends), saying which end.
  std::vector<Projection> project(double northing, double easting) const;

  // Station text: "12+34.56" (feet), "1+234.567" (metres).
  std::string stationText(double station) const;

 private:
  AlignmentInput input_;
  std::vector<Element> elements_;
  std::vector<KeyPoint> keys_;
  std::vector<PiCurve> curves_;
  std::vector<double> equationAlong_;  // where each equation stands along the alignment
  double length_ = 0;
};

// A station typed "12+34.56", "1+234.567" or "1234.56"; nothing for another text.
std::optional<double> parseStation(const std::string& text);

// The pose at `l` along an element from its start.
Pose poseOn(const Element& e, double l);

// A clothoid's point at `l` from its start, in the frame of its start
// tangent (x along, y to the side it turns), curvature from 0 to 1/R over Ls.
void clothoidPoint(double l, double radius, double spiralLength, double& x, double& y);

}  // namespace tervalo
