#include "qt/views.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGuiApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QSplitter>
#include <QVBoxLayout>

#include "qt/form_dialog.h"
#include "qt/picture_view.h"
#include "qt/qt_shell.h"
#include "secsub/frm_sec_sub.h"

namespace tervalo {
namespace {

class SecSubView : public FormDialog {
 public:
  SecSubView(FormModel& m, QtShell& s, QWidget* p) : FormDialog(m, s, p) {
    auto* outer = new QHBoxLayout(this);
    // The form and the drawing share the width as the user drags it.
    split = new QSplitter(Qt::Horizontal, this);
    split->setObjectName("splitter");
    split->setChildrenCollapsible(false);
    outer->addWidget(split);
    auto* scroll = new QScrollArea(split);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto* content = new QWidget(scroll);
    auto* column = new QVBoxLayout(content);
    column->addWidget(sectionData(content));
    column->addWidget(numbering(content));
    column->addWidget(slotGrid(content));
    column->addStretch();
    scroll->setWidget(content);
    split->addWidget(scroll);

    auto* sidePanel = new QWidget(split);
    auto* side = new QVBoxLayout(sidePanel);
    side->setContentsMargins(0, 0, 0, 0);
    // The notices scroll past eight lines, so that the drawing keeps its room beneath them.
    QLabel* notice = noticeLabel("lblNotice", this);
    notices_ = new QScrollArea(sidePanel);
    notices_->setWidgetResizable(true);
    notices_->setFrameShape(QFrame::NoFrame);
    notices_->setWidget(notice);
    notices_->setMaximumHeight(notice->fontMetrics().lineSpacing() * 8 + 16);
    notices_->setVisible(false);
    side->addWidget(notices_);
    drawing_ = picture("drawing");
    drawing_->setMinimumSize(340, 340);
    side->addWidget(drawing_, 1);
    // The drawing's and the run's options, two by two.
    auto* options = new QGridLayout;
    options->addWidget(check("chkLengths", sidePanel), 0, 0);
    options->addWidget(check("chkWhy", sidePanel), 0, 1);
    options->addWidget(check("chkEvidence", sidePanel), 1, 0);
    options->addWidget(check("chkGround", sidePanel), 1, 1);
    side->addLayout(options);
    // In two rows, so that the drawing's side can be narrow beside the form.
    auto* inputs = new QHBoxLayout;
    inputs->addWidget(button("btnOpenInputs"));
    inputs->addWidget(button("btnSaveInputs"));
    inputs->addWidget(button("btnRestoreCorner"));
    auto* system = new QHBoxLayout;
    QLabel* crs = label("lblCrs");
    crs->setWordWrap(true);
    system->addWidget(crs, 1);
    system->addWidget(button("btnCrs"));
    side->addLayout(system);
    side->addLayout(inputs);
    auto* files = new QHBoxLayout;
    files->addWidget(button("btnSaveDrawing"));
    files->addWidget(button("btnExport"));
    files->addWidget(button("btnPrint"));
    files->addWidget(button("btnStore"));
    files->addWidget(button("btnPlat"));
    side->addLayout(files);
    auto* buttons = new QHBoxLayout;
    QPushButton* go = button("btnContinue");
    go->setDefault(true);
    buttons->addWidget(go);
    buttons->addWidget(button("btnClear"));
    buttons->addWidget(button("btnReturn"));
    side->addLayout(buttons);
    split->addWidget(sidePanel);
    split->setStretchFactor(0, 5);
    split->setStretchFactor(1, 3);
    bind();
    binder_->onRefresh = [this] {
      const auto& form = static_cast<frmSecSub&>(model_);
      drawing_->showPicture(form.drawing());
      notices_->setVisible(form.lblNotice.visible);
      // Each slot tells why it is where it is, as its tooltip.
      for (int k = 0; k < slot::count; ++k)
        if (auto* box = findChild<QGroupBox*>(QString("slot%1").arg(k))) box->setToolTip(QString::fromStdString(form.why(k)));
    };
    binder_->onRefresh();

    // As large as the content wants, within the screen: it scrolls, never clips.
    content_ = content;
    side_ = sidePanel;
    const QSize want(content->sizeHint().width() + 420, content->sizeHint().height() + 40);
    const QRect screen = QGuiApplication::primaryScreen() ? QGuiApplication::primaryScreen()->availableGeometry()
                                                          : QRect(0, 0, 1366, 768);
    resize(want.boundedTo(screen.size() - QSize(20, 40)));
    share();
  }

 protected:
  void resizeEvent(QResizeEvent* event) override {
    FormDialog::resizeEvent(event);
    share();
  }

 private:
  // The form keeps its whole width beside the drawing where the window is
  // wide enough; in a narrower one (a 1024 by 768 screen) the drawing and
  // the buttons go below the form, so that nothing of the form needs a
  // sideways scroll. The drawing keeps what the form does not need, until
  // the user drags the splitter.
  void share() {
    if (!split || !content_) return;
    // The least width the form takes without a sideways scroll, with room for its own scroll bar.
    const int formWidth = content_->minimumSizeHint().width() + 24;
    const bool beside = split->width() >= formWidth + split->handleWidth() + side_->minimumSizeHint().width();
    const Qt::Orientation wanted = beside ? Qt::Horizontal : Qt::Vertical;
    if (split->orientation() == wanted && shared_) return;
    shared_ = true;
    split->setOrientation(wanted);
    drawing_->setMinimumSize(beside ? QSize(340, 340) : QSize(200, 160));
    if (beside)
      split->setSizes({formWidth, std::max(420, width() - formWidth - 20)});
    else
      split->setSizes({std::max(200, height() - side_->minimumSizeHint().height() - 120), side_->minimumSizeHint().height() + 100});
  }

 public:

 private:
  QGroupBox* sectionData(QWidget* parent) {
    QGroupBox* box = frame("Frame24", parent);
    auto* grid = new QGridLayout(box);
    int col = 0;
    for (const auto& [caption, field] : {std::pair{"lblSection", "txtSection"}, std::pair{"lblTownship", "txtTwp"},
                                         std::pair{"lblRange", "txtRange"}}) {
      QLabel* l = label(caption, box);
      QLineEdit* e = edit(field, box);
      e->setMaximumWidth(70);
      l->setBuddy(e);
      grid->addWidget(l, 0, col++);
      grid->addWidget(e, 0, col++);
    }
    grid->addWidget(option("optEast", box), 0, col++);
    grid->addWidget(option("optWest", box), 0, col++);
    QLabel* pm = label("lblPM", box);
    QLineEdit* pmField = edit("txtPM", box);
    pmField->setMaximumWidth(40);
    pm->setBuddy(pmField);
    grid->addWidget(pm, 0, col++);
    grid->addWidget(pmField, 0, col++);
    grid->addWidget(check("chk2", box), 1, 0, 1, col);
    grid->addWidget(check("chk1", box), 2, 0, 1, col);
    grid->addWidget(check("chk4", box), 3, 0, 1, col);
    grid->addWidget(check("chk5", box), 4, 0, 1, col);
    grid->addWidget(check("chkAddHeader", box), 5, 0, 1, 4);
    grid->addWidget(check("chkDefaults", box), 5, 4, 1, col - 4);
    return box;
  }

  QGroupBox* numbering(QWidget* parent) {
    QGroupBox* box = frame("FrameAPN", parent);
    auto* grid = new QGridLayout(box);
    grid->addWidget(option("optIncr", box), 0, 0);
    QLineEdit* start = edit("txtIncr", box);
    start->setMaximumWidth(110);
    grid->addWidget(start, 0, 1);
    grid->addWidget(option("optUnique", box), 1, 0, 1, 2);
    grid->setColumnStretch(2, 1);
    return box;
  }

  // A record chain field with its caption, beside the line it belongs to.
  QWidget* chainField(const char* stem, QWidget* parent) {
    auto* w = new QWidget(parent);
    auto* l = new QVBoxLayout(w);
    l->setContentsMargins(2, 2, 2, 2);
    QLabel* caption = label(("lbl" + std::string(stem) + "chain").c_str(), w);
    QLineEdit* field = edit(("txt" + std::string(stem) + "chain").c_str(), w);
    field->setMaximumWidth(80);
    // Beside the grid in two short lines, so that showing every chain field widens nothing.
    const bool beside = stem[1] == 'o' && (stem[3] == 'W' || stem[3] == 'E');  // "NofW", "SofE", ...
    if (beside) {
      caption->setWordWrap(true);
      caption->setMaximumWidth(84);
    }
    caption->setBuddy(field);
    l->addWidget(caption);
    l->addWidget(field);
    return w;
  }

  QGroupBox* slotFrame(int s, QWidget* parent) {
    const bool pls = s == 0 || s == 2 || s == 4 || s == 10 || s == 14 || s == 20 || s == 22 || s == 24;
    auto* box = new QGroupBox(QString("%1  %2").arg(s).arg(kSlotTitles[static_cast<std::size_t>(s)]), parent);
    box->setObjectName(QString("slot%1").arg(s));
    // Its context menu restores it as a lost corner.
    box->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(box, &QWidget::customContextMenuRequested, this, [this, box, s](const QPoint& at) {
      QMenu menu(box);
      menu.addAction("&Restore This Corner...", [this, s] {
        binder_->run([this, s] { static_cast<frmSecSub&>(model_).restoreSlot(s); });
      });
      menu.exec(box->mapToGlobal(at));
    });
    // Section and quarter corners stand out from the sixteenths and centers.
    // (in the palette's own alternate ground, so a dark theme stays dark).
    box->setStyleSheet(pls ? "QGroupBox { background: palette(alternate-base); font-weight: bold; }"
                           : s == 12 ? "QGroupBox { background: palette(alternate-base); }" : "");
    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(4, 4, 4, 4);
    grid->setSpacing(2);
    const std::string n = "txt" + std::to_string(s);
    QLineEdit* pn = edit((n + "pn").c_str(), box);
    pn->setPlaceholderText("Point no.");
    grid->addWidget(pn, 0, 0, 1, 2);
    for (const auto& [caption, suffix, row] : {std::tuple{"X", "xc", 1}, std::tuple{"Y", "yc", 2}}) {
      auto* l = new QLabel(caption, box);
      QLineEdit* e = edit((n + suffix).c_str(), box);
      e->setMinimumWidth(98);
      l->setBuddy(e);
      grid->addWidget(l, row, 0);
      grid->addWidget(e, row, 1);
    }
    QLineEdit* feature = edit((n + "pf").c_str(), box);
    feature->setPlaceholderText("Feature");
    QLineEdit* description = edit((n + "pd").c_str(), box);
    description->setPlaceholderText("Description");
    grid->addWidget(feature, 3, 0, 1, 2);
    grid->addWidget(description, 4, 0, 1, 2);
    for (QLineEdit* e : {pn, feature, description}) e->setMinimumWidth(112);
    return box;
  }

  // The slots as the section lies, north at the top, with the record
  // chains beside the quarter-miles they measure.
  QGroupBox* slotGrid(QWidget* parent) {
    QGroupBox* box = frame("frmSection", parent);
    auto* grid = new QGridLayout(box);
    grid->setSpacing(4);
    // Columns: 0 west chains, 1-5 slots, 6 east chains; rows: 0 north
    // chains, 1-5 slots, 6 south chains. Made in reading order for the tab order.
    grid->addWidget(chainField("WofN", box), 0, 1, 1, 2, Qt::AlignHCenter);
    grid->addWidget(chainField("EofN", box), 0, 4, 1, 2, Qt::AlignHCenter);
    for (int row = 0; row < 5; ++row) {
      if (row == 0) grid->addWidget(chainField("NofW", box), 1, 0, 2, 1, Qt::AlignVCenter);
      if (row == 3) grid->addWidget(chainField("SofW", box), 4, 0, 2, 1, Qt::AlignVCenter);
      for (int col = 0; col < 5; ++col) grid->addWidget(slotFrame(5 * row + col, box), row + 1, col + 1);
      if (row == 0) grid->addWidget(chainField("NofE", box), 1, 6, 2, 1, Qt::AlignVCenter);
      if (row == 3) grid->addWidget(chainField("SofE", box), 4, 6, 2, 1, Qt::AlignVCenter);
    }
    grid->addWidget(chainField("WofS", box), 6, 1, 1, 2, Qt::AlignHCenter);
    grid->addWidget(chainField("EofS", box), 6, 4, 1, 2, Qt::AlignHCenter);
    return box;
  }

  QScrollArea* notices_ = nullptr;
  PictureView* drawing_ = nullptr;
  QSplitter* split = nullptr;
  QWidget* content_ = nullptr;
  QWidget* side_ = nullptr;
  bool shared_ = false;
};

}  // namespace

QDialog* makeSecSubView(FormModel& m, QtShell& s, QWidget* p) { return new SecSubView(m, s, p); }

}  // namespace tervalo
