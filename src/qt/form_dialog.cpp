#include "qt/form_dialog.h"

#include <QHeaderView>
#include <QTableWidget>

#include "qt/picture_files.h"
#include "qt/qt_shell.h"
#include "qt/picture_view.h"
#include "text/errors.h"

#include <QCheckBox>
#include <QScrollArea>
#include <QSettings>
#include <algorithm>
#include <QSplitter>
#include <QCloseEvent>
#include <QComboBox>
#include <QFontDatabase>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>

#include "app/form_model.h"

namespace tervalo {
namespace {

template <class W>
W* named(const char* name, QWidget* parent, QWidget* fallback) {
  auto* w = new W(parent ? parent : fallback);
  w->setObjectName(QString::fromLatin1(name));
  return w;
}

}  // namespace

namespace {

// The notice's frame is a style sheet, and a style sheet costs its widget a
// style of its own: it is put on the first time the notice shows, so that a
// window with nothing to say opens without it.
class NoticeLabel : public QLabel {
 public:
  using QLabel::QLabel;
  void setVisible(bool visible) override {
    // The window's own ground and text, an amber frame: no tint of its own to fight a dark theme.
    if (visible && styleSheet().isEmpty())
      setStyleSheet("QLabel { border: 1px solid #d39e00; border-left: 6px solid #d39e00; padding: 6px; }");
    QLabel::setVisible(visible);
  }
};

}  // namespace

QLabel* noticeLabel(const char* name, QWidget* parent) {
  auto* l = new NoticeLabel(parent);
  l->setObjectName(name);
  l->setWordWrap(true);
  l->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  l->setFocusPolicy(Qt::StrongFocus);  // reachable by Tab, so a keyboard user reads and copies it too
  l->setVisible(false);
  return l;
}

QFont fixedPitchFont() {
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  if (QFontInfo(font).fixedPitch()) return font;
  // Some systems name a system fixed font that the font matcher does not
  // take as fixed-pitch; the first common monospace family that is keeps
  // the columns.
  for (const char* family : {"DejaVu Sans Mono", "Liberation Mono", "Noto Mono", "Monospace", "Courier New"}) {
    QFont candidate = font;
    candidate.setFamily(family);
    candidate.setStyleHint(QFont::TypeWriter);
    candidate.setFixedPitch(true);
    if (QFontInfo(candidate).fixedPitch()) return candidate;
  }
  font.setStyleHint(QFont::TypeWriter);
  font.setFixedPitch(true);
  return font;
}

FormDialog::FormDialog(FormModel& model, QtShell& shell, QWidget* parent) : QDialog(parent), model_(model), shell_(shell) {
  setObjectName(QString::fromStdString(model.name()));
  setModal(true);
}

// The binder goes before the widgets, so that their going sends it nothing.
FormDialog::~FormDialog() { delete binder_; }

void FormDialog::bind() {
  binder_ = new Binder(model_, *this, shell_);
  binder_->onUnload = [this] { accept(); };
  nameInputsForScreenReaders(*this);
}

void FormDialog::reject() {
  if (model_.find("btnReturn") && binder_)
    binder_->run([this] { model_.click("btnReturn"); });
  else
    QDialog::reject();
}

namespace {

// Where a widget stands for reading: the frames it lies in, outermost
// first, then itself; each a (row band, column) pair in window pixels.
std::vector<std::pair<int, int>> readingKey(const QWidget& root, const QWidget* w) {
  std::vector<std::pair<int, int>> key;
  for (const QWidget* p = w; p && p != &root; p = p->parentWidget())
    // A frame, a scrolled form or one side of a splitter is read whole before what lies beside it.
    if (p == w || qobject_cast<const QGroupBox*>(p) || qobject_cast<const QScrollArea*>(p) ||
        (p->parentWidget() && qobject_cast<const QSplitter*>(p->parentWidget()))) {
      const QPoint at = p->mapTo(&root, QPoint(0, 0));
      key.insert(key.begin(), {at.y() / 12, at.x()});
    }
  return key;
}

}  // namespace

QWidget* setReadingTabOrder(QWidget& root) {
  std::vector<QWidget*> inputs;
  for (QWidget* w : root.findChildren<QWidget*>())
    if (!w->objectName().isEmpty() && (w->focusPolicy() & Qt::TabFocus) &&
        (qobject_cast<QLineEdit*>(w) || qobject_cast<QComboBox*>(w) || qobject_cast<QAbstractButton*>(w) ||
         qobject_cast<QAbstractItemView*>(w)))  // lists and tables
      inputs.push_back(w);
  std::stable_sort(inputs.begin(), inputs.end(),
                   [&root](const QWidget* a, const QWidget* b) { return readingKey(root, a) < readingKey(root, b); });
  for (std::size_t i = 1; i < inputs.size(); ++i) QWidget::setTabOrder(inputs[i - 1], inputs[i]);
  for (QWidget* w : inputs)
    if (w->isEnabled() && w->isVisibleTo(&root)) return w;
  return nullptr;
}

void nameInputsForScreenReaders(QWidget& root) {
  for (QLabel* label : root.findChildren<QLabel*>()) {
    QWidget* input = label->buddy();
    if (!input) continue;
    QString name = label->text().remove('&');
    if (name.size() <= 2)  // "X", "Y": said with their frame
      if (auto* frame = qobject_cast<QGroupBox*>(input->parentWidget())) name = frame->title() + " " + name;
    input->setAccessibleName(name);
  }
  for (QLineEdit* edit : root.findChildren<QLineEdit*>())
    if (edit->accessibleName().isEmpty() && !edit->placeholderText().isEmpty()) {
      auto* frame = qobject_cast<QGroupBox*>(edit->parentWidget());
      edit->setAccessibleName((frame ? frame->title() + " " : QString()) + edit->placeholderText());
    }
}

void FormDialog::closeEvent(QCloseEvent* event) {
  keepLayout();
  model_.unload();
  QDialog::closeEvent(event);
}

void FormDialog::done(int result) {
  keepLayout();
  QDialog::done(result);
}

void FormDialog::showEvent(QShowEvent* event) {
  if (!restored_) {
    restored_ = true;
    // Once laid out, when positions are known; the cursor starts in the first input.
    if (QWidget* first = setReadingTabOrder(*this)) first->setFocus(Qt::TabFocusReason);
    const QSettings settings;
    const QString key = "windows/" + objectName();
    if (settings.contains(key + "/geometry")) restoreGeometry(settings.value(key + "/geometry").toByteArray());
    for (QSplitter* splitter : findChildren<QSplitter*>())
      if (settings.contains(key + "/" + splitter->objectName())) splitter->restoreState(settings.value(key + "/" + splitter->objectName()).toByteArray());
  }
  QDialog::showEvent(event);
}

void FormDialog::keepLayout() {
  if (!restored_) return;  // never shown: nothing of the user's to keep
  QSettings settings;
  const QString key = "windows/" + objectName();
  settings.setValue(key + "/geometry", saveGeometry());
  for (QSplitter* splitter : findChildren<QSplitter*>()) settings.setValue(key + "/" + splitter->objectName(), splitter->saveState());
}

QLineEdit* FormDialog::edit(const char* name, QWidget* parent) { return named<QLineEdit>(name, parent, this); }
PictureView* FormDialog::picture(const char* name) {
  auto* view = new PictureView(this);
  view->setObjectName(name);
  view->setContextMenuPolicy(Qt::DefaultContextMenu);
  view->save = [this](const Picture& shown) {
    const auto file = shell_.chooseFile(FileDialog::Save, "Save Picture As", "picture.svg",
                                        {kPictureFilters[0], kPictureFilters[1], kPictureFilters[2]});
    if (!file || file->empty()) return;
    try {
      writePictureFile(shown, *file, font());
      shell_.fileWritten(std::filesystem::absolute(*file));
    } catch (const RunTimeError& e) {
      shell_.msgBox("Save Picture As", e.what(), Icon::Exclamation, Buttons::Ok);
    }
  };
  return view;
}

QLabel* FormDialog::label(const char* name, QWidget* parent) { return named<QLabel>(name, parent, this); }
QPushButton* FormDialog::button(const char* name, QWidget* parent) {
  auto* b = named<QPushButton>(name, parent, this);
  b->setAutoDefault(false);
  return b;
}
QCheckBox* FormDialog::check(const char* name, QWidget* parent) { return named<QCheckBox>(name, parent, this); }
QRadioButton* FormDialog::option(const char* name, QWidget* parent) { return named<QRadioButton>(name, parent, this); }
QComboBox* FormDialog::combo(const char* name, bool editable, QWidget* parent) {
  auto* c = named<QComboBox>(name, parent, this);
  c->setEditable(editable);
  c->setInsertPolicy(QComboBox::NoInsert);
  return c;
}
QListWidget* FormDialog::list(const char* name, bool fixedPitch, QWidget* parent) {
  auto* l = named<QListWidget>(name, parent, this);
  if (fixedPitch) l->setFont(fixedPitchFont());
  return l;
}
QHBoxLayout* FormDialog::fieldRow(std::initializer_list<std::pair<const char*, const char*>> fields, int width) {
  auto* r = new QHBoxLayout;
  for (const auto& [caption, field] : fields) {
    QLabel* l = label(caption);
    QLineEdit* e = edit(field);
    if (width > 0) e->setMaximumWidth(width);
    l->setBuddy(e);
    r->addWidget(l);
    r->addWidget(e, width > 0 ? 0 : 1);
  }
  return r;
}

QTableWidget* FormDialog::cellTable(const char* name, const QString& accessible, const QStringList& headers,
                                    std::function<void(int, int, const std::string&)> setCell, std::function<void(int)> current,
                                    const bool* filling) {
  auto* table = new QTableWidget(this);
  table->setObjectName(name);
  table->setAccessibleName(accessible);
  table->setColumnCount(static_cast<int>(headers.size()));
  table->setHorizontalHeaderLabels(headers);
  table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  connect(table, &QTableWidget::itemChanged, this, [this, setCell, filling](QTableWidgetItem* item) {
    if (*filling) return;
    binder_->run([item, setCell] { setCell(item->row(), item->column(), item->text().trimmed().toStdString()); });
  });
  connect(table, &QTableWidget::currentCellChanged, this, [current, filling](int r) {
    if (!*filling) current(r);
  });
  return table;
}

QGroupBox* FormDialog::frame(const char* name, QWidget* parent) { return named<QGroupBox>(name, parent, this); }

QHBoxLayout* FormDialog::outputNameRow() {
  auto* row = new QHBoxLayout;
  QLabel* caption = label("lblOut");
  QLineEdit* name = edit("txtOut");
  name->setMinimumWidth(280);  // room to read the folder as well as the name
  caption->setBuddy(name);
  row->addWidget(caption);
  row->addWidget(name, 1);
  row->addWidget(button("btnOut"));
  return row;
}

QLayout* FormDialog::outputFileRow(bool withReturn) {
  QHBoxLayout* row = outputNameRow();
  row->addWidget(button("btnOutput"));
  if (model_.find("btnPrint")) row->addWidget(button("btnPrint"));
  if (withReturn) row->addWidget(button("btnReturn"));
  return row;
}

QHBoxLayout* FormDialog::fieldRow(const char* caption, const char* field, int fieldWidth) {
  auto* row = new QHBoxLayout;
  QLabel* l = label(caption);
  QLineEdit* e = edit(field);
  e->setMaximumWidth(fieldWidth);
  l->setBuddy(e);
  row->addWidget(l);
  row->addWidget(e);
  row->addStretch();
  return row;
}

QHBoxLayout* FormDialog::resultRow(const char* name, const char* said) {
  auto* row = new QHBoxLayout;
  QPushButton* go = button(name);
  go->setDefault(true);
  row->addWidget(go);
  QLabel* result = label(said);
  result->setWordWrap(true);
  result->setTextInteractionFlags(Qt::TextSelectableByMouse);
  row->addWidget(result, 1);
  return row;
}

QHBoxLayout* FormDialog::acceptRow(const char* accept) {
  auto* row = new QHBoxLayout;
  row->addStretch();
  QPushButton* ok = button(accept);
  ok->setDefault(true);
  row->addWidget(ok);
  row->addWidget(button("btnCancel"));
  return row;
}

QLayout* FormDialog::commandRow(const char* calculate, QWidget* parent) {
  auto* row = new QHBoxLayout;
  QPushButton* go = button(calculate, parent);
  go->setDefault(true);
  row->addWidget(go);
  row->addWidget(button("btnClear", parent));
  row->addStretch();
  // The window's inputs kept in a file of the user's.
  row->addWidget(button("btnOpenInputs", parent));
  row->addWidget(button("btnSaveInputs", parent));
  row->addWidget(button("btnReturn", parent));
  return row;
}

}  // namespace tervalo
