#pragma once
// The Alignment window: an alignment file (or LandXML) opened; its
// elements and key points in a table, its plan and profile drawn; the
// point at a station and offset, and the station and offset of a point;
// the alignment exported as LandXML or its plan as DXF.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "alignment/alignment.h"
#include "alignment/profile.h"
#include "app/form_model.h"
#include "app/picture.h"

namespace tervalo {

class frmAlignment : public FormModel {
 public:
  explicit frmAlignment(Program& program);

  Label lblFile{"Alignment file:"};
  TextBox txtFile;
  Button btnBrowse{"Browse..."};
  Button btnOpen{"Open"};
  Label lblSummary;
  Label lblElements{"Elements and key points:"};
  ListBox lstElements;
  Label lblStation{"Station:"};
  TextBox txtStation;
  Label lblOffset{"Offset (right +):"};
  TextBox txtOffset{"0"};
  Button btnPoint{"Point at Station"};
  Label lblNorthing{"Northing:"};
  TextBox txtNorthing;
  Label lblEasting{"Easting:"};
  TextBox txtEasting;
  Button btnStation{"Station of Point"};
  Label lblAnswer;
  // Kept in the open project: stored under the alignment's name, and opened again from there.
  Button btnStore{"Store in Project", true, false};
  Label lblKept{"Kept in the project:"};
  ComboBox cmbKept;
  Button btnOpenKept{"Open Kept", true, false};
  Button btnLandXml{"Export LandXML...", true, false};
  Button btnDxf{"Export DXF...", true, false};
  Button btnReturn{"Return"};

  // The alignment opened, or nothing (a box said why).
  bool openFile(const std::string& file);
  // The alignment of that name the project keeps.
  bool openKept(const std::string& name);
  bool openPath(const std::string& file) override { return openFile(file); }
  void pointAtStation();
  void stationOfPoint();
  Picture plan() const;
  Picture profile() const;
  const std::optional<Alignment>& alignment() const { return alignment_; }

  void keepInputs() override;
  void opened() override;
  static std::filesystem::path keptFile(const std::string& dataFolder);

 private:
  std::vector<std::pair<const char*, TextBox*>> texts();
  // An alignment from its text ("alignment" JSON or "landxml"); `from` names where it came from for a refusal.
  bool load(const std::string& text, const std::string& format, const std::string& name, const std::string& from);
  void store();
  void showKept();
  void exportLandXml();
  void exportDxf();
  std::optional<Alignment> alignment_;
  std::optional<Profile> profile_;
  std::optional<PicturePoint> asked_;
  std::string name_;
  std::string format_, definition_;  // as read, to keep in the project
  bool keptTaken_ = false;
};

}  // namespace tervalo
