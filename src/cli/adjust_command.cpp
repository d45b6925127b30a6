#include "cli/adjust_command.h"

#include <algorithm>
#include <cmath>
#include <iostream>

#include <nlohmann/json.hpp>

#include "adjust/adjustment.h"
#include "adjust/adjustment_report.h"
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
    for (const std::string& line : adjustmentReport(network, a, file)) out << line << "\n";
  }
  return good ? 0 : kExitCriticalBox;
}

}  // namespace tervalo
