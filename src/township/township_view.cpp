#include "qt/views.h"

#include <algorithm>

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>

#include "qt/binder.h"
#include "qt/form_dialog.h"
#include "qt/picture_view.h"
#include "township/frm_township.h"

namespace tervalo {
namespace {

class TownshipView : public FormDialog {
 public:
  TownshipView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* outer = new QVBoxLayout(this);
    auto* source = new QHBoxLayout;
    QLabel* caption = label("lblSource");
    QLineEdit* name = edit("txtSource");
    caption->setBuddy(name);
    source->addWidget(caption);
    source->addWidget(name, 1);
    source->addWidget(button("btnSource"));
    source->addWidget(button("btnOpenPlan"));
    source->addWidget(button("btnSavePlan"));
    outer->addLayout(source);

    table_ = new QTableWidget(this);
    table_->setObjectName("tblSections");
    table_->setAccessibleName("Sections");
    table_->setColumnCount(static_cast<int>(frmTownship::kColumns.size()));
    QStringList headers;
    for (const char* column : frmTownship::kColumns) headers << column;
    table_->setHorizontalHeaderLabels(headers);
    table_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    for (int column : {0, 1, 3}) table_->horizontalHeader()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
    // Room for four sections and their corner numbers, within a 1366 by 768 screen.
    table_->setMinimumSize(940, 170);
    table_->setToolTip("A corner is a point number of the source file, or its X and Y typed with a space between.");
    outer->addWidget(table_, 2);
    // Typing in a cell is typing in the plan; the row the cursor is in is the one Remove takes.
    connect(table_, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) {
      if (filling_) return;
      form().setCell(item->row(), item->column(), item->text().trimmed().toStdString());
    });
    connect(table_, &QTableWidget::currentCellChanged, this, [this](int row) {
      if (row != form().currentRow) binder_->run([this, row] { form().selectRow(row); });
    });

    // The selected row's meridian and record chains, as the section window names them.
    QGroupBox* detail = frame("fraRow");
    auto* fields = new QGridLayout(detail);
    auto field = [&](const char* captionName, const char* fieldName, int row, int column) {
      QLabel* l = label(captionName, detail);
      QLineEdit* e = edit(fieldName, detail);
      e->setMaximumWidth(QFontMetrics(e->font()).horizontalAdvance("000.0000") + 16);
      l->setBuddy(e);
      fields->addWidget(l, row, column * 2);
      fields->addWidget(e, row, column * 2 + 1);
    };
    field("lblPM", "txtPM", 0, 0);
    const auto& chains = static_cast<frmTownship&>(model_).rowChains;
    for (std::size_t i = 0; i < chains.size(); ++i)
      field(("lbl" + chains[i].stem + "chain").c_str(), ("txt" + chains[i].stem + "chain").c_str(), static_cast<int>(i / 4),
            static_cast<int>(i % 4) + 1);
    outer->addWidget(detail);

    auto* rows = new QHBoxLayout;
    rows->addWidget(button("btnAddSection"));
    rows->addWidget(button("btnRemoveSection"));
    rows->addStretch();
    QPushButton* run = button("btnRun");
    run->setDefault(true);
    rows->addWidget(run);
    rows->addWidget(button("btnPrint"));
    rows->addWidget(button("btnReturn"));
    outer->addLayout(rows);
    // The summary beside the map of the township.
    auto* split = new QSplitter(Qt::Horizontal, this);
    auto* summaryPanel = new QWidget(split);
    auto* summaryColumn = new QVBoxLayout(summaryPanel);
    summaryColumn->setContentsMargins(0, 0, 0, 0);
    QLabel* summaryCaption = label("lblSummary", summaryPanel);
    summary_ = list("lstSummary", true, summaryPanel);
    summaryCaption->setBuddy(summary_);
    summaryColumn->addWidget(summaryCaption);
    summaryColumn->addWidget(summary_, 1);
    summary_->setMinimumSize(300, 220);
    split->addWidget(summaryPanel);
    map_ = picture("map");
    map_->setParent(split);
    map_->setAccessibleName("Township map");
    map_->setMinimumSize(320, 260);
    map_->clicked = [this](PicturePoint at, double tolerance) {
      binder_->run([this, at, tolerance] { form().mapClicked(at.x, at.y, tolerance); });
    };
    split->addWidget(map_);
    split->setStretchFactor(0, 1);
    split->setStretchFactor(1, 1);
    outer->addWidget(split, 3);
    bind();
    binder_->onRefresh = [this] { refresh(); };
    refresh();
    resize(1240, 720);  // the table, the summary and a map to read, within a 1366 by 768 screen
  }

 private:
  frmTownship& form() { return static_cast<frmTownship&>(model_); }

  void refresh() {
    frmTownship& f = form();
    map_->showPicture(f.map());
    if (shownVersion_ != f.tableVersion) {
      shownVersion_ = f.tableVersion;
      filling_ = true;
      table_->setRowCount(static_cast<int>(f.plan.sections.size()));
      for (int row = 0; row < table_->rowCount(); ++row)
        for (int column = 0; column < table_->columnCount(); ++column)
          table_->setItem(row, column, new QTableWidgetItem(QString::fromStdString(f.cell(row, column))));
      filling_ = false;
      const bool added = table_->rowCount() > shownRows_;
      shownRows_ = table_->rowCount();
      if (f.currentRow >= 0) table_->setCurrentCell(f.currentRow, 0);
      // A section just added is typed into at once, from its first cell.
      if (added && f.currentRow >= 0 && isVisible()) table_->setFocus();
    } else if (f.currentRow >= 0 && f.currentRow < table_->rowCount() && table_->currentRow() != f.currentRow) {
      table_->setCurrentCell(f.currentRow, 0);  // picked on the map
    }
    // The disagreeing corners and the sections that did not run stand out:
    // bold, in the theme's link colour.
    for (const std::vector<int>* lines : {&f.disagreementLines, &f.stoppedLines})
      for (int line : *lines)
        if (QListWidgetItem* item = summary_->item(line)) {
          QFont bold = item->font();
          bold.setBold(true);
          item->setFont(bold);
          item->setForeground(palette().color(QPalette::Link));
        }
    // A row whose section was refused or ended is marked in its header.
    for (int row = 0; row < table_->rowCount(); ++row) {
      const bool stopped = std::find(f.stoppedRows.begin(), f.stoppedRows.end(), row) != f.stoppedRows.end();
      auto* header = new QTableWidgetItem(stopped ? QString("%1 !").arg(row + 1) : QString::number(row + 1));
      if (stopped) {
        header->setToolTip("This section was refused or ended in the last run: the summary says why.");
        header->setForeground(palette().color(QPalette::Link));
        QFont bold = header->font();
        bold.setBold(true);
        header->setFont(bold);
      }
      table_->setVerticalHeaderItem(row, header);
    }
  }

  QTableWidget* table_ = nullptr;
  QListWidget* summary_ = nullptr;
  PictureView* map_ = nullptr;
  int shownVersion_ = -1;
  int shownRows_ = 0;
  bool filling_ = false;
};

}  // namespace

QDialog* makeTownshipView(FormModel& m, QtShell& s, QWidget* p) { return new TownshipView(m, s, p); }

}  // namespace tervalo
