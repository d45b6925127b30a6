#include "qt/views.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

#include "adjust/frm_network.h"
#include "qt/binder.h"
#include "qt/form_dialog.h"
#include "qt/picture_view.h"

namespace tervalo {
namespace {

class NetworkView : public FormDialog {
 public:
  NetworkView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* window = new QVBoxLayout(this);
    QHBoxLayout* file = fieldRow({{"lblFile", "txtFile"}}, 0);
    file->addWidget(button("btnBrowse"));
    window->addLayout(file);
    window->addWidget(label("lblDefaults"));
    QHBoxLayout* defaults = fieldRow({{"lblAngle", "txtAngle"}, {"lblDistance", "txtDistance"}, {"lblPpm", "txtPpm"},
                                      {"lblCentering", "txtCentering"}, {"lblSignificance", "txtSignificance"}},
                                     70);
    defaults->addStretch();
    QPushButton* adjust = button("btnAdjust");
    adjust->setDefault(true);
    defaults->addWidget(adjust);
    window->addLayout(defaults);
    QLabel* result = label("lblResult");
    result->setWordWrap(true);
    window->addWidget(result);

    auto* split = new QSplitter(Qt::Horizontal, this);
    picture_ = picture("picture");
    picture_->setParent(split);
    picture_->setAccessibleName("Network picture");
    split->addWidget(picture_);
    QListWidget* report = list("lstReport", true);
    report->setParent(split);
    report->setAccessibleName("Adjustment report");
    split->addWidget(report);
    split->setStretchFactor(0, 1);
    split->setStretchFactor(1, 1);
    window->addWidget(split, 1);

    auto* files = new QHBoxLayout;
    for (const char* name : {"btnStore", "btnPrint", "btnSaveReport", "btnSavePicture"}) files->addWidget(button(name));
    files->addStretch();
    files->addWidget(button("btnReturn"));
    window->addLayout(files);
    bind();
    binder_->onRefresh = [this] { picture_->showPicture(static_cast<frmNetwork&>(model_).picture()); };
    picture_->showPicture(static_cast<frmNetwork&>(model_).picture());
    resize(1300, 700);
  }

 private:
  PictureView* picture_ = nullptr;
};

}  // namespace

QDialog* makeNetworkView(FormModel& m, QtShell& s, QWidget* p) { return new NetworkView(m, s, p); }

}  // namespace tervalo
