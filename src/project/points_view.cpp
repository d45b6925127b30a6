#include "qt/views.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

#include "project/frm_points.h"
#include "qt/binder.h"
#include "qt/form_dialog.h"
#include "qt/picture_view.h"

namespace tervalo {
namespace {

// The model's rows as Qt's table asks for them: only the rows it shows are fetched.
class PointsTable : public QAbstractTableModel {
 public:
  PointsTable(frmPoints& form, Binder*& binder, QObject* parent) : QAbstractTableModel(parent), form_(form), binder_(binder) {}

  int rowCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : static_cast<int>(std::min<long long>(form_.rowCount(), INT_MAX));
  }
  int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : static_cast<int>(frmPoints::kColumns.size()); }
  QVariant data(const QModelIndex& index, int role) const override {
    if (role == Qt::DisplayRole || role == Qt::EditRole) return QString::fromStdString(form_.cell(index.row(), index.column()));
    if (role == Qt::TextAlignmentRole && index.column() >= 1 && index.column() <= 3)
      return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
  }
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (role != Qt::DisplayRole) return {};
    if (orientation == Qt::Horizontal) return QString(frmPoints::kColumns[static_cast<std::size_t>(section)]);
    return section + 1;
  }
  Qt::ItemFlags flags(const QModelIndex& index) const override {
    const Qt::ItemFlags f = QAbstractTableModel::flags(index);
    return frmPoints::editable(index.column()) ? f | Qt::ItemIsEditable : f;
  }
  bool setData(const QModelIndex& index, const QVariant& value, int role) override {
    if (role != Qt::EditRole) return false;
    const long long row = index.row();
    const int column = index.column();
    const std::string text = value.toString().toStdString();
    binder_->run([this, row, column, text] { form_.setCell(row, column, text); });
    return true;
  }
  void sort(int column, Qt::SortOrder order) override {
    // Qt sorts again as sorting is enabled and as the indicator is shown: only a change is the user's.
    if (!binder_ || (column == form_.sortColumn() && (order == Qt::DescendingOrder) == form_.sortDescending())) return;
    binder_->run([this, column, order] { form_.sortBy(column, order == Qt::DescendingOrder); });
  }
  void reset() {
    beginResetModel();
    endResetModel();
  }

 private:
  frmPoints& form_;
  Binder*& binder_;
};

class PointsView : public FormDialog {
 public:
  PointsView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* window = new QVBoxLayout(this);
    QLabel* project = label("lblProject");
    project->setWordWrap(true);
    window->addWidget(project);

    // A caption and its field in a row, the caption its field's buddy.
    const auto field = [this](QHBoxLayout* row, const char* caption, QWidget* w, int width) {
      QLabel* l = label(caption);
      l->setBuddy(w);
      if (width > 0) w->setMaximumWidth(width);
      row->addWidget(l);
      row->addWidget(w);
    };
    auto* filter = new QHBoxLayout;
    field(filter, "lblFrom", edit("txtFrom"), 80);
    field(filter, "lblTo", edit("txtTo"), 80);
    field(filter, "lblDescription", edit("txtDescription"), 160);
    field(filter, "lblFeature", combo("cmbFeature", true), 110);
    field(filter, "lblEvidence", combo("cmbEvidence", true), 160);
    filter->addWidget(button("btnShow"));
    filter->addWidget(button("btnShowAll"));
    filter->addSpacing(16);
    field(filter, "lblFind", edit("txtFind"), 90);
    filter->addWidget(button("btnFind"));
    filter->addStretch();
    window->addLayout(filter);

    auto* split = new QSplitter(Qt::Horizontal, this);
    auto* tablePanel = new QWidget(split);
    auto* tableColumn = new QVBoxLayout(tablePanel);
    tableColumn->setContentsMargins(0, 0, 0, 0);
    table_ = new QTableView(tablePanel);
    table_->setObjectName("tblPoints");
    table_->setAccessibleName("Points");
    rows_ = new PointsTable(form(), binder_, this);
    table_->setModel(rows_);
    table_->horizontalHeader()->setSortIndicator(form().sortColumn(), form().sortDescending() ? Qt::DescendingOrder : Qt::AscendingOrder);
    table_->setSortingEnabled(true);
    table_->horizontalHeader()->setSortIndicatorShown(true);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 6);
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table_->setToolTip("Double-click or type over a cell to change it; Ctrl+C and Ctrl+V copy and paste rows as a spreadsheet's.");
    const int widths[] = {80, 110, 110, 80, 160, 70, 120, 150, 150};
    for (int c = 0; c < static_cast<int>(std::size(widths)); ++c) table_->setColumnWidth(c, widths[c]);
    tableColumn->addWidget(label("lblShown"));
    tableColumn->addWidget(table_, 1);
    connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
      if (filling_) return;
      std::vector<long long> rows;
      const QModelIndex current = table_->currentIndex();
      if (current.isValid() && table_->selectionModel()->isRowSelected(current.row(), {})) rows.push_back(current.row());
      for (const QModelIndex& r : table_->selectionModel()->selectedRows())
        if (!current.isValid() || r.row() != current.row()) rows.push_back(r.row());
      binder_->run([this, rows] { form().select(rows); });
    });
    map_ = picture("map");
    map_->setParent(split);
    map_->setAccessibleName("Map of the points");
    map_->setMinimumSize(280, 240);
    map_->clicked = [this](PicturePoint at, double tolerance) { binder_->run([this, at, tolerance] { form().mapClicked(at, tolerance); }); };
    split->addWidget(tablePanel);
    split->addWidget(map_);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 2);
    window->addWidget(split, 1);

    auto* edits = new QHBoxLayout;
    field(edits, "lblNew", edit("txtNewNumber"), 80);
    field(edits, "lblNewNorthing", edit("txtNewNorthing"), 110);
    field(edits, "lblNewEasting", edit("txtNewEasting"), 110);
    field(edits, "lblNewElevation", edit("txtNewElevation"), 80);
    field(edits, "lblNewDescription", edit("txtNewDescription"), 160);
    edits->addWidget(button("btnAdd"));
    edits->addStretch();
    window->addLayout(edits);

    auto* changes = new QHBoxLayout;
    changes->addWidget(button("btnDelete"));
    field(changes, "lblOffset", edit("txtOffset"), 80);
    changes->addWidget(button("btnRenumber"));
    changes->addSpacing(16);
    changes->addWidget(button("btnUndo"));
    changes->addWidget(button("btnRedo"));
    changes->addSpacing(16);
    changes->addWidget(button("btnCopy"));
    changes->addWidget(button("btnPaste"));
    changes->addStretch();
    window->addLayout(changes);

    auto* files = new QHBoxLayout;
    field(files, "lblColumns", edit("txtColumns"), 80);
    files->itemAt(1)->widget()->setToolTip("A delimited file's column order (P, N, E, Z and D, such as PNEZD): proposed from its header line");
    field(files, "lblDuplicate", combo("cmbDuplicate", false), 260);
    files->addWidget(button("btnImport"));
    files->addWidget(button("btnExport"));
    files->addStretch();
    files->addWidget(button("btnReturn"));
    window->addLayout(files);
    QLabel* result = label("lblResult");
    result->setWordWrap(true);
    result->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    window->addWidget(result);

    // The keys of every editor: undo, redo, copy and paste, delete.
    const std::pair<QKeySequence, const char*> keys[] = {{QKeySequence::Undo, "btnUndo"},   {QKeySequence::Redo, "btnRedo"},
                                                          {QKeySequence::Copy, "btnCopy"},   {QKeySequence::Paste, "btnPaste"},
                                                          {QKeySequence::Delete, "btnDelete"}};
    for (const auto& [key, control] : keys) {
      auto* shortcut = new QShortcut(key, table_);
      shortcut->setContext(Qt::WidgetShortcut);
      const std::string name = control;
      connect(shortcut, &QShortcut::activated, this, [this, name] { binder_->run([this, name] { form().click(name); }); });
    }
    bind();
    binder_->onRefresh = [this] { refresh(); };
    refresh();
    // Other users' changes of a shared project, looked for while no cell is being edited.
    auto* poll = new QTimer(this);
    connect(poll, &QTimer::timeout, this, [this] {
      const QWidget* focus = QApplication::focusWidget();
      const bool editing = focus && focus != table_ && table_->isAncestorOf(focus);
      if (!editing && form().poll()) binder_->refresh();
    });
    poll->start(frmPoints::kPollMilliseconds);
    resize(1300, 720);
  }

 private:
  frmPoints& form() { return static_cast<frmPoints&>(model_); }

  void refresh() {
    frmPoints& f = form();
    f.rowCount();  // reads the project again where another window changed it
    if (shownVersion_ != f.rowsVersion) {
      shownVersion_ = f.rowsVersion;
      filling_ = true;
      rows_->reset();
      table_->horizontalHeader()->setSortIndicator(f.sortColumn(), f.sortDescending() ? Qt::DescendingOrder : Qt::AscendingOrder);
      filling_ = false;
    }
    // The selection as the model holds it, the current row in sight.
    filling_ = true;
    QItemSelection chosen;
    for (long long r : f.selected)
      chosen.select(rows_->index(static_cast<int>(r), 0), rows_->index(static_cast<int>(r), rows_->columnCount({}) - 1));
    table_->selectionModel()->select(chosen, QItemSelectionModel::ClearAndSelect);
    if (f.currentRow >= 0) {
      const QModelIndex at = rows_->index(static_cast<int>(f.currentRow), 0);
      table_->selectionModel()->setCurrentIndex(at, QItemSelectionModel::NoUpdate);
      table_->scrollTo(at);
    }
    filling_ = false;
    map_->showPicture(f.map());
  }

  QTableView* table_ = nullptr;
  PointsTable* rows_ = nullptr;
  PictureView* map_ = nullptr;
  int shownVersion_ = -1;
  bool filling_ = false;
};

}  // namespace

QDialog* makePointsView(FormModel& m, QtShell& s, QWidget* p) { return new PointsView(m, s, p); }

}  // namespace tervalo
