#include "qt/views.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>

#include "parcels/frm_mapcheck.h"
#include "qt/binder.h"
#include "qt/form_dialog.h"
#include "qt/picture_view.h"

namespace tervalo {
namespace {

class MapcheckView : public FormDialog {
 public:
  MapcheckView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* window = new QHBoxLayout(this);
    auto* left = new QVBoxLayout;
    window->addLayout(left, 3);
    const auto row = [this](std::initializer_list<std::pair<const char*, const char*>> fields, int width = 120) {
      return fieldRow(fields, width);
    };
    left->addLayout(row({{"lblName", "txtName"}}, 0));
    QHBoxLayout* start = row({{"lblStartPoint", "txtStartPoint"}, {"lblStartN", "txtStartN"}, {"lblStartE", "txtStartE"}});
    start->addStretch();
    left->addLayout(start);
    left->addLayout(row({{"lblCommence", "txtCommence"}}, 0));
    QHBoxLayout* tie = row({{"lblTieBearing", "txtTieBearing"}, {"lblTieDistance", "txtTieDistance"}});
    tie->addStretch();
    left->addLayout(tie);
    left->addLayout(row({{"lblBasis", "txtBasis"}}, 0));

    QLabel* calls = label("lblCalls");
    QStringList headers;
    for (const char* column : frmMapcheck::kColumns) headers << column;
    table_ = cellTable(
        "tblCalls", "Deed calls", headers, [this](int r, int c, const std::string& text) { form().setCell(r, c, text); },
        [this](int r) { form().currentRow = r; }, &filling_);
    calls->setBuddy(table_);
    table_->setMinimumHeight(170);
    table_->setToolTip("A line: its bearing (N 45-30-15 E) and distance. A curve: its turn (L or R), radius and one of arc, chord or "
                       "delta, and a chord or radial bearing where it is not tangent to the call before it.");
    left->addWidget(calls);
    left->addWidget(table_, 1);
    auto* edit = new QHBoxLayout;
    for (const char* name : {"btnAddCall", "btnRemoveCall", "btnPasteCalls"}) edit->addWidget(button(name));
    edit->addStretch();
    QPushButton* check = button("btnCheck");
    check->setDefault(true);
    edit->addWidget(check);
    left->addLayout(edit);
    QLabel* result = label("lblResult");
    result->setWordWrap(true);
    left->addWidget(result);
    auto* files = new QHBoxLayout;
    files->addLayout(row({{"lblFirst", "txtFirst"}}, 70));
    files->addWidget(button("btnStore"));
    files->addWidget(button("btnExport"));
    QLabel* sheet = label("lblSheet");
    QComboBox* sheets = combo("cmbSheet", false);
    sheet->setBuddy(sheets);
    files->addWidget(sheet);
    files->addWidget(sheets);
    files->addWidget(button("btnPlat"));
    files->addWidget(button("btnSaveReport"));
    files->addStretch();
    files->addWidget(button("btnReturn"));
    left->addLayout(files);

    auto* split = new QSplitter(Qt::Vertical, this);
    sketch_ = picture("sketch");
    sketch_->setParent(split);
    sketch_->setAccessibleName("Deed sketch");
    split->addWidget(sketch_);
    QListWidget* report = list("lstReport", true);
    report->setParent(split);
    report->setAccessibleName("Mapcheck report");
    split->addWidget(report);
    window->addWidget(split, 2);
    bind();
    binder_->onRefresh = [this] { refresh(); };
    refresh();
    resize(1300, 700);
  }

 private:
  frmMapcheck& form() { return static_cast<frmMapcheck&>(model_); }

  void refresh() {
    frmMapcheck& f = form();
    sketch_->showPicture(f.sketch());
    if (shownVersion_ == f.tableVersion) return;
    shownVersion_ = f.tableVersion;
    filling_ = true;
    table_->setRowCount(static_cast<int>(f.rows.size()));
    for (int r = 0; r < table_->rowCount(); ++r)
      for (int c = 0; c < table_->columnCount(); ++c) table_->setItem(r, c, new QTableWidgetItem(QString::fromStdString(f.cell(r, c))));
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

QDialog* makeMapcheckView(FormModel& m, QtShell& s, QWidget* p) { return new MapcheckView(m, s, p); }

}  // namespace tervalo
