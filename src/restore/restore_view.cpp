#include "qt/views.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "qt/binder.h"
#include "qt/form_dialog.h"
#include "qt/picture_view.h"
#include "restore/frm_restore.h"

namespace tervalo {
namespace {

class RestoreView : public FormDialog {
 public:
  RestoreView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto& form = static_cast<frmRestore&>(model_);
    auto* window = new QHBoxLayout(this);
    auto* left = new QVBoxLayout;
    window->addLayout(left, 3);
    auto* sketch = picture("sketch");
    window->addWidget(sketch, 2);

    auto* source = new QHBoxLayout;
    QLabel* sourceCaption = label("lblSource");
    QLineEdit* sourceName = edit("txtSource");
    sourceCaption->setBuddy(sourceName);
    source->addWidget(sourceCaption);
    source->addWidget(sourceName, 1);
    source->addWidget(button("btnSource"));
    left->addLayout(source);
    auto* frameRow = new QHBoxLayout;
    frameRow->addWidget(option("optFeet"));
    frameRow->addWidget(option("optMetres"));
    QLabel* basis = label("lblBasis");
    QLineEdit* basisField = edit("txtBasis");
    basisField->setMaximumWidth(110);
    basis->setBuddy(basisField);
    frameRow->addSpacing(20);
    frameRow->addWidget(basis);
    frameRow->addWidget(basisField);
    frameRow->addStretch();
    left->addLayout(frameRow);
    auto* systemRow = new QHBoxLayout;
    systemRow->addWidget(check("chkTrueNorth"));
    systemRow->addSpacing(20);
    systemRow->addWidget(label("lblCrs"), 1);
    systemRow->addWidget(button("btnCrs"));
    left->addLayout(systemRow);

    auto* cornersRow = new QHBoxLayout;
    auto* listColumn = new QVBoxLayout;
    QLabel* cornersCaption = label("lblCorners");
    QListWidget* corners = list("lstCorners", false);
    cornersCaption->setBuddy(corners);
    corners->setMinimumWidth(200);
    listColumn->addWidget(cornersCaption);
    listColumn->addWidget(corners, 1);
    auto* listButtons = new QHBoxLayout;
    listButtons->addWidget(button("btnAddCorner"));
    listButtons->addWidget(button("btnRemoveCorner"));
    listColumn->addLayout(listButtons);
    cornersRow->addLayout(listColumn, 1);

    // The corner the list points at: its name, method and controls.
    QGroupBox* corner = frame("fraCorner");
    auto* grid = new QGridLayout(corner);
    int row = 0;
    const auto field = [&](const char* caption, QWidget* input, int column) {
      QLabel* l = label(caption, corner);
      l->setBuddy(input);
      grid->addWidget(l, row, column);
      grid->addWidget(input, row, column + 1, 1, column == 0 ? 2 : 1);
    };
    field("lblName", edit("txtName", corner), 0);
    field("lblMethod", combo("cmbMethod", false, corner), 3);
    ++row;
    QLineEdit* index = edit("txtIndex", corner);
    index->setToolTip("Scales the record chains used as lengths (three-, two- and one-point control), "
                      "for a known chain-length correction; 1 for none.");
    field("lblIndex", index, 0);
    field("lblAzimuth", edit("txtAzimuth", corner), 3);
    ++row;
    const char* captions[] = {"lblPointCaption", "lblXCaption", "lblYCaption", "lblRecordCaption"};
    for (int c = 0; c < 4; ++c) grid->addWidget(label(captions[c], corner), row, c + 1);
    ++row;
    for (const auto& f : form.controlFields) {
      QLabel* l = label(("lbl" + f.direction).c_str(), corner);
      grid->addWidget(l, row, 0);
      int column = 1;
      for (const char* part : {"Point", "X", "Y", "Record"}) {
        QLineEdit* e = edit(("txt" + f.direction + part).c_str(), corner);
        if (column == 1) l->setBuddy(e);
        e->setMinimumWidth(column == 2 || column == 3 ? 110 : 70);
        grid->addWidget(e, row, column++);
      }
      ++row;
    }
    grid->setRowStretch(row, 1);  // the rows stay under their column headers, the room below them
    cornersRow->addWidget(corner, 3);
    left->addLayout(cornersRow, 1);

    left->addLayout(resultRow("btnRestore", "lblResult"));
    auto* files = new QHBoxLayout;
    files->addWidget(button("btnOpenInputs"));
    files->addWidget(button("btnSaveInputs"));
    files->addWidget(button("btnWriteReport"));
    files->addWidget(button("btnStore"));
    files->addStretch();
    files->addWidget(button("btnReturn"));
    left->addLayout(files);
    bind();
    binder_->onRefresh = [this, sketch] { sketch->showPicture(static_cast<const frmRestore&>(model_).sketch()); };
    binder_->onRefresh();
    resize(1200, 560);
  }
};

}  // namespace

QDialog* makeRestoreView(FormModel& m, QtShell& s, QWidget* p) { return new RestoreView(m, s, p); }

}  // namespace tervalo
