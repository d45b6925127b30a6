#include "qt/binder.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QScrollArea>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QPalette>
#include <QPointer>
#include <QSignalBlocker>
#include <QTimer>
#include <QUrl>

#include <filesystem>

#include <algorithm>

#include "app/form_model.h"
#include "qt/qt_shell.h"
#include "text/errors.h"

namespace tervalo {
namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

QStringList texts(const std::vector<std::string>& items) {
  QStringList list;
  for (const auto& i : items) list << q(i);
  return list;
}

// Replaces a list's or combo's rows only when they differ, keeping the
// user's place in it otherwise.
template <class W, class Text>
void setRows(W* w, const std::vector<std::string>& items, Text rowText) {
  const QStringList wanted = texts(items);
  QStringList shown;
  for (int i = 0; i < w->count(); ++i) shown << rowText(i);
  if (shown == wanted) return;
  w->clear();
  w->addItems(wanted);
}

void setCommon(QWidget* w, bool visible, bool enabled) {
  // A hidden parent hides its children whatever they say; only ask for what the model says.
  if (w->isVisibleTo(w->parentWidget()) != visible) w->setVisible(visible);
  w->setEnabled(enabled);
}

}  // namespace

template <class W>
W* Binder::control(const std::string& name) {
  if (const auto at = found_.find(name); at != found_.end() && at->second) return qobject_cast<W*>(at->second.data());
  W* object = root_.findChild<W*>(q(name));
  if (object) found_[name] = object;
  return object;
}

Binder::Binder(FormModel& model, QWidget& root, QtShell& shell) : QObject(&root), model_(model), root_(root), shell_(shell) {
  for (const ControlEntry& entry : model_.controls()) {
    const std::string name = entry.name;
    if (std::holds_alternative<TextBox*>(entry.control)) {
      if (auto* edit = control<QLineEdit>(name)) {
        connect(edit, &QLineEdit::textEdited, this, [this, name](const QString& text) {
          run([this, name, text] { model_.editText(name, text.toStdString()); });
        });
        edit->installEventFilter(this);
      }
    } else if (std::holds_alternative<CheckBox*>(entry.control)) {
      if (auto* box = control<QCheckBox>(name))
        connect(box, &QCheckBox::clicked, this, [this, name](bool checked) { run([=, this] { model_.setChecked(name, checked); }); });
    } else if (std::holds_alternative<OptionButton*>(entry.control)) {
      if (auto* option = control<QRadioButton>(name)) {
        option->setAutoExclusive(false);  // the model keeps its groups
        connect(option, &QRadioButton::clicked, this, [this, name] { run([=, this] { model_.setChecked(name, true); }); });
        option->installEventFilter(this);  // arrow keys move within the group
      }
    } else if (std::holds_alternative<ComboBox*>(entry.control)) {
      if (auto* combo = control<QComboBox>(name))
        connect(combo, &QComboBox::currentTextChanged, this,
                [this, name](const QString& text) { run([=, this] { model_.typeText(name, text.toStdString()); }); });
    } else if (std::holds_alternative<Button*>(entry.control)) {
      if (auto* button = control<QPushButton>(name))
        connect(button, &QPushButton::clicked, this, [this, name] { run([=, this] { model_.click(name); }); });
    } else if (std::holds_alternative<MenuItem*>(entry.control)) {
      if (auto* action = control<QAction>(name))
        connect(action, &QAction::triggered, this, [this, name] { run([=, this] { model_.click(name); }); });
    } else if (std::holds_alternative<ListBox*>(entry.control)) {
      if (auto* list = control<QListWidget>(name))
        connect(list, &QListWidget::currentRowChanged, this,
                [this, name](int row) { run([=, this] { model_.selectItem(name, row); }); });
    }
  }
  refresh();
}

bool Binder::eventFilter(QObject* watched, QEvent* event) {
  // An option group is one tab stop; the arrow keys choose within it.
  if (event->type() == QEvent::KeyPress && qobject_cast<QRadioButton*>(watched)) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    const int step = key == Qt::Key_Left || key == Qt::Key_Up ? -1 : key == Qt::Key_Right || key == Qt::Key_Down ? 1 : 0;
    if (step != 0) {
      const std::string name = watched->objectName().toStdString();
      const ControlEntry* self = model_.find(name);
      std::vector<std::string> group;
      for (const ControlEntry& e : model_.controls())
        if (std::holds_alternative<OptionButton*>(e.control) && e.group == self->group && controlVisible(e.control) &&
            controlEnabled(e.control))
          group.push_back(e.name);
      const auto at = std::find(group.begin(), group.end(), name) - group.begin();
      const auto count = static_cast<std::ptrdiff_t>(group.size());
      const std::string target = group[static_cast<std::size_t>(((at + step) % count + count) % count)];
      run([this, target] { model_.setChecked(target, true); });
      if (auto* w = control<QRadioButton>(target)) w->setFocus(Qt::TabFocusReason);
      return true;
    }
  }
  // Leaving the field, not the window: a box or another program taking the
  // focus is no lost-focus event.
  if (event->type() == QEvent::FocusOut && static_cast<QFocusEvent*>(event)->reason() != Qt::ActiveWindowFocusReason &&
      static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
    const std::string name = watched->objectName().toStdString();
    run([this, name] { model_.lostFocus(name); });
  }
  return QObject::eventFilter(watched, event);
}

void Binder::run(const std::function<void()>& event) {
  try {
    event();
  } catch (const ProgramEnd&) {
    shell_.programEnded();
    return;
  }
  refresh();
  if (!model_.isOpen() && onUnload) onUnload();
}

// The window's buttons and menu bar share one set of letters, each menu has
// its own; buttons and menu entries choose first, then boxes and options.
void Binder::markMnemonics() {
  std::map<std::string, Captioned> scopes;
  for (int pass = 0; pass < 2; ++pass)
    for (const ControlEntry& entry : model_.controls()) {
      if (!controlVisible(entry.control)) continue;
      if (const auto* button = std::get_if<Button*>(&entry.control); button && pass == 0)
        scopes[""].emplace_back(entry.name, (*button)->caption);
      if (const auto* item = std::get_if<MenuItem*>(&entry.control); item && pass == 0)
        scopes[(*item)->parent].emplace_back(entry.name, (*item)->caption);
      if (pass == 1 && (std::holds_alternative<CheckBox*>(entry.control) || std::holds_alternative<OptionButton*>(entry.control)))
        scopes[""].emplace_back(entry.name, controlText(entry.control));
    }
  // Letters are matched again only when a caption or what is shown has changed, not at every keystroke.
  if (scopes == markedFor_) return;
  markedFor_ = std::move(scopes);
  marked_.clear();
  for (const auto& [scope, captioned] : markedFor_) marked_.merge(tervalo::markMnemonics(captioned));
}

// What the model says of a field: its tip, in its empty field in place of
// the hint, and a ground tinted toward the notices' amber; otherwise the
// tip is the text, so a text wider than its field reads in full.
void Binder::showNote(QLineEdit& w, const QString& note) {
  if (!w.property("tervaloHint").isValid()) w.setProperty("tervaloHint", w.placeholderText());
  w.setToolTip(note.isEmpty() ? w.text() : note);
  w.setPlaceholderText(note.isEmpty() || !w.text().isEmpty() ? w.property("tervaloHint").toString() : note);
  const bool tinted = w.property("tervaloNoted").toBool();
  if (tinted == !note.isEmpty()) return;
  w.setProperty("tervaloNoted", !note.isEmpty());
  QPalette palette = root_.palette();
  if (!note.isEmpty()) {
    const QColor base = palette.color(QPalette::Base), amber(0xd3, 0x9e, 0x00);
    palette.setColor(QPalette::Base, QColor::fromRgbF(base.redF() * 0.7f + amber.redF() * 0.3f,
                                                      base.greenF() * 0.7f + amber.greenF() * 0.3f,
                                                      base.blueF() * 0.7f + amber.blueF() * 0.3f));
  }
  w.setPalette(palette);
}

// A caption as plain text; the files it names as links, each opening its folder.
void Binder::showCaption(QLabel& w, const Label& label) {
  if (label.links.empty()) {
    w.setTextFormat(Qt::PlainText);
    w.setText(q(label.caption));
    return;
  }
  QString html = q(label.caption).toHtmlEscaped();
  for (const std::string& file : label.links) {
    const QString name = q(file).toHtmlEscaped();
    html.replace(name, "<a href=\"" + QUrl::fromLocalFile(q(file)).toString().toHtmlEscaped() + "\">" + name + "</a>");
  }
  html.replace("\n", "<br>");
  w.setTextFormat(Qt::RichText);
  w.setText(html);
  w.setTextInteractionFlags(w.textInteractionFlags() | Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  if (!w.property("tervaloLinks").toBool()) {
    w.setProperty("tervaloLinks", true);
    connect(&w, &QLabel::linkActivated, this, [this](const QString& link) {
      shell_.openFolder(std::filesystem::path(QUrl(link).toLocalFile().toStdString()).parent_path());
    });
  }
}

void Binder::refresh() {
  root_.setWindowTitle(q(model_.caption));
  markMnemonics();
  for (const ControlEntry& entry : model_.controls()) {
    const std::string& name = entry.name;
    std::visit(
        [&](auto* c) {
          using T = std::decay_t<decltype(*c)>;
          if constexpr (std::is_same_v<T, TextBox>) {
            if (auto* w = control<QLineEdit>(name)) {
              const QSignalBlocker block(w);
              if (w->text() != q(c->text)) {
                w->setText(q(c->text));
                if (!w->hasFocus()) w->setCursorPosition(0);  // a filled field shows its start
              }
              showNote(*w, q(model_.noteFor(entry)));
              setCommon(w, c->visible, c->enabled);
            }
          } else if constexpr (std::is_same_v<T, Label>) {
            if (auto* w = control<QLabel>(name)) {
              showCaption(*w, *c);
              setCommon(w, c->visible, c->enabled);
            }
          } else if constexpr (std::is_same_v<T, Frame>) {
            if (auto* w = control<QGroupBox>(name)) {
              w->setTitle(q(c->caption));
              setCommon(w, c->visible, c->enabled);
            }
          } else if constexpr (std::is_same_v<T, CheckBox> || std::is_same_v<T, OptionButton>) {
            if (auto* w = control<QAbstractButton>(name)) {
              const QSignalBlocker block(w);
              w->setText(q(marked_.count(name) ? marked_.at(name) : c->caption));
              w->setChecked(c->checked);
              // An option group is one tab stop: the chosen option.
              if constexpr (std::is_same_v<T, OptionButton>) w->setFocusPolicy(c->checked ? Qt::StrongFocus : Qt::ClickFocus);
              setCommon(w, c->visible, c->enabled);
            }
          } else if constexpr (std::is_same_v<T, ComboBox>) {
            if (auto* w = control<QComboBox>(name)) {
              const QSignalBlocker block(w);
              setRows(w, c->items, [w](int i) { return w->itemText(i); });
              if (w->isEditable())
                w->setEditText(q(c->text));
              else
                w->setCurrentText(q(c->text));
              setCommon(w, c->visible, c->enabled);
            }
          } else if constexpr (std::is_same_v<T, ListBox>) {
            if (auto* w = control<QListWidget>(name)) {
              const QSignalBlocker block(w);
              setRows(w, c->items, [w](int i) { return w->item(i)->text(); });
              if (c->selected != w->currentRow()) {
                w->setCurrentRow(c->selected);
                if (QListWidgetItem* row = w->currentItem()) w->scrollToItem(row);  // the chosen row in sight
              }
              setCommon(w, c->visible, c->enabled);
            }
          } else if constexpr (std::is_same_v<T, Button>) {
            if (auto* w = control<QPushButton>(name)) {
              w->setText(q(marked_.count(name) ? marked_.at(name) : c->caption));
              setCommon(w, c->visible, c->enabled);
            }
          } else if constexpr (std::is_same_v<T, MenuItem>) {
            if (auto* a = control<QAction>(name)) {
              a->setText(q(marked_.count(name) ? marked_.at(name) : c->caption));
              a->setVisible(c->visible);
              a->setEnabled(c->enabled);
            }
          }
        },
        entry.control);
  }
  if (!model_.focusRequest.empty()) {
    if (auto* w = control<QWidget>(model_.focusRequest)) {
      // After the focus change under way (a Tab that left the field) has
      // ended: the cursor waits in the field, its text selected, so typing
      // on mends it rather than filling the fields after it.
      const QPointer<QWidget> field(w);
      QTimer::singleShot(0, w, [field] {
        if (!field) return;
        field->setFocus(Qt::OtherFocusReason);
        if (auto* edit = qobject_cast<QLineEdit*>(field.data())) edit->selectAll();
        for (QWidget* p = field->parentWidget(); p; p = p->parentWidget())
          if (auto* scroll = qobject_cast<QScrollArea*>(p)) scroll->ensureWidgetVisible(field);
      });
    }
    model_.focusRequest.clear();
  }
  if (onRefresh) onRefresh();
}

}  // namespace tervalo
