#pragma once
// The township window: a plan's sections as a table (each with its corner
// point numbers), loaded from and saved as the plan file, Run, and the
// summary with the shared corners that disagree picked out.

#include <array>
#include <string>
#include <vector>

#include <optional>

#include "app/form_model.h"
#include "app/picture.h"
#include "township/plan.h"
#include "township/township.h"

namespace tervalo {

class frmTownship : public FormModel {
 public:
  explicit frmTownship(Program& program);

  Label lblSource{"Source file:"};
  TextBox txtSource;
  Button btnSource{"Browse"};
  Button btnOpenPlan{"Open Plan..."};
  Button btnSavePlan{"Save Plan..."};
  Button btnAddSection{"Add Section"};
  Button btnRemoveSection{"Remove Section"};
  Button btnRun{"Run"};
  Button btnPrint{"Print Summary...", true, false};  // the summary, then the map on its own page
  Button btnReturn{"Return"};
  Label lblSummary{"Summary:"};
  ListBox lstSummary;
  // The row the cursor is in, in full: its meridian and the record chains of
  // its irregular quarter-miles, which the table has no room for.
  Frame fraRow{"Selected row"};
  Label lblPM{"P.M."};
  TextBox txtPM;
  struct RowChain {
    std::string stem;  // "NofW": txtNofWchain
    Label caption;
    TextBox text;
  };
  std::array<RowChain, 8> rowChains;

  // The table: one row per section of the plan, in these columns.
  static constexpr std::array<const char*, 13> kColumns{"Section", "Township", "Range", "E/W", "NW", "N",   "NE",
                                                        "W",       "E",        "SW",    "S",   "SE",  "Numbering"};
  TownshipPlan plan;
  int currentRow = -1;   // the row the cursor is in, for Remove Section and the row's fields
  // The cursor moved to `row`: the row's fields show it.
  void selectRow(int row);
  int tableVersion = 0;  // changes whenever rows come or go, so the view rebuilds its table
  std::string cell(int row, int column) const;
  void setCell(int row, int column, const std::string& text);

  // The summary lines that belong to a disagreement, to be picked out.
  std::vector<int> disagreementLines;
  // The sections of the last run that were refused or ended: their rows
  // (0-based) are marked, and the summary lines that say why picked out.
  std::vector<int> stoppedRows;
  std::vector<int> stoppedLines;

  // The map of the last run (the selected row's section in the accent ink),
  // or a hint before one.
  Picture map() const;
  // A click on the map at (x, y), `tolerance` being how far from a ring
  // still counts: a disagreement selects its first section's row and its
  // lines in the summary, a section its row.
  void mapClicked(double x, double y, double tolerance);

  void btnOpenPlan_Click();
  bool openPath(const std::string& file) override;
  SectionPlan* selected();
  void btnSavePlan_Click();
  void btnRun_Click();

 private:
  std::optional<TownshipOutcome> outcome_;  // the last run
};

}  // namespace tervalo
