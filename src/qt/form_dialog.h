#pragma once
// A window of the program as a modal dialog: built in code by each view,
// every control named after the model's control, bound by the Binder.

#include <QDialog>
#include <QString>
#include <functional>
#include <initializer_list>
#include <utility>
#include <string>

#include "qt/binder.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QHBoxLayout;
class QLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QTableWidget;
class QPushButton;
class QRadioButton;

namespace tervalo {

class FormModel;
class QtShell;

class PictureView;

class FormDialog : public QDialog {
 public:
  FormDialog(FormModel& model, QtShell& shell, QWidget* parent);
  ~FormDialog() override;

 protected:
  // Connects the widgets built so far to the model; call at the end of the
  // view's constructor.
  void bind();

  // Widgets named after their control.
  QLineEdit* edit(const char* name, QWidget* parent = nullptr);
  QLabel* label(const char* name, QWidget* parent = nullptr);
  QPushButton* button(const char* name, QWidget* parent = nullptr);
  QCheckBox* check(const char* name, QWidget* parent = nullptr);
  QRadioButton* option(const char* name, QWidget* parent = nullptr);
  QComboBox* combo(const char* name, bool editable, QWidget* parent = nullptr);
  QListWidget* list(const char* name, bool fixedPitch, QWidget* parent = nullptr);
  // Captions and their fields, each caption the buddy of its field, in one
  // row; fields `width` wide at most, or stretched when it is 0.
  QHBoxLayout* fieldRow(std::initializer_list<std::pair<const char*, const char*>> fields, int width);
  // A table of typed cells under `headers`: each edit goes to the model by
  // `setCell` (row, column, the text trimmed) and the current row by
  // `current`, except while `filling` says the view is filling it.
  QTableWidget* cellTable(const char* name, const QString& accessible, const QStringList& headers,
                          std::function<void(int, int, const std::string&)> setCell, std::function<void(int)> current,
                          const bool* filling);
  QGroupBox* frame(const char* name, QWidget* parent = nullptr);
  // The window's picture, saved from its context menu through the shell's file dialog.
  PictureView* picture(const char* name);

  // The output file row: "Output file:" lblOut, txtOut, Browse btnOut, Save
  // btnOutput, and btnReturn when the window has it there.
  QLayout* outputFileRow(bool withReturn);
  // Only its first part: "Output file:", the name, Browse.
  QHBoxLayout* outputNameRow();
  // A caption and its field (the caption's buddy), the field at most
  // `fieldWidth` wide, the rest of the row empty.
  QHBoxLayout* fieldRow(const char* caption, const char* field, int fieldWidth);
  // The closing buttons at the far end: `accept` (the default button), then Cancel.
  QHBoxLayout* acceptRow(const char* accept);
  // The window's main button (the default) and the label that says what it
  // gave, worded to wrap and be selected for copying.
  QHBoxLayout* resultRow(const char* button, const char* said);
  // Calculate (the default button), Clear, and Return at the far end.
  QLayout* commandRow(const char* calculate, QWidget* parent = nullptr);

  void closeEvent(QCloseEvent* event) override;
  // A window opens where and as large as the user left it, splitters too;
  // a first start (no settings) keeps the window's own size.
  void showEvent(QShowEvent* event) override;
  void done(int result) override;
  // Escape presses the window's Return, as a user would.
  void reject() override;

  FormModel& model_;
  QtShell& shell_;
  Binder* binder_ = nullptr;

 private:
  void keepLayout();
  bool restored_ = false;
};

// The fixed-pitch font of result columns.
QFont fixedPitchFont();

// Tab runs through a window's inputs in reading order: frame by frame, and
// in each frame top to bottom, left to right.
// Returns the first input, where the cursor starts.
QWidget* setReadingTabOrder(QWidget& root);

// Every input named for a screen reader by its caption ("Township"), with
// its frame's title where the caption alone is ambiguous ("0  NW Cor X").
void nameInputsForScreenReaders(QWidget& root);

// A notice the user must not miss but need not answer: wrapped text in an
// amber frame, in the window's own colours so that it reads alike in light
// and dark themes. Named after its control; hidden while the model's label is.
QLabel* noticeLabel(const char* name, QWidget* parent);

}  // namespace tervalo
