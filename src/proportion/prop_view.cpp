#include "qt/views.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "qt/form_dialog.h"

namespace tervalo {
namespace {

class PropView : public FormDialog {
 public:
  PropView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* outer = new QVBoxLayout(this);
    auto field = [this](QGridLayout* grid, QWidget* parent, int row, const char* caption, const char* name) {
      QLabel* l = label(caption, parent);
      QLineEdit* e = edit(name, parent);
      l->setBuddy(e);
      grid->addWidget(l, row, 0);
      grid->addWidget(e, row, 1);
    };

    QGroupBox* input = frame("frmInput");
    auto* inputGrid = new QGridLayout(input);
    field(inputGrid, input, 0, "lblBegSta", "txtBegSta");
    field(inputGrid, input, 1, "lblBegValue", "txtBegValue");
    field(inputGrid, input, 2, "lblEndSta", "txtEndSta");
    field(inputGrid, input, 3, "lblEndValue", "txtEndValue");
    inputGrid->addWidget(check("chkBetween", input), 4, 0, 1, 2);
    auto* equation = new QHBoxLayout;
    equation->addWidget(label("lblStaIn", input));
    equation->addWidget(edit("txtStaIn", input));
    equation->addWidget(label("lblStaOut", input));
    equation->addWidget(edit("txtStaOut", input));
    inputGrid->addLayout(equation, 5, 0, 1, 2);
    inputGrid->addWidget(check("chkMetric", input), 6, 0, 1, 2);
    outer->addWidget(input);

    QGroupBox* station = frame("frmStation");
    auto* stationGrid = new QGridLayout(station);
    field(stationGrid, station, 0, "lblValue", "txtValue");
    outer->addWidget(station);

    QGroupBox* value = frame("frmValue");
    auto* valueGrid = new QGridLayout(value);
    field(valueGrid, value, 0, "lblFirst", "txtFirst");
    field(valueGrid, value, 1, "lblLast", "txtLast");
    field(valueGrid, value, 2, "lblIncrement", "txtIncrement");
    valueGrid->addWidget(check("chkRound", value), 3, 0, 1, 2);
    outer->addWidget(value);

    QGroupBox* compute = frame("frmCompute");
    compute->setLayout(commandRow("btnCalc", compute));
    outer->addWidget(compute);
    bind();
  }
};

}  // namespace

QDialog* makePropView(FormModel& m, QtShell& s, QWidget* p) { return new PropView(m, s, p); }

}  // namespace tervalo
