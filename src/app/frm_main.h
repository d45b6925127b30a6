#pragma once
// The main window: the three file names of a section subdivision, the menu
// of calculators.

#include <array>
#include <string>
#include <vector>

#include "app/form_model.h"
#include "app/recent_work.h"

namespace tervalo {

// The section subdivision's default output names, in the data folder.
inline constexpr const char* kGeopakFileName = "SecSub.inp";
inline constexpr const char* kReportFileName = "SecSub.rpt";

class frmMain : public FormModel {
 public:
  explicit frmMain(Program& program);

  Label Label1{"Source File:"};
  TextBox txtInFile;
  Button btnInFile{"Browse"};
  Label Label2{"GEOPAK Input:"};
  TextBox txtOutInp;
  Button btnOut1{"Browse"};
  Label Label3{"Report File:"};
  TextBox txtReport;
  Button btnOut2{"Browse"};
  Button btnContinue{"Continue"};
  // What reading the source file noticed but did not refuse (coordinates
  // cut at a second thousands comma); hidden when there is nothing to say.
  Label lblNotice{"", false};
  // The open project: its name, coordinate system and point count.
  Label lblProject{"No project is open."};

  MenuItem mnuSecSub{"Section Subdivision", true, true, ""};
  MenuItem mnuCurve{"Curve", true, true, ""};
  MenuItem mnuChorz{"Horizontal Curve", true, true, "mnuCurve"};
  MenuItem mnuCvert{"Vertical Curve", true, true, "mnuCurve"};
  MenuItem mnuMisc{"Miscellaneous", true, true, ""};
  MenuItem mnuMgrade{"Grading Width", true, true, "mnuMisc"};
  MenuItem mnuMprop{"Proportion (S:V)", true, true, "mnuMisc"};
  MenuItem mnuHelp{"About", true, true, ""};
  MenuItem mnuExit{"Exit", true, true, ""};
  MenuItem mnuTownship{"Township...", true, true, ""};  // many sections in one run
  MenuItem mnuTraverse{"Traverse...", true, true, ""};  // closure and adjustment, from field notes or a raw file
  MenuItem mnuRestore{"Corner Restoration...", true, true, ""};  // lost corners by proportionate measurement
  // The survey project every tool reads its points from and stores them in.
  MenuItem mnuProject{"Project", true, true, ""};
  MenuItem mnuProjectNew{"New Project...", true, true, "mnuProject"};
  MenuItem mnuProjectOpen{"Open Project...", true, true, "mnuProject"};
  MenuItem mnuProjectShared{"Open Shared Project...", true, true, "mnuProject"};  // a firm's, in PostgreSQL
  MenuItem mnuProjectRecent{"Recent Projects", true, true, "mnuProject"};
  std::array<MenuItem, RecentWork::kMost> mnuProjectRecentFiles;
  MenuItem mnuProjectImport{"Import Points...", true, false, "mnuProject", true};
  MenuItem mnuProjectExport{"Export Points...", true, false, "mnuProject"};
  MenuItem mnuProjectPoints{"Points...", true, false, "mnuProject"};
  MenuItem mnuProjectCogo{"COGO...", true, false, "mnuProject"};
  MenuItem mnuProjectMapcheck{"Mapcheck...", true, true, "mnuProject"};  // a deed's calls need no project
  MenuItem mnuProjectNetwork{"Network Adjustment...", true, true, "mnuProject"};  // a network file needs no project
  MenuItem mnuProjectAlignment{"Alignment...", true, true, "mnuProject"};  // an alignment file needs no project
  MenuItem mnuProjectSurveyor{"Surveyor...", true, false, "mnuProject"};  // who signs the project's plats
  MenuItem mnuProjectClose{"Close Project", true, false, "mnuProject", true};
  MenuItem mnuOptions{"Options", true, true, ""};  // output options, after the calculators' entries
  // Recent work, after the program's own entries: the last ten source files
  // and saved inputs, and the inputs of the last calculator window closed.
  MenuItem mnuRecent{"Recent", true, true, ""};
  std::array<MenuItem, RecentWork::kMost> mnuRecentFiles;
  MenuItem mnuPrevious{"Reopen Previous Inputs", true, true, "mnuRecent", true};
  // The earlier output files the history keeps, newest first, and the
  // History window, which says how many it keeps.
  MenuItem mnuHistory{"Kept Earlier Files", true, true, "mnuRecent"};
  std::array<MenuItem, 10> mnuHistoryFiles;
  MenuItem mnuHistoryFolder{"Show the History Folder", true, true, "mnuHistory", true};
  MenuItem mnuHistoryKeep{"How Many to Keep...", true, true, "mnuHistory"};

  // Files dropped from the desktop on a file field: the first one's full
  // name goes into the field; the source file is read at once.
  void dropFiles(const std::string& control, const std::vector<std::string>& files);

  void btnContinue_Click();
  void btnInFile_Click();
  void mnuSecSub_Click();
  void openRecent(std::size_t index);
  // Opens `file` where it belongs: a traverse, raw, restoration or plan file
  // in its window, saved inputs in their calculator, anything else as the
  // source file. From Recent, and for the files the desktop hands over.
  void openFile(const std::string& file);
  void openKept(std::size_t index);
  void mnuPrevious_Click();
  // Shows the recent list as it stands (other windows add to it).
  void showRecent();

  // The project opened last, opened again at start after the window shows;
  // one that is gone is passed over in silence.
  void reopenLastProject();
  // Opens the project `file` for every tool, saying in a box why not.
  bool openProjectFile(const std::string& file);
  // A new project: in `file`, or in a file chosen, or a database ("PG:...").
  void newProject(std::string file = "");
  // A project in a PostgreSQL database, opened or made new from the Shared Project window.
  void sharedProject();
  void closeProject();
  // The open project's line, as it stands (other windows change its points).
  void showProject();

 private:
  void useProject(const std::string& file);
  void readInputFile();
  // A file named by Browse or a drop: it becomes the source and is read at once.
  void useSourceFile(const std::string& file);
  void chooseOutput(TextBox& field);
  void enableMenus();
  void proposeOutputNames();
  void showSourceNotice(const std::string& text);
  void reopenJobFile(const std::string& file);
};

}  // namespace tervalo
