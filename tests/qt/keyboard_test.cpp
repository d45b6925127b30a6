// Every window by keyboard: a mnemonic for each button, box, option and
// menu entry, none twice in a window or menu; Tab reaches every input once,
// an option group as one stop; Enter presses the window's natural default
// and Escape its Return.

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTableWidget>
#include <QTest>
#include <set>
#include <tuple>

#include "app/frm_main.h"
#include "app/program.h"
#include "qt/picture_view.h"
#include "qt/binder.h"
#include "qt/views.h"
#include "qt/scripted_shell.h"
#include "traverse/frm_traverse.h"
#include "support/temp_dir.h"

namespace tervalo {
namespace {

using testing::ScriptedShell;
using testing::TempDir;

// The letter a text marks with "&", or 0.
QChar mnemonic(const QString& text) {
  for (int i = 0; i + 1 < text.size(); ++i) {
    if (text[i] != '&') continue;
    if (text[i + 1] == '&') {
      ++i;
      continue;
    }
    return text[i + 1].toLower();
  }
  return QChar();
}

// Every shown button, box and option of `root` has a letter, none twice; so has every entry of each menu.
void checkMnemonics(QWidget& root, const QString& window, const QList<QAction*>& bar = {}) {
  std::map<QChar, QString> taken;
  auto take = [&](const QString& who, const QString& text) {
    const QChar letter = mnemonic(text);
    QVERIFY2(!letter.isNull(), qPrintable(window + ": " + who + " has no mnemonic in \"" + text + "\""));
    QVERIFY2(!taken.count(letter), qPrintable(window + ": " + who + " and " + taken[letter] + " share " + letter));
    taken[letter] = who;
  };
  for (QAbstractButton* b : root.findChildren<QAbstractButton*>())
    if (!b->objectName().isEmpty() && b->isVisibleTo(&root) && !b->text().isEmpty()) take(b->objectName(), b->text());
  for (QAction* a : bar)
    if (a->isVisible()) take(a->objectName(), a->text());
  for (QMenu* menu : root.findChildren<QMenu*>()) {
    std::set<QChar> inMenu;
    for (QAction* a : menu->actions()) {
      if (!a->isVisible() || a->isSeparator()) continue;
      const QChar letter = mnemonic(a->text());
      QVERIFY2(!letter.isNull() && inMenu.insert(letter).second, qPrintable(window + ": menu entry " + a->text()));
    }
  }
}

// Tab from the first input round to it again: every shown, enabled input
// once, and of each option group only the chosen option.
void checkTabOrder(QWidget& root, const QString& window) {
  std::set<QWidget*> expected;
  for (QWidget* w : root.findChildren<QWidget*>()) {
    if (w->objectName().isEmpty() || !w->isVisible() || !w->isEnabled()) continue;
    const bool input = qobject_cast<QLineEdit*>(w) || qobject_cast<QComboBox*>(w) || qobject_cast<QListWidget*>(w) ||
                       qobject_cast<QAbstractButton*>(w) || dynamic_cast<PictureView*>(w);  // a picture, for its menu
    if (!input || !(w->focusPolicy() & Qt::TabFocus)) continue;
    if (auto* r = qobject_cast<QRadioButton*>(w)) QVERIFY2(r->isChecked(), qPrintable(window + ": unchosen option " + r->objectName() + " is a tab stop"));
    expected.insert(w);
  }
  QVERIFY2(!expected.empty(), qPrintable(window));
  std::set<QWidget*> seen;
  QWidget* start = *expected.begin();
  for (QWidget* w = start->nextInFocusChain(); w != start; w = w->nextInFocusChain())
    if (expected.count(w)) QVERIFY2(seen.insert(w).second, qPrintable(window + ": " + w->objectName() + " twice"));
  seen.insert(start);
  QCOMPARE(seen.size(), expected.size());
}

class Keyboard : public QObject, testing::DesktopFixture {
  Q_OBJECT

 private Q_SLOTS:
  void init() { start(); }
  void cleanup() { stop(); }

  void everyWindowHasMnemonicsAndOneTabStopPerInput() {
    MainWindow main(*program, *shell);
    main.show();
    QVERIFY(QTest::qWaitForWindowExposed(&main));
    checkMnemonics(main, "frmMain", main.menuBar()->actions());
    checkTabOrder(main, "frmMain");
    for (const std::string& name : program->registry().formNames()) {
      if (name == "frmMain" || !shell->hasView(name)) continue;
      std::unique_ptr<QDialog> view(shell->makeView(program->form(name), &main));
      view->show();
      QVERIFY(QTest::qWaitForWindowExposed(view.get()));
      checkMnemonics(*view, QString::fromStdString(name));
      checkTabOrder(*view, QString::fromStdString(name));
    }
  }

  void theSectionFormIsReadFrameByFrame() {
    auto& form = program->form("frmSecSub");
    std::unique_ptr<QDialog> view(shell->makeView(form, nullptr));
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    QStringList order;
    QWidget* w = view->findChild<QWidget*>("txtSection");
    for (int i = 0; i < 30; ++i, w = w->nextInFocusChain()) order << w->objectName();
    auto at = [&order](const char* name) { return order.indexOf(name); };
    // Section, township, range; slot 0's five fields before slot 1's.
    QVERIFY(at("txtSection") < at("txtTwp") && at("txtTwp") < at("txtRange"));
    QVERIFY(at("txt0pn") < at("txt0xc") && at("txt0xc") < at("txt0pd") && at("txt0pd") < at("txt1pn"));
  }

  // A course typed into the traverse table by keyboard alone: Tab from the
  // backsight's azimuth into the table, then station, direction (its list
  // stepped with the arrow keys), angle and distance, each cell left by Tab.
  void aTraverseCourseIsTypedByKeyboard() {
    auto& form = static_cast<frmTraverse&>(program->form("frmTraverse"));
    form.setOpen(true);
    std::unique_ptr<QDialog> view(shell->makeView(form, nullptr));
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    auto* azimuth = view->findChild<QLineEdit*>("txtBackAzimuth");
    azimuth->setFocus();
    QTest::keyClick(azimuth, Qt::Key_Tab);
    QTRY_COMPARE(QApplication::focusWidget(), view->findChild<QTableWidget*>("tblCourses"));
    // Keys go where the focus is as it moves: the first key of a cell opens its editor.
    const auto type = [](const QString& keys) {
      for (QChar key : keys) QTest::keyClick(QApplication::focusWidget(), key.toLatin1());
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    };
    type("2");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);  // Angle right, up to Bearing
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    type("N 45-30-15 E");
    type("450.25");
    QCOMPARE(form.rows[0].cells, (std::array<std::string, 6>{"2", "Bearing", "N 45-30-15 E", "450.25", "", ""}));
  }

  // Fresh settings on a 1024 by 768 screen (the drawing gives way; East/West, P.M. and the right
  // column are there), and every chain field on a 1366 by 768 one: no sideways scroll either way.
  void theSectionFormFitsSmallScreens() {
    auto& form = program->form("frmSecSub");
    for (const auto& [width, defaults, names] :
         {std::tuple{1004, true, QStringList{"optEast", "optWest", "txtPM", "txt4pn", "txt24pd"}},
          std::tuple{1346, false, QStringList{"txtEofNchain", "txtWofSchain", "txt24pd"}}}) {
      form.setChecked("chkDefaults", defaults);
      std::unique_ptr<QDialog> view(shell->makeView(form, nullptr));
      view->resize(width, 700);
      view->show();
      QVERIFY(QTest::qWaitForWindowExposed(view.get()));
      auto* scroll = view->findChild<QScrollArea*>();
      QVERIFY(!scroll->horizontalScrollBar()->isVisible());
      for (const QString& name : names) {
        auto* w = view->findChild<QWidget*>(name);
        const QRect at(w->mapTo(scroll->viewport(), QPoint(0, 0)), w->size());
        QVERIFY2(w->isVisible() && at.left() >= 0 && at.right() <= scroll->viewport()->width(), qPrintable(name));
      }
    }
  }

  // Section 99 refused as the field is left by Tab: the cursor goes back to
  // it with the text selected, so typing on mends it and fills nothing after it.
  void theCursorWaitsWhereTheFaultIs() {
    auto& form = program->form("frmSecSub");
    form.setOpen(true);
    std::unique_ptr<QDialog> view(shell->makeView(form, nullptr));
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    auto* section = view->findChild<QLineEdit*>("txtSection");
    section->setFocus();
    QTest::keyClicks(section, "99");
    QTest::keyClick(section, Qt::Key_Tab);
    QCOMPARE(shell->boxes.back().text, std::string("Valid Section numbers are 1-36."));
    QTRY_VERIFY(section->hasFocus());
    QCOMPARE(section->selectedText(), QString("99"));
    QTest::keyClicks(QApplication::focusWidget(), "14");
    QCOMPARE(section->text(), QString("14"));
    QCOMPARE(view->findChild<QLineEdit*>("txtTwp")->text(), QString());
  }

  // Each segment list: Width, then Slope, then Add; Enter in Slope adds.
  void gradingSegmentsAreWidthSlopeAdd() {
    auto& form = program->form("frmGrade");
    form.setOpen(true);
    std::unique_ptr<QDialog> view(shell->makeView(form, nullptr));
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    for (const QString stem : {"Fin", "Sub"}) {
      QWidget* width = view->findChild<QLineEdit*>("txt" + stem + "Width");
      auto* slope = view->findChild<QComboBox*>("cmb" + stem + "Slope");
      QCOMPARE(width->nextInFocusChain(), static_cast<QWidget*>(slope));
      QWidget* next = slope->nextInFocusChain();
      while (next && next->parentWidget() == slope) next = next->nextInFocusChain();  // the combo's own line edit
      QCOMPARE(next->objectName(), "btn" + stem + "Add");
      width->setFocus();
      QTest::keyClicks(width, "12");
      QTest::keyClick(slope->lineEdit(), Qt::Key_Return);
      QCOMPARE(view->findChild<QListWidget*>("lst" + stem)->count(), 1);
    }
  }

  void enterPressesTheNaturalDefaultAndEscapeReturns() {
    // The main window: Enter is Continue.
    MainWindow main(*program, *shell);
    auto& mainModel = program->form<frmMain>("frmMain");
    mainModel.setOpen(true);
    shell->setMainWindow(&main, mainModel);
    main.show();
    QVERIFY(QTest::qWaitForWindowExposed(&main));
    auto* source = main.findChild<QLineEdit*>("txtInFile");
    source->setFocus();
    QTest::keyClicks(source, "/no/such/file.csv");
    QTest::keyClick(source, Qt::Key_Return);
    QCOMPARE(shell->boxes.back().text, std::string("File does not exist."));

    struct Case {
      const char* menu;
      const char* typeInto;
      const char* typed;
      const char* ran;  // what shows that the default ran, or "" when nothing should
    } cases[] = {{"mnuChorz", "txtRadius", "1000", "lblTan"}, {"mnuMgrade", "txtFinWidth", "12", ""}};
    for (const Case& c : cases) {
      QString ran, segments;
      bool closedByEscape = false;
      shell->inDialog = [&](QDialog& d) {
        QVERIFY(QTest::qWaitForWindowExposed(&d));
        if (std::string(c.menu) == "mnuChorz") QTest::keyClicks(d.findChild<QLineEdit*>("txtDelta"), "30");
        auto* field = d.findChild<QLineEdit*>(c.typeInto);
        field->setFocus();
        QTest::keyClicks(field, c.typed);
        QTest::keyClick(field, Qt::Key_Return);
        if (*c.ran) ran = d.findChild<QLabel*>(c.ran)->text();
        if (auto* list = d.findChild<QListWidget*>("lstFin")) segments = QString::number(list->count());
        if (std::string(c.menu) == "mnuMgrade") {
          ran = d.findChild<QLabel*>("lblResults")->text();  // Calculate did not run
          QVERIFY(d.findChild<QLineEdit*>("txtFinWidth")->hasFocus());  // ready for the next segment
        }
        QTest::keyClick(&d, Qt::Key_Escape);
        closedByEscape = !d.isVisible();
      };
      main.binder().run([&] { mainModel.click(c.menu); });
      if (*c.ran)
        QCOMPARE(ran, QString("267.9492"));
      else
        QCOMPARE(ran + "/" + segments, QString("/1"));
      QVERIFY2(closedByEscape, c.menu);
    }
  }
};

}  // namespace
}  // namespace tervalo

#include "keyboard_test.moc"

int runKeyboardTests(int argc, char** argv) {
  tervalo::Keyboard tests;
  return QTest::qExec(&tests, argc, argv);
}
