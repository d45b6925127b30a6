#include "traverse/rw5.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <sstream>

#include "text/encoding.h"
#include "text/errors.h"
#include "text/input_file.h"
#include "text/justify.h"
#include "text/number.h"
#include "traverse/raw_survey.h"
#include "traverse/traverse_file.h"

namespace tervalo {
namespace {

constexpr double kPi = 3.14159265358979323846;

// The records a traverse is made of, and those it reads for nothing.
const char* const kRecordsRead[] = {"JB", "MO", "SP", "OC", "BK", "LS", "TR", "SS", "BD", "BR", "FD", "FR", "GPS"};

// The field codes, longest first: a code, then its value ("N 5000.00", "OP12").
const char* const kCodes[] = {"OP", "FP", "BP", "BS", "BC", "AR", "AL", "AZ", "BR", "DR", "DL", "ZE", "VA", "CE", "SD", "HD", "HI",
                              "HR", "PN", "EL", "NM", "DT", "TM", "AD", "UN", "SF", "EC", "EO", "AU", "LA", "LN", "N",  "E"};

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

bool sameName(const std::string& a, const std::string& b) { return upper(a) == upper(b); }

class RawReader {
 public:
  explicit RawReader(const std::string& text) : text_(text) {}

  RawRecords read() {
    // LF, CRLF, CR and CR CR LF all end a line.
    std::string text;
    text.reserve(text_.size());
    for (std::size_t i = 0; i < text_.size(); ++i) {
      if (text_[i] != '\r') {
        text += text_[i];
        continue;
      }
      if (i + 1 < text_.size() && text_[i + 1] == '\n') continue;
      if (i + 2 < text_.size() && text_[i + 1] == '\r' && text_[i + 2] == '\n') {
        ++i;
        continue;
      }
      text += '\n';
    }
    std::istringstream lines(text);
    std::string line;
    int number = 0;
    while (std::getline(lines, line)) {
      ++number;
      const std::string t = trim(line);
      if (t.empty() || t.rfind("--", 0) == 0) continue;  // a blank line, a comment
      ++out_.records;
      try {
        take(parse(t, number));
      } catch (const TraverseFileError& e) {
        out_.refused.push_back(e.what());
      } catch (const RunTimeError& e) {  // a number past a double's range
        out_.refused.push_back("line " + std::to_string(number) + ": " + e.what() + ": a number too large to hold");
      }
    }
    return std::move(out_);
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

  void unused(const std::string& kind, int line) {
    UnusedKind& u = out_.unused[kind];
    if (u.count++ == 0) u.firstLine = line;
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
      if (!matched && known(r.type)) unused("the field " + upper(std::string(textPrefix(f, 2))) + " of a " + r.type + " record", line);
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

  std::optional<double> numberIf(const Record& r, const char* code) const {
    return r.has(code) && !r.fields.at(code).empty() ? std::optional<double>(number(r, code)) : std::nullopt;
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
    if (known(r.type)) ++out_.recognised;
    if (r.type == "JB") {
      if (r.has("NM")) out_.job = r.fields.at("NM");
    } else if (r.type == "MO") {
      if (r.has("UN")) {
        const double u = number(r, "UN");
        if (u != 0 && u != 1 && u != 2) broken(r.line, "the distance unit UN is 0 (feet), 1 (metres) or 2 (US feet)");
        out_.units = u == 1 ? "m" : "ft";
      }
      if (r.has("SF")) out_.scale = number(r, "SF");
      if (r.has("AU")) gon_ = number(r, "AU") == 1;
      if (r.has("AD")) fromSouth_ = number(r, "AD") == 1;
    } else if (r.type == "SP") {
      if (!r.has("PN")) broken(r.line, "a SP record names its point with PN");
      if (!r.has("N") || !r.has("E")) broken(r.line, "the SP record of " + r.fields.at("PN") + " gives no N and E");
      out_.stored[upper(r.fields.at("PN"))] = {r.line, {number(r, "E"), number(r, "N")}, numberIf(r, "EL"), r.note};
    } else if (r.type == "OC") {
      if (!r.has("OP")) broken(r.line, "an OC record names its point with OP");
      RawSetup s;
      s.line = r.line;
      s.at = r.fields.at("OP");
      if (r.has("N") && r.has("E")) s.given = PlanePosition{number(r, "E"), number(r, "N")};
      s.elevation = numberIf(r, "EL");
      out_.setups.push_back(std::move(s));
      hi_.reset();
    } else if (r.type == "BK") {
      RawSetup& s = current(r);
      RawBacksight b;
      b.line = r.line;
      if (r.has("BP")) b.point = r.fields.at("BP");
      if (r.has("BS") && !r.fields.at("BS").empty()) b.azimuth = azimuth(r, "BS");
      if (r.has("BC") && !r.fields.at("BC").empty()) b.circle = angle(r, "BC");
      s.backsights.push_back(b);
    } else if (r.type == "LS") {
      if (const auto hi = numberIf(r, "HI")) hi_ = *hi * out_.scale;
      if (const auto hr = numberIf(r, "HR")) hr_ = *hr * out_.scale;
    } else if (r.type == "TR" || r.type == "SS") {
      RawSetup& s = current(r);
      s.shots.push_back(shot(r, s));
    } else if (r.type == "BD" || r.type == "BR" || r.type == "FD" || r.type == "FR") {
      RawSetup& s = current(r);
      if (!r.has("FP")) broken(r.line, "a " + r.type + " record names its point with FP");
      if (!r.has("AR")) broken(r.line, "a " + r.type + " record of a set gives its circle reading with AR");
      SetReading reading;
      reading.line = r.line;
      reading.direct = r.type == "BD" || r.type == "FD";
      reading.circle = angle(r, "AR");
      if (r.has("ZE")) reading.zenith = angle(r, "ZE");
      if (r.has("SD")) reading.slope = number(r, "SD") * out_.scale;
      if (r.has("HD")) reading.slope = number(r, "HD") * out_.scale, reading.zenith = reading.direct ? 90 : 270;
      if (r.type[0] == 'B') {
        s.backReadings.push_back(reading);
        return;
      }
      // Every reading to one foresight from this backsight is one set.
      const std::string to = r.fields.at("FP");
      auto set = std::find_if(s.shots.begin(), s.shots.end(), [&](const RawShot& x) {
        return x.type == "SET" && sameName(x.to, to) && x.backsight == static_cast<int>(s.backsights.size()) - 1;
      });
      if (set == s.shots.end()) {
        RawShot shot = inForce(r, s);
        shot.type = "SET";
        shot.to = to;
        s.shots.push_back(shot);
        set = s.shots.end() - 1;
      }
      if (set->note.empty()) set->note = r.note;
      set->foresight.push_back(reading);
    } else if (r.type == "GPS") {
      if (!r.has("PN") || !r.has("LA") || !r.has("LN")) broken(r.line, "a GPS record names its point with PN and gives LA and LN");
      const auto la = strictNumber(r.fields.at("LA")), ln = strictNumber(r.fields.at("LN"));
      if (!la || !ln || std::fabs(*la) > 90 || std::fabs(*ln) > 360)
        broken(r.line, "the GPS record of " + r.fields.at("PN") + " gives no latitude and longitude in degrees");
      out_.gnss.push_back({r.line, r.fields.at("PN"), *la, *ln > 180 ? *ln - 360 : *ln, numberIf(r, "EL"), r.note});
    } else {
      unused("a " + r.type + " record", r.line);
    }
  }

  RawSetup& current(const Record& r) {
    if (out_.setups.empty()) broken(r.line, "a " + r.type + " record before any occupied point (OC)");
    RawSetup& s = out_.setups.back();
    if (r.has("OP") && !sameName(r.fields.at("OP"), s.at))
      broken(r.line, "the " + r.type + " record is taken at " + r.fields.at("OP") + ", but the instrument is on " + s.at);
    return s;
  }

  // A shot with the heights and backsight in force at its setup.
  RawShot inForce(const Record& r, const RawSetup& s) const {
    RawShot shot;
    shot.line = r.line;
    shot.type = r.type;
    shot.note = r.note;
    shot.hi = hi_.value_or(0);
    shot.hiKnown = hi_.has_value();
    shot.hr = hr_;
    shot.backsight = static_cast<int>(s.backsights.size()) - 1;
    return shot;
  }

  RawShot shot(const Record& r, const RawSetup& s) {
    RawShot shot = inForce(r, s);
    if (!r.has("FP")) broken(r.line, "a " + r.type + " record names its point with FP");
    shot.to = r.fields.at("FP");
    const double circle = s.backsights.empty() ? 0 : s.backsights.back().circle;
    if (r.has("AR")) {
      shot.angleRight = wrap360(angle(r, "AR") - circle);
    } else if (r.has("AL")) {
      shot.angleRight = wrap360(360 - (angle(r, "AL") - circle));
    } else if (r.has("DR") || r.has("DL")) {
      // A deflection from the line produced: as an angle right from the backsight.
      const double d = r.has("DR") ? angle(r, "DR") : -angle(r, "DL");
      shot.angleRight = wrap360(180 + d);
    } else if (r.has("AZ")) {
      shot.azimuth = azimuth(r, "AZ");
    } else {
      broken(r.line, "a " + r.type + " record gives its direction with AR, AL, DR, DL or AZ");
    }
    if (r.has("HD")) {
      shot.horizontal = number(r, "HD") * out_.scale;
    } else if (r.has("SD") && (r.has("ZE") || r.has("VA"))) {
      shot.zenith = r.has("ZE") ? angle(r, "ZE") : 90 - angle(r, "VA");
      shot.slope = number(r, "SD") * out_.scale;
      shot.horizontal = *shot.slope * std::sin(*shot.zenith * kPi / 180);
    } else {
      broken(r.line, "a " + r.type + " record gives its distance with HD, or SD with ZE or VA");
    }
    return shot;
  }

  const std::string& text_;
  RawRecords out_;
  std::optional<double> hi_;
  double hr_ = 0;
  bool gon_ = false, fromSouth_ = false;
};

// The traverse a raw file records: from the first setup, each setup's shot
// to the next, closing on the start or a known point; every other shot a
// side shot.
class TraverseOfRecords {
 public:
  explicit TraverseOfRecords(const RawRecords& records) : r_(records) {}

  TraverseInput traverse() {
    const auto& setups_ = r_.setups;
    if (setups_.empty()) throw TraverseFileError("the raw file occupies no point (no OC record): it holds no traverse");
    TraverseInput in;
    in.units = r_.units;
    std::vector<std::vector<Shot>> shots;
    for (const RawSetup& s : setups_) shots.push_back(shotsOf(s));
    const RawSetup& first = setups_.front();
    const auto startAt = knownPoint(first.at);
    if (!startAt) broken(first.line, "the traverse starts on " + first.at + ", whose coordinates no SP or OC record gives");
    in.start = {first.at, startAt};
    if (!first.backsights.empty()) {
      const RawBacksight& b = first.backsights.front();
      in.backsightAzimuth = b.azimuth;
      if (!b.point.empty()) in.backsightPoint = KnownStation{b.point, knownPoint(b.point)};
      if (in.backsightPoint && !in.backsightPoint->at && !in.backsightAzimuth)
        broken(first.line, "the backsight at the start, " + b.point + ", has no coordinates and no azimuth (BS)");
    }
    // The course from each setup is its shot to the next occupied point; the
    // last setup's to the closing point, unless it is the closing point itself.
    std::vector<const Shot*> used;
    const auto shotTo = [&](std::size_t i, const std::string& to) -> const Shot* {
      const Shot* found = nullptr;
      for (const Shot& shot : shots[i])
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
      const RawSetup& next = setups_[i + 1];
      const Shot* shot = shotTo(i, next.at);
      if (!shot) broken(next.line, "the instrument moves to " + next.at + ", but no shot from " + setups_[i].at + " reaches it");
      const std::string back = next.backsights.empty() ? "" : next.backsights.front().point;
      if (!back.empty() && !sameName(back, setups_[i].at))
        broken(next.line, "the backsight at " + next.at + " is " + back + ", not " + setups_[i].at + ", the station the traverse came from");
      in.courses.push_back(course(*shot));
      used.push_back(shot);
    }
    const RawSetup& last = setups_.back();
    const auto closesOn = [&](const std::string& point) { return sameName(point, first.at) || knownPoint(point).has_value(); };
    if (setups_.size() > 1 && closesOn(last.at)) {
      // The instrument on the closing point: its shot to a known direction is the closing angle.
      in.close = {last.at, sameName(last.at, first.at) ? std::nullopt : knownPoint(last.at)};
      for (const Shot& shot : shots.back()) {
        const bool toFirst = sameName(last.at, first.at) && !in.courses.empty() && sameName(shot.to, in.courses.front().to);
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
      for (const Shot& shot : shots.back())
        if (shot.type != "SS" && closesOn(shot.to)) closing = &shot;
      if (!closing) broken(last.line, "the traverse does not close: from " + last.at + " no traverse shot reaches the start or a known point");
      in.courses.push_back(course(*closing));
      used.push_back(closing);
      in.close = {closing->to, sameName(closing->to, first.at) ? std::nullopt : knownPoint(closing->to)};
    }
    if (in.courses.empty()) broken(last.line, "the raw file holds no course");
    // Every other shot is a side shot: a point off the traverse.
    for (std::size_t i = 0; i < setups_.size(); ++i)
      for (const Shot& shot : shots[i]) {
        if (std::find(used.begin(), used.end(), &shot) != used.end()) continue;
        if (!shot.angleGiven) {
          notes_.push_back("line " + std::to_string(shot.line) + ": a shot to " + shot.to + " by azimuth, not used as a side shot");
          continue;
        }
        in.sideShots.push_back({setups_[i].at, shot.to, shot.angleRight, shot.horizontal, shot.note});
      }
    levels(in, shots, used);
    if (r_.scale != 1) notes_.push_back("distances multiplied by the scale factor " + CStr(r_.scale) + " of the mode record");
    if (!r_.job.empty()) notes_.insert(notes_.begin(), "job " + r_.job);
    for (const auto& [kind, u] : r_.unused)
      notes_.push_back(kind + (u.count > 1 ? ", " + std::to_string(u.count) + " of them from line " : " on line ") +
                       std::to_string(u.firstLine) + ", not used");
    for (const GnssRecord& g : r_.gnss)
      notes_.push_back("line " + std::to_string(g.line) + ": a GPS record: a GNSS point, not part of the traverse");
    in.notes = notes_;
    return in;
  }

 private:
  // One shot as the traverse takes it: a set averaged, a plain shot as read.
  struct Shot {
    int line = 0;
    std::string type, to, note;
    double angleRight = 0;
    bool angleGiven = false;
    std::optional<double> azimuth{};
    double horizontal = 0;
    std::optional<double> slope{}, zenith{};
    double hi = 0, hr = 0;
    bool hiKnown = false;
    // The elevation of the shot point from its setup's.
    std::optional<double> rise() const {
      if (!hiKnown || !slope || !zenith) return std::nullopt;
      return hi + *slope * std::cos(*zenith * kPi / 180) - hr;
    }
  };

  std::vector<Shot> shotsOf(const RawSetup& s) const {
    std::vector<Shot> out;
    for (const RawShot& raw : s.shots) {
      Shot shot{raw.line, raw.type, raw.to, raw.note, 0, false, raw.azimuth, raw.horizontal.value_or(0), raw.slope, raw.zenith,
                raw.hi, raw.hr, raw.hiKnown};
      if (raw.type == "SET") {
        const SetMean m = meanOfSet(s, raw);
        if (!m.fault.empty()) broken(raw.line, m.fault);
        shot.angleRight = m.angleRight;
        shot.horizontal = m.horizontal;
        if (raw.foresight.front().zenith) shot.slope = m.slope, shot.zenith = m.zenith;
      } else if (raw.angleRight) {
        shot.angleRight = *raw.angleRight;
      }
      shot.angleGiven = raw.type == "SET" || raw.angleRight.has_value();
      out.push_back(shot);
    }
    return out;
  }

  [[noreturn]] static void broken(int line, const std::string& why) {
    throw TraverseFileError("line " + std::to_string(line) + ": " + why);
  }

  // Elevations along the traverse from the start's (its OC or SP EL), each
  // course's rise added in turn, and every side shot's from its station.
  void levels(TraverseInput& in, const std::vector<std::vector<Shot>>& shots, const std::vector<const Shot*>& used) const {
    std::optional<double> z = r_.setups.front().elevation;
    if (!z) {
      const auto sp = r_.stored.find(upper(r_.setups.front().at));
      if (sp != r_.stored.end()) z = sp->second.elevation;
    }
    for (std::size_t i = 0; i < r_.setups.size() && z; ++i) {
      const RawSetup& s = r_.setups[i];
      // An elevation the file gives (on the OC or a stored point) holds.
      const auto sp = r_.stored.find(upper(s.at));
      if (s.elevation) {
        z = s.elevation;
      } else if (sp != r_.stored.end() && sp->second.elevation) {
        z = sp->second.elevation;
      }
      in.elevations[upper(s.at)] = *z;
      for (const Shot& shot : shots[i]) {
        const auto rise = shot.rise();
        const bool course = i < used.size() && used[i] == &shot;
        if (rise && !in.elevations.count(upper(shot.to)) && (course || std::find(used.begin(), used.end(), &shot) == used.end()))
          in.elevations[upper(shot.to)] = *z + *rise;
      }
      if (i + 1 < r_.setups.size()) {
        const auto next = in.elevations.find(upper(r_.setups[i + 1].at));
        z = next == in.elevations.end() ? std::nullopt : std::optional<double>(next->second);
      }
    }
  }

  std::optional<PlanePosition> knownPoint(const std::string& name) const {
    for (const RawSetup& s : r_.setups)
      if (s.given && sameName(s.at, name)) return s.given;
    const auto found = r_.stored.find(upper(name));
    return found == r_.stored.end() ? std::nullopt : std::optional<PlanePosition>(found->second.at);
  }

  const RawRecords& r_;
  std::vector<std::string> notes_;
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

RawRecords readRawRecords(const std::string& text) {
  // Notes typed on a data collector come in its code page as often as in UTF-8.
  const std::string decoded = decodeText(text);
  return RawReader(decoded).read();
}

TraverseInput traverseOfRecords(const RawRecords& records) {
  if (!records.refused.empty()) throw TraverseFileError(records.refused.front());
  return TraverseOfRecords(records).traverse();
}

TraverseInput parseRaw(const std::string& text) {
  const RawRecords records = readRawRecords(text);
  // A radial survey has no traverse to close: say so rather than where the traverse fails.
  if (records.setups.size() > 1 && !recordsATraverse(records))
    throw TraverseFileError("the raw file records no traverse: its " + std::to_string(records.setups.size()) +
                            " setups stand on points it gives or shot before (a radial survey); tervalo-cli traverse reduces "
                            "every setup and shot of it");
  return traverseOfRecords(records);
}

SetMean meanOfSet(const RawSetup& setup, const RawShot& set) {
  SetMean m;
  // Each foresight reading less the backsight reading of its face and round
  // (the k-th direct with the k-th direct), brought to one turn.
  std::vector<double> angles, direct, reverse, zeniths, slopes;
  int faces[2] = {0, 0};
  for (const SetReading& f : set.foresight) {
    std::vector<const SetReading*> back;
    for (const SetReading& b : setup.backReadings)
      if (b.direct == f.direct) back.push_back(&b);
    if (back.empty()) {
      m.fault = "the set to " + set.to + " has no backsight reading of its face (BD for FD, BR for FR)";
      return m;
    }
    int& k = faces[f.direct ? 0 : 1];
    const SetReading& b = *back[std::min<std::size_t>(static_cast<std::size_t>(k), back.size() - 1)];
    ++k;
    angles.push_back(wrap360(f.circle - b.circle));
    (f.direct ? direct : reverse).push_back(angles.back());
    if (f.zenith) zeniths.push_back(f.direct ? *f.zenith : 360 - *f.zenith);
    if (f.slope) slopes.push_back(*f.slope);
  }
  if (angles.empty() || slopes.empty()) {
    m.fault = "the set to " + set.to + " has " + (angles.empty() ? "no reading" : "no distance");
    return m;
  }
  // Averaged on the circle: each reading as its difference from the first,
  // so 359 59 58 and 0 00 02 average to 0 00 00, not 180.
  const auto around = [&](double a) {
    double d = std::fmod(a - angles.front(), 360.0);
    if (d > 180) d -= 360;
    if (d <= -180) d += 360;
    return d;
  };
  const auto mean = [](const std::vector<double>& v) {
    double sum = 0;
    for (double x : v) sum += x;
    return sum / static_cast<double>(v.size());
  };
  std::vector<double> d;
  for (double a : angles) d.push_back(around(a));
  m.angleRight = wrap360(angles.front() + mean(d));
  m.spread = (*std::max_element(d.begin(), d.end()) - *std::min_element(d.begin(), d.end())) * 3600;
  if (!direct.empty() && !reverse.empty()) {
    std::vector<double> dd, rr;
    for (double a : direct) dd.push_back(around(a));
    for (double a : reverse) rr.push_back(around(a));
    m.directLessReverse = (mean(dd) - mean(rr)) * 3600;
  }
  m.angles = angles;
  m.zenith = zeniths.empty() ? 90 : mean(zeniths);
  m.slope = mean(slopes);
  m.horizontal = m.slope * std::sin(m.zenith * kPi / 180);
  return m;
}

TraverseInput readRawFile(const std::string& file) { return parseRaw(readInputFile(file)); }

}  // namespace tervalo
