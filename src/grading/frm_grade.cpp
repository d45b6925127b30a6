#include "grading/frm_grade.h"

#include "grading/grade_sketch.h"

#include "app/forms_misc.h"
#include "app/program.h"
#include "app/shell.h"
#include "text/format.h"
#include "text/number.h"

namespace tervalo {

frmGrade::frmGrade(Program& program) : FormModel(program, "frmGrade", "Grading Width") {
  add("lblSta", lblSta);
  add("txtSta", txtSta);
  add("optLeft", optLeft, "side");
  add("optRight", optRight, "side");
  add("lblFinElev", lblFinElev);
  add("txtFinElev", txtFinElev).numeric(true);
  add("lblTopSoil", lblTopSoil);
  add("txtTopSoil", txtTopSoil).numeric();
  add("lblSubElev", lblSubElev);
  add("txtSubElev", txtSubElev).numeric();
  add("lblSubThick", lblSubThick);
  add("txtSubThick", txtSubThick).numeric();
  add("lblNote", lblNote);
  for (auto& [list, stem, finished] : {std::tuple{&fin, "Fin", true}, std::tuple{&sub, "Sub", false}}) {
    SegmentList& l = *list;
    const bool f = finished;
    l.frame.caption = f ? "Finished Surface Segments" : "Subgrade Segments";
    const std::string s = stem;
    add("frame" + s, l.frame);
    add("lbl" + s + "Width", l.widthCaption);
    add("txt" + s + "Width", l.width).numeric();
    add("lbl" + s + "Slope", l.slopeCaption);
    add("cmb" + s + "Slope", l.slope);
    add("btn" + s + "Add", l.add).click([this, &l, f] { addSegment(l, f); });
    add("lst" + s, l.list).click([this, &l] { pickSegment(l); });
    add("btn" + s + "Change", l.change).click([this, &l, f] { changeSegment(l, f); });
    add("btn" + s + "Delete", l.remove).click([this, &l] { removeSegment(l); });
    add("btn" + s + "ClearList", l.clear).click([this, &l] {
      l.segments.clear();
      showList(l);
    });
  }
  add("btnCalculate", btnCalculate).click([this] { btnCalculate_Click(); });
  add("btnClear", btnClear).click([this] { btnClear_Click(); });
  add("btnReturn", btnReturn).click([this] { unload(); });
  addInputFileButtons();
  add("lblResults", lblResults);
  add("lblNotice", lblNotice);
}

std::optional<Segment> frmGrade::segmentFromFields(const SegmentList& list, bool finished) {
  if (list.slope.text.empty()) {
    shell().msgBox("Insufficient Data", "A valid slope value is required..", Icon::Critical);
    return std::nullopt;
  }
  return Segment{Val(list.width.text), Val(slopeText(list.slope.text, finished))};
}

void frmGrade::addSegment(SegmentList& list, bool finished) {
  const auto segment = segmentFromFields(list, finished);
  if (!segment) return;
  if (list.segments.size() >= SegmentList::capacity) {
    shell().msgBox("Data Error",
                   "A list holds 10 segments at most. Change or delete a segment, or combine two, to add another.",
                   Icon::Information);
    return;
  }
  list.segments.push_back(*segment);
  showList(list);
  // Ready for the next segment.
  list.width.text.clear();
  list.slope.text.clear();
}

void frmGrade::pickSegment(SegmentList& list) {
  const int row = list.list.selected;
  const bool picked = row >= 0 && row < static_cast<int>(list.segments.size());
  list.change.enabled = list.remove.enabled = picked;
  if (!picked) return;
  const Segment& s = list.segments[static_cast<std::size_t>(row)];
  list.width.text = CStr(s.width);
  list.slope.text = CStr(s.slope);
}

void frmGrade::changeSegment(SegmentList& list, bool finished) {
  const int row = list.list.selected;
  if (row < 0 || row >= static_cast<int>(list.segments.size())) return;
  if (const auto segment = segmentFromFields(list, finished)) {
    list.segments[static_cast<std::size_t>(row)] = *segment;
    showList(list);
  }
}

void frmGrade::removeSegment(SegmentList& list) {
  const int row = list.list.selected;
  if (row < 0 || row >= static_cast<int>(list.segments.size())) return;
  list.segments.erase(list.segments.begin() + row);
  showList(list);
}

// The list rows, and the outer slope the calculation takes from the list:
// the last segment's, whichever way it got there.
void frmGrade::showList(SegmentList& list) {
  list.list.items.clear();
  for (std::size_t i = 0; i < list.segments.size(); ++i)
    list.list.items.push_back(segmentRow(static_cast<int>(i + 1), list.segments[i]));
  list.list.selected = -1;
  list.change.enabled = list.remove.enabled = false;
  const double last = list.segments.empty() ? 0 : list.segments.back().slope;
  (&list == &fin ? lastFinSlope : lastSubSlope) = last;
}

void frmGrade::btnCalculate_Click() {
  lblNotice = Label{"", false};
  GradingInput in;
  in.station = txtSta.text;
  in.clElev = Val(txtFinElev.text);
  in.topSoil = Val(txtTopSoil.text);
  if (optLeft.checked) leftOrRight = "Left";
  else if (optRight.checked) leftOrRight = "Right";
  in.side = leftOrRight;
  if (txtSubElev.text.empty() && txtSubThick.text.empty()) {
    shell().msgBox("Insufficient Data", "Either a subgrade elevation or a surface thickness is required.", Icon::Critical);
    return;
  }
  in.subElevGiven = !txtSubElev.text.empty();
  in.subElev = Val(txtSubElev.text);
  in.subThick = Val(txtSubThick.text);
  in.finished = fin.segments;
  in.subgrade = sub.segments;
  const GradingResult r = computeGrading(in);
  calculated = std::pair{in, r};

  // The wording goes with these tests on purpose; none of them stops the calculation.
  if (r.subgradeWider)
    shell().msgBox("Data Error", "Subgrade is above finished grade at the shoulder point.", Icon::Information);
  if (r.subgradeAbove)
    shell().msgBox("Data Error", "Subgrade has a break outside the finished shoulder point.", Icon::Information);
  if (r.parallel) {
    shell().msgBox("Data Error",
                   "The last finished and subgrade slopes are equal: their lines never meet, so there is no grading P.I.",
                   Icon::Information);
    lblResults.caption.clear();
    return;
  }
  if (r.inside) shell().msgBox("Data Error", "Computed grading P.I. is inside the shoulder point.", Icon::Information);
  lblResults.caption =
      "Computed Grading P.I.   Elev: " + Format(r.grdElev, "#.000") + "   Offset: " + Format(r.grdOffset, "#.000");
  if (r.meetDiffers) {
    lblNotice.caption = "The P.I. above measures its distance from the finished shoulder (offset " +
                        Format(r.ptAoffset, "#0.000") + "), but the subgrade's outer point lies at offset " +
                        Format(r.ptCoffset, "#0.000") + ": the two outer slopes really meet at offset " +
                        Format(r.meetOffset, "#0.000") + ", elevation " + Format(r.meetElev, "#0.000") + ".";
    lblNotice.visible = true;
  }

  auto& output = program().form<frmOutput>("frmGradeOut");
  output.lstOutput.items = printResults(in, r);
  output.txtOut.text = program().userAppData + "GrWidth.txt";
  output.holds = (in.station.empty() ? "" : "Sta " + in.station + " ") + in.side;
  shell().showModal(output);
}

std::vector<JobStep> frmGrade::recoverySteps() const {
  std::vector<JobStep> steps;
  for (const auto& [list, stem] : {std::pair{&fin, "Fin"}, std::pair{&sub, "Sub"}})
    for (const Segment& s : list->segments) {
      JobStep step;
      step.set = {{std::string("txt") + stem + "Width", CStr(s.width)}, {std::string("cmb") + stem + "Slope", CStr(s.slope)}};
      step.click = {std::string("btn") + stem + "Add"};
      steps.push_back(step);
    }
  // The fields as they were, after the segments went through them.
  JobStep fields;
  fields.set = {{"txtFinWidth", fin.width.text}, {"cmbFinSlope", fin.slope.text},
                {"txtSubWidth", sub.width.text}, {"cmbSubSlope", sub.slope.text}};
  steps.push_back(fields);
  return steps;
}

Picture frmGrade::sketch() const {
  if (!calculated) {
    Picture none;
    none.hint = "The cross-section is drawn here after Calculate.";
    return none;
  }
  return gradingSketch(calculated->first, calculated->second).picture;
}

void frmGrade::clearForInputs() {
  for (SegmentList* list : {&fin, &sub}) {
    list->segments.clear();
    showList(*list);
  }
}

void frmGrade::btnClear_Click() {
  calculated.reset();
  for (TextBox* box : {&txtSta, &txtFinElev, &txtTopSoil, &txtSubElev, &txtSubThick, &fin.width, &sub.width})
    box->text.clear();
  for (SegmentList* list : {&fin, &sub}) {
    list->segments.clear();
    list->slope.text = "-0.03";
    showList(*list);
  }
  lblResults.caption.clear();
  lblNotice = Label{"", false};
}

}  // namespace tervalo
