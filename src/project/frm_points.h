#pragma once
// The Points window: the open project's points in a table beside a map of
// them. The table shows what a filter lets through (a range of whole
// numbers, a description holding a text, a feature, an evidence), sorted by
// any column, and fetches only the rows it shows, so that a project of a
// million points opens at once. Points are edited in place by the program's
// number rules, added, deleted and renumbered by an offset; every edit is
// one step of Undo and Redo; rows go to and come from a spreadsheet as
// tab-separated text; files are imported and exported.

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/form_model.h"
#include "app/picture.h"
#include "crs/project_store.h"

namespace tervalo {

class ProjectSession;

class frmPoints : public FormModel {
 public:
  explicit frmPoints(Program& program);

  Label lblProject;
  Label lblFrom{"Numbers from:"};
  TextBox txtFrom;
  Label lblTo{"to"};
  TextBox txtTo;
  Label lblDescription{"Description holding:"};
  TextBox txtDescription;
  Label lblFeature{"Feature:"};
  ComboBox cmbFeature;
  Label lblEvidence{"Evidence:"};
  ComboBox cmbEvidence;
  Button btnShow{"Show"};
  Button btnShowAll{"Show All"};
  Label lblFind{"Find number:"};
  TextBox txtFind;
  Button btnFind{"Find"};
  Label lblShown;  // "12 of 1,204 points shown"
  Label lblNew{"New point:"};
  TextBox txtNewNumber;
  Label lblNewNorthing{"N"};
  TextBox txtNewNorthing;
  Label lblNewEasting{"E"};
  TextBox txtNewEasting;
  Label lblNewElevation{"Z"};
  TextBox txtNewElevation;
  Label lblNewDescription{"Description"};
  TextBox txtNewDescription;
  Button btnAdd{"Add Point"};
  Button btnDelete{"Delete"};
  Label lblOffset{"Renumber by:"};
  TextBox txtOffset;
  Button btnRenumber{"Renumber"};
  Button btnUndo{"Undo"};
  Button btnRedo{"Redo"};
  Button btnCopy{"Copy"};
  Button btnPaste{"Paste"};
  Label lblColumns{"Column order:"};
  TextBox txtColumns;  // of a delimited file to import: proposed from its header line
  Label lblDuplicate{"A number the project holds:"};
  ComboBox cmbDuplicate{"Skip the point", {"Skip the point", "Replace the point", "Renumber from the next free number"}};
  Button btnImport{"Import..."};
  Button btnExport{"Export..."};
  Button btnReturn{"Return"};
  Label lblResult;

  static constexpr std::array<const char*, 9> kColumns{"Number",  "Northing", "Easting", "Elevation", "Description",
                                                       "Feature", "Evidence", "Source",  "Modified"};
  // The map draws the points shown while there are no more than this.
  static constexpr long long kMapMost = 20000;

  // The rows shown, each fetched with its page when first asked for.
  long long rowCount();
  const ProjectPoint* row(long long r);
  std::string cell(long long r, int column);
  static bool editable(int column) { return column < 7; }
  // An edit in place: refused with a box when the text breaks the column's rule.
  void setCell(long long r, int column, const std::string& text);
  // Sorts the rows by a column (-1: the order stored).
  void sortBy(int column, bool descending);
  int sortColumn() const { return sortColumn_; }
  bool sortDescending() const { return query_.descending; }

  // The rows the user selected in the table or on the map; the current one first.
  std::vector<long long> selected;
  long long currentRow = -1;
  void select(std::vector<long long> rows);
  // Changes whenever the rows shown change, so that the view reads them again.
  int rowsVersion = 0;

  // The points shown, the selected ones marked, as a map in the project's unit.
  Picture map();
  // A click on the map selects the point there.
  void mapClicked(PicturePoint at, double tolerance);

  void opened() override;
  // Reads the project again after another window changed it.
  void refresh();
  // Asked every few seconds while the window is open: reads a shared
  // project again when another user has changed its points, and says so.
  bool poll();
  static constexpr int kPollMilliseconds = 2000;

  void find();
  void addPoint();
  void deletePoints();
  void renumber();
  void undo();
  void redo();
  void copy();
  void paste();
  void import();
  void exportPoints();

 private:
  ProjectSession* session();
  void applyFilter(bool all);
  void reload();
  void showState();
  bool editRows(const ProjectEdit& edit, const std::string& what);
  void step(bool back);  // Undo (back) or Redo
  std::vector<ProjectPoint> selectedPoints();
  PointQuery query_;
  int sortColumn_ = -1;
  std::optional<std::vector<long long>> ids_;  // the keys shown, in order, when filtered or sorted
  long long count_ = 0;
  std::map<long long, std::vector<ProjectPoint>> pages_;
  int seenVersion_ = -1;
  ProjectSession* seenSession_ = nullptr;
  std::optional<Picture> map_;
};

}  // namespace tervalo
