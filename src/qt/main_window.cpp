#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QShortcut>

#include "app/frm_main.h"
#include "app/program.h"
#include "qt/binder.h"
#include "qt/form_dialog.h"
#include "qt/qt_shell.h"
#include "qt/views.h"

namespace tervalo {

MainWindow::MainWindow(Program& program, QtShell& shell) : model_(program.form<frmMain>("frmMain")) {
  frmMain& model = model_;
  setObjectName("frmMain");
  auto* central = new QWidget(this);
  auto* grid = new QGridLayout(central);
  const char* rows[][3] = {{"Label1", "txtInFile", "btnInFile"}, {"Label2", "txtOutInp", "btnOut1"},
                           {"Label3", "txtReport", "btnOut2"}};
  for (int r = 0; r < 3; ++r) {
    auto* caption = new QLabel(central);
    caption->setObjectName(rows[r][0]);
    auto* field = new QLineEdit(central);
    field->setObjectName(rows[r][1]);
    field->setMinimumWidth(420);
    field->setAcceptDrops(true);
    field->installEventFilter(this);
    caption->setBuddy(field);
    auto* browse = new QPushButton(central);
    browse->setObjectName(rows[r][2]);
    grid->addWidget(caption, r, 0);
    grid->addWidget(field, r, 1);
    grid->addWidget(browse, r, 2);
  }
  auto* go = new QPushButton(central);
  go->setObjectName("btnContinue");
  go->setDefault(true);
  grid->addWidget(go, 3, 2);
  grid->addWidget(noticeLabel("lblNotice", central), 4, 0, 1, 3);
  auto* project = new QLabel(central);
  project->setObjectName("lblProject");
  project->setWordWrap(true);
  grid->addWidget(project, 5, 0, 1, 3);
  grid->setRowStretch(6, 1);
  setCentralWidget(central);

  // The menu in the model's order; entries with a parent go in its submenu.
  std::map<std::string, QMenu*> submenus;
  for (const ControlEntry& entry : model.controls()) {
    const auto* item = std::get_if<MenuItem*>(&entry.control);
    if (!item) continue;
    const QString name = QString::fromStdString(entry.name);
    const bool isSubmenu = std::any_of(model.controls().begin(), model.controls().end(), [&](const ControlEntry& e) {
      const auto* child = std::get_if<MenuItem*>(&e.control);
      return child && (*child)->parent == entry.name;
    });
    QMenu* parent = (*item)->parent.empty() ? nullptr : submenus[(*item)->parent];
    if (parent && (*item)->separatorBefore) parent->addSeparator();
    if (isSubmenu) {
      QMenu* menu = parent ? parent->addMenu(QString::fromStdString((*item)->caption))
                           : menuBar()->addMenu(QString::fromStdString((*item)->caption));
      menu->setObjectName(name + "Menu");
      menu->menuAction()->setObjectName(name);
      submenus[entry.name] = menu;
    } else {
      auto* action = new QAction(this);
      action->setObjectName(name);
      if (parent)
        parent->addAction(action);
      else
        menuBar()->addAction(action);
    }
  }

  // A calculator whose window this build lacks keeps its entry greyed.
  for (const auto& c : program.registry().calculators())
    if (!shell.hasView(c.form))
      for (const ControlEntry& entry : model.controls())
        if (entry.name == c.menu) std::get<MenuItem*>(entry.control)->enabled = false;
  if (!shell.hasView("frmAbout")) model.mnuHelp.enabled = false;

  binder_ = new Binder(model, *this, shell);
  binder_->onUnload = [this] { close(); };
  nameInputsForScreenReaders(*central);
  // Enter presses Continue, as in the program's other windows their default;
  // F10 opens the menu, as Alt does.
  for (const auto key : {Qt::Key_Return, Qt::Key_Enter})
    connect(new QShortcut(QKeySequence(key), this), &QShortcut::activated, this,
            [this] { binder_->run([this] { model_.click("btnContinue"); }); });
  connect(new QShortcut(QKeySequence(Qt::Key_F10), this), &QShortcut::activated, this, [this] {
    for (QAction* a : menuBar()->actions())
      if (a->isVisible() && a->isEnabled()) {
        menuBar()->setFocus(Qt::ShortcutFocusReason);
        menuBar()->setActiveAction(a);
        return;
      }
  });
  // Wide enough for every menu of the bar: none hides behind its overflow button.
  resize(sizeHint().expandedTo(QSize(std::max(680, menuBar()->sizeHint().width() + 8), 200)));
}

// The binder goes before the widgets, so that their going sends it nothing.
MainWindow::~MainWindow() { delete binder_; }

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove) {
    auto* drag = static_cast<QDropEvent*>(event);
    if (drag->mimeData()->hasUrls()) {
      drag->acceptProposedAction();
      return true;
    }
  } else if (event->type() == QEvent::Drop) {
    auto* drop = static_cast<QDropEvent*>(event);
    std::vector<std::string> files;
    for (const QUrl& url : drop->mimeData()->urls())
      if (url.isLocalFile()) files.push_back(url.toLocalFile().toStdString());
    if (!files.empty()) {
      const std::string name = watched->objectName().toStdString();
      binder_->run([this, name, files] { model_.dropFiles(name, files); });
      drop->acceptProposedAction();
      return true;
    }
  }
  return QMainWindow::eventFilter(watched, event);
}

void MainWindow::restoreLayout() {
  const QSettings settings;
  if (settings.contains("windows/frmMain/geometry")) restoreGeometry(settings.value("windows/frmMain/geometry").toByteArray());
  // A size kept before the menu bar grew (a menu added since) is widened: no menu hides behind the overflow button.
  if (width() < menuBar()->sizeHint().width() + 8) resize(menuBar()->sizeHint().width() + 8, height());
}

void MainWindow::closeEvent(QCloseEvent* event) {
  QSettings().setValue("windows/frmMain/geometry", saveGeometry());
  model_.unload();
  QMainWindow::closeEvent(event);
}

}  // namespace tervalo
