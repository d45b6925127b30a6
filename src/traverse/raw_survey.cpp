#include "traverse/raw_survey.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "text/angle.h"
#include "text/format.h"
#include "text/justify.h"
#include "traverse/rw5.h"
#include "traverse/traverse.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;
constexpr double kRadian = 3.14159265358979323846 / 180;

std::string key(const std::string& name) { return upper(name); }
std::string line(int n) { return "line " + std::to_string(n); }
std::string coordinate(double v) { return Format(v, "0.0000"); }
std::string seconds(double v) { return Format(v, "0.0") + "\""; }

// An angle's difference from another, in seconds, within half a turn.
double secondsApart(double a, double b) {
  double d = std::fmod(a - b, 360.0);
  if (d > 180) d -= 360;
  if (d <= -180) d += 360;
  return d * 3600;
}

struct Known {
  PlanePosition at;
  std::optional<double> z;
  std::string how;  // where the position came from, for the report
};

class Reduction {
 public:
  Reduction(const RawRecords& r, const RawOptions& o) : r_(r), o_(o) {}

  // The GNSS records alone, listed and placed: beside a traverse.
  RawSurvey gnssOnly() {
    gnss();
    return std::move(out_);
  }

  RawSurvey run() {
    out_.units = r_.units;
    out_.report = {"                RAW FILE REDUCTION", "", "  Raw file: " + o_.source + (r_.job.empty() ? "" : "    Job: " + r_.job),
                   "  Units: " + std::string(r_.units == "m" ? "metres" : "feet") + "    Set and check tolerance: " +
                       seconds(o_.tolerance),
                   ""};
    for (const auto& [name, p] : r_.stored) remember(name, p.at, p.elevation, "stored (SP, " + line(p.line) + ")", p.note, line(p.line));
    gnss();
    for (std::size_t i = 0; i < r_.setups.size(); ++i) setup(i);
    finish();
    return std::move(out_);
  }

 private:
  void remember(const std::string& name, PlanePosition at, std::optional<double> z, const std::string& how,
                const std::string& description, const std::string& source) {
    known_[key(name)] = {at, z, how};
    out_.points.push_back({name, at, z, description, o_.source + " " + source});
  }

  void refuse(const std::string& text) { out_.refused.push_back(text); }

  void gnss() {
    if (r_.gnss.empty()) return;
    out_.report.push_back("  GNSS points (latitude and longitude as the data collector recorded them, heights as it gave them)");
    std::vector<PlanePosition> plane;
    if (!o_.crs.none()) {
      std::vector<GeographicPosition> onEarth;
      for (const GnssRecord& g : r_.gnss) onEarth.push_back({g.latitude, g.longitude});
      plane = geo().plane(o_.crs, onEarth);
    }
    for (std::size_t i = 0; i < r_.gnss.size(); ++i) {
      const GnssRecord& g = r_.gnss[i];
      std::string text = "    " + leftJustify(g.point, 10) + " lat " + Format(g.latitude, "0.000000000") + "  lon " +
                         Format(g.longitude, "0.000000000") + (g.height ? "  height " + Format(*g.height, "0.000") : "");
      if (!plane.empty()) {
        text += "  ->  N " + coordinate(plane[i].y) + "  E " + coordinate(plane[i].x);
        if (!known_.count(key(g.point)))
          remember(g.point, plane[i], g.height, "GNSS (" + line(g.line) + ")", g.note, line(g.line) + " (GNSS)");
      }
      out_.report.push_back(text);
    }
    out_.report.push_back(o_.crs.none() ? "    Not placed on a grid: no coordinate system was given."
                                        : "    On the grid of " + crsTitle(o_.crs) + " through PROJ, the latitudes and longitudes taken on its datum.");
    out_.report.emplace_back("");
  }

  // Where the setup stands: its OC coordinates, else a point known by now.
  std::optional<Known> place(const RawSetup& s) {
    if (s.given) {
      const std::string how = "as the data collector stored them on its OC record";
      if (!known_.count(key(s.at)))
        remember(s.at, *s.given, s.elevation, how, "", line(s.line) + " (OC)");
      return Known{*s.given, s.elevation, how};
    }
    const auto found = known_.find(key(s.at));
    if (found == known_.end()) return std::nullopt;
    Known k = found->second;
    if (s.elevation) k.z = s.elevation;
    return k;
  }

  // The azimuth of a backsight: as recorded, else from the two points.
  std::optional<double> orientation(const RawBacksight& b, const Known& at) {
    if (b.azimuth) return b.azimuth;
    const auto to = known_.find(key(b.point));
    if (b.point.empty() || to == known_.end()) return std::nullopt;
    return azimuthBetween(at.at, to->second.at);
  }

  void setup(std::size_t index) {
    const RawSetup& s = r_.setups[index];
    const std::string name = "setup " + std::to_string(index + 1) + " on " + s.at;
    const auto at = place(s);
    if (!at) {
      refuse(line(s.line) + ": " + name + ": the file gives no coordinates for " + s.at +
             " (no N and E on the OC record, no SP, no shot to it before): its " + std::to_string(s.shots.size()) +
             " shots are not reduced");
      return;
    }
    const bool again = std::count_if(r_.setups.begin(), r_.setups.begin() + static_cast<long>(index),
                                     [&](const RawSetup& o) { return upper(o.at) == upper(s.at); }) > 0;
    out_.report.push_back("  " + name + " (" + line(s.line) + (again ? ", occupied again" : "") + "): N " + coordinate(at->at.y) +
                          "  E " + coordinate(at->at.x) + (at->z ? "  Z " + Format(*at->z, "0.000") : "") + ", " + at->how);
    std::vector<std::optional<double>> azimuths;
    for (std::size_t b = 0; b < s.backsights.size(); ++b) {
      const RawBacksight& back = s.backsights[b];
      azimuths.push_back(orientation(back, *at));
      out_.report.push_back("    Backsight " + (back.point.empty() ? std::string("by azimuth") : back.point) + " (" + line(back.line) +
                            "): azimuth " + (azimuths.back() ? decimalToDmsCarried(*azimuths.back()) : std::string("unknown")) +
                            (back.azimuth ? " as recorded" : " from the coordinates") + ", circle " + decimalToDmsCarried(back.circle));
      if (!azimuths.back())
        refuse(line(back.line) + ": " + name + ": the backsight " + back.point +
               " has no azimuth (BS empty) and no coordinates: the shots oriented on it are not reduced");
      // A second backsight to the same point checks the orientation.
      if (b > 0 && !back.point.empty() && upper(back.point) == upper(s.backsights[0].point) && azimuths[0] && azimuths.back()) {
        const double drift = secondsApart(s.backsights[0].circle - *azimuths[0], back.circle - *azimuths.back());
        check(line(back.line) + ": " + name + ": backsight check to " + back.point + ": the circle differs by " + seconds(drift),
              std::fabs(drift) > o_.tolerance);
      }
    }
    for (const RawShot& shot : s.shots) reduce(s, name, *at, shot, azimuths);
    out_.report.emplace_back("");
  }

  void check(const std::string& text, bool beyond) {
    out_.report.push_back("    " + text + (beyond ? "  ** BEYOND TOLERANCE **" : ""));
    if (beyond) out_.flagged.push_back(text);
  }

  void reduce(const RawSetup& s, const std::string& name, const Known& at, const RawShot& shot,
              const std::vector<std::optional<double>>& azimuths) {
    double angleRight = shot.angleRight.value_or(0), horizontal = shot.horizontal.value_or(0);
    std::optional<double> slope = shot.slope, zenith = shot.zenith;
    if (shot.type == "SET") {
      const SetMean m = meanOfSet(s, shot);
      if (!m.fault.empty()) {
        refuse(line(shot.line) + ": " + name + ": " + m.fault);
        return;
      }
      std::string readings;
      for (double a : m.angles) readings += " " + decimalToDmsCarried(a);
      out_.report.push_back("    Set to " + shot.to + " (" + line(shot.line) + "), " + std::to_string(m.angles.size()) +
                            " readings from the backsight:" + readings);
      std::string spread = "spread " + seconds(m.spread);
      if (m.directLessReverse) spread += ", direct less reverse " + seconds(*m.directLessReverse);
      check(line(shot.line) + ": " + name + ": set to " + shot.to + ": mean " + decimalToDmsCarried(m.angleRight) + ", " + spread,
            m.spread > o_.tolerance);
      angleRight = m.angleRight;
      horizontal = m.horizontal;
      slope = m.slope;
      zenith = m.zenith;
    }
    double azimuth = 0;
    if (shot.azimuth) {
      azimuth = *shot.azimuth;
    } else {
      const std::optional<double> back = shot.backsight >= 0 ? azimuths[static_cast<std::size_t>(shot.backsight)] : std::nullopt;
      if (!back) {
        refuse(line(shot.line) + ": " + name + ": the shot to " + shot.to + " has no backsight azimuth to turn from");
        return;
      }
      azimuth = std::fmod(*back + angleRight, 360.0);
    }
    const PlanePosition to{at.at.x + horizontal * std::sin(azimuth * kRadian), at.at.y + horizontal * std::cos(azimuth * kRadian)};
    std::optional<double> z;
    if (at.z && shot.hiKnown && slope && zenith) z = *at.z + shot.hi + *slope * std::cos(*zenith * kRadian) - shot.hr;
    // A shot to the backsight point, or to a point known already, checks it.
    const auto known = known_.find(key(shot.to));
    if (known != known_.end()) {
      const double dAngle = secondsApart(azimuth, azimuthBetween(at.at, known->second.at));
      const double dDistance = horizontal - std::hypot(known->second.at.x - at.at.x, known->second.at.y - at.at.y);
      const double distanceTolerance = r_.units == "m" ? 0.015 : 0.05;
      check(line(shot.line) + ": " + name + ": check shot to " + shot.to + ": angle " + seconds(dAngle) + ", distance " +
                Format(dDistance, "0.000") + " against its " + known->second.how,
            std::fabs(dAngle) > o_.tolerance || std::fabs(dDistance) > distanceTolerance);
      return;
    }
    out_.report.push_back("    " + leftJustify(shot.to, 10) + rightJustify(shot.type, 4) + "  az " + decimalToDmsCarried(azimuth) +
                          rightJustify(Format(horizontal, "0.000"), 12) + "  N " + coordinate(to.y) + "  E " + coordinate(to.x) +
                          (z ? "  Z " + Format(*z, "0.000") : "") + (shot.note.empty() ? "" : "  " + shot.note));
    remember(shot.to, to, z, "shot from " + name + " (" + line(shot.line) + ")", shot.note,
             "setup " + name.substr(6) + " (" + line(shot.line) + ")");
  }

  void finish() {
    for (const auto& [kind, u] : r_.unused)
      out_.report.push_back("  Not used: " + kind + (u.count > 1 ? ", " + std::to_string(u.count) + " of them, the first on " : " on ") +
                            line(u.firstLine));
    out_.refused.insert(out_.refused.begin(), r_.refused.begin(), r_.refused.end());
    for (const std::string& r : out_.refused) out_.report.push_back("  Not reduced: " + r);
    out_.report.push_back("  Points: " + std::to_string(out_.points.size()) + "    Flagged: " + std::to_string(out_.flagged.size()) +
                          "    Not reduced: " + std::to_string(out_.refused.size()));
    Json points = Json::array(), unused = Json::array();
    for (const RawPoint& p : out_.points) {
      Json j{{"name", p.name}, {"x", p.at.x}, {"y", p.at.y}};
      if (p.z) j["z"] = *p.z;
      j["description"] = p.description;
      j["source"] = p.source;
      points.push_back(j);
    }
    for (const auto& [kind, u] : r_.unused) unused.push_back(Json{{"kind", kind}, {"count", u.count}, {"first_line", u.firstLine}});
    out_.json = Json{{"units", r_.units}, {"points", points}, {"flagged", out_.flagged}, {"refused", out_.refused}, {"unused", unused}};
  }

  const RawRecords& r_;
  const RawOptions& o_;
  RawSurvey out_;
  std::map<std::string, Known> known_;  // by upper-case name
};

}  // namespace

bool recordsATraverse(const RawRecords& records) {
  for (std::size_t i = 0; i + 1 < records.setups.size(); ++i) {
    const RawSetup& next = records.setups[i + 1];
    if (next.given || records.stored.count(upper(next.at))) continue;
    for (const RawShot& shot : records.setups[i].shots)
      if ((shot.type == "TR" || shot.type == "SET") && upper(shot.to) == upper(next.at)) return true;
  }
  return false;
}

RawSurvey reduceRadial(const RawRecords& records, const RawOptions& options) { return Reduction(records, options).run(); }

RawSurvey reduceGnss(const RawRecords& records, const RawOptions& options) { return Reduction(records, options).gnssOnly(); }

std::vector<std::string> setChecks(const RawRecords& records, double tolerance, std::vector<std::string>& flagged) {
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < records.setups.size(); ++i)
    for (const RawShot& shot : records.setups[i].shots) {
      if (shot.type != "SET") continue;
      const SetMean m = meanOfSet(records.setups[i], shot);
      if (!m.fault.empty()) continue;
      std::string readings;
      for (double a : m.angles) readings += " " + decimalToDmsCarried(a);
      std::string text = line(shot.line) + ": set at " + records.setups[i].at + " to " + shot.to + ", readings" + readings + ": mean " +
                         decimalToDmsCarried(m.angleRight) + ", spread " + seconds(m.spread);
      if (m.directLessReverse) text += ", direct less reverse " + seconds(*m.directLessReverse);
      if (m.spread > tolerance) {
        flagged.push_back(text);
        text += "  ** BEYOND TOLERANCE **";
      }
      lines.push_back(text);
    }
  return lines;
}

CornerMap rawMap(const RawSurvey& survey, const std::string& title) {
  CornerMap map;
  map.title = title;
  for (const RawPoint& p : survey.points) {
    MapPoint m;
    m.name = p.name;
    m.description = p.description;
    m.x = p.at.x;
    m.y = p.at.y;
    m.z = p.z;
    m.status = "computed";
    m.computed = true;
    map.points.push_back(std::move(m));
  }
  return map;
}

}  // namespace tervalo
