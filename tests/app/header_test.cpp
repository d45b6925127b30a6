// The report header block and the header form's model.

#include <gtest/gtest.h>

#include "app/forms_misc.h"
#include "app/header_data.h"
#include "support/bench.h"

namespace tervalo {
namespace {

using testing::TempDir;

TEST(HeaderBlock, EmptyRecordStillPrintsTheFixedLines) {
  const auto lines = headerBlock(HeaderData{}, "/data/pts.csv");
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[0], std::string(79, '*'));
  EXPECT_EQ(lines[1], "S.P. " + std::string(8, ' ') + "T.H. " + std::string(6, ' ') + "County: " + std::string(16, ' ') + "Date: ");
  EXPECT_EQ(lines[2], "HDatum: " + std::string(16, ' ') + "VDatum: " + std::string(16, ' ') + "By: " + std::string(20, ' '));
  EXPECT_EQ(lines[3], "Description: ");
  EXPECT_EQ(lines[4], std::string(79, '*'));
}

TEST(HeaderBlock, FieldsAreCutToTheirWidthsAndThePathIsOptional) {
  HeaderData h;
  h.spNumber = "8821-114-07";           // 11 characters, cut to 8
  h.th = "52";
  h.county = "COUNTY WITH A LONG NAME";  // cut to 16
  h.date = "11/21/2026";
  h.operatorName = "A SURVEYOR WITH 25 CHARS";
  h.horizontalDatum = "NAD83(2011)";
  h.verticalDatum = "NAVD88";
  h.comment = "SECTION 14";
  h.includePath = true;
  const auto lines = headerBlock(h, "/data/pts.csv");
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[1], "S.P. 8821-114T.H. 52    County: COUNTY WITH A LODate: 11/21/2026");
  EXPECT_EQ(lines[2], "HDatum: NAD83(2011)     VDatum: NAVD88          By: A SURVEYOR WITH 25 C");
  EXPECT_EQ(lines[3], "Description: SECTION 14");
  EXPECT_EQ(lines[4], "Data File: /data/pts.csv");
}

TEST(HeaderForm, ContinueStoresCancelKeeps) {
  testing::Bench bench;
  auto& [dir, shell, program] = bench;
  auto& form = program.form<frmHeader>("frmHeader");
  EXPECT_EQ(form.caption, "Print Header Information");
  EXPECT_EQ(form.cmbCounty.text, "COUNTY 01");
  EXPECT_EQ(form.cmbHDatum.items, (std::vector<std::string>{"NAD83(86)", "NAD83(96)", "NAD83(2007)", "NAD83(2011)", "NAD29"}));

  shell.onModal = [](FormModel& f) {
    f.typeText("txtSP", "8821");
    f.typeText("cmbVDatum", "NGVD29");
    f.setChecked("chkIncludePath", true);
    f.click("btnSave");
  };
  form.showForHeaderData();
  EXPECT_EQ(program.header.spNumber, "8821");
  EXPECT_EQ(program.header.date, "11/21/2026");  // today's short date
  EXPECT_EQ(program.header.verticalDatum, "NGVD29");
  EXPECT_TRUE(program.header.includePath);

  shell.date = {2026, 11, 22};
  shell.onModal = [](FormModel& f) {
    EXPECT_EQ(static_cast<frmHeader&>(f).txtDate.text, "11/22/2026");  // the date box shows today again
    f.typeText("txtSP", "other");
    f.click("btnCancel");
  };
  form.showForHeaderData();
  EXPECT_EQ(program.header.spNumber, "8821");
  EXPECT_EQ(form.txtSP.text, "8821");
  EXPECT_EQ(form.txtDate.text, "11/21/2026");
}

TEST(HeaderForm, CountiesFromTheDataFolderReplaceTheBuiltInList) {
  TempDir dir;
  EXPECT_EQ(countyNames(dir.folder()).size(), 87u);
  dir.write("counties.txt", "ALPHA\r\nBETA\r\n\r\n");
  EXPECT_EQ(countyNames(dir.folder()), (std::vector<std::string>{"ALPHA", "BETA"}));
}

TEST(OutputPreview, SaveWritesTheListAndOpensIt) {
  testing::Bench bench;
  auto& [dir, shell, program] = bench;
  auto& form = program.form<frmOutput>("frmOutput");
  form.lstOutput.items = {"  A  ", ""};
  form.txtOut.text = (dir.path() / "out.txt").string();
  form.click("btnOutput");
  EXPECT_EQ(TempDir::read(dir.path() / "out.txt"), "  A  \r\n\r\n");
  form.click("btnPrint");
  ASSERT_EQ(shell.printed.size(), 1u);
  EXPECT_EQ(shell.printed[0].lines, form.lstOutput.items);
  EXPECT_FALSE(shell.printed[0].picture);
  EXPECT_EQ(program.outputFileName, form.txtOut.text);
  ASSERT_EQ(shell.editorFiles.size(), 1u);
  shell.chosenFiles.push_back("/x/chosen.txt");
  form.click("btnOut");
  EXPECT_EQ(form.txtOut.text, "/x/chosen.txt");
  EXPECT_EQ(program.outputFileName, "/x/chosen.txt");
}

}  // namespace
}  // namespace tervalo
