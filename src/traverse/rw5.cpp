#include "traverse/rw5.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <sstream>

#include "text/input_file.h"
#include "text/justify.h"
#include "text/number.h"
#include "traverse/traverse_file.h"

namespace tervalo {
namespace {

constexpr double kPi = 3.14159265358979323846;

// The records a traverse is made of, and those it reads for nothing.
const char* const kRecordsRead[] = {"JB", "MO", "SP", "OC", "BK", "LS", "TR", "SS", "BD", "BR", "FD", "FR"};

// The field codes, longest first: a code, then its value ("N 5000.00", "OP12").
const char* const kCodes[] = {"OP", "FP", "BP", "BS", "BC", "AR", "AL", "AZ", "BR", "DR", "DL", "ZE", "VA", "CE", "SD", "HD", "HI",
                              "HR", "PN", "EL", "NM", "DT", "TM", "AD", "UN", "SF", "EC", "EO", "AU", "N",  "E"};

struct Record {
  int line = 0;
  std::string type;
  std::map<std::string, std::string> fields;
  std::string note;
  bool has(const char* code) const { return fields.count(code) > 0; }
};

double wrap360(double degrees) {
  degrees = std::fmod(degrees, 360);
  return degrees < 0 ? degrees + 360 : degrees;
}

// One observation from an occupied station.
struct Shot {
  int line = 0;
  std::string type;  // TR, SS, or a set's foresight
  std::string at, to;
  double angleRight = 0;  // from the backsight
  bool angleGiven = false;
  std::optional<double> azimuth{};
  double horizontal = 0;
  // As measured, where the record gives a slope distance: the window shows the field's values.
  std::optional<double> slope{}, zenith{};
  std::string note;
};

// A setup: the occupied point, its backsight, and the shots from it.
struct Setup {
  int line = 0;
  std::string at;
  std::string backPoint;
  std::optional<double> backAzimuth{};
  double backCircle = 0;
  std::vector<Shot> shots;
  // Direct and reverse sets, by foresight point: circle readings, zeniths, slope distances.
  struct Sets {
    int line = 0;
    std::vector<double> backDirect, backReverse, foreDirect, foreReverse, zenith, slope;
  };
  std::map<std::string, Sets> sets;
  std::vector<std::string> setOrder;
};

class RawReader {
 public:
  explicit RawReader(const std::string& text) : text_(text) {}

  TraverseInput read() {
    std::istringstream lines(text_);
    std::string line;
    int number = 0;
    while (std::getline(lines, line)) {
      ++number;
      if (!line.empty() && line.back() == '\r') line.pop_back();
      const std::string t = trim(line);
      if (t.empty() || t.rfind("--", 0) == 0) continue;  // a blank line, a comment
      take(parse(t, number));
    }
    return traverse();
  }

 private:
  static std::string trim(std::string t) {
    t.erase(0, t.find_first_not_of(" \t"));
    t.erase(t.find_last_not_of(" \t") + 1);
    return t;
  }

  [[noreturn]] static void broken(int line, const std::string& why) {
    throw TraverseFileError("line " + std::to_string(line) + ": " + why);
  }

  Record parse(const std::string& text, int line) {
    Record r;
    r.line = line;
    std::vector<std::string> parts;
    std::string part;
    std::istringstream in(text);
    while (std::getline(in, part, ',')) parts.push_back(part);
    r.type = upper(trim(parts.front()));
    for (std::size_t i = 1; i < parts.size(); ++i) {
      const std::string f = trim(parts[i]);
      if (f.rfind("--", 0) == 0) {  // the note runs to the end of the line, commas and all
        r.note = f.substr(2);
        for (std::size_t j = i + 1; j < parts.size(); ++j) r.note += "," + parts[j];
        break;
      }
      if (f.empty()) continue;
      bool matched = false;
      for (const char* code : kCodes) {
        const std::string c = code;
        if (upper(f.substr(0, c.size())) != c) continue;
        const std::string value = trim(f.substr(c.size()));
        // "N" and "E" are a code only before a number: "NM..." is a name.
        if (c.size() == 1 && (value.empty() || !(std::isdigit(static_cast<unsigned char>(value[0])) || value[0] == '-' || value[0] == '.')))
          continue;
        r.fields[c] = value;
        matched = true;
        break;
      }
      if (!matched && known(r.type)) notes_.push_back("line " + std::to_string(line) + ": the field \"" + f + "\" of a " + r.type + " record, not used");
    }
    return r;
  }

  static bool known(const std::string& type) {
    for (const char* t : kRecordsRead)
      if (type == t) return true;
    return false;
  }

  double number(const Record& r, const char* code) const {
    const auto v = strictNumber(r.fields.at(code));
    if (!v || !std::isfinite(*v)) broken(r.line, std::string("the ") + code + " field of the " + r.type + " record is not a number: \"" + r.fields.at(code) + "\"");
    return *v;
  }

  double angle(const Record& r, const char* code) const {
    const std::string& text = r.fields.at(code);
    std::optional<double> v = gon_ ? strictNumber(text) : packedAngle(text);
    if (v && gon_) *v *= 0.9;  // 400 gon to the turn
    if (!v) broken(r.line, std::string("the ") + code + " field of the " + r.type + " record is not an angle (DDD.MMSS): \"" + text + "\"");
    return *v;
  }

  double azimuth(const Record& r, const char* code) const { return wrap360(angle(r, code) + (fromSouth_ ? 180 : 0)); }

  void take(const Record& r) {
    if (r.type == "JB") {
      if (r.has("NM")) job_ = r.fields.at("NM");
    } else if (r.type == "MO") {
      if (r.has("UN")) {
        const double u = number(r, "UN");
        if (u != 0 && u != 1 && u != 2) broken(r.line, "the distance unit UN is 0 (feet), 1 (metres) or 2 (US feet)");
        units_ = u == 1 ? "m" : "ft";
      }
      if (r.has("SF")) scale_ = number(r, "SF");
      if (r.has("AU")) gon_ = number(r, "AU") == 1;
      if (r.has("AD")) fromSouth_ = number(r, "AD") == 1;
    } else if (r.type == "SP" || r.type == "OC") {
      const char* name = r.type == "SP" ? "PN" : "OP";
      if (!r.has(name)) broken(r.line, std::string("a ") + r.type + " record names its point with " + name);
      const std::string point = r.fields.at(name);
      if (r.has("N") && r.has("E")) known_[upper(point)] = {number(r, "E"), number(r, "N")};
      if (r.type == "OC") {
        setups_.push_back({});
        setups_.back().line = r.line;
        setups_.back().at = point;
      }
    } else if (r.type == "BK") {
      Setup& s = current(r);
      if (r.has("BP")) s.backPoint = r.fields.at("BP");
      if (r.has("BS")) s.backAzimuth = azimuth(r, "BS");
      if (r.has("BC")) s.backCircle = angle(r, "BC");
    } else if (r.type == "LS") {
      // Heights of instrument and rod: the traverse is horizontal.
    } else if (r.type == "TR" || r.type == "SS") {
      Setup& s = current(r);
      s.shots.push_back(shot(r, s));
    } else if (r.type == "BD" || r.type == "BR" || r.type == "FD" || r.type == "FR") {
      Setup& s = current(r);
      if (!r.has("FP")) broken(r.line, "a " + r.type + " record names its point with FP");
      if (!r.has("AR")) broken(r.line, "a " + r.type + " record of a set gives its circle reading with AR");
      const double circle = angle(r, "AR");
      if (r.type == "BD") {
        s.sets[""].backDirect.push_back(circle);
      } else if (r.type == "BR") {
        s.sets[""].backReverse.push_back(circle);
      } else {
        const std::string to = r.fields.at("FP");
        if (!s.sets.count(to)) s.setOrder.push_back(to);
        Setup::Sets& set = s.sets[to];
        set.line = set.line ? set.line : r.line;
        (r.type == "FD" ? set.foreDirect : set.foreReverse).push_back(circle);
        if (r.has("ZE")) {
          const double z = angle(r, "ZE");
          set.zenith.push_back(r.type == "FD" ? z : 360 - z);
        }
        if (r.has("SD")) set.slope.push_back(number(r, "SD") * scale_);
        if (r.has("HD")) set.slope.push_back(number(r, "HD") * scale_), set.zenith.push_back(90);
      }
    } else {
      notes_.push_back("line " + std::to_string(r.line) + ": a " + r.type + " record, not used");
    }
  }

  Setup& current(const Record& r) {
    if (setups_.empty()) broken(r.line, "a " + r.type + " record before any occupied point (OC)");
    Setup& s = setups_.back();
    if (r.has("OP") && !sameName(r.fields.at("OP"), s.at))
      broken(r.line, "the " + r.type + " record is taken at " + r.fields.at("OP") + ", but the instrument is on " + s.at);
    return s;
  }

  static bool sameName(const std::string& a, const std::string& b) { return upper(a) == upper(b); }

  Shot shot(const Record& r, const Setup& s) {
    Shot shot;
    shot.line = r.line;
    shot.type = r.type;
    shot.at = s.at;
    if (!r.has("FP")) broken(r.line, "a " + r.type + " record names its point with FP");
    shot.to = r.fields.at("FP");
    shot.note = r.note;
    if (r.has("AR")) {
      shot.angleRight = wrap360(angle(r, "AR") - s.backCircle), shot.angleGiven = true;
    } else if (r.has("AL")) {
      shot.angleRight = wrap360(360 - (angle(r, "AL") - s.backCircle)), shot.angleGiven = true;
    } else if (r.has("DR") || r.has("DL")) {
      // A deflection from the line produced: as an angle right from the backsight.
      const double d = r.has("DR") ? angle(r, "DR") : -angle(r, "DL");
      shot.angleRight = wrap360(180 + d), shot.angleGiven = true;
    } else if (r.has("AZ")) {
      shot.azimuth = azimuth(r, "AZ");
    } else {
      broken(r.line, "a " + r.type + " record gives its direction with AR, AL, DR, DL or AZ");
    }
    if (r.has("HD")) {
      shot.horizontal = number(r, "HD") * scale_;
    } else if (r.has("SD") && (r.has("ZE") || r.has("VA"))) {
      shot.zenith = r.has("ZE") ? angle(r, "ZE") : 90 - angle(r, "VA");
      shot.slope = number(r, "SD") * scale_;
      shot.horizontal = *shot.slope * std::sin(*shot.zenith * kPi / 180);
    } else {
      broken(r.line, "a " + r.type + " record gives its distance with HD, or SD with ZE or VA");
    }
    return shot;
  }

  // A set's averaged angle right, zenith and horizontal distance, as one shot.
  Shot averaged(const Setup& s, const std::string& to) const {
    const Setup::Sets& back = s.sets.at("");
    const Setup::Sets& fore = s.sets.at(to);
    const auto mean = [](const std::vector<double>& v) {
      double sum = 0;
      for (double x : v) sum += x;
      return sum / static_cast<double>(v.size());
    };
    // Direct less direct and reverse less reverse, each brought to one turn, then their mean.
    std::vector<double> angles;
    if (!back.backDirect.empty() && !fore.foreDirect.empty()) angles.push_back(wrap360(mean(fore.foreDirect) - mean(back.backDirect)));
    if (!back.backReverse.empty() && !fore.foreReverse.empty()) angles.push_back(wrap360(mean(fore.foreReverse) - mean(back.backReverse)));
    if (angles.empty()) broken(fore.line, "the set to " + to + " has no backsight of its face (BD before FD, BR before FR)");
    if (angles.size() == 2 && std::abs(angles[1] - angles[0]) > 180) angles[1] += angles[1] < angles[0] ? 360 : -360;
    if (fore.slope.empty()) broken(fore.line, "the set to " + to + " has no distance");
    Shot shot;
    shot.line = fore.line;
    shot.type = "set";
    shot.at = s.at;
    shot.to = to;
    shot.angleRight = wrap360(mean(angles));
    shot.angleGiven = true;
    const double zenith = fore.zenith.empty() ? 90 : mean(fore.zenith);
    shot.horizontal = mean(fore.slope) * std::sin(zenith * kPi / 180);
    if (zenith != 90) shot.slope = mean(fore.slope), shot.zenith = zenith;
    return shot;
  }

  std::optional<PlanePosition> knownPoint(const std::string& name) const {
    const auto found = known_.find(upper(name));
    return found == known_.end() ? std::nullopt : std::optional<PlanePosition>(found->second);
  }

  TraverseInput traverse() {
    if (setups_.empty()) throw TraverseFileError("the raw file occupies no point (no OC record): it holds no traverse");
    TraverseInput in;
    in.units = units_;
    // Each setup's shots, its averaged sets among them.
    for (Setup& s : setups_)
      for (const std::string& to : s.setOrder) s.shots.push_back(averaged(s, to));
    const Setup& first = setups_.front();
    const auto startAt = knownPoint(first.at);
    if (!startAt) broken(first.line, "the traverse starts on " + first.at + ", whose coordinates no SP or OC record gives");
    in.start = {first.at, startAt};
    if (!first.backPoint.empty() || first.backAzimuth) {
      in.backsightAzimuth = first.backAzimuth;
      if (!first.backPoint.empty()) in.backsightPoint = KnownStation{first.backPoint, knownPoint(first.backPoint)};
      if (in.backsightPoint && !in.backsightPoint->at && !in.backsightAzimuth)
        broken(first.line, "the backsight at the start, " + first.backPoint + ", has no coordinates and no azimuth (BS)");
    }
    // The course from each setup is its shot to the next occupied point; the
    // last setup's to the closing point, unless it is the closing point itself.
    std::vector<const Shot*> used;
    const auto shotTo = [&](const Setup& s, const std::string& to) -> const Shot* {
      const Shot* found = nullptr;
      for (const Shot& shot : s.shots)
        if (sameName(shot.to, to) && (shot.type != "SS" || !found)) found = &shot;  // a traverse shot before a side shot
      return found;
    };
    const auto course = [](const Shot& shot) {
      CourseEntry c;
      c.to = shot.to;
      c.turn = shot.azimuth ? Turn::Azimuth : Turn::AngleRight;
      c.angle = shot.azimuth ? *shot.azimuth : shot.angleRight;
      if (shot.slope) {
        c.slope = shot.slope;
        c.zenith = shot.zenith;
      } else {
        c.distance = shot.horizontal;
      }
      return c;
    };
    for (std::size_t i = 0; i + 1 < setups_.size(); ++i) {
      const Setup& s = setups_[i];
      const Setup& next = setups_[i + 1];
      const Shot* shot = shotTo(s, next.at);
      if (!shot) broken(next.line, "the instrument moves to " + next.at + ", but no shot from " + s.at + " reaches it");
      if (!next.backPoint.empty() && !sameName(next.backPoint, s.at))
        broken(next.line, "the backsight at " + next.at + " is " + next.backPoint + ", not " + s.at +
                              ", the station the traverse came from");
      in.courses.push_back(course(*shot));
      used.push_back(shot);
    }
    const Setup& last = setups_.back();
    const auto closesOn = [&](const std::string& point) { return sameName(point, first.at) || knownPoint(point).has_value(); };
    if (setups_.size() > 1 && closesOn(last.at)) {
      // The instrument on the closing point: its shot to a known direction is the closing angle.
      in.close = {last.at, sameName(last.at, first.at) ? std::nullopt : knownPoint(last.at)};
      for (const Shot& shot : last.shots) {
        const bool toFirst = sameName(last.at, first.at) && in.courses.size() > 0 && sameName(shot.to, in.courses.front().to);
        const auto mark = knownPoint(shot.to);
        if (shot.angleGiven && (toFirst || (mark && !sameName(shot.to, last.at)))) {
          in.closeAngle = shot.angleRight;
          if (!toFirst) in.closeAzimuth = azimuthBetween(*knownPoint(last.at), *mark);
          used.push_back(&shot);
          break;
        }
      }
    } else {
      // The last shot of the last setup that reaches the start or a known point closes it.
      const Shot* closing = nullptr;
      for (const Shot& shot : last.shots)
        if (shot.type != "SS" && closesOn(shot.to)) closing = &shot;
      if (!closing) broken(last.line, "the traverse does not close: from " + last.at + " no traverse shot reaches the start or a known point");
      in.courses.push_back(course(*closing));
      used.push_back(closing);
      in.close = {closing->to, sameName(closing->to, first.at) ? std::nullopt : knownPoint(closing->to)};
    }
    if (in.courses.empty()) broken(last.line, "the raw file holds no course");
    // Every other shot is a side shot: a point off the traverse.
    for (const Setup& s : setups_)
      for (const Shot& shot : s.shots) {
        if (std::find(used.begin(), used.end(), &shot) != used.end()) continue;
        if (!shot.angleGiven) {
          notes_.push_back("line " + std::to_string(shot.line) + ": a shot to " + shot.to + " by azimuth, not used as a side shot");
          continue;
        }
        in.sideShots.push_back({s.at, shot.to, shot.angleRight, shot.horizontal, shot.note});
      }
    if (scale_ != 1) notes_.push_back("distances multiplied by the scale factor " + CStr(scale_) + " of the mode record");
    if (!job_.empty()) notes_.insert(notes_.begin(), "job " + job_);
    in.notes = notes_;
    return in;
  }

  const std::string& text_;
  std::vector<std::string> notes_;
  std::vector<Setup> setups_;
  std::map<std::string, PlanePosition> known_;  // by upper-case name
  std::string units_ = "ft", job_;
  double scale_ = 1;
  bool gon_ = false, fromSouth_ = false;
};

}  // namespace

std::optional<double> packedAngle(const std::string& text) {
  const auto value = strictNumber(text);
  if (!value || !std::isfinite(*value)) return std::nullopt;
  const bool negative = text.find('-') != std::string::npos;
  std::string t = text;
  t.erase(0, t.find_first_not_of(" +-"));
  const auto dot = t.find('.');
  std::string whole = t.substr(0, dot), fraction = dot == std::string::npos ? "" : t.substr(dot + 1);
  const auto digits = [](const std::string& d) { return std::all_of(d.begin(), d.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); }); };
  if (!digits(whole) || !digits(fraction)) return std::nullopt;
  while (fraction.size() < 4) fraction += '0';
  if (whole.empty()) whole = "0";
  const double minutes = std::stod(fraction.substr(0, 2));
  const double seconds = std::stod(fraction.substr(2, 2) + "." + (fraction.size() > 4 ? fraction.substr(4) : "0"));
  if (minutes >= 60 || seconds >= 60) return std::nullopt;
  const double degrees = std::stod(whole) + minutes / 60 + seconds / 3600;
  return negative ? -degrees : degrees;
}

TraverseInput parseRaw(const std::string& text) { return RawReader(text).read(); }

TraverseInput readRawFile(const std::string& file) { return parseRaw(readInputFile(file)); }

}  // namespace tervalo
