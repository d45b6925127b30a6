// Files for other programs: what survives the trip (quoted names, quotes in
// descriptions), what the program reads back, and the LandXML read back
// with pugixml point by point.

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <pugixml.hpp>

#include "app/output_file.h"
#include "export/export_file.h"
#include "export/landxml.h"
#include "export/section_dxf.h"
#include "export/section_points.h"
#include "points/readers.h"
#include "support/temp_dir.h"
#include "text/errors.h"
#include "vcurve/listing.h"

namespace tervalo {
namespace {

using testing::TempDir;

// A regular section of 5280 feet, its 25 positions on a grid, the odd
// position 21 missing; names with what files must quote.
struct Section {
  SectionRecord record;
  std::array<bool, slot::count> computed{};
  CornerNaming naming = setDescriptions(14, 115, 22);
  Section() {
    for (int s = 0; s < slot::count; ++s) {
      if (s == 21) continue;
      CornerSlot& c = record.slots[static_cast<std::size_t>(s)];
      c.x = 500000 + 1320.0 * (s % 5);
      c.y = 290000 - 1320.0 * (s / 5);
      c.pointNumber = std::to_string(1000 + s);
      c.description = naming.descriptions[static_cast<std::size_t>(s)];
      computed[static_cast<std::size_t>(s)] = s != 0 && s != 2 && s != 4 && s != 10 && s != 14 && s != 20 && s != 22 && s != 24;
    }
    record.slots[0].feature = "CM";
    record.section = 14, record.township = 115, record.range = 22, record.direction = "W";
  }
};

TEST(PointFiles, PnezdQuotesWhatNeedsItAndTervaloPointsRefuseWhatTheyCannotHold) {
  Section s;
  s.record.slots[1].pointNumber = "S,1";
  s.record.slots[1].description = "SAID \"FOUND\"";
  const auto csv = pnezdLines(sectionMap(s.record, s.computed, s.naming));
  ASSERT_EQ(csv.size(), 25u);
  EXPECT_EQ(csv[0], "Point,Northing,Easting,Elevation,Description");
  EXPECT_EQ(csv[1], "1000,290000.0000,500000.0000,,NE 15-115-22");
  EXPECT_EQ(csv[2], "\"S,1\",290000.0000,501320.0000,,\"SAID \"\"FOUND\"\"\"");
  // The Tervalo format knows no quoting: such a name is refused with its point named.
  EXPECT_THROW(
      {
        try {
          tervaloPointLines(sectionMap(s.record, s.computed, s.naming));
        } catch (const ExportError& e) {
          EXPECT_NE(std::string(e.what()).find("point S,1"), std::string::npos);
          throw;
        }
      },
      ExportError);
}

TEST(PointFiles, AnExportGivenBackAsASourceIsReadRightOrRefused) {
  Section s;
  s.record.slots[12].x += 0.00004;  // below the fourth decimal: read back rounded
  const CornerMap map = sectionMap(s.record, s.computed, s.naming);
  TempDir dir;
  const std::map<std::string, std::function<void(const std::filesystem::path&)>> kinds{
      {"points.csv", [&](const auto& f) { writeTextFile(f, pnezdLines(map)); }},
      {"points.txt", [&](const auto& f) { writeTextFile(f, tervaloPointLines(map)); }},
      {"points.xml", [&](const auto& f) { writeDocument(f, cornerLandXml(map, {"2026-11-24", "10:00:00"})); }},
      {"points.dxf", [&](const auto& f) { writeCornerDxf(map, f); }},
      {"listing.csv", [&](const auto& f) {
         writeTextFile(f, listingCsv({listingRow("10+00.000", "C", "102.000", {})}, {}));
       }}};
  for (const bool afterCommaDelimited : {false, true})
    for (const auto& [name, write] : kinds) {
      SCOPED_TRACE(name + (afterCommaDelimited ? " after a comma-delimited file" : ""));
      const auto file = dir.path() / name;
      write(file);
      FormatFlags flags;
      flags.cd = afterCommaDelimited;
      PointList points;
      try {
        getFileFormat(file, flags);
        readFile(file, flags, points);
      } catch (const ProgramFault& refused) {
        const std::string why = refused.what();
        EXPECT_NE(name, "points.txt") << why;
        if (name == "points.csv") {
          EXPECT_NE(why.find("header naming columns"), std::string::npos) << why;
        }
        continue;
      }
      ASSERT_EQ(name, "points.txt");
      int read = 0;
      for (const PointRecord& p : points.records) {
        if (p.name.empty()) continue;
        const CornerSlot& c = s.record.slots[static_cast<std::size_t>(std::stoi(p.name) - 1000)];
        EXPECT_NEAR(p.x, c.x, 5e-5) << p.name;
        EXPECT_NEAR(p.y, c.y, 5e-5) << p.name;
        EXPECT_EQ(p.description, c.description);
        EXPECT_EQ(p.feature, c.feature);
        ++read;
      }
      EXPECT_EQ(read, 24);
    }
}

TEST(PointFiles, OneNameIsOnePositionInEveryExport) {
  Section s;
  TempDir dir;
  // A corner two slots share is one point, and the lines to either end there.
  s.record.slots[6].pointNumber = "1005";
  s.record.slots[6].x = s.record.slots[5].x, s.record.slots[6].y = s.record.slots[5].y;
  const CornerMap shared = sectionMap(s.record, s.computed, s.naming);
  EXPECT_TRUE(shared.collisions.empty());
  EXPECT_EQ(shared.points.size(), 23u);
  EXPECT_EQ(pnezdLines(shared).size(), 24u);
  // Two positions under one name: no writer writes anything.
  s.record.slots[7].pointNumber = "1005";
  const CornerMap clash = sectionMap(s.record, s.computed, s.naming);
  ASSERT_EQ(clash.collisions.size(), 1u);
  EXPECT_EQ(clash.collisions[0].corners.size(), 2u);
  const std::vector<std::function<void()>> writers{
      [&] { pnezdLines(clash); }, [&] { tervaloPointLines(clash); },
      [&] { cornerLandXml(clash, {"2026-11-24", "10:00:00"}); }, [&] { writeCornerDxf(clash, dir.path() / "c.dxf"); }};
  for (const auto& write : writers) {
    try {
      write();
      ADD_FAILURE() << "written";
    } catch (const ExportError& e) {
      EXPECT_NE(std::string(e.what()).find("1005 names corner 5 (E 1/16 NE 1/4 15-115-22) at 500000.0000, 288680.0000 and "
                                           "corner 7 (E 1/16 NW 1/4 14-115-22) at 502640.0000, 288680.0000."),
                std::string::npos)
          << e.what();
    }
  }
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "c.dxf"));
}

TEST(LandXml, SectionPointsLinesAndUnitsReadBack) {
  Section s;
  s.record.slots[1].pointNumber = "S,1";
  s.record.slots[1].description = "SAID \"FOUND\" <here>";
  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_string(cornerLandXml(sectionMap(s.record, s.computed, s.naming), {"2026-11-21", "10:00:00"}).c_str()));
  const pugi::xml_node root = doc.child("LandXML");
  EXPECT_STREQ(root.attribute("version").value(), "1.2");
  EXPECT_STREQ(root.child("Units").child("Imperial").attribute("linearUnit").value(), "USSurveyFoot");

  std::map<std::string, pugi::xml_node> points;
  for (pugi::xml_node p : root.child("CgPoints").children("CgPoint")) points[p.attribute("name").value()] = p;
  ASSERT_EQ(points.size(), 24u);
  for (int i = 0; i < slot::count; ++i) {
    const CornerSlot& c = s.record.slots[static_cast<std::size_t>(i)];
    if (c.x == 0) continue;
    const pugi::xml_node p = points.at(c.pointNumber);
    double north = 0, east = 0;
    ASSERT_EQ(std::sscanf(p.text().get(), "%lf %lf", &north, &east), 2);
    EXPECT_DOUBLE_EQ(north, c.y);
    EXPECT_DOUBLE_EQ(east, c.x);
    EXPECT_EQ(p.attribute("desc").value(), c.description);
    const bool calculated = s.computed[static_cast<std::size_t>(i)];
    EXPECT_STREQ(p.attribute("role").value(), calculated ? "calculated" : "user entered point");
    EXPECT_STREQ(p.attribute("pntSurv").value(), calculated ? "boundary" : "monument");
  }
  EXPECT_STREQ(points.at("1000").attribute("code").value(), "CM");

  // Every line refers to two of the points, in the GEOPAK groups: with 21
  // missing, the south line's two segments at it and the sixteenth line to it are gone.
  std::map<std::string, int> perGroup;
  for (pugi::xml_node f : root.child("PlanFeatures").children("PlanFeature"))
    for (pugi::xml_node line : f.child("CoordGeom").children("Line")) {
      EXPECT_TRUE(points.count(line.child("Start").attribute("pntRef").value())) << line.attribute("name").value();
      EXPECT_TRUE(points.count(line.child("End").attribute("pntRef").value())) << line.attribute("name").value();
      ++perGroup[f.attribute("name").value()];
    }
  EXPECT_EQ(perGroup, (std::map<std::string, int>{{"EWQ", 4}, {"EWSX", 8}, {"NSQ", 4}, {"NSSX", 7}, {"SEC", 14}}));
}

TEST(LandXml, TheSagCurvesProfile) {
  VerticalCurve c = makeCurve(-0.02, 0.02, 400, KnownPoint::PVI, 1000, 100);
  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_string(profileLandXml(c, false, "outVfile", {"2026-11-21", "10:00:00"}).c_str()));
  const pugi::xml_node alignment = doc.child("LandXML").child("Alignments").child("Alignment");
  EXPECT_STREQ(alignment.attribute("name").value(), "outVfile");
  EXPECT_DOUBLE_EQ(alignment.attribute("staStart").as_double(), 800);
  EXPECT_DOUBLE_EQ(alignment.attribute("length").as_double(), 400);
  const pugi::xml_node prof = alignment.child("Profile").child("ProfAlign");
  std::vector<std::string> parts;
  for (pugi::xml_node n : prof.children()) parts.push_back(std::string(n.name()) + " " + n.text().get());
  EXPECT_EQ(parts, (std::vector<std::string>{"PVI 800 104", "ParaCurve 1000 100", "PVI 1200 104"}));
  EXPECT_DOUBLE_EQ(prof.child("ParaCurve").attribute("length").as_double(), 400);
  ASSERT_TRUE(doc.load_string(profileLandXml(c, true, "m", {"2026-11-21", "10:00:00"}).c_str()));
  EXPECT_STREQ(doc.child("LandXML").child("Units").child("Metric").attribute("linearUnit").value(), "meter");
}

TEST(ListingCsv, AHeaderAColumnPerProfileAndTheEquationNamed) {
  const std::array<double, 3> profiles{-0.5, 0, 1};
  const std::vector<ListingRow> rows{listingRow("10+00.000", "MIN", "102.000", profiles),
                                     ListingRow{{}, {}, {}, {}, "    **** EQUATION IN  ****"}};
  EXPECT_EQ(listingCsv(rows, profiles),
            (std::vector<std::string>{"Station,Mark,Elevation,Profile 1,Profile 3", "10+00.000,MIN,102.000,101.500,103.000",
                                      ",EQUATION IN,,,"}));
}

}  // namespace
}  // namespace tervalo
