// Deeds, aliquot parts and plats: a published mapcheck (Purdue's traverse
// computation example: closure, its latitude and departure, perimeter and
// precision to the published hundredth) and its area beside the COGO AREA
// command's; curves whose areas are exact; every refusal with its reason;
// the lot numbers of the standard plan; a regular section's sixteen forties
// and their words; LandXML parcels read back; plats whose labels clash with
// nothing on every sheet.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <numbers>
#include <sstream>

#include "app/program.h"
#include "cogo/cogo.h"
#include "export/landxml.h"
#include "parcels/aliquot.h"
#include "parcels/deed.h"
#include "parcels/legal.h"
#include "parcels/parcel_run.h"
#include "parcels/plat.h"
#include "support/program_output.h"

namespace tervalo {
namespace {

std::vector<Course> followed(const std::vector<DeedCall>& calls, double n = 0, double e = 0) {
  std::vector<Course> out;
  for (const DeedCall& c : calls) {
    out.push_back(follow(c, n, e, out.empty() ? std::nullopt : std::optional(out.back().tangentOut)));
    n = out.back().toN, e = out.back().toE;
  }
  return out;
}

DeedCall line(const std::string& bearing, double distance) {
  DeedCall c;
  c.azimuth = *cogoBearing(bearing);
  c.distance = distance;
  return c;
}

DeedCall curve(bool right, double radius, DeedCall::By by, double value) {
  DeedCall c;
  c.curve = true;
  c.right = right;
  c.radius = radius;
  c.by = by;
  c.value = value;
  return c;
}

TEST(Deed, ThePublishedMapcheckToTheHundredthAndTheCogoAreaOfTheSameFigure) {
  const auto courses = followed({line("N26-10E", 285.10), line("S75-25E", 610.45), line("S15-30W", 720.48), line("N1-42W", 203.00),
                                 line("N53-06W", 647.02)});
  const FigureClosure c = closureOf(courses);
  // The published misclosure sums latitudes and departures rounded to the hundredth.
  double latitudes = 0, departures = 0;
  for (const Course& k : courses) {
    latitudes += std::round((k.toN - k.fromN) * 100) / 100;
    departures += std::round((k.toE - k.fromE) * 100) / 100;
  }
  EXPECT_NEAR(latitudes, -0.71, 1e-9);
  EXPECT_NEAR(departures, 0.53, 1e-9);
  EXPECT_NEAR(c.latitude, -0.71, 0.01);
  EXPECT_NEAR(c.departure, 0.53, 0.01);
  EXPECT_NEAR(c.distance, 0.89, 0.01);
  EXPECT_NEAR(c.perimeter, 2466.05, 0.005);
  ASSERT_TRUE(c.precision);
  EXPECT_NEAR(static_cast<double>(*c.precision), 2771, 2771 * 0.01);  // published 1:2771, from the closure to the hundredth

  // The COGO AREA of the same corners, the last course's end among them
  // (the misclosure closing the figure), is the mapcheck's area.
  std::map<std::string, ProjectPoint> held;
  std::string area = "AREA";
  for (std::size_t i = 0; i <= courses.size(); ++i) {
    const std::string n = std::to_string(i + 1);
    held[n] = i < courses.size() ? ProjectPoint{0, n, courses[i].fromN, courses[i].fromE} : ProjectPoint{0, n, courses.back().toN, courses.back().toE};
    area += " " + n;
  }
  CogoEngine engine([&held](const std::string& n) -> std::optional<ProjectPoint> {
    const auto it = held.find(n);
    return it == held.end() ? std::nullopt : std::optional(it->second);
  }, CogoOptions{});
  EXPECT_NEAR((*engine.run(area, 1))["area"].get<double>(), c.area, 1e-6);
}

TEST(Deed, CurvesByArcChordDeltaAndRadialGiveExactAreas) {
  // A 200-foot square whose east side bulges in a half circle of radius 100.
  const double exact = 200.0 * 200 + std::numbers::pi * 100 * 100 / 2;
  struct Case {
    const char* name;
    DeedCall bulge;
  };
  DeedCall byArc = curve(true, 100, DeedCall::By::Arc, std::numbers::pi * 100);
  DeedCall byChord = curve(true, 100, DeedCall::By::Chord, 200);
  DeedCall byDelta = curve(true, 100, DeedCall::By::Delta, 180);
  DeedCall radial = byDelta;
  radial.radialAzimuth = 90;  // the center due east of the curve's start
  DeedCall chordBearing = byDelta;
  chordBearing.chordAzimuth = 90;
  for (const Case& k : {Case{"arc", byArc}, {"chord", byChord}, {"delta", byDelta}, {"radial", radial}, {"chord bearing", chordBearing}}) {
    const auto courses = followed({line("N0E", 200), k.bulge, line("S0E", 200), line("N90W", 200)}, 0, 0);
    const FigureClosure c = closureOf(courses);
    EXPECT_NEAR(c.area, exact, 1e-6) << k.name;
    EXPECT_LT(c.distance, 1e-9) << k.name;
    EXPECT_FALSE(c.precision) << k.name;
    EXPECT_NEAR(c.perimeter, 600 + std::numbers::pi * 100, 1e-9) << k.name;
  }
}

TEST(Deed, EveryRefusalSaysWhy) {
  const auto refused = [](const std::function<void()>& act) {
    try {
      act();
    } catch (const DeedError& e) {
      return std::string(e.what());
    }
    return std::string("accepted");
  };
  EXPECT_EQ(refused([] { follow(line("N0E", 0), 0, 0, std::nullopt); }), "a line's distance must be more than 0, not 0.0000");
  EXPECT_EQ(refused([] { follow(curve(true, 50, DeedCall::By::Chord, 120), 0, 0, 0.0); }),
            "a chord of 120.0000 is longer than the diameter of a radius of 50.0000 (100.0000)");
  EXPECT_EQ(refused([] { follow(curve(true, 50, DeedCall::By::Arc, 10), 0, 0, std::nullopt); }),
            "the first curve needs its chord bearing or radial bearing: there is no course before it to be tangent to");
  EXPECT_EQ(refused([] { follow(curve(false, -5, DeedCall::By::Arc, 10), 0, 0, 0.0); }), "a curve's radius must be more than 0, not -5.0000");
  EXPECT_EQ(refused([] { requireParcel(followed({line("N0E", 10), line("S0E", 10)}), {}); }),
            "a parcel needs three courses at least; this figure has 2");
  // A bow tie: its first and third courses cross.
  EXPECT_EQ(refused([] {
              requireParcel(followed({line("N45E", 100 * std::sqrt(2.0)), line("S0E", 100), line("N45W", 100 * std::sqrt(2.0)), line("S0E", 100)}),
                            {"line 2", "line 3", "line 4", "line 5"});
            }),
            "the figure crosses itself: line 2 crosses line 4");
  EXPECT_EQ(refused([] { requireParcel(followed({line("N0E", 10), line("N90E", 10), line("S0E", 10), line("N90W", 10)}), {}); }), "accepted");
}

TEST(Aliquot, LotsAreNumberedAsTheStandardPlanNumbersThem) {
  struct Case {
    int section, row, column, lot;
  };
  for (const Case& c : {Case{1, 0, 3, 1}, {1, 0, 0, 4}, {5, 0, 1, 3}, {6, 0, 3, 1}, {6, 0, 0, 4}, {6, 1, 0, 5}, {6, 3, 0, 7},
                        {7, 0, 0, 1}, {18, 2, 0, 3}, {31, 3, 0, 4}, {6, 1, 1, 0}, {14, 0, 0, 0}, {36, 3, 3, 0}, {12, 0, 0, 0}})
    EXPECT_EQ(lotNumber(c.section, c.row, c.column), c.lot) << "section " << c.section << " row " << c.row << " column " << c.column;
}

// A section of exactly 80 chains each way, its corners numbered 1 to 25.
SectionRecord regular(int section) {
  SectionRecord r;
  r.section = static_cast<std::int16_t>(section);
  r.township = 12;
  r.range = 3;
  r.meridian = "5";
  r.direction = "W";
  for (int s = 0; s < slot::count; ++s) {
    CornerSlot& c = r.slots[static_cast<std::size_t>(s)];
    c.x = 500000 + (s % 5) * 1320.0;
    c.y = 200000 - (s / 5) * 1320.0;
    c.pointNumber = std::to_string(s + 1);
  }
  return r;
}

TEST(Aliquot, ARegularSectionIsSixteenFortiesInTheFieldsWords) {
  const SectionRecord r = regular(14);
  const SectionParts parts = aliquotParts(r);
  ASSERT_EQ(parts.parts.size(), 16u);
  EXPECT_TRUE(parts.missing.empty());
  EXPECT_NEAR(parts.acres, 640, 1e-9);
  EXPECT_NEAR(parts.partsAcres, 640, 1e-9);
  for (const AliquotPart& p : parts.parts) EXPECT_NEAR(p.acres, 40, 1e-9) << p.name;
  const AliquotPart& neNw = parts.parts[1];
  EXPECT_EQ(neNw.name, "NE 1/4 NW 1/4");
  EXPECT_EQ(aliquotDescription(neNw, r),
            "The Northeast Quarter of the Northwest Quarter (NE 1/4 NW 1/4) of Section 14, Township 12 North, Range 3 West of the Fifth "
            "Principal Meridian, containing 40.00 acres, more or less");
  // Round it clockwise from the north quarter corner it touches.
  EXPECT_EQ(neNw.corners, (std::vector<std::string>{"3", "8", "7", "2"}));

  // Section 6: seven lots first, in their order, then the nine forties.
  const SectionParts six = aliquotParts(regular(6), "ft", 0.99990);
  std::vector<std::string> names;
  for (const AliquotPart& p : six.parts) names.push_back(p.name);
  EXPECT_EQ(std::vector<std::string>(names.begin(), names.begin() + 8),
            (std::vector<std::string>{"Lot 1", "Lot 2", "Lot 3", "Lot 4", "Lot 5", "Lot 6", "Lot 7", "SE 1/4 NW 1/4"}));
  EXPECT_EQ(six.parts[3].slots[0], 0);  // lot 4 is the north-west corner's
  ASSERT_TRUE(six.parts[0].groundAcres);
  EXPECT_NEAR(*six.parts[0].groundAcres, 40 / (0.9999 * 0.9999), 1e-9);
  EXPECT_EQ(aliquotDescription(six.parts[4], regular(6)),
            "Lot 5 of Section 6, Township 12 North, Range 3 West of the Fifth Principal Meridian, containing 40.01 acres, more or less");

  // A missing corner leaves its parts out, said, and the whole unknown.
  SectionRecord gap = regular(14);
  gap.slots[4].x = gap.slots[4].y = 0;
  const SectionParts partial = aliquotParts(gap);
  EXPECT_EQ(partial.parts.size(), 15u);
  EXPECT_EQ(partial.missing.front(), "NE 1/4 NE 1/4: the corner in slot 4 is not there");
}

TEST(Legal, MetesAndBoundsFromACommencingCornerWithACurve) {
  const auto tie = followed({line("S0E", 100)}, 1000, 1000);
  const auto courses =
      followed({line("N90E", 200), curve(true, 100, DeedCall::By::Delta, 90), line("S90W", 300), line("N0E", 100)}, 900, 1000);
  MetesWords w;
  w.commencing = "the Northwest corner of Section 14, Township 12 North, Range 3 West of the Fifth Principal Meridian";
  w.tie = tie;
  w.basis = "Bearings are those of the deed.";
  const FigureClosure c = closureOf(courses);
  EXPECT_EQ(metesAndBounds(courses, c.area, w),
            "Commencing at the Northwest corner of Section 14, Township 12 North, Range 3 West of the Fifth Principal Meridian; thence "
            "S 0°00'00\" E, a distance of 100.00 feet to the point of beginning; thence N 90°00'00\" E, a distance of 200.00 feet; "
            "thence along a curve to the right having a radius of 100.00 feet, an arc length of 157.08 feet, a delta angle of "
            "90°00'00\", and a chord bearing and distance of S 45°00'00\" E, 141.42 feet; thence N 90°00'00\" W, a distance of "
            "300.00 feet; thence N 0°00'00\" E, a distance of 100.00 feet to the point of beginning. Containing 0.64 acres "
            "(27,854 square feet), more or less. Bearings are those of the deed. Distances are grid distances.");
}

TEST(LandXmlParcels, WrittenAndReadBackWithTheirAreas) {
  const auto courses = followed({line("N0E", 200), curve(true, 100, DeedCall::By::Delta, 180), line("S0E", 200), line("N90W", 200)});
  MapParcel parcel{"Deed of 1998", "a deed", courses, {}, closureOf(courses).area, 0, std::nullopt};
  const std::string xml = parcelsLandXml({parcel}, "Mapcheck", MapSystem{}, XmlStamp{"2026-11-25", "12:00:00"});
  const auto read = landXmlParcels(xml);
  ASSERT_EQ(read.size(), 1u);
  EXPECT_EQ(read[0].name, "Deed of 1998");
  ASSERT_EQ(read[0].courses.size(), 4u);
  EXPECT_TRUE(read[0].courses[1].curve);
  EXPECT_NEAR(closureOf(read[0].courses).area, parcel.area, 1e-3);  // four decimals of coordinates
  EXPECT_NEAR(read[0].area, parcel.area, 1e-6);
  EXPECT_THROW(landXmlParcels("<nothing/>"), ExportError);
  // Valid against the LandXML 1.2 schema, by xmllint.
  const std::filesystem::path file = std::filesystem::path(::testing::TempDir()) / "deed-parcel.xml";
  std::ofstream(file) << xml;
  const std::string said = testing::programOutput(
      "xmllint --noout --schema " + std::string(TERVALO_SOURCE_DIR) + "/tests/export/LandXML-1.2.xsd " + file.string() + " 2>&1; true", "");
  EXPECT_NE(said.find("validates"), std::string::npos) << said;
  std::filesystem::remove(file);
}

TEST(Plat, NoLabelOverlapsAnotherOrALineNotItsOwnOnEverySheet) {
  ParcelRun run;
  for (int section : {6, 14}) {
    PlattedSection s;
    s.record = regular(section);
    for (int k : slot::others) s.computed[static_cast<std::size_t>(k)] = true;
    s.parts = aliquotParts(s.record);
    s.basis = basisOfBearings(s.record, CrsChoice{});
    run.sections.push_back(s);
    PlatInput plat = sectionsPlat(run, PlatPeople{"A. Surveyor", "12345", "Survey Firm", "11/25/2026", {}});
    for (SheetSize size : {SheetSize::Letter, SheetSize::Tabloid, SheetSize::ArchD}) {
      const Sheet sheet = drawPlat(plat, PlatOptions{size, 0});
      EXPECT_EQ(sheetClashes(sheet), std::vector<std::string>{}) << "section " << section << " sheet " << static_cast<int>(size);
      EXPECT_TRUE(sheet.unplaced.empty());
      // Every line of the section labelled: 40 lines, a bearing and a distance each.
      int labels = 0;
      for (const SheetText& t : sheet.texts) labels += t.layer == std::string(layer::Dimension);
      EXPECT_EQ(labels, 80) << static_cast<int>(size);
    }
    run.sections.clear();
  }
  // The example section and the example township, as their jobs run them.
  const std::string examples = std::string(TERVALO_SOURCE_DIR) + "/examples/";
  for (const char* file : {"secsub.job.json", "township.plan.json"}) {
    const std::string folder = ::testing::TempDir() + "plat-" + std::to_string(std::hash<std::string>{}(file)) + "/";
    RunOptions options{folder, Date{2026, 11, 25}};
    std::filesystem::create_directories(folder);
    const ParcelRun example = runForParcels(examples + file, options, allForms());
    ASSERT_FALSE(example.sections.empty()) << file;
    for (SheetSize size : {SheetSize::Letter, SheetSize::Tabloid, SheetSize::ArchD}) {
      if (example.sections.size() > 1 && size != SheetSize::ArchD) {
        // Four sections' 144 lines find room only on ARCH D: refused on smaller sheets, never crowded.
        EXPECT_THROW(drawPlat(sectionsPlat(example, PlatPeople{}), PlatOptions{size, 0}), DeedError);
        continue;
      }
      const Sheet sheet = drawPlat(sectionsPlat(example, PlatPeople{}), PlatOptions{size, 0});
      EXPECT_EQ(sheetClashes(sheet), std::vector<std::string>{}) << file << " sheet " << static_cast<int>(size);
      EXPECT_EQ(sheet.unplaced, std::vector<std::string>{}) << file << " sheet " << static_cast<int>(size);
    }
    std::filesystem::remove_all(folder);
  }

  // A deed with curves: its curves in the curve table, still clear.
  PlatInput deed;
  deed.title = "MAPCHECK";
  deed.parcels.push_back({"PARCEL A", {"0.92 AC."}, followed({line("N0E", 200), curve(true, 100, DeedCall::By::Delta, 180), line("S0E", 200),
                                                              line("N90W", 200)})});
  const Sheet sheet = drawPlat(deed, PlatOptions{});
  EXPECT_EQ(sheetClashes(sheet), std::vector<std::string>{});
  EXPECT_TRUE(std::any_of(sheet.texts.begin(), sheet.texts.end(), [](const SheetText& t) { return t.text == "CURVE TABLE"; }));
  EXPECT_THROW(drawPlat(deed, PlatOptions{SheetSize::Letter, 10}), DeedError);  // 300 feet at 1" = 10' is 30 inches
}

}  // namespace
}  // namespace tervalo
