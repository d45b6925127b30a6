#pragma once
// The grading width form: one side of a cross-section as finished-surface
// and subgrade segments, and the grading P.I. where their outer slopes meet.

#include <optional>
#include <vector>

#include <optional>
#include <utility>

#include "app/form_model.h"
#include "app/picture.h"
#include "grading/grading.h"

namespace tervalo {

// One of the two segment lists and its controls.
struct SegmentList {
  static constexpr std::size_t capacity = 10;  // rows of the segment table
  std::vector<Segment> segments;
  Frame frame;
  Label widthCaption{"Width"};
  TextBox width;
  Label slopeCaption{"Slope"};
  ComboBox slope{"-0.03",
                 {"-0.015", "-0.02", "-0.03", "-0.04", "-0.06", "1:2", "1:3", "1:4", "1:6", "0.015", "0.02", "0.03",
                  "0.04", "0.06"}};
  Button add{"Add"};
  ListBox list;
  Button change{"Change", true, false};
  Button remove{"Delete", true, false};
  Button clear{"Clear List"};
};

class frmGrade : public FormModel {
 public:
  explicit frmGrade(Program& program);

  Label lblSta{"Station"};
  TextBox txtSta;
  OptionButton optLeft{true, "Left"};
  OptionButton optRight{false, "Right"};
  Label lblFinElev{"Finished CL Elevation"};
  TextBox txtFinElev;
  Label lblTopSoil{"Topsoil Thickness"};
  TextBox txtTopSoil;
  Label lblSubElev{"Subgrade CL Elevation"};
  TextBox txtSubElev;
  Label lblSubThick{"or Surfacing Thickness"};
  TextBox txtSubThick;
  Label lblNote{"Note:  All entered values must use the same units, either feet or meters."};
  SegmentList fin, sub;
  Button btnCalculate{"Calculate"};
  Button btnClear{"Clear"};
  Button btnReturn{"Return"};
  Label lblResults;
  // Said beside the results, never in a box: where the slopes really meet
  // when that is not the P.I. the calculation measures from the shoulder.
  Label lblNotice{"", false};

  void btnCalculate_Click();
  void btnClear_Click();

  // The segments, added again one by one.
  std::vector<JobStep> recoverySteps() const override;
  // The section of the last Calculate, redrawn by each; a hint before one and after Clear.
  Picture sketch() const;
  std::optional<std::pair<GradingInput, GradingResult>> calculated;
  // Saved inputs rebuild the segment lists with Add, into emptied lists.
  bool rebuildsInputs(std::string_view control) const override { return control == "btnFinAdd" || control == "btnSubAdd"; }
  void clearForInputs() override;

  // The slopes of the outermost segments, as the calculation uses them.
  double lastFinSlope = 0, lastSubSlope = 0;

 private:
  void addSegment(SegmentList& list, bool finished);
  void changeSegment(SegmentList& list, bool finished);
  void removeSegment(SegmentList& list);
  void pickSegment(SegmentList& list);
  void showList(SegmentList& list);
  std::optional<Segment> segmentFromFields(const SegmentList& list, bool finished);
  std::string leftOrRight;
};

}  // namespace tervalo
