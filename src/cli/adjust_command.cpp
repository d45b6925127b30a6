#include "cli/adjust_command.h"

#include <algorithm>
#include <cmath>
#include <iostream>

#include <nlohmann/json.hpp>

#include "adjust/adjustment.h"
#include "app/json_text.h"
#include "app/runner.h"
#include "cogo/cogo.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/input_file.h"

namespace tervalo {

int adjustCommand(const std::string& file, bool json, std::ostream& out, std::ostream& err) {
  Network network;
  Adjustment a;
  try {
    network = parseNetwork(readInputFile(file));
    a = adjustNetwork(network);
  } catch (const InputFileError& e) {
    err << "tervalo-cli: " << file << ": " << e.what() << "\n";
    return kExitUsage;
  } catch (const NetworkError& e) {
    err << "tervalo-cli: " << file << ": " << e.what() << "\n";
    return kExitUsage;
  }
  const bool good = a.passed && !a.flagged;
  const auto typeName = [](ObservationType t) {
    switch (t) {
      case ObservationType::Distance: return "distance";
      case ObservationType::Slope: return "slope";
      case ObservationType::Angle: return "angle";
      case ObservationType::Direction: return "direction";
      case ObservationType::Azimuth: return "azimuth";
      case ObservationType::Dh: return "dh";
    }
    return "";
  };
  const auto ellipse = [](const Ellipse& e) { return nlohmann::ordered_json{{"a", e.a}, {"b", e.b}, {"azimuth", e.azimuth}}; };
  if (json) {
    nlohmann::ordered_json j{{"dof", a.dof},
                             {"variance", a.variance},
                             {"chi_square", {{"value", a.chiSquare}, {"lower", a.lower}, {"upper", a.upper}, {"passed", a.passed}}}};
    j["points"] = nlohmann::ordered_json::array();
    for (const AdjustedPoint& p : a.points) {
      nlohmann::ordered_json point{{"name", p.name}};
      if (p.northing) {
        point["northing"] = *p.northing;
        point["easting"] = *p.easting;
        point["sn"] = p.sn;
        point["se"] = p.se;
        point["ellipse95"] = ellipse(p.ellipse95);
      }
      if (p.elevation) {
        point["elevation"] = *p.elevation;
        point["sz"] = p.sz.value_or(0);
      }
      j["points"].push_back(point);
    }
    j["observations"] = nlohmann::ordered_json::array();
    for (const AdjustedObservation& o : a.observations)
      j["observations"].push_back({{"index", o.place}, {"type", typeName(o.type)}, {"residual", o.residual}, {"standardized", o.standardized},
                                   {"redundancy", o.redundancy}, {"flagged", o.flagged}});
    j["relative"] = nlohmann::ordered_json::array();
    for (const RelativeEllipse& r : a.relative) {
      nlohmann::ordered_json rel{{"from", network.points[static_cast<std::size_t>(r.from)].name}, {"to", network.points[static_cast<std::size_t>(r.to)].name}};
      rel.update(ellipse(r.ellipse95));
      rel["allowed"] = r.allowed;
      rel["passed"] = r.passed;
      j["relative"].push_back(rel);
    }
    out << jsonText(j) << "\n";
  } else {
    out << "Least-squares adjustment of " << file << "\n";
    out << "  Degrees of freedom " << a.dof << ", reference variance " << Format(a.variance, "0.0000") << " after " << a.iterations
        << " iterations\n";
    const double percent = network.significance * 100;
    out << "  Chi-square test at " << Format(percent, percent == std::round(percent) ? "0" : "0.0##") << " %: " << Format(a.chiSquare, "0.000") << " within ["
        << Format(a.lower, "0.000") << ", " << Format(a.upper, "0.000") << "]: " << (a.passed ? "passed" : "FAILED") << "\n";
    // The residuals, the largest standardized first.
    std::vector<AdjustedObservation> sorted = a.observations;
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& x, const auto& y) { return std::fabs(x.standardized) > std::fabs(y.standardized); });
    out << "  Observation                                          residual       w      r\n";
    for (const AdjustedObservation& o : sorted) {
      std::string name = observationName(network, network.observations[static_cast<std::size_t>(o.place - 1)]);
      name.resize(std::max<std::size_t>(name.size(), 50), ' ');
      out << "  " << name << " " << Format(o.residual, "0.0000") << "  " << Format(o.standardized, "0.00") << "  " << Format(o.redundancy, "0.00")
          << (o.flagged ? "  <- likely blunder (|w| > " + Format(a.critical, "0.00") + ")" : "") << "\n";
    }
    out << "  Point            Northing        Easting      sN      sE   95 % a, b, azimuth\n";
    for (const AdjustedPoint& p : a.points) {
      if (!p.northing) continue;
      std::string name = p.name;
      name.resize(std::max<std::size_t>(name.size(), 12), ' ');
      out << "  " << name << " " << Format(*p.northing, "0.0000") << "  " << Format(*p.easting, "0.0000") << "  " << Format(p.sn, "0.0000") << "  "
          << Format(p.se, "0.0000") << "  " << Format(p.ellipse95.a, "0.0000") << ", " << Format(p.ellipse95.b, "0.0000") << ", "
          << angleText(p.ellipse95.azimuth, 0) << (p.moved ? "" : "  (held)") << "\n";
    }
    for (const AdjustedPoint& p : a.points)
      if (p.elevation) out << "  " << p.name << "  elevation " << Format(*p.elevation, "0.0000") << "  sZ " << Format(p.sz.value_or(0), "0.0000") << "\n";
    for (const RelativeEllipse& r : a.relative)
      out << "  Relative " << network.points[static_cast<std::size_t>(r.from)].name << "-" << network.points[static_cast<std::size_t>(r.to)].name
          << ": 95 % " << Format(r.ellipse95.a, "0.0000") << " allowed " << Format(r.allowed, "0.0000") << ": " << (r.passed ? "passed" : "FAILED") << "\n";
    out << (good ? "  The network passed its tests.\n" : "  The network did NOT pass: look at the flagged observation, remove or reweight it, and adjust again.\n");
  }
  return good ? 0 : kExitCriticalBox;
}

}  // namespace tervalo
