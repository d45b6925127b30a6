#include "township/plan.h"


#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "app/json_fields.h"
#include "app/json_text.h"
#include "crs/project_store.h"
#include "text/input_file.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;

const auto refuseUnknown = JsonFields<PlanError>::refuseUnknown;

// A text field: a string, or a number written as the user would type it.
std::string textOf(const Json& value, const std::string& where) {
  if (value.is_string()) return value.get<std::string>();
  if (value.is_number()) return jsonText(value);
  throw PlanError(where + " must be a text or a number");
}

// A plan's section, township or range: digits only, for the section
// window reads them as numbers and the files are named from them; never a
// slash, "..", a line end or anything else that could become a path.
// Empty is left for the section window to refuse as missing.
void requirePlainNumber(const std::string& text, const std::string& where, const char* what) {
  const bool digits = std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (!digits || text.size() > 9)
    throw PlanError(where + ": \"" + what + "\" must be a plain number, not " + jsonText(Json(text)));  // quoted, escapes shown
}

Json objectAt(const Json& parent, const char* key, const std::string& where) {
  const Json value = parent.value(key, Json::object());
  if (!value.is_object()) throw PlanError(where + ": \"" + key + "\" must be an object");
  return value;
}

}  // namespace

TownshipPlan parsePlan(const std::string& text) {
  Json json;
  try {
    json = parseStrictJson(text);
  } catch (const JsonTextError& e) {
    throw PlanError(std::string("not valid JSON: ") + e.what());
  }
  if (!json.is_object()) throw PlanError("a plan is a JSON object");
  refuseUnknown(json, {"version", "source", "project", "sections", "crs"}, "plan");
  TownshipPlan plan;
  const Json version = json.value("version", Json(std::uint64_t{1}));
  if (!version.is_number_unsigned() || version.get<std::uint64_t>() < 1) throw PlanError("\"version\" must be 1");
  if (version.get<std::uint64_t>() > 1) throw PlanError("the plan comes from a newer Tervalo (version " + jsonText(version) + ")");
  plan.source = textOf(json.value("source", Json("")), "\"source\"");
  plan.project = textOf(json.value("project", Json("")), "\"project\"");
  if (json.contains("crs")) {
    try {
      plan.crs = usableCrsFromJson(json["crs"]);
    } catch (const CrsError& e) {
      throw PlanError(std::string("plan: ") + e.what());
    }
  }
  const Json sections = json.value("sections", Json::array());
  if (!sections.is_array() || sections.empty()) throw PlanError("\"sections\" must list at least one section");
  std::set<std::string> seen;
  for (std::size_t n = 0; n < sections.size(); ++n) {
    const Json& s = sections[n];
    std::string where = "row " + std::to_string(n + 1);
    if (!s.is_object()) throw PlanError(where + " must be an object");
    SectionPlan p;
    p.section = textOf(s.value("section", Json("")), where + " \"section\"");
    requirePlainNumber(p.section, where, "section");
    if (p.section.empty()) throw PlanError(where + ": \"section\" is required");
    where += " (section " + p.section + ")";
    refuseUnknown(s, {"section", "township", "range", "direction", "meridian", "corners", "chains", "numbering"}, where);
    p.township = textOf(s.value("township", Json("")), where + " \"township\"");
    requirePlainNumber(p.township, where, "township");
    p.range = textOf(s.value("range", Json("")), where + " \"range\"");
    requirePlainNumber(p.range, where, "range");
    p.direction = textOf(s.value("direction", Json("W")), where + " \"direction\"");
    if (p.direction != "E" && p.direction != "W") throw PlanError(where + ": \"direction\" is \"E\" or \"W\"");
    p.meridian = textOf(s.value("meridian", Json("")), where + " \"meridian\"");
    // Sections are the same by their numbers: "14" and "014" are one section.
    const std::string t = plainNumberText(p.township), r = plainNumberText(p.range);
    if (!seen.insert(plainNumberText(p.section) + " " + t + " " + r + p.direction).second)
      throw PlanError(where + ": section " + plainNumberText(p.section) + " of T" + t + " R" + r + p.direction + " is listed twice");
    const Json corners = objectAt(s, "corners", where);
    refuseUnknown(corners, {"NW", "N", "NE", "W", "E", "SW", "S", "SE"}, where + " corners");
    for (std::size_t i = 0; i < kPlanCorners.size(); ++i) {
      if (!corners.contains(kPlanCorners[i])) continue;
      const Json& c = corners[kPlanCorners[i]];
      const std::string cw = where + " corner " + kPlanCorners[i];
      if (c.is_object() && c.contains("restore")) {
        refuseUnknown(c, {"restore"}, cw);
        try {
          p.corners[i].restore = parseCornerEntry(c["restore"], cw + " restore");
        } catch (const RestorationFileError& e) {
          throw PlanError(e.what());
        }
      } else if (c.is_object()) {
        refuseUnknown(c, {"x", "y"}, cw);
        p.corners[i].x = textOf(c.value("x", Json("")), cw + " \"x\"");
        p.corners[i].y = textOf(c.value("y", Json("")), cw + " \"y\"");
        if (p.corners[i].x.empty() || p.corners[i].y.empty()) throw PlanError(cw + ": typed coordinates need both x and y");
      } else {
        p.corners[i].point = textOf(c, cw);
      }
    }
    const Json chains = objectAt(s, "chains", where);
    for (const auto& item : chains.items()) {
      const std::string& key = item.key();
      if (std::find_if(kPlanChains.begin(), kPlanChains.end(), [&key](const char* k) { return key == k; }) == kPlanChains.end())
        throw PlanError(where + " chains: unknown key \"" + key + "\"");
      p.chains[key] = textOf(item.value(), where + " chain " + key);
    }
    p.numbering = textOf(s.value("numbering", Json("1")), where + " \"numbering\"");
    plan.sections.push_back(std::move(p));
  }
  return plan;
}

TownshipPlan readPlanFile(const std::string& file) {
  std::string text;
  try {
    text = readInputFile(file);
  } catch (const InputFileError& e) {
    throw PlanError("\"" + file + "\" " +
                    (e.kind() == InputFileError::Kind::Folder ? std::string("is a folder, not a plan file") : e.what()));
  }
  TownshipPlan plan = parsePlan(text);
  // The source lies beside the plan unless its name says otherwise.
  const std::filesystem::path source(plan.source);
  if (!plan.source.empty() && source.is_relative())
    plan.source = (std::filesystem::path(file).parent_path() / source).lexically_normal().string();
  plan.project = projectBeside(plan.project, std::filesystem::path(file).parent_path());
  return plan;
}

std::string planText(const TownshipPlan& plan) {
  Json sections = Json::array();
  for (const SectionPlan& p : plan.sections) {
    Json corners = Json::object();
    for (std::size_t i = 0; i < kPlanCorners.size(); ++i) {
      const PlanCorner& c = p.corners[i];
      if (c.restore)
        corners[kPlanCorners[i]] = Json{{"restore", cornerEntryJson(*c.restore)}};
      else if (!c.point.empty())
        corners[kPlanCorners[i]] = c.point;
      else if (!c.x.empty())
        corners[kPlanCorners[i]] = Json{{"x", c.x}, {"y", c.y}};
    }
    Json chains = Json::object();
    for (const char* stem : kPlanChains)
      if (p.chains.count(stem)) chains[stem] = p.chains.at(stem);
    Json s{{"section", p.section}, {"township", p.township}, {"range", p.range}, {"direction", p.direction}};
    if (!p.meridian.empty()) s["meridian"] = p.meridian;
    s["corners"] = corners;
    if (!chains.empty()) s["chains"] = chains;
    s["numbering"] = p.numbering;
    sections.push_back(s);
  }
  Json json{{"version", plan.version}, {"source", plan.source}};
  if (!plan.project.empty()) json["project"] = plan.project;
  if (!plan.crs.none()) json["crs"] = crsToJson(plan.crs);
  json["sections"] = sections;
  return jsonText(json) + "\n";
}

std::string plainNumberText(const std::string& digits) {
  const auto first = digits.find_first_not_of('0');
  return first == std::string::npos ? (digits.empty() ? "" : "0") : digits.substr(first);
}

std::string sectionFileStem(const TownshipPlan& plan, const SectionPlan& p) {
  // Named from the numbers alone (a parsed plan holds digits only).
  const std::string section = plainNumberText(p.section), township = plainNumberText(p.township),
                    range = plainNumberText(p.range);
  const bool oneTownship = std::all_of(plan.sections.begin(), plan.sections.end(), [&](const SectionPlan& other) {
    return plainNumberText(other.section) != section ||
           (plainNumberText(other.township) == township && plainNumberText(other.range) == range &&
            other.direction == p.direction);
  });
  return "SecSub-" + section + (oneTownship ? "" : "-T" + township + "R" + range + p.direction);
}

Job sectionJob(const TownshipPlan& plan, const SectionPlan& p, const std::string& dataFolder) {
  Job job;
  job.calculator = "secsub";
  job.crs = plan.crs;
  const std::string files = dataFolder + sectionFileStem(plan, p);
  job.steps.push_back({"frmMain",
                       {{"txtInFile", plan.project.empty() ? plan.source : plan.project}, {"txtOutInp", files + ".inp"}, {"txtReport", files + ".rpt"}},
                       {"btnContinue"}});
  JobStep form{"frmSecSub", {}, {"btnContinue"}};
  auto type = [&form](const std::string& field, const std::string& text) { form.set.emplace_back(field, text); };
  type("txtSection", p.section);
  type("txtTwp", p.township);
  type("txtRange", p.range);
  form.set.emplace_back(p.direction == "E" ? "optEast" : "optWest", true);
  if (!p.meridian.empty()) type("txtPM", p.meridian);
  // Chains of its own: every chain field shown, as a user unticking the defaults would.
  if (!p.chains.empty()) form.set.emplace_back("chkDefaults", false);
  for (const auto& [stem, text] : p.chains) type("txt" + stem + "chain", text);
  for (std::size_t i = 0; i < kPlanCorners.size(); ++i) {
    const PlanCorner& c = p.corners[i];
    const std::string slot = "txt" + std::to_string(kPlanCornerSlots[i]);
    if (!c.point.empty()) type(slot + "pn", c.point);
    if (!c.x.empty()) {
      type(slot + "xc", c.x);
      type(slot + "yc", c.y);
    }
  }
  if (p.numbering == "unique") {
    form.set.emplace_back("optUnique", true);
  } else {
    form.set.emplace_back("optIncr", true);
    type("txtIncr", p.numbering);
  }
  job.steps.push_back(std::move(form));
  return job;
}

}  // namespace tervalo
