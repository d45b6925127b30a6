#include "qt/views.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <tuple>

#include "qt/form_dialog.h"
#include "qt/picture_view.h"
#include "hcurve/frm_horz_curve.h"

namespace tervalo {
namespace {

class HorzCurveView : public FormDialog {
 public:
  HorzCurveView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* outer = new QVBoxLayout(this);
    auto* top = new QHBoxLayout;
    auto* left = new QVBoxLayout;

    auto* inputs = new QGridLayout;
    const char* rows[][3] = {{"lblDeltaAngle", "txtDelta", "lblDeltaDeg"}, {"lblDegree", "txtDegree", "lblCurveDeg"},
                             {"lblTanLength", "txtTanLength", nullptr},    {"lblCurveLength", "txtCurveLength", nullptr},
                             {"lblRadius", "txtRadius", nullptr},          {"lblExternal", "txtExternal", nullptr},
                             {"lblMidOrd", "txtMidOrd", nullptr},          {"lblChord", "txtChord", nullptr}};
    for (int r = 0; r < 8; ++r) {
      QLabel* caption = label(rows[r][0]);
      QLineEdit* field = edit(rows[r][1]);
      caption->setBuddy(field);
      inputs->addWidget(caption, r, 0);
      inputs->addWidget(field, r, 1);
      if (rows[r][2]) inputs->addWidget(label(rows[r][2]), r, 2);
    }
    left->addLayout(inputs);

    QGroupBox* angle = frame("frameAngle");
    auto* angleRow = new QHBoxLayout(angle);
    angleRow->addWidget(option("optDec", angle));
    angleRow->addWidget(option("optHms", angle));
    left->addWidget(angle);
    auto* checks = new QHBoxLayout;
    checks->addWidget(check("chkMetric"));
    checks->addWidget(check("chkChordDef"));
    left->addLayout(checks);

    QGroupBox* station = frame("frmData");
    auto* stationGrid = new QGridLayout(station);
    stationGrid->addWidget(option("optPI", station), 0, 0);
    stationGrid->addWidget(option("optPC", station), 0, 1);
    stationGrid->addWidget(option("optPT", station), 0, 2);
    stationGrid->addWidget(edit("txtCurvePt", station), 1, 0, 1, 3);
    left->addWidget(station);
    top->addLayout(left);

    // Results in a fixed-pitch font, so the digits line up.
    QGroupBox* results = frame("frameResults");
    results->setFont(fixedPitchFont());
    auto* grid = new QGridLayout(results);
    const char* captions[][2] = {{"Delta:", "lblDel"},   {"Degree:", "lblDeg"}, {"", "lblDef"},
                                 {"Tangent:", "lblTan"}, {"Length:", "lblLen"}, {"Radius:", "lblRad"},
                                 {"External:", "lblExt"}, {"Mid Ord:", "lblMid"}, {"Chord:", "lblCh"}};
    int r = 0;
    for (const auto& [caption, name] : captions) {
      grid->addWidget(new QLabel(caption, results), r, 0);
      QLabel* value = label(name, results);
      value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
      value->setTextInteractionFlags(Qt::TextSelectableByMouse);
      grid->addWidget(value, r++, 1);
    }
    for (const auto& [title, name] : {std::pair{"lblPcTitle", "lblPC"}, {"lblPiTitle", "lblPI"}, {"lblPtTitle", "lblPT"}}) {
      grid->addWidget(label(title, results), r, 0);
      QLabel* value = label(name, results);
      value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
      value->setTextInteractionFlags(Qt::TextSelectableByMouse);
      grid->addWidget(value, r++, 1);
    }
    grid->setColumnMinimumWidth(1, QFontMetrics(fixedPitchFont()).horizontalAdvance(QString(16, '0')));
    grid->setRowStretch(r, 1);
    top->addWidget(results);
    // The curve to scale, redrawn by every Calculate.
    auto* sketch = picture("sketch");
    top->addWidget(sketch, 1);
    outer->addLayout(top);

    outer->addLayout(commandRow("btnCalculate"));
    outer->addLayout(outputFileRow(false));
    // The curve placed on the ground from a point of the open project.
    QGroupBox* ground = frame("fraProject");
    auto* row = new QHBoxLayout(ground);
    for (const auto& [caption, field, width] : {std::tuple{"lblPiPoint", "txtPiPoint", 80}, {"lblBackTangent", "txtBackTangent", 130}}) {
      QLabel* l = label(caption, ground);
      QLineEdit* e = edit(field, ground);
      e->setMaximumWidth(width);
      l->setBuddy(e);
      row->addWidget(l);
      row->addWidget(e);
    }
    row->addWidget(option("optRight", ground));
    row->addWidget(option("optLeft", ground));
    QLabel* from = label("lblFirstNumber", ground);
    QLineEdit* number = edit("txtFirstNumber", ground);
    number->setMaximumWidth(70);
    from->setBuddy(number);
    row->addWidget(from);
    row->addWidget(number);
    row->addWidget(button("btnStore", ground));
    outer->addWidget(ground);
    bind();
    binder_->onRefresh = [this, sketch] { sketch->showPicture(static_cast<const frmHorzCurve&>(model_).sketch()); };
    binder_->onRefresh();
  }
};

}  // namespace

QDialog* makeHorzCurveView(FormModel& m, QtShell& s, QWidget* p) { return new HorzCurveView(m, s, p); }

}  // namespace tervalo
