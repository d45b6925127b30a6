#pragma once
// The grading P.I. of one side of a cross-section: where the finished outer
// slope, carried down from the shoulder less the topsoil, meets the
// subgrade's outer slope. Slopes are rise over run, negative downward; all
// values in one unit.

#include <string>
#include <vector>

namespace tervalo {

struct Segment {
  double width = 0;
  double slope = 0;
};

struct GradingInput {
  std::string station;
  std::string side;            // "Left" or "Right"
  double clElev = 0;           // finished centerline elevation
  double topSoil = 0;
  bool subElevGiven = false;   // the subgrade CL elevation field is filled
  double subElev = 0;          // 0 when blank
  double subThick = 0;         // surfacing thickness
  std::vector<Segment> finished, subgrade;  // from the centerline out
};

struct GradingResult {
  double ptAoffset = 0, ptAelev = 0;  // finished shoulder
  double ptBelev = 0;                 // under the topsoil at the shoulder
  double ptCoffset = 0, ptCelev = 0;  // the subgrade's outer point
  bool subgradeWider = false;         // check 1
  bool subgradeAbove = false;         // check 2
  bool parallel = false;              // equal last slopes: no P.I.
  double d = 0;                       // from the shoulder to the P.I.
  bool inside = false;                // check 3: d < 0
  double grdOffset = 0, grdElev = 0;
  // Where the two outer slopes really meet: the finished slope from B at
  // the shoulder's offset and the subgrade slope from C at its own offset.
  // The P.I. above measures d from the shoulder even when C lies elsewhere.
  double meetOffset = 0, meetElev = 0;
  // The two differ by more than 0.001 in offset or elevation.
  bool meetDiffers = false;
};

// The Calculate steps; the width sums start from 0 at every call.
GradingResult computeGrading(const GradingInput& in);

// The slope words of the slope boxes, replaced before they are stored:
// "1:6" keeps six decimals in the finished list and three in the subgrade.
std::string slopeText(const std::string& typed, bool finished);

// The report: the title, station and side, both segment tables, the
// centerline elevations and the grading P.I.
std::vector<std::string> printResults(const GradingInput& in, const GradingResult& r);

// A list row of the form's segment lists: number, slope, width.
std::string segmentRow(int number, const Segment& s);

}  // namespace tervalo
