#include "project/point_import.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <sstream>

#include "export/export_file.h"
#include "points/readers.h"
#include "restore/restoration_file.h"
#include "text/errors.h"
#include "text/input_file.h"
#include "text/justify.h"
#include "text/number.h"
#include "traverse/raw_survey.h"
#include "traverse/rw5.h"
#include "traverse/traverse_file.h"
#include "traverse/traverse_report.h"

namespace tervalo {
namespace {

[[noreturn]] void bad(const std::string& file, int line, const std::string& why) {
  throw ProjectError("\"" + file + "\" line " + std::to_string(line) + ": " + why);
}

// The fields of one delimited line: comma (with quotes), tab, or blanks.
std::vector<std::string> fieldsOf(const std::string& line, char separator) {
  std::vector<std::string> out;
  if (separator == ' ') {
    std::istringstream in(line);
    for (std::string f; in >> f;) out.push_back(f);
    return out;
  }
  std::string field;
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (quoted) {
      if (c == '"' && i + 1 < line.size() && line[i + 1] == '"') field += '"', ++i;
      else if (c == '"') quoted = false;
      else field += c;
    } else if (c == '"' && field.empty()) {
      quoted = true;
    } else if (c == separator) {
      out.push_back(field);
      field.clear();
    } else {
      field += c;
    }
  }
  out.push_back(field);
  for (std::string& f : out) {
    f.erase(0, f.find_first_not_of(" \t"));
    f.erase(f.find_last_not_of(" \t") + 1);
  }
  return out;
}

// The column order a header line names ("Point,Northing,Easting,Elevation,Description" is PNEZD), or "".
std::string orderOfHeader(const std::vector<std::string>& header) {
  const std::map<std::string, char> names{{"point", 'P'},     {"number", 'P'},     {"pn", 'P'},   {"name", 'P'},  {"pt", 'P'},
                                           {"northing", 'N'},  {"north", 'N'},      {"n", 'N'},    {"y", 'N'},     {"easting", 'E'},
                                           {"east", 'E'},      {"e", 'E'},          {"x", 'E'},    {"elevation", 'Z'}, {"elev", 'Z'},
                                           {"z", 'Z'},         {"description", 'D'}, {"desc", 'D'}, {"d", 'D'},     {"code", 'D'}};
  std::string order;
  for (const std::string& h : header) {
    std::string key = h;
    for (char& c : key) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const auto found = names.find(key);
    order += found == names.end() ? '-' : found->second;
  }
  return order.find('P') != std::string::npos && order.find('N') != std::string::npos && order.find('E') != std::string::npos ? order : "";
}

bool validOrder(const std::string& order) {
  if (order.empty() || order.size() > 5) return false;
  for (char c : std::string("PNE"))
    if (std::count(order.begin(), order.end(), c) != 1) return false;
  return std::all_of(order.begin(), order.end(), [&](char c) { return std::string("PNEZD").find(c) != std::string::npos && std::count(order.begin(), order.end(), c) == 1; });
}

}  // namespace

std::string numberFault(const std::string& number) {
  if (number.empty()) return "the point has no number";
  for (unsigned char c : number) {
    if (c == ' ' || c == ',' || c == '"' || c < 0x20 || c == 0x7f)
      return "the point number \"" + number + "\" holds a blank, a comma, a quote or a control character, which no point number may";
    if (std::islower(c))
      return "the point number \"" + number + "\" holds small letters, which the section form cannot look up (it reads numbers in capitals)";
  }
  return "";
}

std::vector<ProjectPoint> columnsFile(const std::string& name, const std::string& text, std::string order) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string l; std::getline(in, l);) {
    if (!l.empty() && l.back() == '\r') l.pop_back();
    lines.push_back(l);
  }
  std::size_t first = 0;
  while (first < lines.size() && lines[first].find_first_not_of(" \t") == std::string::npos) ++first;
  if (first == lines.size()) throw ProjectError("\"" + name + "\" holds no point");
  const char separator = lines[first].find(',') != std::string::npos ? ',' : lines[first].find('\t') != std::string::npos ? '\t' : ' ';
  const std::string header = orderOfHeader(fieldsOf(lines[first], separator));
  if (order.empty()) order = header;
  if (!validOrder(order)) throw ProjectError("\"" + name + "\": say its column order with --columns (P, N, E, Z and D, such as PNEZD)");
  if (!header.empty()) ++first;
  std::vector<ProjectPoint> out;
  for (std::size_t i = first; i < lines.size(); ++i) {
    if (lines[i].find_first_not_of(" \t") == std::string::npos) continue;
    const int line = static_cast<int>(i + 1);
    std::vector<std::string> f = fieldsOf(lines[i], separator);
    if (separator == ' ' && f.size() > order.size() && order.back() == 'D') {
      // Blank-separated: the description keeps its blanks.
      std::string rest;
      for (std::size_t k = order.size() - 1; k < f.size(); ++k) rest += (rest.empty() ? "" : " ") + f[k];
      f.resize(order.size() - 1);
      f.push_back(rest);
    }
    ProjectPoint p;
    for (std::size_t k = 0; k < order.size(); ++k) {
      const std::string value = k < f.size() ? f[k] : "";
      const char column = order[k];
      if (column == 'P') p.number = value;
      if (column == 'D') p.description = value;
      if (column == 'N' || column == 'E' || (column == 'Z' && !value.empty())) {
        const std::optional<double> v = finiteNumber(value);
        if (!v)
          bad(name, line, std::string(column == 'N' ? "the northing" : column == 'E' ? "the easting" : "the elevation") + " is not a number: \"" +
                              value + "\"");
        (column == 'N' ? p.northing : column == 'E' ? p.easting : p.elevation.emplace()) = *v;
      }
    }
    if (const std::string fault = numberFault(p.number); !fault.empty()) bad(name, line, fault);
    out.push_back(p);
  }
  return out;
}

namespace {

// LandXML's CgPoints: "northing easting [elevation]", the name, desc and code.
std::vector<ProjectPoint> landXmlFile(const std::string& name, const std::string& text) {
  pugi::xml_document doc;
  if (!doc.load_string(text.c_str())) throw ProjectError("\"" + name + "\" is not an XML document");
  std::vector<ProjectPoint> out;
  for (const pugi::xpath_node& node : doc.select_nodes("//*[local-name()='CgPoint']")) {
    const pugi::xml_node c = node.node();
    ProjectPoint p;
    p.number = c.attribute("name").as_string();
    p.description = c.attribute("desc").as_string();
    p.feature = c.attribute("code").as_string();
    std::istringstream values(c.child_value());
    std::vector<double> v;
    for (std::string t; values >> t;) {
      const std::optional<double> d = finiteNumber(t);
      if (!d) throw ProjectError("\"" + name + "\": the CgPoint " + p.number + " holds \"" + t + "\", not a coordinate");
      v.push_back(*d);
    }
    if (p.number.empty() || v.size() < 2) continue;  // a reference to another point, not a point
    p.northing = v[0];
    p.easting = v[1];
    if (v.size() > 2) p.elevation = v[2];
    out.push_back(p);
  }
  if (out.empty()) throw ProjectError("\"" + name + "\" holds no LandXML CgPoint");
  return out;
}

// A raw file's points, reduced as `tervalo-cli traverse` reduces it.
std::vector<ProjectPoint> rawFile(const std::string& name, const std::string& text, const CrsChoice& crs) {
  const RawRecords records = readRawRecords(text);
  const std::string file = std::filesystem::path(name).filename().string();
  std::vector<ProjectPoint> out;
  if (recordsATraverse(records)) {
    try {
      const TraverseInput in = traverseOfRecords(records);
      const TraverseRun run = runTraverse(in, "");
      out = traversePoints(run.json["points"], file + " traverse adjusted by " + run.json["rule"].get<std::string>(), true);
    } catch (const std::exception& e) {
      throw ProjectError("\"" + name + "\": " + e.what());
    }
    return out;
  }
  const RawSurvey s = reduceRadial(records, {10, crs, file});
  if (!s.refused.empty()) throw ProjectError("\"" + name + "\" " + s.refused.front() + " (reduce it with tervalo-cli traverse first)");
  for (const RawPoint& p : s.points) out.push_back({0, p.name, p.at.y, p.at.x, p.z, p.description, "", "", p.source, ""});
  return out;
}

}  // namespace

std::string headerColumns(const std::string& name) {
  std::ifstream in(name, std::ios::binary);
  std::string first;
  if (!in || !std::getline(in, first)) return "";
  if (!first.empty() && first.back() == '\r') first.pop_back();
  const char separator = first.find(',') != std::string::npos ? ',' : first.find('\t') != std::string::npos ? '\t' : ' ';
  return orderOfHeader(fieldsOf(first, separator));
}

std::vector<ProjectPoint> pointsOfFile(const std::string& name, const std::string& columns, const CrsChoice& crs) {
  const std::string ending = exportKind(name);
  std::string text;
  try {
    text = readInputFile(name);
  } catch (const InputFileError& e) {
    throw ProjectError("\"" + name + "\" " + e.what());
  }
  std::vector<ProjectPoint> points;
  if (ending == ".rw5") {
    points = rawFile(name, text, crs);
  } else if (ending == ".xml") {
    points = landXmlFile(name, text);
  } else {
    std::istringstream in(text);
    std::string first;
    std::getline(in, first);
    const char separator = first.find(',') != std::string::npos ? ',' : first.find('\t') != std::string::npos ? '\t' : ' ';
    if (!columns.empty() || !orderOfHeader(fieldsOf(first, separator)).empty()) {
      points = columnsFile(name, text, columns);
    } else {
      // The program's own coordinate formats, recognised by content.
      PointList list;
      try {
        list = readWholeFile(name);
      } catch (const std::exception& e) {
        throw ProjectError("\"" + name + "\": " + e.what());
      }
      for (const PointRecord& r : list.records)
        if (!r.name.empty()) points.push_back({0, r.name, r.y, r.x, std::nullopt, r.description, r.feature, r.evidence.value_or(""), "", ""});
    }
  }
  std::unordered_map<std::string, std::size_t> seen;
  for (std::size_t i = 0; i < points.size(); ++i)
    if (const std::string fault = numberFault(points[i].number); !fault.empty())
      throw ProjectError("\"" + name + "\": point " + std::to_string(i + 1) + " of the file: " + fault);
  for (std::size_t i = 0; i < points.size(); ++i)
    if (!seen.emplace(points[i].number, i).second)
      throw ProjectError("\"" + name + "\": point " + points[i].number + " is given twice (points " + std::to_string(seen[points[i].number] + 1) +
                         " and " + std::to_string(i + 1) + " of the file)");
  for (ProjectPoint& p : points)
    if (p.source.empty()) p.source = "import " + std::filesystem::path(name).filename().string();
  return points;
}

std::vector<ProjectPoint> traversePoints(const nlohmann::ordered_json& runPoints, const std::string& source, bool withHeld) {
  std::vector<ProjectPoint> out;
  for (const auto& p : runPoints) {
    if (!withHeld && p.value("held", false)) continue;
    ProjectPoint q{0, p["name"], p["y"], p["x"], std::nullopt, p.value("note", std::string()), p.value("side_shot", false) ? "SS" : "TRAV", "",
                   source, ""};
    if (p.contains("z")) q.elevation = p["z"].get<double>();
    out.push_back(std::move(q));
  }
  return out;
}

PointRecord pointRecordOf(const ProjectPoint& p) {
  return {p.easting, p.northing, p.feature, p.description, p.number, p.evidence.empty() ? std::nullopt : std::optional<std::string>(p.evidence)};
}

PointList pointListOf(ProjectFile& project) {
  PointList list = PointList::unbounded();
  for (const ProjectPoint& p : project.points()) list.records.push_back(pointRecordOf(p));
  return list;
}

}  // namespace tervalo

namespace tervalo {

std::vector<ProjectPoint> mapPoints(const CornerMap& map, const std::string& source, ProjectFile* project) {
  std::unordered_set<std::string> held;
  if (project) {
    std::vector<std::string> entered;
    for (const MapPoint& m : map.points)
      if (m.status == "entered") entered.push_back(m.number.empty() ? m.name : m.number);
    for (const ProjectPoint& p : project->findAll(entered)) held.insert(p.number);
  }
  std::vector<ProjectPoint> out;
  for (const MapPoint& m : map.points) {
    ProjectPoint p;
    p.number = m.number.empty() ? m.name : m.number;
    if (m.status == "entered" && held.count(p.number)) continue;
    p.northing = m.y;
    p.easting = m.x;
    p.elevation = m.z;
    p.description = m.description;
    p.feature = m.feature;
    p.evidence = m.evidence;
    p.source = source + (m.rule.empty() ? "" : ": " + m.rule);
    out.push_back(std::move(p));
  }
  return out;
}

std::vector<ProjectPoint> restoredPoints(const RestorationRun& run, const std::string& from) {
  std::vector<ProjectPoint> out;
  for (const CornerOutcome& c : run.corners)
    if (c.restored)
      out.push_back({0, c.corner.name, c.restored->at.y, c.restored->at.x, std::nullopt,
                     "RESTORED " + upper(methodName(c.restored->method)) + " PROPORTION", "RES", "", from + " by " + c.restored->text, ""});
  return out;
}

CornerMap mapOfProject(ProjectFile& project) {
  CornerMap map;
  map.title = project.path().stem().string();
  map.system = mapSystem(project.settings().crs);
  for (const ProjectPoint& q : project.points()) {
    MapPoint m;
    m.name = q.number;
    m.description = q.description;
    m.feature = q.feature;
    m.evidence = q.evidence;
    m.x = q.easting;
    m.y = q.northing;
    m.z = q.elevation;
    m.number = q.number;
    map.points.push_back(std::move(m));
  }
  return map;
}

}  // namespace tervalo
