#pragma once
// The small shared windows: About, report header data, output options and
// the output preview.

#include <string>
#include <utility>
#include <vector>

#include "app/header_data.h"

#include "app/form_model.h"

namespace tervalo {

// The program's version record.
struct VersionInfo {
  static const char* title();
  static std::string numbers();  // "major.minor.revision"
  static const char* legalRights();
};

class frmAbout : public FormModel {
 public:
  explicit frmAbout(Program& program);
  Label lblTitle;
  Label lblVersion;
  Label lblCopyright;
  Label lblDisclaimer;
  Label lblSupport;
  Button cmdOK{"OK"};
};

// Collects the report header data; Continue stores it, Cancel keeps the old.
class frmHeader : public FormModel {
 public:
  explicit frmHeader(Program& program);

  Label lblSP{"SP Number"};
  TextBox txtSP;
  Label lblTH{"T.H."};
  TextBox txtTH;
  Label lblDate{"Date"};
  TextBox txtDate;
  Label lblCounty{"County"};
  ComboBox cmbCounty;
  Label lblOperator{"Operator"};
  TextBox txtOperator;
  Label lblHDatum{"Horizontal Datum"};
  ComboBox cmbHDatum{"NAD83(96)", {"NAD83(86)", "NAD83(96)", "NAD83(2007)", "NAD83(2011)", "NAD29"}};
  Label lblVDatum{"Vertical Datum"};
  ComboBox cmbVDatum{"NAVD88", {"NGVD29", "NAVD88"}};
  Label lblComment{"Description or Comment"};
  TextBox txtComment;
  CheckBox chkIncludePath{false, "Check to include the current data file path and name in the header."};
  Button btnSave{"Continue"};
  Button btnCancel{"Cancel"};

  // Opened from the section form's "Add Header Data": today's date in the
  // date box, shown modally, then made ready unseen for its next opening
  // with the stored header data.
  void showForHeaderData();

  void btnSave_Click();

 private:
  std::vector<std::pair<std::string*, std::string HeaderData::*>> fields();
};

// Coordinate output options: shown, never consulted.
class frmSetOptions : public FormModel {
 public:
  explicit frmSetOptions(Program& program);

  Label lblCoordSys{"Projection :"};
  TextBox txtOutputCS;
  Label lblAdjustment{"NAD83 Adjustment :"};
  ListBox lstOutAdj{{"2011", "2007", "1996", "1986"}};
  Label lblUnits{"Units :"};
  OptionButton optEnglish{true, "English"};
  OptionButton optMetric{false, "Metric"};
  Frame frameSort;
  Label lblSortText{"Points in Coordinate Lists and Exported Files Will Be Sorted :"};
  OptionButton optNoSort{true, "as Input"};
  OptionButton optPdSort{false, "by Point Name"};
  OptionButton optPnSort{false, "by Point Number"};
  Button btnContinue{"Continue"};
  Button btnCancel{"Cancel"};
};

// The shared preview of a calculator's report lines; Save writes them.
// How many earlier output files the history keeps.
class frmHistory : public FormModel {
 public:
  explicit frmHistory(Program& program);

  Label lblKeep{"&Keep the last"};
  TextBox txtKeep;
  Label lblFiles{"earlier output files in the History folder of the data folder."};
  Button btnOK{"OK"};
  Button btnCancel{"Cancel"};

  void opened() override;
  void btnOK_Click();
};

class frmOutput : public FormModel {
 public:
  // Other calculators' previews (frmGradeOut) are this window under their own name.
  explicit frmOutput(Program& program, std::string name = "frmOutput", std::string windowCaption = "Tervalo Output Data");

  ListBox lstOutput;
  Label lblOut{"Output file:"};
  TextBox txtOut;
  Button btnOut{"Browse"};
  Button btnOutput{"Save"};
  Button btnPrint{"Print..."};  // the lines as they would be saved, on paper or in a PDF
  Button btnReturn{"Return"};
  // What the preview holds ("125+50 Left"), set by its calculator: the name
  // an earlier file takes in the history when Save replaces it.
  std::string holds;

  void btnOut_Click();
  void btnOutput_Click();
};

}  // namespace tervalo
