// The four coordinate formats, their recognition, and every fault that ends
// the program.

#include <gtest/gtest.h>

#include "points/readers.h"
#include "support/temp_dir.h"
#include "text/errors.h"

namespace tervalo {
namespace {

using testing::TempDir;

const char* const kUnderline = "---------------   ---------------  ----------------   ------------  ------------";

std::string xyReport(const std::string& header, const std::string& body) {
  return "Listing   Copyright: Sample Office\r\n\r\n" + header + "\r\n" + kUnderline + "\r\n" + body;
}

class Readers : public ::testing::Test {
 protected:
  TempDir dir;
  FormatFlags flags;
  PointList points;

  ReadNotes load(const std::string& name, const std::string& bytes) {
    const auto file = dir.write(name, bytes);
    getFileFormat(file, flags);
    return readFile(file, flags, points);
  }
  const PointRecord& at(int i) const { return points.records[static_cast<std::size_t>(i)]; }
};

// Expects the fault's box title and the start of its text.
#define EXPECT_FAULT(STATEMENT, TITLE, TEXT_START)                        \
  try {                                                                  \
    STATEMENT;                                                           \
    ADD_FAILURE() << "no fault";                                         \
  } catch (const ProgramFault& f) {                                      \
    EXPECT_EQ(f.title(), TITLE);                                         \
    EXPECT_EQ(std::string(f.what()).rfind(TEXT_START, 0), 0u) << f.what(); \
  }

TEST_F(Readers, SdmsTagsKeepTheirValuesUntrimmed) {
  load("a.sdms", "\xEF\xBB\xBF" "AC:JOB\r\nPN:  7\r\nXC:5000.25\r\nYC: 3000.75\r\nFE:IP\r\nPD:IRON PIPE \r\nZZ:ignored\r\n"
                 "PN:8\nXC:1\nYC:2");
  EXPECT_TRUE(flags.sdms);
  EXPECT_EQ(at(0).name, "  7");
  EXPECT_EQ(at(0).x, 5000.25);
  EXPECT_EQ(at(0).y, 3000.75);
  EXPECT_EQ(at(0).feature, "IP");
  EXPECT_EQ(at(0).description, "IRON PIPE ");
  EXPECT_EQ(at(1).y, 2);  // a last line without its end still counts
  EXPECT_EQ(points.pointCount, 1);  // the last point's index
}

TEST_F(Readers, AnSdmsFileOutOfOrderOrNotANumberEndsTheRun) {
  EXPECT_FAULT(load("a", "AC:X\nXC:5\nPN:1\n"), "Run-time Error", "Subscript out of range");
  EXPECT_FAULT(load("b", "AC:X\nPN:1\nXC:five\n"), "Run-time Error", "Type mismatch");
  EXPECT_FAULT(load("c", "AC:X\nPN:1\nYC:\n"), "Run-time Error", "Type mismatch");
  std::string many = "AC:X\n";
  for (int i = 0; i < 152; ++i) many += "PN:" + std::to_string(i) + "\n";
  EXPECT_FAULT(load("d", many), "Run-time Error", "Subscript out of range");
}

TEST_F(Readers, FaultsNameTheFileAndLine) {
  try {
    load("bad.sdms", "AC:X\nPN:1\n\nXC:5000.2.5\n");
    FAIL();
  } catch (const RunTimeError& e) {
    const std::string text = e.what();
    EXPECT_NE(text.find("bad.sdms"), std::string::npos) << text;
    EXPECT_NE(text.find("Line: 4"), std::string::npos) << text;
  }
}

TEST_F(Readers, ACommaFileGivesNameCoordinatesFeatureAndDescription) {
  load("a.csv",
       "101,5000.25,3000.75,IP\n"
       "102,5000.25,3000.75,IP,IRON PIPE\n"
       "\n"
       "103,5000.25,3000.75;IP\n"
       "104, 1.5 ,2,IP,DESC,FD STONE\n"
       "105,1,2,IP;IRON PIPE\n"
       "106,1,2,CM,NE 15-115-22,,36.1,-97.2");
  EXPECT_TRUE(flags.cd);
  EXPECT_EQ(at(0).feature, "IP");
  EXPECT_EQ(at(0).description, "");
  EXPECT_EQ(at(1).description, "IRON PIPE");
  EXPECT_EQ(at(2).y, 3000.75);
  EXPECT_EQ(at(2).feature, "IP");
  EXPECT_EQ(at(3).x, 1.5);
  EXPECT_EQ(at(3).description, "DESC");
  // The sixth field is the evidence found, as Tervalo's points write it; none is not an empty one.
  EXPECT_EQ(at(3).evidence, "FD STONE");
  EXPECT_EQ(at(4).feature, "IP");
  EXPECT_EQ(at(4).description, "IRON PIPE");
  EXPECT_EQ(at(4).evidence, std::nullopt);
  EXPECT_EQ(at(5).evidence, "");  // a computed corner: nothing found, latitude and longitude after it
  EXPECT_EQ(points.pointCount, 7);  // six points plus one
}

TEST_F(Readers, ACommaFileWithTooFewFieldsOrABadLineIsRefused) {
  EXPECT_FAULT(load("a", "101,5000.25,3000.75\n"), "Input File Error!", "Unrecognized file format.");
  EXPECT_FAULT(load("b", "101,1,2,IP\n102 1 2\n"), "Run-time Error", "Invalid procedure call");
  EXPECT_FAULT(load("c", "101,1,2,IP\n102,x,2,IP\n"), "Run-time Error", "Type mismatch");
}

TEST_F(Readers, AFileOfNoKnownFormatIsRefusedWithItsBox) {
  EXPECT_FAULT(load("a", "101,5000\n"), "Input File Error", "Input File Format Not Recognized");
  EXPECT_FAULT(load("b", ""), "Run-time Error", "Input past end of file");
  EXPECT_FAULT(load("c", "\r\n\r\n\n"), "Run-time Error", "Input past end of file");
  EXPECT_FAULT(load("d", "Copyright: x\nno header here\n"), "Run-time Error", "Input past end of file");
  EXPECT_FAULT(getFileFormat(dir.path() / "missing.txt", flags), "Run-time Error", "File not found");
  EXPECT_FAULT(getFileFormat(dir.path(), flags), "Run-time Error", "Bad file name");
}

TEST_F(Readers, XYReportFromIndexOne) {
  const ReadNotes notes = load("xy.txt", xyReport("    Point                 X                 Y",
                          "1001                  512,313.489       289,841.989\r\n"
                          "   Feature: CM\r\n   Description: FD STONE\r\n\r\n"
                          "---  a rule line\r\n\r\n\r\n\r\n"
                          "1002                1,514,953.421       289,851.665\r\n   Feature: IP\r\n"));
  EXPECT_TRUE(flags.xy);
  EXPECT_EQ(at(0).name, "");
  EXPECT_EQ(at(1).name, "1001");
  EXPECT_EQ(at(1).x, 512313.489);
  EXPECT_EQ(at(1).y, 289841.989);
  EXPECT_EQ(at(1).feature, "CM");
  EXPECT_EQ(at(1).description, "FD STONE");
  EXPECT_EQ(at(2).name, "");  // the rule line's group takes an index
  EXPECT_EQ(at(3).x, 1514);  // only the first comma is removed; reading stops at the second
  EXPECT_EQ(points.pointCount, 4);
  // ...and the point so cut is reported, by name.
  EXPECT_EQ(notes.cutCoordinates, std::vector<std::string>{"1002"});
  EXPECT_NE(notes.message().find("point 1002 hold more than one thousands comma"), std::string::npos);
  EXPECT_EQ(ReadNotes{}.message(), "");
}

TEST_F(Readers, AWindowsCodePageReportIsReadAsUtf8InItsColumns) {
  // A Latin-1 degree sign in the name takes one column, so X still ends at column 33, its last digit kept.
  load("xy1252.txt", xyReport("    Point                 X                 Y",
                              "PT\xB0" "1                  512,313.489       289,841.989\r\n"
                              "   Feature: CM\r\n   Description: FD STONE 45\xB0 \x80 5\r\n\r\n"));
  EXPECT_EQ(at(1).name, "PT\u00B01");
  EXPECT_EQ(at(1).x, 512313.489);
  EXPECT_EQ(at(1).description, "FD STONE 45\u00B0 \u20AC 5");
}

TEST_F(Readers, ABrokenXYReportIsRefused) {
  EXPECT_FAULT(load("a", xyReport("    Point                 X                 Y", "1001                      313.489       289,841.989\n")),
               "Run-time Error", "Invalid procedure call");
  EXPECT_FAULT(load("b", "Copyright: x\n    Point                 X                 Y\nno underline\n"), "Run-time Error",
               "Input past end of file");
}

TEST_F(Readers, NEReportYieldsNoPoints) {
  load("ne.txt", xyReport("    Point                 N                 E",
                          "1001                  289,841.989       512,313.489\n   Feature: CM\n   Description: X\n\n"));
  EXPECT_TRUE(flags.ne);
  EXPECT_EQ(points.pointCount, 1);
  for (const auto& p : points.records) EXPECT_EQ(p.name, "");
}

TEST_F(Readers, FlagsStaySetForTheLifeOfTheProgram) {
  load("a.csv", "101,1,2,IP\n");
  // A later SDMS file is recognised, but the comma-delimited reader still
  // reads it, because that flag is tested first.
  const auto sdms = dir.write("b.sdms", "AC:X\nPN:1\n");
  getFileFormat(sdms, flags);
  EXPECT_TRUE(flags.cd && flags.sdms);
  EXPECT_EQ(formatName(flags), "comma-delimited");
  EXPECT_FAULT(readFile(sdms, flags, points), "Run-time Error", "Invalid procedure call");
  // Once anything has been recognised, an unrecognisable file is no longer refused.
  EXPECT_NO_THROW(getFileFormat(dir.write("c", "just words\n"), flags));
}

TEST(PointList, ClearKeepsTheCount) {
  PointList points;
  points.records[3] = {1, 2, "IP", "PIPE", "7"};
  points.pointCount = 9;
  points.clearRecords(0, 150);
  EXPECT_EQ(points.records[3].name, "");
  EXPECT_EQ(points.records[3].x, 0);
  EXPECT_EQ(points.pointCount, 9);
}

}  // namespace
}  // namespace tervalo
