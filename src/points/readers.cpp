#include "points/readers.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "points/line_reader.h"
#include "text/errors.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {
namespace {

const char* const kXYHeader = "    Point                 X                 Y";
const char* const kNEHeader = "    Point                 N                 E";
const char* const kUnderline = "---------------   ---------------  ----------------   ------------  ------------";

bool contains(const std::string& line, std::string_view what) { return line.find(what) != std::string::npos; }

std::string trim(std::string_view s) {
  const auto first = s.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return std::string(s.substr(first, s.find_last_not_of(" \t") - first + 1));
}

// Mid$(s, start, length) with a 1-based start, empty past the end. Columns
// count characters, so a degree sign in a name does not shift the fields after it.
std::string_view mid(std::string_view s, std::size_t start, std::size_t length = std::string_view::npos) {
  const std::string_view rest = s.substr(textPrefix(s, start - 1).size());
  return textPrefix(rest, length);
}

PointRecord& record(PointList& points, int index, const LineReader& in) {
  if (index < 0 || index >= points.capacity)
    in.fail("Subscript out of range: point index " + std::to_string(index) + " is outside 0 to " +
            std::to_string(points.capacity - 1) + " (the list holds " + std::to_string(points.capacity) + " points)");
  const auto i = static_cast<std::size_t>(index);
  if (i >= points.records.size()) points.records.resize(i + 1);
  return points.records[i];
}

// The list's upper bound, as the section form's lookup reads it; a list
// without a limit may hold more than 16 bits count, and is searched whole.
std::int16_t bound(int index) { return static_cast<std::int16_t>(std::min(index, 32767)); }

// A number fault of the text rules (an Overflow) said with the file and line, as every other fault of a reader is.
template <class Read>
auto numberOnLine(Read read, const LineReader& in) -> decltype(read()) {
  try {
    return read();
  } catch (const RunTimeError& e) {
    in.fail(e.what());
  }
}

double strictCoordinate(std::string_view text, const char* which, const LineReader& in) {
  if (auto v = numberOnLine([text] { return strictNumber(text); }, in)) return *v;
  in.fail(std::string("Type mismatch: ") + which + " \"" + std::string(text) + "\" is not a number");
}

// A report coordinate: the thousands comma removed, then read leniently. The
// reports print every coordinate of 1,000 or more with a comma; a text
// without one was never provided for and is a fault.
double reportCoordinate(std::string_view field, bool commaRequired, const LineReader& in) {
  std::string text(field);
  const auto comma = text.find(',');
  if (comma == std::string::npos) {
    if (commaRequired)
      in.fail("Invalid procedure call or argument: coordinate \"" + trim(text) + "\" has no thousands separator");
  } else {
    text.erase(comma, 1);
  }
  return numberOnLine([&text] { return Val(trim(text)); }, in);
}

// Text that is no number at all (a number too large for a double is still a number).
bool isWord(std::string_view text) {
  try {
    return !strictNumber(text);
  } catch (const RunTimeError&) {
    return false;
  }
}

// A first line whose X and Y are words is the header of a table from
// another program, a PNEZD export among them (Point,Northing,Easting,...):
// still the type mismatch it always was, said so that nobody takes the
// columns for X and Y by hand.
[[noreturn]] void refuseHeader(const std::string& name, const std::string& x, const std::string& y, const LineReader& in) {
  in.fail("Type mismatch: the first line is a header naming columns (" + name + ", " + x + ", " + y +
          ", ...), not a point. A comma-delimited coordinate file holds one point a line, in the order name, X "
          "(easting), Y (northing), feature code, description, with no header; a PNEZD file puts the northing "
          "before the easting. To start from corners Tervalo exported, export them as Tervalo points (.txt).");
}

// The text after the first ":" of a line, trimmed (the whole line without one).
std::string afterColon(const std::string& line) {
  const auto colon = line.find(':');
  return trim(colon == std::string::npos ? std::string_view(line) : std::string_view(line).substr(colon + 1));
}

void skipToUnderline(LineReader& in) {
  while (in.next() != kUnderline) {
  }
}

// The next non-empty line, or nothing at the end of the file.
std::optional<std::string> nextNonEmpty(LineReader& in) {
  while (!in.atEnd()) {
    const std::string& line = in.next();
    if (!line.empty()) return line;
  }
  return std::nullopt;
}

// The next line of a fixed group; a group cut short by the end of the file
// reads as empty lines.
std::string groupLine(LineReader& in) { return in.atEnd() ? std::string() : in.next(); }

}  // namespace

void getFileFormat(const std::filesystem::path& file, FormatFlags& flags) {
  LineReader in(file);
  std::string line;
  do line = in.next();
  while (line.empty());

  if (contains(line, "Copyright:")) {
    for (;;) {
      const std::string& header = in.next();
      if (contains(header, kXYHeader)) {
        flags.xy = true;
        break;
      }
      if (contains(header, kNEHeader)) {
        flags.ne = true;
        break;
      }
    }
  } else if (contains(line, "AC:")) {
    flags.sdms = true;
  } else if (const auto comma = line.find(','); comma != std::string::npos && line.find(',', comma + 1) != std::string::npos) {
    flags.cd = true;
  }
  // Flags set by an earlier file count too: only a program that has never
  // recognised anything stops here.
  if (!flags.xy && !flags.ne && !flags.cd && !flags.sdms)
    throw ProgramFault("Input File Error", "Input File Format Not Recognized");
}

ReadNotes readFile(const std::filesystem::path& file, const FormatFlags& flags, PointList& points) {
  if (flags.cd) readCDfile(file, points);
  else if (flags.xy) return readXYfile(file, points);
  else if (flags.ne) readNEfile(file, points);
  else if (flags.sdms) readSDMSfile(file, points);
  return {};
}

PointList readWholeFile(const std::filesystem::path& file) {
  FormatFlags flags;
  PointList points = PointList::unbounded();
  getFileFormat(file, flags);
  readFile(file, flags, points);
  return points;
}

std::string ReadNotes::message() const {
  if (cutCoordinates.empty()) return "";
  std::string names;
  for (const std::string& name : cutCoordinates) names += (names.empty() ? "" : ", ") + name;
  return "Coordinates cut: the coordinates of point" + std::string(cutCoordinates.size() > 1 ? "s " : " ") + names +
         " hold more than one thousands comma. Only the first comma is removed, so each reads only up to its second "
         "comma (1,170,582.9 reads 1170). Check these points before you use them.";
}

std::string formatName(const FormatFlags& flags) {
  if (flags.cd) return "comma-delimited";
  if (flags.xy) return "X-Y coordinate report";
  if (flags.ne) return "N-E coordinate report";
  if (flags.sdms) return "SDMS";
  return "";
}

std::string sourceGiven(const std::string& fileName, const FormatFlags& flags, const PointList& points) {
  const std::string format = formatName(flags);
  if (format == "N-E coordinate report")
    return "Read " + fileName + " as an N-E coordinate report: it gives no points. Tervalo reads an N-E report "
           "without taking its points, as it always has (its northing comes before its easting); give the X-Y report "
           "or a comma-delimited file of the same points instead.";
  const auto count = std::count_if(points.records.begin(), points.records.end(), [](const PointRecord& p) { return !p.name.empty(); });
  const std::string article = format.front() == 'S' || format.front() == 'X' ? "an " : "a ";
  const std::string kind = format.ends_with("report") ? format : format + " file";
  return "Read " + fileName + " as " + article + kind + ": " + std::to_string(count) + (count == 1 ? " point." : " points.");
}

void readSDMSfile(const std::filesystem::path& file, PointList& points) {
  LineReader in(file);
  int index = -1;
  while (!in.atEnd()) {
    const std::string& line = in.next();
    if (line.empty()) continue;
    const std::string_view tag = std::string_view(line).substr(0, 3);
    const std::string_view value = mid(line, 4);
    if (tag == "PN:") {
      record(points, ++index, in).name = value;
    } else if (tag == "XC:") {
      record(points, index, in).x = strictCoordinate(value, "X coordinate", in);
    } else if (tag == "YC:") {
      record(points, index, in).y = strictCoordinate(value, "Y coordinate", in);
    } else if (tag == "FE:") {
      record(points, index, in).feature = value;
    } else if (tag == "PD:") {
      record(points, index, in).description = value;
    }
  }
  points.pointCount = bound(index);
}

void readCDfile(const std::filesystem::path& file, PointList& points) {
  LineReader in(file);
  int index = 0;
  auto unrecognized = [] { throw ProgramFault("Input File Error!", "Unrecognized file format."); };
  while (!in.atEnd()) {
    std::string rest = in.next();
    if (rest.empty()) continue;
    // Cuts the text before the next separator off `rest`; after the X field
    // a ";" serves where no comma is left.
    auto cut = [&rest](bool semicolonToo) -> std::optional<std::string> {
      auto at = rest.find(',');
      if (at == std::string::npos && semicolonToo) at = rest.find(';');
      if (at == std::string::npos) return std::nullopt;
      std::string field = rest.substr(0, at);
      rest.erase(0, at + 1);
      return field;
    };
    PointRecord& point = record(points, index, in);
    const auto name = cut(false);
    if (!name) in.fail("Invalid procedure call or argument: the line holds no \",\"");
    const auto x = cut(false);
    if (!x) unrecognized();
    const auto y = cut(true);
    if (!y) unrecognized();
    point.name = *name;
    if (index == 0 && isWord(*x) && isWord(*y)) refuseHeader(*name, *x, *y, in);
    point.x = strictCoordinate(*x, "X coordinate", in);
    point.y = strictCoordinate(*y, "Y coordinate", in);
    if (const auto feature = cut(true)) {
      point.feature = *feature;
      if (const auto description = cut(true)) {
        point.description = *description;
        // A sixth field is the evidence found, as Tervalo's points write it.
        const auto evidence = cut(true);
        point.evidence = evidence ? *evidence : rest;
      } else {
        point.description = rest;
      }
    } else {
      point.feature = rest;
    }
    ++index;
  }
  points.pointCount = bound(index + 1);
}

ReadNotes readXYfile(const std::filesystem::path& file, PointList& points) {
  ReadNotes notes;
  LineReader in(file);
  skipToUnderline(in);
  int index = 1;  // the report's first point goes to index 1; index 0 stays empty
  while (const auto first = nextNonEmpty(in)) {
    const std::string_view lead = std::string_view(*first).substr(0, 3);
    if (lead != "---" && lead != "   ") {
      PointRecord& point = record(points, index, in);
      point.name = trim(mid(*first, 1, 15));
      const std::string_view x = mid(*first, 19, 15), y = mid(*first, 37, 15);
      point.x = reportCoordinate(x, true, in);
      point.y = reportCoordinate(y, true, in);
      if (std::count(x.begin(), x.end(), ',') > 1 || std::count(y.begin(), y.end(), ',') > 1)
        notes.cutCoordinates.push_back(point.name);
    }
    if (const std::string line = groupLine(in); contains(line, "Feature")) record(points, index, in).feature = afterColon(line);
    if (const std::string line = groupLine(in); contains(line, "Description"))
      record(points, index, in).description = afterColon(line);
    groupLine(in);
    ++index;
  }
  points.pointCount = bound(index);
  return notes;
}

void readNEfile(const std::filesystem::path& file, PointList& points) {
  LineReader in(file);
  skipToUnderline(in);
  // Parsed to the end so a damaged report still fails as it always has, but
  // nothing is kept: an N-E report yields no points.
  while (const auto first = nextNonEmpty(in)) {
    [[maybe_unused]] const std::string name(mid(*first, 1, 6));
    [[maybe_unused]] const double north = reportCoordinate(mid(*first, 19, 15), false, in);
    [[maybe_unused]] const double east = reportCoordinate(mid(*first, 37, 15), false, in);
    [[maybe_unused]] const std::string feature = afterColon(groupLine(in));
    [[maybe_unused]] const std::string description = afterColon(groupLine(in));
    groupLine(in);
  }
  points.pointCount = 1;
}

void PointList::clearRecords(int first, int last) {
  for (int i = first; i <= last && i < static_cast<int>(records.size()); ++i) records[static_cast<std::size_t>(i)] = PointRecord{};
}

PointList PointList::unbounded() {
  PointList list;
  list.capacity = std::numeric_limits<int>::max();
  list.records.clear();
  return list;
}

}  // namespace tervalo
