#include "qt/views.h"

#include <QComboBox>
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
#include "grading/frm_grade.h"

namespace tervalo {
namespace {

class GradeView : public FormDialog {
 public:
  GradeView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* window = new QHBoxLayout(this);
    auto* outer = new QVBoxLayout;
    window->addLayout(outer);
    // The cross-section, redrawn by every Calculate, beside the entries.
    auto* sketch = picture("sketch");
    window->addWidget(sketch, 1);
    auto* top = new QGridLayout;
    int r = 0;
    auto row = [&](const char* caption, const char* field) {
      QLabel* l = label(caption);
      QLineEdit* e = edit(field);
      l->setBuddy(e);
      top->addWidget(l, r, 0);
      top->addWidget(e, r++, 1);
    };
    row("lblSta", "txtSta");
    auto* side = new QHBoxLayout;
    side->addWidget(option("optLeft"));
    side->addWidget(option("optRight"));
    side->addStretch();
    top->addLayout(side, r++, 1);
    row("lblFinElev", "txtFinElev");
    row("lblTopSoil", "txtTopSoil");
    row("lblSubElev", "txtSubElev");
    row("lblSubThick", "txtSubThick");
    QLabel* note = label("lblNote");
    note->setWordWrap(true);
    top->addWidget(note, r++, 0, 1, 2);
    outer->addLayout(top);

    auto* lists = new QHBoxLayout;
    for (const std::string stem : {"Fin", "Sub"}) lists->addWidget(segmentFrame(stem));
    outer->addLayout(lists);

    QLabel* results = label("lblResults");
    results->setFont(fixedPitchFont());
    results->setTextInteractionFlags(Qt::TextSelectableByMouse);
    outer->addWidget(results);
    outer->addWidget(noticeLabel("lblNotice", this));
    outer->addLayout(commandRow("btnCalculate"));
    findChild<QPushButton*>("btnCalculate")->setDefault(false);  // Enter belongs to the segment fields
    bind();
    binder_->onRefresh = [this, sketch] { sketch->showPicture(static_cast<const frmGrade&>(model_).sketch()); };
    binder_->onRefresh();
  }

 private:
  // A segment list: width and slope to add, the segments entered (pick one
  // to change or delete it).
  QGroupBox* segmentFrame(const std::string& stem) {
    auto name = [&stem](const char* prefix, const char* suffix = "") { return std::string(prefix) + stem + suffix; };
    QGroupBox* box = frame(name("frame").c_str());
    auto* grid = new QGridLayout(box);
    QLabel* width = label(name("lbl", "Width").c_str(), box);
    QLineEdit* widthField = edit(name("txt", "Width").c_str(), box);
    width->setBuddy(widthField);
    QLabel* slope = label(name("lbl", "Slope").c_str(), box);
    QComboBox* slopeField = combo(name("cmb", "Slope").c_str(), true, box);
    slope->setBuddy(slopeField);
    grid->addWidget(width, 0, 0);
    grid->addWidget(widthField, 0, 1);
    grid->addWidget(slope, 1, 0);
    grid->addWidget(slopeField, 1, 1);
    // Beside the slope, after it in reading order: Width, Slope, Add.
    QPushButton* add = button(name("btn", "Add").c_str(), box);
    grid->addWidget(add, 1, 2);
    // Enter in either field adds the segment (never Calculate); then the width is next.
    connect(widthField, &QLineEdit::returnPressed, add, &QPushButton::click);
    connect(slopeField->lineEdit(), &QLineEdit::returnPressed, add, &QPushButton::click);
    connect(add, &QPushButton::clicked, widthField, [widthField] { widthField->setFocus(Qt::OtherFocusReason); });
    auto* heading = new QLabel("  #       Width       Slope", box);
    heading->setFont(fixedPitchFont());
    grid->addWidget(heading, 2, 0, 1, 3);
    QListWidget* segments = list(name("lst").c_str(), true, box);
    segments->setMinimumSize(QFontMetrics(fixedPitchFont()).horizontalAdvance(QString(30, 'M')), 190);
    grid->addWidget(segments, 3, 0, 1, 3);
    auto* edits = new QHBoxLayout;
    edits->addWidget(button(name("btn", "Change").c_str(), box));
    edits->addWidget(button(name("btn", "Delete").c_str(), box));
    edits->addWidget(button(name("btn", "ClearList").c_str(), box));
    grid->addLayout(edits, 4, 0, 1, 3);
    return box;
  }
};

}  // namespace

QDialog* makeGradeView(FormModel& m, QtShell& s, QWidget* p) { return new GradeView(m, s, p); }

}  // namespace tervalo
