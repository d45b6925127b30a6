#include "qt/views.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "qt/form_dialog.h"
#include "qt/picture_view.h"
#include "vcurve/frm_vert_curve.h"

namespace tervalo {
namespace {

class VertCurveView : public FormDialog {
 public:
  VertCurveView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* grid = new QGridLayout(this);
    int r = 0;
    auto row = [&](const char* caption, const char* field) {
      QLabel* l = label(caption);
      QLineEdit* e = edit(field);
      l->setBuddy(e);
      grid->addWidget(l, r, 0);
      grid->addWidget(e, r, 1);
      return e;
    };
    row("lblEntryGrade", "txtEntryGrade");
    ++r;
    row("lblExitGrade", "txtExitGrade");
    ++r;
    row("lblStation", "txtStation");
    auto* points = new QHBoxLayout;
    for (const char* name : {"optPI", "optPC", "optPT"}) points->addWidget(option(name));
    grid->addLayout(points, r++, 2);
    row("lblElevation", "txtElevation");
    ++r;
    row("lblLength", "txtLength");
    ++r;
    grid->addWidget(label("lblStartStation"), r++, 0);
    row("lblStartStation2", "txtStartStation");
    ++r;
    row("lblEndStation", "txtEndStation");
    ++r;
    row("lblIncrement", "txtIncrement");
    grid->addWidget(check("chkExact"), r++, 2);
    grid->addWidget(label("lblProfiles"), r, 0);
    auto* profiles = new QHBoxLayout;
    for (const char* name : {"txtProfile1", "txtProfile2", "txtProfile3"}) profiles->addWidget(edit(name));
    grid->addLayout(profiles, r++, 1, 1, 2);
    row("lblEquationIn", "txtEquationIn");
    ++r;
    row("lblEquationOut", "txtEquationOut");
    ++r;
    QGroupBox* units = frame("frameUnits");
    (new QHBoxLayout(units))->addWidget(check("chkMetric", units));
    grid->addWidget(units, r++, 0, 1, 2);
    grid->addLayout(commandRow("btnCalculate"), r, 0, 1, 3);
    bind();
  }
};

class VCResultsView : public FormDialog {
 public:
  VCResultsView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* window = new QHBoxLayout(this);
    auto* outer = new QVBoxLayout;
    window->addLayout(outer);
    // The profile beside the list, so a wrong grade sign shows at a glance.
    auto* sketch = picture("sketch");
    sketch->setMinimumWidth(420);
    window->addWidget(sketch, 1);
    QGroupBox* curveData = frame("frameCurve");
    curveData->setFont(fixedPitchFont());
    auto* grid = new QGridLayout(curveData);
    const char* pairs[][2] = {{"lblPVCstaTitle", "lblPVCsta"},   {"lblPVCelevTitle", "lblPVCelev"},
                              {"lblPVIstaTitle", "lblPVIsta"},   {"lblPVIelevTitle", "lblPVIelev"},
                              {"lblPVTstaTitle", "lblPVTsta"},   {"lblPVTelevTitle", "lblPVTelev"},
                              {"lblEntryTitle", "lblEntry"},     {"lblExitTitle", "lblExit"},
                              {"lblCurLenTitle", "lblCurLen"},   {nullptr, nullptr},
                              {"lblMinMaxSta", "lblSta"},        {"lblMinMaxElev", "lblElev"}};
    for (int i = 0; i < 12; ++i) {
      if (!pairs[i][0]) continue;
      grid->addWidget(label(pairs[i][0], curveData), i / 2, (i % 2) * 2);
      QLabel* value = label(pairs[i][1], curveData);
      value->setTextInteractionFlags(Qt::TextSelectableByMouse);
      grid->addWidget(value, i / 2, (i % 2) * 2 + 1);
    }
    outer->addWidget(curveData);
    QLabel* headings = label("lblHeadings");
    headings->setFont(fixedPitchFont());
    outer->addWidget(headings);
    QListWidget* results = list("lstResults", true);
    results->setMinimumSize(QFontMetrics(fixedPitchFont()).horizontalAdvance(QString(66, 'M')), 300);
    outer->addWidget(results, 1);
    // The output file's name on a row of its own, so that it reads whole; the actions below it.
    outer->addLayout(outputNameRow());
    auto* actions = new QHBoxLayout;
    actions->addStretch();
    for (const char* b : {"btnOutput", "btnExport", "btnReturn"}) actions->addWidget(button(b));
    outer->addLayout(actions);
    bind();
    binder_->onRefresh = [this, headings, sketch] {
      headings->setText(numberedHeadings());
      sketch->showPicture(static_cast<const frmVCResults&>(model_).sketch());
    };
    binder_->onRefresh();
  }

 private:
  // On screen each profile column says which profile it is ("Profile1"),
  // in the same width; the report keeps the heading as the results give it.
  QString numberedHeadings() const {
    const auto& results = static_cast<const frmVCResults&>(model_);
    QString text = QString::fromStdString(results.lblHeadings.caption);
    qsizetype from = 0;
    for (std::size_t k = 0; k < results.profiles.size(); ++k) {
      if (results.profiles[k] == 0) continue;
      const qsizetype at = text.indexOf("Profile ", from);
      if (at < 0) break;
      text.replace(at, 8, QString("Profile%1").arg(k + 1));
      from = at + 8;
    }
    return text;
  }
};

}  // namespace

QDialog* makeVertCurveView(FormModel& m, QtShell& s, QWidget* p) { return new VertCurveView(m, s, p); }
QDialog* makeVCResultsView(FormModel& m, QtShell& s, QWidget* p) { return new VCResultsView(m, s, p); }

}  // namespace tervalo
