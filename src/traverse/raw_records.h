#pragma once
// A data collector's raw file as the field recorded it: every setup with
// its backsights and shots, the direct and reverse sets, the stored and
// GNSS points, and what the program did not use or could not read, each
// with its line. Reductions (a radial survey, a traverse) are made from
// this; nothing here computes a coordinate.

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "crs/crs.h"

namespace tervalo {

// One reading of a set: its circle reading and, to a foresight, its zenith
// and slope distance, with its line.
struct SetReading {
  int line = 0;
  bool direct = true;
  double circle = 0;
  std::optional<double> zenith{}, slope{};
};

// One observation from a setup. A set's shot holds its readings; the
// reduction averages them.
struct RawShot {
  int line = 0;
  std::string type;  // TR, SS, or SET for a direct and reverse set
  std::string to;
  std::string note;
  std::optional<double> angleRight{};  // from the backsight in force, degrees
  std::optional<double> azimuth{};     // an AZ shot
  std::optional<double> horizontal{};  // HD
  std::optional<double> slope{}, zenith{};
  double hi = 0, hr = 0;               // heights of instrument and rod in force
  bool hiKnown = false;
  int backsight = 0;                   // which of its setup's backsights was in force
  std::vector<SetReading> foresight;   // a set: every reading to the foresight
};

// A backsight record of a setup: the point, the azimuth, the circle.
struct RawBacksight {
  int line = 0;
  std::string point;
  std::optional<double> azimuth{};
  double circle = 0;
};

struct RawSetup {
  int line = 0;
  std::string at;
  std::optional<PlanePosition> given{};  // N and E on its OC record
  std::optional<double> elevation{};     // EL on its OC record
  std::vector<RawBacksight> backsights;
  std::vector<SetReading> backReadings;  // BD and BR, in order
  std::vector<RawShot> shots;
};

struct StoredPoint {
  int line = 0;
  PlanePosition at;
  std::optional<double> elevation{};
  std::string note;
};

struct GnssRecord {
  int line = 0;
  std::string point;
  double latitude = 0, longitude = 0;
  std::optional<double> height{};
  std::string note;
};

// What was met and not used, by kind: "GPS record" 3 times, first on line 6.
struct UnusedKind {
  int count = 0;
  int firstLine = 0;
};

struct RawRecords {
  std::string job;
  std::string units = "ft";  // "ft" or "m"
  double scale = 1;          // MO SF, already applied to every distance
  std::map<std::string, StoredPoint> stored;  // SP records, by upper-case name
  std::vector<RawSetup> setups;
  std::vector<GnssRecord> gnss;
  std::map<std::string, UnusedKind> unused;   // "a XY record", "the field QQ of a TR record"
  std::vector<std::string> refused;           // "line 12: a SS record gives its distance with HD, ..."
  int records = 0;                            // records read, recognised or not
  int recognised = 0;                         // of the kinds a raw file is made of
};

// Every record of the text, line endings LF, CRLF, CR or CR CR LF, notes
// after "--" kept whole. A record that cannot be used is refused with its
// line and the rest read on.
RawRecords readRawRecords(const std::string& text);

}  // namespace tervalo
