// The small shared windows: About, header data, output options, output preview.

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
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
#include "qt/qt_shell.h"
#include "qt/views.h"

namespace tervalo {
namespace {

class AboutView : public FormDialog {
 public:
  AboutView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* layout = new QVBoxLayout(this);
    QLabel* title = label("lblTitle");
    QFont big = title->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    title->setFont(big);
    layout->addWidget(title);
    layout->addWidget(label("lblVersion"));
    QLabel* rights = label("lblCopyright");
    rights->setWordWrap(true);
    layout->addWidget(rights);
    QLabel* disclaimer = label("lblDisclaimer");
    disclaimer->setWordWrap(true);
    // Wrapped texts take the height their width needs, never clipped.
    for (QLabel* text : {rights, disclaimer}) text->setMinimumWidth(500);
    layout->setSizeConstraint(QLayout::SetMinimumSize);
    disclaimer->setFrameShape(QFrame::StyledPanel);
    disclaimer->setMargin(6);
    layout->addWidget(disclaimer);
    layout->addWidget(label("lblSupport"));
    auto* row = new QHBoxLayout;
    row->addStretch();
    QPushButton* ok = button("cmdOK");
    ok->setDefault(true);
    row->addWidget(ok);
    layout->addLayout(row);
    setMinimumWidth(460);
    bind();
  }
};

class HeaderView : public FormDialog {
 public:
  HeaderView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    const std::pair<const char*, QWidget*> rows[] = {
        {"lblSP", edit("txtSP")},           {"lblTH", edit("txtTH")},
        {"lblDate", edit("txtDate")},       {"lblCounty", combo("cmbCounty", true)},
        {"lblOperator", edit("txtOperator")}, {"lblHDatum", combo("cmbHDatum", true)},
        {"lblVDatum", combo("cmbVDatum", true)}, {"lblComment", edit("txtComment")}};
    for (const auto& [caption, field] : rows) {
      QLabel* l = label(caption);
      l->setBuddy(field);
      form->addRow(l, field);
    }
    layout->addLayout(form);
    layout->addWidget(check("chkIncludePath"));
    layout->addLayout(acceptRow("btnSave"));
    setMinimumWidth(480);
    bind();
  }
};

// Who signs the open project's plats.
class SurveyorView : public FormDialog {
 public:
  SurveyorView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    for (const auto& [caption, field] : {std::pair{"lblSurveyor", "txtSurveyor"}, {"lblLicense", "txtLicense"}, {"lblFirm", "txtFirm"}}) {
      QLabel* l = label(caption);
      QLineEdit* e = edit(field);
      l->setBuddy(e);
      form->addRow(l, e);
    }
    layout->addLayout(form);
    layout->addLayout(acceptRow("btnOK"));
    setMinimumWidth(420);
    bind();
  }
};

class SharedProjectView : public FormDialog {
 public:
  SharedProjectView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* layout = new QVBoxLayout(this);
    auto* row = new QHBoxLayout;
    QLabel* l = label("lblConnection");
    QLineEdit* e = edit("txtConnection");
    l->setBuddy(e);
    row->addWidget(l);
    row->addWidget(e, 1);
    layout->addLayout(row);
    QLabel* help = label("lblHelp");
    help->setWordWrap(true);
    layout->addWidget(help);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    QPushButton* open = button("btnOpen");
    open->setDefault(true);
    buttons->addWidget(open);
    buttons->addWidget(button("btnNew"));
    buttons->addWidget(button("btnCancel"));
    layout->addLayout(buttons);
    setMinimumWidth(560);
    bind();
  }
};

class SetOptionsView : public FormDialog {
 public:
  SetOptionsView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* grid = new QGridLayout(this);
    grid->addWidget(label("lblCoordSys"), 0, 0);
    grid->addWidget(edit("txtOutputCS"), 0, 1);
    grid->addWidget(label("lblAdjustment"), 1, 0, Qt::AlignTop);
    QListWidget* adjustments = list("lstOutAdj", false);
    adjustments->setMaximumHeight(90);
    grid->addWidget(adjustments, 1, 1);
    grid->addWidget(label("lblUnits"), 2, 0);
    auto* units = new QHBoxLayout;
    units->addWidget(option("optEnglish"));
    units->addWidget(option("optMetric"));
    units->addStretch();
    grid->addLayout(units, 2, 1);
    QGroupBox* sort = frame("frameSort");
    auto* sortLayout = new QVBoxLayout(sort);
    sortLayout->addWidget(label("lblSortText", sort));
    for (const char* name : {"optNoSort", "optPdSort", "optPnSort"}) sortLayout->addWidget(option(name, sort));
    grid->addWidget(sort, 3, 0, 1, 2);
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(button("btnContinue"));
    row->addWidget(button("btnCancel"));
    grid->addLayout(row, 4, 0, 1, 2);
    bind();
  }
};

class OutputView : public FormDialog {
 public:
  OutputView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* layout = new QVBoxLayout(this);
    QListWidget* lines = list("lstOutput", true);
    lines->setMinimumSize(QFontMetrics(fixedPitchFont()).horizontalAdvance(QString(82, 'M')), 360);
    layout->addWidget(lines);
    layout->addLayout(outputFileRow(true));
    bind();
  }
};

}  // namespace

// How many earlier output files the history keeps: one number, OK or Cancel.
class HistoryView : public FormDialog {
 public:
  HistoryView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* layout = new QVBoxLayout(this);
    auto* row = new QHBoxLayout;
    QLabel* keep = label("lblKeep");
    QLineEdit* files = edit("txtKeep");
    keep->setBuddy(files);
    files->setMaximumWidth(QFontMetrics(files->font()).horizontalAdvance("0000000") + 16);
    row->addWidget(keep);
    row->addWidget(files);
    row->addStretch();
    layout->addLayout(row);
    QLabel* what = label("lblFiles");
    what->setWordWrap(true);
    layout->addWidget(what);
    layout->addLayout(acceptRow("btnOK"));
    setMinimumWidth(420);
    bind();
  }
};

QDialog* makeAboutView(FormModel& m, QtShell& s, QWidget* p) { return new AboutView(m, s, p); }
QDialog* makeHistoryView(FormModel& m, QtShell& s, QWidget* p) { return new HistoryView(m, s, p); }
QDialog* makeHeaderView(FormModel& m, QtShell& s, QWidget* p) { return new HeaderView(m, s, p); }

QDialog* makeSurveyorView(FormModel& m, QtShell& s, QWidget* p) { return new SurveyorView(m, s, p); }
QDialog* makeSharedProjectView(FormModel& m, QtShell& s, QWidget* p) { return new SharedProjectView(m, s, p); }
QDialog* makeSetOptionsView(FormModel& m, QtShell& s, QWidget* p) { return new SetOptionsView(m, s, p); }
QDialog* makeOutputView(FormModel& m, QtShell& s, QWidget* p) { return new OutputView(m, s, p); }

}  // namespace tervalo
