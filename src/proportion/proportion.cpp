#include "proportion/proportion.h"

#include <cmath>

#include "text/errors.h"
#include "text/format.h"

namespace tervalo {
namespace {

std::string resultLine(double station, double value, bool metric) {
  return std::string(21, ' ') + Format(station, proportionMask(metric)) + std::string(9, ' ') + Format(value, "###.000");
}

// A whole number as the program converts one: to nearest, halves to even.
long toLong(double v) {
  const double r = std::nearbyint(v);
  if (!(r >= -2147483648.0 && r <= 2147483647.0)) throw RunTimeError("Overflow: station " + std::to_string(v));
  return static_cast<long>(r);
}

class Lister {
 public:
  Lister(ProportionInput& in, ProportionResult& out) : in_(in), out_(out) {}

  double valueAt(double x) const { return (x - in_.begSta) * in_.ratio + in_.begValue; }
  double stationOf(double v) const { return (v - in_.begValue) / in_.ratio + in_.begSta; }

  void list(double x, double v) {
    if (out_.lines.size() < kMaxProportionLines) out_.lines.push_back(resultLine(x, v, in_.metric));
  }
  // Every station from x by the increment while below `until`; returns where it stopped.
  double range(double x, double until) {
    if (!(in_.increment > 0)) return x;  // already warned: no increment for the range
    while (x < until && out_.lines.size() < kMaxProportionLines) {
      list(x, valueAt(x));
      x += in_.increment;
    }
    return x;
  }

 private:
  ProportionInput& in_;
  ProportionResult& out_;
};

}  // namespace

const char* proportionMask(bool metric) { return metric ? "###+000.000" : "###+00.000"; }

std::vector<std::string> writeFileTitle(const ProportionInput& in) {
  const char* mask = proportionMask(in.metric);
  const std::string rule(69, '-');
  // Metric adds one space, so the ending value stands under the beginning value.
  const std::string beginning = "  Beginning Station: " + Format(in.begSta, mask) + (in.metric ? "  Value:  " : "  Value: ") +
                                Format(in.begValue, "###.000");
  const std::string ending =
      in.ratioGiven ? "            Taper Ratio = " + in.ratioText
                    : "     Ending Station: " + Format(in.endSta, mask) + std::string(in.metric ? 10 : 9, ' ') +
                          Format(in.endValue, "###.000");
  return {"", "                      PROPORTION CALCULATION", "", rule, beginning, ending, rule,
          "                      Station           Value"};
}

ProportionResult processData(ProportionInput in) {
  ProportionResult out;
  const double dV = in.endValue - in.begValue;
  const double dS = in.between ? (in.endSta - in.eqOut) + (in.eqIn - in.begSta) : in.endSta - in.begSta;
  if (!in.ratioGiven) {
    if (dS == 0) {
      out.refusal = "The beginning and ending stations are the same: there is no proportion between them.";
      return out;
    }
    in.ratio = dV / dS;
  }
  if (in.value != 0 && in.ratio == 0) {
    out.refusal = "The value does not change along the stations (a ratio of 0): no station has this value.";
    return out;
  }
  const bool single = in.last == 0 && in.increment == 0;
  if (in.between && in.round && in.value == 0 && !single && toLong(in.increment) == 0) {
    out.refusal = "Stations after the equation are rounded to whole multiples of the increment: it must be more than 0.5.";
    return out;
  }

  Lister lister(in, out);
  const double last = in.last == 0 ? in.endSta : in.last;
  if (!in.between) {
    if (in.value != 0) {
      lister.list(lister.stationOf(in.value), in.value);
    } else if (single) {
      lister.list(in.first, lister.valueAt(in.first));
    } else {
      lister.range(in.first == 0 ? in.begSta : in.first, last);
      lister.list(last, lister.valueAt(last));
    }
    out.lines.push_back(std::string(69, '-'));
    return out;
  }

  // Stations at or beyond the equation's IN station are read in the OUT stationing.
  auto intoOutStationing = [&in] { in.begSta = in.eqOut - (in.eqIn - in.begSta); };
  if (in.value != 0) {
    double x = lister.stationOf(in.value);
    if (x >= in.eqIn) {
      intoOutStationing();
      x = lister.stationOf(in.value);
    }
    lister.list(x, in.value);
  } else if (single) {
    if (in.first >= in.eqIn) intoOutStationing();
    lister.list(in.first, lister.valueAt(in.first));
  } else {
    double x = lister.range(in.first == 0 ? in.begSta : in.first, in.eqIn);
    const double atEquation = lister.valueAt(in.eqIn);
    out.lines.push_back("           Equation  " + Format(in.eqIn, proportionMask(in.metric)) + std::string(9, ' ') +
                        Format(atEquation, "###.000") + " = " + Format(in.eqOut, proportionMask(in.metric)));
    const double overshoot = x - in.eqIn;
    x = in.eqOut;
    if (in.round) {
      // The first whole-unit multiple of the increment at or after OUT.
      x = std::nearbyint(x);
      const long step = toLong(in.increment);
      // Up by whole units to the next multiple, in one step rather than one unit at a time.
      const long remainder = toLong(x) % step;
      if (remainder != 0) x += static_cast<double>(remainder > 0 ? step - remainder : -remainder);
    } else {
      x += overshoot;  // the increment's spacing carried across the equation
    }
    in.begValue = atEquation;
    in.begSta = in.eqOut;
    lister.range(x, last);
    lister.list(last, lister.valueAt(last));
  }
  out.lines.push_back(std::string(68, '-'));  // one short with an equation, as it always was
  return out;
}

}  // namespace tervalo
