#pragma once
// Copies between a window's widgets and its model by control name, and
// forwards the widgets' change, lost-focus and click events to the model.
// Every view uses it; no view copies a control by hand.

#include <QObject>
#include <QPointer>
#include <QString>

class QLabel;
class QLineEdit;
#include <functional>
#include <map>
#include <string>
#include <unordered_map>

#include "app/controls.h"
#include "app/mnemonics.h"

namespace tervalo {

class FormModel;
class QtShell;

class Binder : public QObject {
  Q_OBJECT
 public:
  // Finds each control of the model's table among root's children by
  // objectName (a QAction for a menu entry) and connects it.
  Binder(FormModel& model, QWidget& root, QtShell& shell);

  // Model to widgets, signals blocked.
  void refresh();

  // Runs a model event, then refreshes; a program end stops here.
  void run(const std::function<void()>& event);

  // Called after an event when the model has unloaded itself.
  std::function<void()> onUnload;
  // Called after every refresh, for what a view draws from its model.
  std::function<void()> onRefresh;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  FormModel& model_;
  QWidget& root_;
  QtShell& shell_;
  // Alt+letter for each shown button, box, option and menu entry, by control name.
  std::map<std::string, std::string> marked_;
  std::map<std::string, Captioned> markedFor_;  // the captions the letters were matched for
  // Each control's widget or action once found: a refresh after every event
  // would otherwise search the whole window once per control.
  std::unordered_map<std::string, QPointer<QObject>> found_;
  template <class W>
  W* control(const std::string& name);
  void markMnemonics();
  void showNote(QLineEdit& field, const QString& note);
  void showCaption(QLabel& label, const Label& caption);
};

}  // namespace tervalo
