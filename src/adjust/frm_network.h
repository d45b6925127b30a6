#pragma once
// The Network Adjustment window: a network file chosen, the instrument's
// standard deviations for the observations that give none, and the
// significance of the global test; Adjust gives the verdict, the report
// and the picture with its ellipses. The report is printed or saved, the
// picture saved, and the adjusted points stored in the open project.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "adjust/adjustment.h"
#include "app/form_model.h"
#include "app/picture.h"

namespace tervalo {

class frmNetwork : public FormModel {
 public:
  explicit frmNetwork(Program& program);

  Label lblFile{"Network file:"};
  TextBox txtFile;
  Button btnBrowse{"Browse..."};
  Label lblDefaults{"Where an observation gives no standard deviation:"};
  Label lblAngle{"Angle (\"):"};
  TextBox txtAngle{"5"};
  Label lblDistance{"Distance:"};
  TextBox txtDistance{"0.01"};
  Label lblPpm{"+ ppm:"};
  TextBox txtPpm{"5"};
  Label lblCentering{"Centering:"};
  TextBox txtCentering{"0"};
  Label lblSignificance{"Global test at (%):"};
  TextBox txtSignificance{"5"};
  Button btnAdjust{"Adjust"};
  Label lblResult;
  ListBox lstReport;
  Button btnStore{"Store in Project", true, false};
  Button btnPrint{"Print...", true, false};
  Button btnSaveReport{"Save Report...", true, false};
  Button btnSavePicture{"Save Picture...", true, false};
  Button btnReturn{"Return"};

  void btnAdjust_Click();
  // The adjusted network with its ellipses, or a hint before an adjustment.
  Picture picture() const;
  const std::optional<Adjustment>& adjustment() const { return adjustment_; }

  // A network file: its defaults and significance into the fields.
  bool openPath(const std::string& file) override;
  void keepInputs() override;
  void opened() override;
  static std::filesystem::path keptFile(const std::string& dataFolder);

 private:
  void changed();
  void store();
  // The file's defaults and significance into the fields; a box and false when it cannot be read.
  bool readDefaults(const std::string& file, const std::string& title);
  std::vector<std::pair<const char*, TextBox*>> texts();
  std::optional<Network> network_;
  std::optional<Adjustment> adjustment_;
  bool keptTaken_ = false;
  std::string loaded_;  // the file whose defaults the fields hold
};

}  // namespace tervalo
