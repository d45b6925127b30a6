#include "secsub_out/corner_record.h"

#include <cstdio>

#include "text/number.h"

namespace tervalo {

const std::array<const char*, slot::count> kSlotTitles = {
    "NW Cor", "N 1/16",   "N 1/4",    "N 1/16",   "NE Cor", "W 1/16", "C NW 1/4", "C-N 1/16", "C NE 1/4",
    "E 1/16", "W 1/4",    "C-W 1/16", "Center",   "C-E 1/16", "E 1/4", "W 1/16",   "C SW 1/4", "C-S 1/16",
    "C SE 1/4", "E 1/16", "SW Cor",   "S 1/16",   "S 1/4",    "S 1/16", "SE Cor"};

namespace {

std::string fixed(double v, int decimals) {
  char buf[48];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
  return buf;
}

// "N 1/4 (1002)": a corner as the review reads it.
std::string corner(const SectionRecord& r, int s) {
  const std::string& number = r.slots[static_cast<std::size_t>(s)].pointNumber;
  return std::string(kSlotTitles[static_cast<std::size_t>(s)]) + (number.empty() ? "" : " (" + number + ")");
}

}  // namespace

const char* originName(const CornerOrigin& o) {
  switch (o.kind) {
    case CornerOrigin::Kind::Absent: return "absent";
    case CornerOrigin::Kind::Typed: return "held";
    case CornerOrigin::Kind::LookedUp: return "looked up";
    case CornerOrigin::Kind::Restored: return "restored";
    case CornerOrigin::Kind::Computed: break;
  }
  switch (o.rule.kind) {
    case CornerRule::Kind::Intersection: return "intersection";
    case CornerRule::Kind::FinalPass: return "final pass";
    case CornerRule::Kind::Proportion: break;
  }
  return "proportion";
}

std::string explainCorner(const SectionRecord& r, const CornerOrigins& origins, int s) {
  const CornerOrigin& o = origins[static_cast<std::size_t>(s)];
  const CornerRule& rule = o.rule;
  switch (o.kind) {
    case CornerOrigin::Kind::Absent: return "Not computed: a corner it depends on is missing.";
    case CornerOrigin::Kind::Typed: return "Held as typed.";
    case CornerOrigin::Kind::LookedUp: return "Held: looked up from the point file as point " + o.point + ".";
    case CornerOrigin::Kind::Restored: return "Held as restored by " + o.restoredBy + ".";
    case CornerOrigin::Kind::Computed: break;
  }
  if (rule.kind == CornerRule::Kind::Intersection)
    return "Intersection of the line " + corner(r, rule.ends[0]) + " to " + corner(r, rule.ends[1]) + " with the line " +
           corner(r, rule.ends[2]) + " to " + corner(r, rule.ends[3]) + ".";
  std::string text = rule.kind == CornerRule::Kind::FinalPass ? "Final pass: proportion" : "Proportion";
  text += " from " + corner(r, rule.nearSlot) + " toward " + corner(r, rule.farSlot) + ", 20 of " + fixed(rule.chains, 4) +
          " chains (factor " + fixed(rule.factor(), 6) + ") along the " + rule.halfMile + ".";
  if (rule.kind == CornerRule::Kind::FinalPass) {
    text += " The final pass always measures along the east half of the east-west center line";
    text += (s == 7 || s == 17) ? ", and puts this slot toward the E 1/4 on the point of slot 13, deliberately." : ".";
  }
  return text;
}

std::vector<std::string> cornerRecordLines(const SectionRecord& r, const CornerOrigins& origins, const std::string& title,
                                           const GridGround* ground) {
  std::vector<std::string> lines{"CORNER RECORD - " + title, "", "Slot  Corner     Point         Rule          Description"};
  for (int s = 0; s < slot::count; ++s) {
    const CornerSlot& c = r.slots[static_cast<std::size_t>(s)];
    if (c.x == 0) continue;
    char head[160];
    std::snprintf(head, sizeof head, "%4d  %-9s  %-12s  %-12s  %s", s, kSlotTitles[static_cast<std::size_t>(s)],
                  c.pointNumber.c_str(), originName(origins[static_cast<std::size_t>(s)]), c.description.c_str());
    lines.emplace_back(head);
    lines.push_back("      X " + fixed(c.x, 4) + "  Y " + fixed(c.y, 4));
    if (!c.evidence.empty()) lines.push_back("      Found: " + c.evidence);
    if (ground)
      for (const GroundCorner& g : ground->corners)
        if (g.slot == s) lines.push_back("      " + groundCornerLine(g));
    lines.push_back("      " + explainCorner(r, origins, s));
  }
  lines.emplace_back("");
  if (ground) {
    lines.push_back("Coordinate system: " + ground->system);
    const std::vector<std::string> table = groundLinesTable(*ground);
    lines.insert(lines.end(), table.begin(), table.end());
    lines.emplace_back("");
  }
  return lines;
}

}  // namespace tervalo
