#include "qt/views.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>

#include "qt/binder.h"
#include "qt/form_dialog.h"
#include "qt/picture_view.h"
#include "traverse/frm_traverse.h"

namespace tervalo {
namespace {

class TraverseView : public FormDialog {
 public:
  TraverseView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* window = new QHBoxLayout(this);
    auto* left = new QVBoxLayout;
    window->addLayout(left, 3);

    // A caption, its field, and the next: in one row.
    const auto row = [this](std::initializer_list<std::pair<const char*, const char*>> fields, int width = 110) {
      return fieldRow(fields, width);
    };
    QHBoxLayout* source = row({{"lblSource", "txtSource"}}, 0);
    source->addWidget(button("btnSource"));
    source->addSpacing(12);
    source->addWidget(option("optFeet"));
    source->addWidget(option("optMetres"));
    left->addLayout(source);
    auto* system = new QHBoxLayout;
    system->addWidget(check("chkGround"));
    system->addSpacing(12);
    system->addWidget(label("lblCrs"), 1);
    system->addWidget(button("btnCrs"));
    left->addLayout(system);
    QHBoxLayout* start = row({{"lblStart", "txtStart"}, {"lblStartX", "txtStartX"}, {"lblStartY", "txtStartY"}});
    start->addStretch();
    left->addLayout(start);
    QHBoxLayout* back =
        row({{"lblBacksight", "txtBacksight"}, {"lblBackX", "txtBackX"}, {"lblBackY", "txtBackY"}, {"lblBackAzimuth", "txtBackAzimuth"}});
    back->addStretch();
    left->addLayout(back);

    QLabel* courses = label("lblCourses");
    QStringList headers;
    for (const char* column : frmTraverse::kColumns) headers << column;
    table_ = cellTable(
        "tblCourses", "Courses", headers, [this](int r, int c, const std::string& text) { form().setCell(r, c, text); },
        [this](int r) { form().currentRow = r; }, &filling_);
    courses->setBuddy(table_);
    table_->setMinimumHeight(180);
    table_->setToolTip("Angles as 45-30-15 (degrees, minutes, seconds); a bearing as S 10-20-00 W; a deflection as 12-30-00 L or R. "
                       "Give a horizontal distance, or a slope distance and its zenith angle.");
    left->addWidget(courses);
    left->addWidget(table_, 1);
    auto* edit = new QHBoxLayout;
    edit->addWidget(button("btnAddCourse"));
    edit->addWidget(button("btnRemoveCourse"));
    edit->addSpacing(12);
    QLabel* shots = label("lblSideShots");
    shots->setWordWrap(true);
    edit->addWidget(shots, 1);
    left->addLayout(edit);

    QHBoxLayout* close = row({{"lblClose", "txtClose"}, {"lblCloseX", "txtCloseX"}, {"lblCloseY", "txtCloseY"}});
    close->addSpacing(12);
    close->addLayout(row({{"lblCloseAzimuth", "txtCloseAzimuth"}, {"lblCloseAngle", "txtCloseAngle"}}));
    close->addStretch();
    left->addLayout(close);
    auto* adjust = new QHBoxLayout;
    QLabel* rule = label("lblAdjust");
    QComboBox* rules = combo("cmbAdjust", false);
    rule->setBuddy(rules);
    adjust->addWidget(rule);
    adjust->addWidget(rules);
    adjust->addSpacing(12);
    adjust->addLayout(row({{"lblSigmaAngle", "txtSigmaAngle"}, {"lblSigmaDistance", "txtSigmaDistance"}, {"lblPpm", "txtPpm"}}, 70));
    adjust->addStretch();
    left->addLayout(adjust);
    QHBoxLayout* allowable = row({{"lblAllowPrecision", "txtAllowPrecision"}, {"lblAllowAngular", "txtAllowAngular"}}, 80);
    allowable->addStretch();
    left->addLayout(allowable);
    left->addLayout(resultRow("btnAdjust", "lblResult"));
    auto* files = new QHBoxLayout;
    for (const char* name : {"btnOpenRaw", "btnOpenInputs", "btnSaveInputs", "btnWriteReport", "btnExport", "btnStore"}) files->addWidget(button(name));
    files->addStretch();
    files->addWidget(button("btnReturn"));
    left->addLayout(files);

    // The sketch above the report.
    auto* split = new QSplitter(Qt::Vertical, this);
    sketch_ = picture("sketch");
    sketch_->setParent(split);
    sketch_->setAccessibleName("Traverse sketch");
    split->addWidget(sketch_);
    QListWidget* report = list("lstReport", true);
    report->setParent(split);
    report->setAccessibleName("Traverse report");
    split->addWidget(report);
    window->addWidget(split, 2);
    bind();
    binder_->onRefresh = [this] { refresh(); };
    refresh();
    resize(1300, 720);
  }

 private:
  frmTraverse& form() { return static_cast<frmTraverse&>(model_); }

  void refresh() {
    frmTraverse& f = form();
    sketch_->showPicture(f.sketch());
    if (shownVersion_ == f.tableVersion) return;
    shownVersion_ = f.tableVersion;
    filling_ = true;
    table_->setRowCount(static_cast<int>(f.rows.size()));
    for (int r = 0; r < table_->rowCount(); ++r)
      for (int c = 0; c < table_->columnCount(); ++c) {
        if (c == 1) {  // how the direction is given: chosen, not typed
          auto* kinds = new QComboBox(table_);
          for (const char* kind : frmTraverse::kTurns) kinds->addItem(kind);
          kinds->setCurrentText(QString::fromStdString(f.cell(r, c)));
          kinds->setAccessibleName(QString("Direction of course %1").arg(r + 1));
          connect(kinds, &QComboBox::currentTextChanged, this, [this, r](const QString& text) {
            binder_->run([this, r, text] { form().setCell(r, 1, text.toStdString()); });
          });
          table_->setCellWidget(r, c, kinds);
          continue;
        }
        table_->setItem(r, c, new QTableWidgetItem(QString::fromStdString(f.cell(r, c))));
      }
    filling_ = false;
    if (f.currentRow >= 0 && f.currentRow < table_->rowCount()) {
      table_->setCurrentCell(f.currentRow, 0);
      if (isVisible()) table_->setFocus();
    }
  }

  QTableWidget* table_ = nullptr;
  PictureView* sketch_ = nullptr;
  int shownVersion_ = -1;
  bool filling_ = false;
};

}  // namespace

QDialog* makeTraverseView(FormModel& m, QtShell& s, QWidget* p) { return new TraverseView(m, s, p); }

}  // namespace tervalo
