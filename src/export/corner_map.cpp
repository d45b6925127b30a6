#include "export/corner_map.h"

#include <algorithm>
#include <map>

#include "parcels/aliquot.h"
#include "parcels/legal.h"
#include "secsub/grid_lines.h"
#include "text/format.h"
#include "text/number.h"

namespace tervalo {
namespace {

// A position as the files write it.
std::string writtenAt(const MapPoint& p) { return Format(p.x, "0.0000") + ", " + Format(p.y, "0.0000"); }

std::string cornerAt(const SectionRecord& r, const MapPoint& p) {
  return "corner " + std::to_string(p.slot) + " (" + r.slots[static_cast<std::size_t>(p.slot)].description + ") at " +
         writtenAt(p);
}

}  // namespace

CornerMap sectionMap(const SectionRecord& r, const std::array<bool, slot::count>& computed, const CornerNaming& naming,
                     bool uniqueNames) {
  CornerMap map;
  map.uniqueNames = uniqueNames;
  map.title = "Section " + CStr(r.section) + " T" + CStr(r.township) + "N R" + CStr(r.range < 0 ? -r.range : r.range) +
              r.direction;
  std::array<std::size_t, slot::count> index{};
  std::map<std::string, std::size_t> named;  // name -> point
  for (int s = 0; s < slot::count; ++s) {
    const auto i = static_cast<std::size_t>(s);
    const CornerSlot& c = r.slots[i];
    if (c.x == 0) continue;
    MapPoint point{uniqueNames ? naming.pointNames[i] : c.pointNumber, c.description, c.feature, c.x, c.y, computed[i], s,
                   computed[i] ? "computed" : "entered"};
    // The surveyor's number; none where the run named the corner by its unique name.
    point.number = uniqueNames && c.pointNumber == naming.pointNames[i] ? "" : c.pointNumber;
    point.evidence = c.evidence;
    const auto [at, added] = named.emplace(point.name, map.points.size());
    if (added) {
      index[i] = map.points.size();
      map.points.push_back(std::move(point));
      continue;
    }
    const MapPoint& first = map.points[at->second];
    if (writtenAt(first) == writtenAt(point)) {  // one corner that two slots share
      index[i] = at->second;
      continue;
    }
    // Two positions under one name: said, and nothing is written.
    auto collision = std::find_if(map.collisions.begin(), map.collisions.end(),
                                  [&point](const NameCollision& n) { return n.name == point.name; });
    if (collision == map.collisions.end()) {
      map.collisions.push_back({point.name, {cornerAt(r, first)}});
      collision = map.collisions.end() - 1;
    }
    const std::string here = cornerAt(r, point);
    if (std::find(collision->corners.begin(), collision->corners.end(), here) == collision->corners.end())
      collision->corners.push_back(here);
    index[i] = at->second;
  }
  auto present = [&r](int s) { return r.slots[static_cast<std::size_t>(s)].x != 0; };
  for (const GridLine& l : kGridLines) {
    if (!lineDrawn(l, present)) continue;
    const auto segment = naming.segments.find(l.segment);
    map.lines.push_back({l.feature, segment == naming.segments.end() ? std::string() : segment->second,
                         index[static_cast<std::size_t>(l.from)], index[static_cast<std::size_t>(l.to)]});
  }
  for (const AliquotPart& part : aliquotParts(r).parts) {
    MapParcel parcel{part.name, aliquotDescription(part, r), part.courses, {}, part.area, 0, std::nullopt};
    for (int s : part.cornerSlots) parcel.cornerNames.push_back(map.points[index[static_cast<std::size_t>(s)]].name);
    map.parcels.push_back(std::move(parcel));
  }
  return map;
}

std::vector<std::string> lineGroups(const CornerMap& map) {
  std::vector<std::string> groups;
  const auto has = [&map](const std::string& g) {
    return std::any_of(map.lines.begin(), map.lines.end(), [&g](const MapLine& l) { return l.feature == g; });
  };
  for (const char* g : kFeatureGroups)
    if (has(g)) groups.emplace_back(g);
  for (const MapLine& l : map.lines)
    if (std::find(groups.begin(), groups.end(), l.feature) == groups.end()) groups.push_back(l.feature);
  return groups;
}

void requireOneNamePerPosition(const CornerMap& map) {
  if (map.collisions.empty()) return;
  std::string text = "Two positions would be written under one name, so nothing was written:";
  for (const NameCollision& n : map.collisions) {
    text += "\n" + n.name + " names ";
    for (std::size_t i = 0; i < n.corners.size(); ++i)
      text += (i == 0 ? "" : i + 1 == n.corners.size() ? " and " : ", ") + n.corners[i];
    text += ".";
  }
  text += "\nGive these corners numbers of their own (Automatic Point Numbering from a free number, or Assign Unique "
          "Numbers) and run the section again.";
  throw ExportError(text);
}

}  // namespace tervalo
