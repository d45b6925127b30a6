// Whole section subdivision runs, compared byte for byte with reviewed
// report and GEOPAK files. TERVALO_UPDATE_GOLDEN=1 writes them anew, for
// review before they are committed.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "app/program.h"
#include "app/runner.h"
#include "support/geopak_names.h"
#include "support/temp_dir.h"
#include "support/test_names.h"

namespace tervalo {
namespace {

using testing::TempDir;

const std::string kGolden = std::string(TERVALO_SOURCE_DIR) + "/tests/golden/";

std::string jobText(const std::string& name) {
  std::ifstream in(kGolden + name + ".job.json");
  std::stringstream text;
  text << in.rdbuf();
  std::string s = text.str();
  for (auto at = s.find("@EXAMPLES@"); at != std::string::npos; at = s.find("@EXAMPLES@"))
    s.replace(at, 10, std::string(TERVALO_SOURCE_DIR) + "/examples");
  return s;
}

// A job and the files it writes in the data folder, each compared with the
// golden file of the job's name and the file's ending.
struct GoldenCase {
  const char* job;
  std::vector<std::string> files;
};

class Golden : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(Golden, Files) {
  const GoldenCase& c = GetParam();
  TempDir dir;
  const Job job = parseJob(jobText(c.job), allForms());
  const RunOutcome outcome = runJob(job, RunOptions{dir.folder(), Date{2026, 11, 21}}, allForms());
  ASSERT_EQ(outcome.exitCode, 0) << outcome.result.dump(1);
  for (const std::string& file : c.files) {
    const std::string produced = TempDir::read(dir.path() / file);
    const std::string goldenFile = kGolden + c.job + std::filesystem::path(file).extension().string();
    if (std::getenv("TERVALO_UPDATE_GOLDEN")) std::ofstream(goldenFile, std::ios::binary) << produced;
    EXPECT_EQ(produced, TempDir::read(goldenFile)) << goldenFile;
    if (file.ends_with(".inp")) {
      EXPECT_EQ(testing::unnamedGeopakLines(produced), std::vector<std::string>{}) << file;
    }
  }
}

const std::vector<std::string> kSecSubFiles{"SecSub.rpt", "SecSub.inp"};

INSTANTIATE_TEST_SUITE_P(EveryCalculator, Golden,
                         ::testing::Values(GoldenCase{"secsub-regular-14", kSecSubFiles},
                                           GoldenCase{"secsub-irregular-6", kSecSubFiles},
                                           GoldenCase{"secsub-east-range-31", kSecSubFiles},
                                           // Corners missing and one typed, with the later pages and the corner record.
                                           GoldenCase{"secsub-record-14", {"SecSub.rpt", "SecSub.inp", "SecSub.why.txt"}},
                                           GoldenCase{"hcurve-english", {"outHfile.txt"}},
                                           GoldenCase{"hcurve-metric", {"outHfile.txt"}},
                                           GoldenCase{"vcurve-sag", {"outVfile.txt"}},
                                           GoldenCase{"vcurve-metric-crest", {"outVfile.txt"}},
                                           GoldenCase{"proportion-english", {"Proportion.txt"}},
                                           GoldenCase{"proportion-metric", {"Proportion.txt"}},
                                           GoldenCase{"grading-left", {"GrWidth.txt"}}),
                         [](const auto& named) { return testing::readableName(named.param.job); });

// Inputs whose results leave the doubles: once shown as "Infinity" and as
// 309-digit fields in the files, now the Overflow box and no file.
TEST(Overflow, AResultBeyondADoubleEndsWithTheOverflowBoxAndNoFile) {
  const char* jobs[] = {
      R"({"calculator":"hcurve","steps":[{"set":{"txtDelta":"30","txtRadius":"1e308","txtCurvePt":"10+00"},
          "click":["btnCalculate","btnOutput"]}]})",
      R"({"calculator":"hcurve","steps":[{"set":{"optDec":true,"txtDelta":"1e308","txtRadius":"1000","txtCurvePt":"10+00"},
          "click":["btnCalculate","btnOutput"]}]})",
      R"({"calculator":"vcurve","steps":[{"set":{"txtEntryGrade":"-2","txtExitGrade":"2","txtStation":"10+00","optPI":true,
          "txtElevation":"1e308","txtLength":"1e308","txtStartStation":"7+30","txtEndStation":"13+10","txtIncrement":"50"},
          "click":"btnCalculate"},{"form":"frmVCResults","click":["btnOutput","btnReturn"]}]})",
      R"({"calculator":"proportion","steps":[{"set":{"txtBegSta":"10+00","txtBegValue":"-1e308","txtEndSta":"21+00",
          "txtEndValue":"1e308","txtFirst":"10+00","txtLast":"21+00","txtIncrement":"200"},"click":"btnCalc"},
          {"form":"frmOutput","click":"btnOutput"}]})",
  };
  for (const char* text : jobs) {
    SCOPED_TRACE(text);
    TempDir dir;
    const RunOutcome outcome = runJob(parseJob(text, allForms()), RunOptions{dir.folder(), Date{2026, 11, 21}}, allForms());
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.result["messages"].back()["text"], "Overflow");
    EXPECT_TRUE(outcome.result["files"].empty());
    EXPECT_EQ(outcome.result.dump().find("Infinity"), std::string::npos);
  }
}

TEST(SecsubJob, ResultCarriesTheWholeSectionForm) {
  TempDir dir;
  const RunOutcome outcome =
      runJob(parseJob(jobText("secsub-regular-14"), allForms()), RunOptions{dir.folder(), Date{2026, 11, 21}}, allForms());
  const auto& controls = outcome.result["forms"]["frmSecSub"]["controls"];
  EXPECT_EQ(controls.size(), 23u + 125u + 16u + 17u);  // with the notice, drawing, record, export, print, store, plat, restore, system, later pages and inputs controls
  EXPECT_EQ(controls["txt12xc"]["text"], "514967.4257");
  EXPECT_EQ(controls["txt1pn"]["text"], "2001");
  // Why each of the 25 positions is where it is.
  const auto& explain = outcome.result["explain"];
  ASSERT_EQ(explain.size(), 25u);
  EXPECT_EQ(explain[0]["rule"], "looked up");
  EXPECT_EQ(explain[12]["rule"], "intersection");
  EXPECT_EQ(explain[1]["factor"], 0.5);
  EXPECT_EQ(explain[1]["text"].get<std::string>().rfind("Proportion from N 1/4 (1002) toward NW Cor (1001)", 0), 0u);
  EXPECT_EQ(outcome.result["files"].size(), 2u);
  EXPECT_EQ(outcome.result["opened"].size(), 2u);
  EXPECT_TRUE(outcome.result["forms"].contains("frmHeader"));
  EXPECT_EQ(outcome.result["messages"].back()["title"], "Program Complete");
}

}  // namespace
}  // namespace tervalo
