#include "qt/views.h"

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

namespace tervalo {
namespace {

class CrsView : public FormDialog {
 public:
  CrsView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(option("optNone"));
    layout->addWidget(option("optSystem"));
    QLabel* search = label("lblSearch");
    QLineEdit* searchField = edit("txtSearch");
    search->setBuddy(searchField);
    layout->addWidget(search);
    layout->addWidget(searchField);
    QListWidget* systems = list("lstSystems", false);
    systems->setMinimumHeight(160);
    layout->addWidget(systems, 1);
    layout->addLayout(fieldRow("lblEpsg", "txtEpsg", 100));
    QLabel* system = label("lblSystem");
    system->setWordWrap(true);
    system->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(system);
    QGroupBox* foot = frame("fraFoot");
    auto* feet = new QHBoxLayout(foot);
    feet->addWidget(option("optSystemUnit", foot));
    feet->addWidget(option("optUsFoot", foot));
    feet->addWidget(option("optIntlFoot", foot));
    layout->addWidget(foot);
    layout->addLayout(fieldRow("lblElevation", "txtElevation", 120));
    layout->addLayout(acceptRow("btnOK"));
    setMinimumWidth(560);
    bind();
    resize(600, 600);
  }
};

}  // namespace

QDialog* makeCrsView(FormModel& m, QtShell& s, QWidget* p) { return new CrsView(m, s, p); }

}  // namespace tervalo
