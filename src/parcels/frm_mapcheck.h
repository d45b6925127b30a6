#pragma once
// The Mapcheck window: a deed's calls in a table (a line by bearing and
// distance; a curve by turn and radius with its arc, chord or delta, and a
// chord or radial bearing where it is not tangent), typed or pasted; Check
// gives the closure course by course, the precision, perimeter and area, a
// sketch and the metes-and-bounds description. The figure is stored in the
// open project as points, exported as LandXML, and drawn as a plat.

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/form_model.h"
#include "app/picture.h"
#include "parcels/deed.h"

namespace tervalo {

class frmMapcheck : public FormModel {
 public:
  explicit frmMapcheck(Program& program);

  Label lblName{"Parcel:"};
  TextBox txtName{"Parcel A"};
  Label lblStartPoint{"Begins at point:"};
  TextBox txtStartPoint;
  Label lblStartN{"or N"};
  TextBox txtStartN{"5000"};
  Label lblStartE{"E"};
  TextBox txtStartE{"5000"};
  Label lblCommence{"Commencing at:"};
  TextBox txtCommence;
  Label lblTieBearing{"Tie bearing:"};
  TextBox txtTieBearing;
  Label lblTieDistance{"Tie distance:"};
  TextBox txtTieDistance;
  Label lblBasis{"Basis of bearings:"};
  TextBox txtBasis{"Bearings are those of the deed."};
  Label lblCalls{"Calls:"};
  Button btnAddCall{"Add Call"};
  Button btnRemoveCall{"Remove Call"};
  Button btnPasteCalls{"Paste Calls"};
  Button btnCheck{"Check"};
  Label lblResult;
  ListBox lstReport;
  Label lblFirst{"First new point:"};
  TextBox txtFirst{"1"};
  Button btnStore{"Store in Project", true, false};
  Button btnExport{"Export LandXML...", true, false};
  Label lblSheet{"Sheet:"};
  ComboBox cmbSheet{"Letter", {"Letter", "Tabloid", "ARCH D"}};
  Button btnPlat{"Plat...", true, false};
  Button btnSaveReport{"Save Report...", true, false};
  Button btnReturn{"Return"};

  // The call table, as typed: one row per call; a row with a radius is a curve.
  static constexpr std::array<const char*, 9> kColumns{"Bearing", "Distance", "Turn", "Radius", "Arc",
                                                       "Chord", "Delta", "Chord bearing", "Radial bearing"};
  struct CallRow {
    std::array<std::string, 9> cells{};
  };
  std::vector<CallRow> rows;
  int currentRow = -1;
  int tableVersion = 0;  // changes whenever rows come or go, so the view rebuilds its table
  std::string cell(int row, int column) const;
  void setCell(int row, int column, const std::string& text);
  // Calls as text, one a line: "LINE N 45-30-15 E 120.5", "CURVE R RADIUS 500 ARC 100
  // [CHORDBEARING brg] [RADIAL brg]", or the table's cells separated by tabs.
  // DeedError naming the line that is none of these; nothing is added then.
  void pasteCalls(const std::string& text);

  void btnCheck_Click();
  // The checked figure, or a hint before a check.
  Picture sketch() const;
  // The last check's courses, from the point of beginning.
  const std::vector<Course>& courses() const { return courses_; }

  void keepInputs() override;
  void opened() override;
  static std::filesystem::path keptFile(const std::string& dataFolder);

 private:
  DeedCall call(int row) const;
  void changed();
  void store();
  void exportLandXml();
  void plat();
  std::vector<std::pair<const char*, TextBox*>> texts();
  std::vector<Course> courses_;
  std::vector<Course> tie_;
  FigureClosure closure_;
  std::string description_;
  bool keptTaken_ = false;
};

}  // namespace tervalo
