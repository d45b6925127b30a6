#include "parcels/parcel_run.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <fstream>
#include <numbers>
#include <sstream>

#include "app/job.h"
#include "app/program.h"
#include "cogo/cogo.h"
#include "crs/ground.h"
#include "project/project_session.h"
#include "parcels/legal.h"
#include "secsub/frm_sec_sub.h"
#include "text/format.h"
#include "text/justify.h"
#include "township/township.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;

bool isPlan(const std::string& file) {
  std::ifstream in(file);
  std::stringstream text;
  text << in.rdbuf();
  const Json j = Json::parse(text.str(), nullptr, false);
  return j.is_object() && j.contains("sections");
}

}  // namespace

PlattedSection plattedSection(const SectionRecord& record, const std::array<bool, slot::count>& computed, const CrsChoice& crs) {
  PlattedSection s{record, computed, {}, {}, basisOfBearings(record, crs)};
  std::optional<double> factor;
  const CornerSlot& nw = record.slots[slot::NW];
  const CornerSlot& se = record.slots[slot::SE];
  if (!crs.none() && !nw.blank() && !se.blank())
    factor = combinedFactors(crs, {PlanePosition{(nw.x + se.x) / 2, (nw.y + se.y) / 2}}).front().combined;
  s.parts = aliquotParts(record, "ft", factor);
  for (const AliquotPart& p : s.parts.parts) s.descriptions.push_back(aliquotDescription(p, record));
  return s;
}

std::string basisOfBearings(const SectionRecord& r, const CrsChoice& crs) {
  const CornerSlot& a = r.slots[slot::NW];
  const CornerSlot& b = r.slots[slot::NE];
  std::string text = "Bearings are based on the North line of Section " + std::to_string(r.section);
  if (!a.blank() && !b.blank())
    text += ", bearing " + bearingWords(std::fmod(std::atan2(b.x - a.x, b.y - a.y) * 180 / std::numbers::pi + 360, 360), 0);
  return text + (crs.none() ? ", in local coordinates." : ", on the grid of " + crsTitle(crs) + ".");
}

ParcelRun runForParcels(const std::string& file, const RunOptions& given, const FormRegistry& registry) {
  ParcelRun out;
  if (isPlan(file)) {
    const TownshipPlan plan = readPlanFile(file);
    RunOptions options = given;
    options.windows = false;
    const TownshipOutcome outcome = runTownship(plan, options, registry);
    out.crs = plan.crs;
    out.exitCode = outcome.exitCode;
    if (!plan.project.empty()) {
      // Who signs: as the plan's project says (the run has read it already, so it opens).
      try {
        const ProjectSettings s = openProject(plan.project)->settings();
        out.people.surveyor = s.surveyor, out.people.license = s.license, out.people.firm = s.firm;
      } catch (const ProjectError&) {
      }
    }
    for (const StoppedSection& s : outcome.stopped)
      out.stopped.push_back("Section " + s.section + ": " + (s.boxes.empty() ? std::string("did not run") : s.boxes.front()));
    for (const SectionRecord& r : outcome.records) {
      std::array<bool, slot::count> computed{};
      for (int s : slot::others) computed[static_cast<std::size_t>(s)] = true;
      out.sections.push_back(plattedSection(r, computed, plan.crs));
    }
    return out;
  }
  const Job job = readJobFile(file, registry);
  if (job.calculator != "secsub") throw JobError("the job is for the " + job.calculator + " window: parcels come from a section subdivision job");
  std::optional<PlattedSection> taken;
  CrsChoice crs;
  RunOptions options = given;
  options.inspect = [&taken, &crs, &out](Program& program) {
    auto& form = program.form<frmSecSub>("frmSecSub");
    crs = program.crs;
    if (program.project) {
      const ProjectSettings& s = program.project->file().settings();
      out.people.surveyor = s.surveyor, out.people.license = s.license, out.people.firm = s.firm;
    }
    if (form.hasRun) taken = PlattedSection{form.record, form.computed, {}, {}, {}};
  };
  const RunOutcome run = runJob(job, options, registry);
  out.exitCode = run.exitCode;
  out.crs = crs;
  if (!taken) {
    std::string why = "the section did not run";
    for (const auto& m : run.result["messages"]) why += "; " + m["title"].get<std::string>() + ": " + m["text"].get<std::string>();
    out.stopped.push_back(why);
    if (out.exitCode == 0) out.exitCode = kExitEnded;
    return out;
  }
  out.sections.push_back(plattedSection(taken->record, taken->computed, crs));
  return out;
}

Json parcelsJson(const ParcelRun& run) {
  Json parcels = Json::array(), sections = Json::array();
  for (const PlattedSection& s : run.sections) {
    for (std::size_t i = 0; i < s.parts.parts.size(); ++i) {
      const AliquotPart& p = s.parts.parts[i];
      Json one{{"section", p.section}, {"name", p.name}, {"acres", p.acres}, {"area", p.area}, {"corners", p.corners},
               {"description", s.descriptions[i]}};
      if (p.groundArea) {
        one["ground_area"] = *p.groundArea;
        one["ground_acres"] = *p.groundAcres;
      }
      parcels.push_back(std::move(one));
    }
    Json section{{"section", s.parts.section}, {"acres", s.parts.acres}, {"parts_acres", s.parts.partsAcres}};
    if (s.parts.combinedFactor) section["combined_factor"] = *s.parts.combinedFactor;
    if (!s.parts.missing.empty()) section["missing"] = s.parts.missing;
    sections.push_back(std::move(section));
  }
  Json out{{"parcels", parcels}, {"sections", sections}};
  if (!run.stopped.empty()) out["stopped"] = run.stopped;
  return out;
}

std::vector<std::string> standardCertificate() {
  return {"I hereby certify that this plat was prepared from a survey made by me or under my direct supervision, that the corners "
          "shown as found or set are as shown, and that it correctly represents the parcels described."};
}

PlatInput sectionsPlat(const ParcelRun& run, const PlatPeople& people) {
  PlatInput plat;
  plat.surveyor = people.surveyor;
  plat.license = people.license;
  plat.firm = people.firm;
  plat.date = people.date;
  plat.certificate = people.certificate.empty() ? standardCertificate() : people.certificate;
  if (run.sections.empty()) return plat;
  const SectionRecord& first = run.sections.front().record;
  std::string sections;
  for (const PlattedSection& s : run.sections) sections += (sections.empty() ? "" : ", ") + std::to_string(s.record.section);
  plat.title = std::string(run.sections.size() > 1 ? "PLAT OF SECTIONS " : "PLAT OF SECTION ") + sections;
  const std::string words = sectionWords(first);
  plat.subtitle.push_back(words.substr(words.find(", ") + 2));  // the township, range and meridian
  std::map<std::string, bool> seen;
  for (const PlattedSection& s : run.sections) {
    for (const AliquotPart& p : s.parts.parts) {
      PlatParcel parcel{p.name, {}, p.courses, run.sections.size() > 1 ? "SEC. " + std::to_string(p.section) : ""};
      parcel.areaLines.push_back(Format(p.acres, "0.00") + " AC.");
      if (p.groundAcres) parcel.areaLines.push_back("(" + Format(*p.groundAcres, "0.00") + " AC. GROUND)");
      plat.parcels.push_back(std::move(parcel));
    }
    for (int i = 0; i < slot::count; ++i) {
      const CornerSlot& c = s.record.slots[static_cast<std::size_t>(i)];
      if (c.blank() || !seen.emplace(Format(c.x, "0.000") + "," + Format(c.y, "0.000"), true).second) continue;
      PlatCorner corner{c.y, c.x, c.pointNumber, Monument::Computed};
      if (!s.computed[static_cast<std::size_t>(i)]) corner.kind = upper(c.evidence).rfind("SET", 0) == 0 ? Monument::Set : Monument::Found;
      plat.corners.push_back(corner);
    }
    plat.notes.push_back(s.basis);
    if (s.parts.combinedFactor)
      plat.notes.push_back("Section " + std::to_string(s.record.section) + ": distances and acres are grid values; ground acres by the combined factor " +
                           Format(*s.parts.combinedFactor, "0.00000000") + ".");
  }
  if (!run.sections.front().parts.combinedFactor) plat.notes.emplace_back("Distances are in US survey feet.");
  plat.notes.push_back("Each part is described by its name as an aliquot part or government lot of its section of " +
                       words.substr(words.find(", ") + 2) + ", containing the acres shown, more or less.");
  // One basis note for the sheet where the sections share it.
  std::sort(plat.notes.begin(), plat.notes.end());
  plat.notes.erase(std::unique(plat.notes.begin(), plat.notes.end()), plat.notes.end());
  return plat;
}

std::vector<std::string> parcelsReport(const ParcelRun& run) {
  std::vector<std::string> lines;
  for (const PlattedSection& s : run.sections) {
    const bool ground = s.parts.combinedFactor.has_value();
    lines.push_back(sectionWords(s.record));
    lines.push_back(std::string(std::min<std::size_t>(79, lines.back().size()), '='));
    lines.push_back(std::string("  Part             Corners                         Acres     Square feet") + (ground ? "   Ground acres" : ""));
    for (const AliquotPart& p : s.parts.parts) {
      std::string corners;
      for (const auto& c : p.corners) corners += (corners.empty() ? "" : "-") + c;
      std::string line = "  " + p.name;
      line.resize(19, ' ');
      line += corners;
      line.resize(std::max<std::size_t>(line.size() + 1, 46), ' ');
      const std::string acres = Format(p.acres, "0.00");
      line += std::string(10 - std::min<std::size_t>(10, acres.size()), ' ') + acres;
      const std::string feet = grouped(std::llround(p.area));
      line += std::string(16 - std::min<std::size_t>(16, feet.size()), ' ') + feet;
      if (p.groundAcres) {
        const std::string g = Format(*p.groundAcres, "0.00");
        line += std::string(15 - std::min<std::size_t>(15, g.size()), ' ') + g;
      }
      lines.push_back(line);
    }
    for (const auto& m : s.parts.missing) lines.push_back("  Not closed: " + m);
    lines.push_back("  Sum of the parts " + Format(s.parts.partsAcres, "0.00") + " acres; the section " + Format(s.parts.acres, "0.00") +
                    " acres; difference " + Format(s.parts.partsArea - s.parts.area, "0.00") + " sq ft");
    if (ground)
      lines.push_back("  Areas above are grid areas; ground areas by the combined factor " + Format(*s.parts.combinedFactor, "0.00000000") +
                      " at the section's middle.");
    lines.emplace_back("");
    for (const auto& d : s.descriptions) {
      lines.push_back(d + ".");
      lines.emplace_back("");
    }
    lines.push_back(s.basis);
    lines.emplace_back("");
  }
  for (const auto& s : run.stopped) lines.push_back("Not run: " + s);
  return lines;
}

}  // namespace tervalo
