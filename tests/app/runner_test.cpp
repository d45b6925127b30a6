// The job runner's contract: refusals before anything runs, modal windows
// played in turn, the result JSON, exit codes.

#include <gtest/gtest.h>

#include <sstream>

#include "app/frm_main.h"
#include "app/program.h"
#include "app/runner.h"
#include "support/temp_dir.h"
#include "text/errors.h"

namespace tervalo {
namespace {

using testing::TempDir;

// A small window with one control of every kind.
class frmProbe : public FormModel {
 public:
  explicit frmProbe(Program& p) : FormModel(p, "frmProbe", "Probe") {
    add("txtA", txtA).change([this] { ++changes; }).lostFocus([this] { lblEcho.caption = "left " + txtA.text; });
    add("lblEcho", lblEcho);
    add("chkB", chkB).click([this] { lblEcho.caption = chkB.checked ? "checked" : "cleared"; });
    add("optX", optX, "units").click([this] { lblEcho.caption = "X"; });
    add("optY", optY, "units").click([this] { lblEcho.caption = "Y"; });
    add("cmbC", cmbC);
    add("lstD", lstD);
    add("btnOpen", btnOpen).click([this] { shell().showModal(program().form("frmChild")); lstD.items.push_back("back"); });
    add("btnAsk", btnAsk).click([this] {
      lstD.items.push_back(shell().msgBox("Ask", "Go on?", Icon::Question, Buttons::YesNo) == Answer::Yes ? "yes" : "no");
    });
    add("btnFault", btnFault).click([] { throw RunTimeError("Division by zero"); });
    add("btnReturn", btnReturn).click([this] { unload(); });
  }
  TextBox txtA;
  Label lblEcho;
  CheckBox chkB{false, "Bee"};
  OptionButton optX{true, "X"};
  OptionButton optY{false, "Y"};
  ComboBox cmbC{"-0.03", {"-0.02", "-0.03"}};
  ListBox lstD;
  Button btnOpen{"Open"}, btnAsk{"Ask"}, btnFault{"Fault"}, btnReturn{"Return"};
  int changes = 0;
};

class frmChild : public FormModel {
 public:
  explicit frmChild(Program& p) : FormModel(p, "frmChild", "Child") {
    add("txtName", txtName);
    add("btnSave", btnSave).click([this] { unload(); });
  }
  TextBox txtName;
  Button btnSave{"Continue"};
};

const FormRegistry& probeRegistry() {
  static const FormRegistry registry = [] {
    FormRegistry r;
    r.addForm("frmMain", [](Program& p) { return std::make_unique<frmMain>(p); });
    r.addForm("frmProbe", [](Program& p) { return std::make_unique<frmProbe>(p); });
    r.addForm("frmChild", [](Program& p) { return std::make_unique<frmChild>(p); });
    r.addCalculator({"secsub", "mnuSecSub", "frmSecSub", {}});
    r.addCalculator({"probe", "mnuChorz", "frmProbe", [](Program& p) { p.shell().showModal(p.form("frmProbe")); }});
    return r;
  }();
  return registry;
}

class Runner : public ::testing::Test {
 protected:
  TempDir dir;
  nlohmann::ordered_json result;
  int exitCode = -1;

  void run(const std::string& json) {
    const Job job = parseJob(json, probeRegistry());
    const RunOutcome outcome = runJob(job, RunOptions{dir.folder(), Date{2026, 11, 21}}, probeRegistry());
    result = outcome.result;
    exitCode = outcome.exitCode;
  }
  nlohmann::ordered_json control(const char* form, const char* name) { return result["forms"][form]["controls"][name]; }
};

std::string refusal(const std::string& json) {
  try {
    parseJob(json, probeRegistry());
  } catch (const JobError& e) {
    return e.what();
  }
  return "accepted";
}

TEST(JobRefusals, SayWhatIsWrong) {
  EXPECT_NE(refusal("{").find("not valid JSON"), std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"probe",
                      "steps":[1e400]})").find("not valid JSON: number overflow parsing '1e400' at line 2, column 32"),
            std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"probe","steps":[{"set":{"txtA":"1","txtA":"2"}}]})").find("\"txtA\" is given twice"),
            std::string::npos);
  // A version beyond 32 bits must not wrap round to an accepted one.
  EXPECT_NE(refusal(R"({"version":4294967297,"calculator":"probe"})").find("job version 4294967297"), std::string::npos);
  EXPECT_NE(refusal(R"({"version":-1,"calculator":"probe"})").find("whole number from 1 up"), std::string::npos);
  EXPECT_NE(refusal("[]").find("one JSON object"), std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"planimeter"})").find("unknown calculator \"planimeter\""), std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"probe","steps":[{"form":"frmNope"}]})").find("step 1: unknown form \"frmNope\""),
            std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"probe","steps":[{"set":{"txtZ":"1"}}]})").find("frmProbe has no control \"txtZ\""),
            std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"probe","steps":[{"set":{"txtA":true}}]})").find("txtA is a text box"), std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"probe","steps":[{"set":{"chkB":"1"}}]})").find("chkB is a check box"), std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"probe","steps":[{"set":{"lblEcho":"1"}}]})").find("lblEcho is a label"), std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"probe","steps":[{"set":{"txtA":3}}]})").find("must be a text or true/false"),
            std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"probe","steps":[{"click":"txtA"}]})").find("not a button"), std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"probe","steps":[{"press":"btnAsk"}]})").find("unknown key \"press\""), std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"probe","answers":["maybe"]})").find("\"yes\" or \"no\""), std::string::npos);
  EXPECT_NE(refusal(R"({"calculator":"probe","files":[3]})").find("must be a file name"), std::string::npos);
  EXPECT_NE(refusal(R"({"version":2,"calculator":"probe"})").find("written by a newer Tervalo (job version 2)"), std::string::npos);
  EXPECT_EQ(refusal(R"({"version":1,"calculator":"probe"})"), "accepted");
  EXPECT_EQ(refusal(R"({"calculator":"secsub","steps":[{"form":"frmMain","click":["mnuSecSub","btnContinue"]}]})"),
            "accepted");
}

TEST_F(Runner, PlaysStepsInOrderAndReportsEveryControl) {
  run(R"({"calculator":"probe","steps":[
        {"set":{"txtA":"12+00","chkB":true,"optY":true,"cmbC":"1:4"}},
        {"set":{"txtA":"12+00"}}]})");
  EXPECT_EQ(exitCode, 0);
  EXPECT_FALSE(result["ended"].get<bool>());
  EXPECT_EQ(control("frmProbe", "txtA"), (nlohmann::ordered_json{{"text", "12+00"}, {"visible", true}, {"enabled", true}}));
  EXPECT_EQ(control("frmProbe", "lblEcho")["text"], "left 12+00");  // the second set: no change, but lost focus
  EXPECT_EQ(control("frmProbe", "chkB")["checked"], true);
  EXPECT_EQ(control("frmProbe", "chkB")["text"], "Bee");
  EXPECT_EQ(control("frmProbe", "optX")["checked"], false);  // one of a group
  EXPECT_EQ(control("frmProbe", "optY")["checked"], true);
  EXPECT_EQ(control("frmProbe", "cmbC")["text"], "1:4");
  EXPECT_EQ(control("frmProbe", "cmbC")["items"].size(), 2u);
  EXPECT_TRUE(control("frmProbe", "lstD").contains("items"));
  EXPECT_FALSE(control("frmProbe", "lstD").contains("text"));
  EXPECT_EQ(result["forms"]["frmProbe"]["caption"], "Probe");
  // The main window is listed too, with its menu entries.
  EXPECT_EQ(control("frmMain", "mnuChorz")["text"], "Horizontal Curve");
  for (const char* key : {"messages", "ended", "forms", "files", "opened", "skipped"}) EXPECT_TRUE(result.contains(key)) << key;
}

TEST_F(Runner, ModalWindowsTakeTheirStepsThenGiveBack) {
  run(R"({"calculator":"probe","steps":[
        {"click":"btnOpen"},
        {"form":"frmChild","set":{"txtName":"CHILD"},"click":"btnSave"},
        {"form":"frmChild","set":{"txtName":"too late"}},
        {"click":["btnAsk","btnAsk","btnAsk"]}],
       "answers":["no","yes"]})");
  EXPECT_EQ(control("frmChild", "txtName")["text"], "CHILD");
  EXPECT_EQ(control("frmProbe", "lstD")["items"], (nlohmann::ordered_json{"back", "no", "yes", "yes"}));
  ASSERT_EQ(result["skipped"].size(), 1u);
  EXPECT_EQ(result["skipped"][0], (nlohmann::ordered_json{{"step", 3}, {"form", "frmChild"}}));
  ASSERT_EQ(result["messages"].size(), 3u);
  EXPECT_EQ(result["messages"][0],
            (nlohmann::ordered_json{{"form", "frmProbe"}, {"title", "Ask"}, {"text", "Go on?"}, {"icon", "question"},
                                    {"buttons", "yesno"}, {"answer", "no"}}));
}

TEST_F(Runner, AStepForAWindowBeneathClosesTheModal) {
  run(R"({"calculator":"probe","steps":[
        {"click":"btnOpen"},
        {"form":"frmChild","set":{"txtName":"left open"}},
        {"set":{"txtA":"after"}}]})");
  EXPECT_EQ(control("frmProbe", "lstD")["items"], (nlohmann::ordered_json{"back"}));
  EXPECT_EQ(control("frmProbe", "txtA")["text"], "after");
  EXPECT_TRUE(result["skipped"].empty());
}

TEST_F(Runner, AFaultEndsTheProgramAfterItsBox) {
  run(R"({"calculator":"probe","steps":[{"click":["btnFault","btnAsk"]},{"set":{"txtA":"never"}}]})");
  EXPECT_EQ(exitCode, 3);
  EXPECT_TRUE(result["ended"].get<bool>());
  ASSERT_EQ(result["messages"].size(), 1u);
  EXPECT_EQ(result["messages"][0]["title"], "Run-time Error");
  EXPECT_EQ(result["messages"][0]["text"], "Division by zero");
  EXPECT_EQ(result["messages"][0]["icon"], "critical");
  EXPECT_EQ(result["messages"][0]["answer"], nullptr);
  EXPECT_EQ(control("frmProbe", "txtA")["text"], "");
}

TEST_F(Runner, ReturnClosesTheCalculatorAndLaterStepsAreSkipped) {
  run(R"({"calculator":"probe","steps":[{"click":"btnReturn"},{"set":{"txtA":"x"}},{"form":"frmMain","click":"mnuSecSub"}]})");
  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(result["skipped"], (nlohmann::ordered_json::array({{{"step", 2}, {"form", "frmProbe"}}})));
  EXPECT_EQ(control("frmMain", "txtReport")["text"], dir.folder() + "SecSub.rpt");
}

TEST_F(Runner, SectionSubdivisionStartsInTheMainWindow) {
  const auto file = dir.write("pts.csv", "1001,512313.489,289841.989,CM,NW COR\n");
  run(R"({"calculator":"secsub","steps":[{"form":"frmMain","set":{"txtInFile":")" + file.string() +
      R"("},"click":"btnContinue"}]})");
  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(control("frmMain", "txtOutInp")["text"], dir.folder() + "SecSub.inp");
  EXPECT_TRUE(result["messages"].empty());

  // Ran to its end, but a box with the critical icon was shown.
  run(R"({"calculator":"secsub","steps":[{"form":"frmMain","set":{"txtInFile":"/no/such/file"},"click":"btnContinue"}]})");
  EXPECT_EQ(exitCode, 4);
  ASSERT_EQ(result["messages"].size(), 1u);
  EXPECT_EQ(result["messages"][0]["title"], "Input File Error!");
  EXPECT_EQ(result["messages"][0]["text"], "File does not exist.");
  EXPECT_EQ(result["messages"][0]["form"], "frmMain");

  const auto bad = dir.write("bad.txt", "101,5000\n");
  run(R"({"calculator":"secsub","steps":[{"form":"frmMain","set":{"txtInFile":")" + bad.string() +
      R"("},"click":"btnContinue"}]})");
  EXPECT_EQ(exitCode, 3);
  EXPECT_EQ(result["messages"][0]["text"], "Input File Format Not Recognized");
}

TEST_F(Runner, ExitEndsTheProgram) {
  run(R"({"calculator":"secsub","steps":[{"form":"frmMain","click":["mnuExit","mnuSecSub"]}]})");
  EXPECT_EQ(exitCode, 3);
  EXPECT_TRUE(result["ended"].get<bool>());
  EXPECT_EQ(control("frmMain", "txtReport")["text"], dir.folder() + "SecSub.rpt");  // from the opening only
}

}  // namespace
}  // namespace tervalo
