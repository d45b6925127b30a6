#include "qt/views.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

#include "alignment/frm_alignment.h"
#include "qt/binder.h"
#include "qt/form_dialog.h"
#include "qt/picture_view.h"

namespace tervalo {
namespace {

class AlignmentView : public FormDialog {
 public:
  AlignmentView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* window = new QVBoxLayout(this);
    QHBoxLayout* file = fieldRow({{"lblFile", "txtFile"}}, 0);
    file->addWidget(button("btnBrowse"));
    QPushButton* open = button("btnOpen");
    open->setDefault(true);  // a path typed, Enter opens it
    file->addWidget(open);
    window->addLayout(file);
    QLabel* summary = label("lblSummary");
    summary->setWordWrap(true);
    window->addWidget(summary);

    auto* body = new QHBoxLayout;
    auto* left = new QVBoxLayout;
    QLabel* elements = label("lblElements");
    QListWidget* table = list("lstElements", true);
    table->setAccessibleName("Elements and key points");
    elements->setBuddy(table);
    left->addWidget(elements);
    left->addWidget(table, 1);
    QHBoxLayout* station = fieldRow({{"lblStation", "txtStation"}, {"lblOffset", "txtOffset"}}, 90);
    station->addWidget(button("btnPoint"));
    station->addStretch();
    left->addLayout(station);
    QHBoxLayout* point = fieldRow({{"lblNorthing", "txtNorthing"}, {"lblEasting", "txtEasting"}}, 110);
    point->addWidget(button("btnStation"));
    point->addStretch();
    left->addLayout(point);
    QLabel* answer = label("lblAnswer");
    answer->setWordWrap(true);
    answer->setTextInteractionFlags(Qt::TextSelectableByMouse);
    left->addWidget(answer);
    body->addLayout(left, 1);

    auto* split = new QSplitter(Qt::Vertical, this);
    plan_ = picture("plan");
    plan_->setParent(split);
    plan_->setAccessibleName("Alignment plan");
    split->addWidget(plan_);
    profile_ = picture("profile");
    profile_->setParent(split);
    profile_->setAccessibleName("Alignment profile");
    split->addWidget(profile_);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 2);
    body->addWidget(split, 1);
    window->addLayout(body, 1);

    auto* files = new QHBoxLayout;
    files->addWidget(button("btnStore"));
    QLabel* kept = label("lblKept");
    QComboBox* names = combo("cmbKept", false);
    kept->setBuddy(names);
    files->addWidget(kept);
    files->addWidget(names);
    files->addWidget(button("btnOpenKept"));
    files->addSpacing(12);
    for (const char* name : {"btnLandXml", "btnDxf"}) files->addWidget(button(name));
    files->addStretch();
    files->addWidget(button("btnReturn"));
    window->addLayout(files);
    bind();
    binder_->onRefresh = [this] { refresh(); };
    refresh();
    resize(1300, 700);
  }

 private:
  void refresh() {
    auto& f = static_cast<frmAlignment&>(model_);
    plan_->showPicture(f.plan());
    profile_->showPicture(f.profile());
  }
  PictureView* plan_ = nullptr;
  PictureView* profile_ = nullptr;
};

}  // namespace

QDialog* makeAlignmentView(FormModel& m, QtShell& s, QWidget* p) { return new AlignmentView(m, s, p); }

}  // namespace tervalo
