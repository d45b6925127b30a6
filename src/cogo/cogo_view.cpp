#include "qt/views.h"

#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

#include "cogo/frm_cogo.h"
#include "qt/binder.h"
#include "qt/form_dialog.h"
#include "qt/picture_view.h"

namespace tervalo {
namespace {

class CogoView : public FormDialog {
 public:
  CogoView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* window = new QHBoxLayout(this);
    auto* left = new QVBoxLayout;
    window->addLayout(left, 3);
    QLabel* project = label("lblProject");
    project->setWordWrap(true);
    left->addWidget(project);

    // The command line: Enter runs it.
    auto* line = new QHBoxLayout;
    QLabel* caption = label("lblCommand");
    QLineEdit* command = edit("txtCommand");
    command->setPlaceholderText("INVERSE 101 102");
    command->setToolTip("A COGO command, as the README lists them: INVERSE, LOCATE, INTERSECT, STATION, POINTAT, DIVIDE, AREA, MAPCHECK, POINT");
    caption->setBuddy(command);
    watch(command);
    line->addWidget(caption);
    line->addWidget(command, 1);
    QPushButton* run = button("btnRun");
    run->setDefault(true);
    line->addWidget(run);
    left->addLayout(line);

    // The same commands as small forms.
    QGroupBox* box = new QGroupBox(this);
    auto* grid = new QGridLayout(box);
    QLabel* formCaption = label("lblForm", box);
    QComboBox* forms = combo("cmbForm", false, box);
    formCaption->setBuddy(forms);
    grid->addWidget(formCaption, 0, 0);
    grid->addWidget(forms, 0, 1, 1, 3);
    for (std::size_t i = 0; i < frmCogo::kFields; ++i) {
      const std::string n = std::to_string(i + 1);
      QLabel* l = label(("lblField" + n).c_str(), box);
      QLineEdit* e = edit(("txtField" + n).c_str(), box);
      l->setBuddy(e);
      watch(e);
      const int row = 1 + static_cast<int>(i) / 2, column = static_cast<int>(i % 2) * 2;
      grid->addWidget(l, row, column);
      grid->addWidget(e, row, column + 1);
    }
    grid->addWidget(button("btnFormRun", box), 4, 3, Qt::AlignRight);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    left->addWidget(box);

    auto* options = new QHBoxLayout;
    QLabel* seconds = label("lblSeconds");
    QComboBox* places = combo("cmbSeconds", false);
    seconds->setBuddy(places);
    options->addWidget(seconds);
    options->addWidget(places);
    options->addStretch();
    left->addLayout(options);
    QListWidget* log = list("lstLog", true);
    log->setAccessibleName("COGO log");
    left->addWidget(log, 1);
    QLabel* result = label("lblResult");
    result->setWordWrap(true);
    left->addWidget(result);
    auto* buttons = new QHBoxLayout;
    for (const char* name : {"btnUndo", "btnClearLog", "btnSaveLog", "btnPrint"}) buttons->addWidget(button(name));
    buttons->addStretch();
    buttons->addWidget(button("btnReturn"));
    left->addLayout(buttons);

    map_ = picture("map");
    map_->setAccessibleName("Map of the project's points");
    map_->setMinimumSize(320, 260);
    map_->clicked = [this](PicturePoint at, double tolerance) { binder_->run([this, at, tolerance] { form().mapClicked(at, tolerance); }); };
    window->addWidget(map_, 2);
    bind();
    binder_->onRefresh = [this] { map_->showPicture(form().map()); };
    binder_->onRefresh();
    resize(1240, 700);
  }

 protected:
  // The field the cursor went to is where a click on the map puts a point's number.
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::FocusIn) form().pickInto = watched->objectName().toStdString();
    return FormDialog::eventFilter(watched, event);
  }

 private:
  frmCogo& form() { return static_cast<frmCogo&>(model_); }
  void watch(QLineEdit* field) { field->installEventFilter(this); }
  PictureView* map_ = nullptr;
};

}  // namespace

QDialog* makeCogoView(FormModel& m, QtShell& s, QWidget* p) { return new CogoView(m, s, p); }

}  // namespace tervalo
