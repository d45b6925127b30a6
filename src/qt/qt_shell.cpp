#include "qt/qt_shell.h"

#include "qt/picture_files.h"
#include "qt/printing.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFileDialog>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QRegularExpression>
#include <QGridLayout>
#include <QMessageBox>
#include <QSpacerItem>
#include <QTimer>
#include <QProcess>
#include <QUrl>
#include <algorithm>
#include <cstdlib>
#include <exception>

#include "app/form_model.h"
#include "app/json_text.h"
#include "app/output_file.h"
#include "app/program.h"
#include "app/recovery.h"
#include "text/errors.h"

namespace tervalo {
namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

QDialog* QtShell::makeView(FormModel& form, QWidget* parent) {
  const auto it = views_.find(form.name());
  return it == views_.end() ? nullptr : it->second(form, *this, parent);
}

void QtShell::setMainWindow(QWidget* main, FormModel& model) {
  main_ = main;
  open_.assign(1, &model);
}

QWidget* QtShell::activeWindow() const {
  if (QWidget* modal = QApplication::activeModalWidget()) return modal;
  return main_;
}

void fitBoxToItsTitle(QMessageBox& box) {
  // A window manager cuts a title wider than its window: the box is made
  // wide enough for its title and the frame's own buttons.
  const int titleWidth = QFontMetrics(QApplication::font("QMdiSubWindowTitleBar")).horizontalAdvance(box.windowTitle());
  if (auto* grid = qobject_cast<QGridLayout*>(box.layout()))
    grid->addItem(new QSpacerItem(titleWidth + 160, 0, QSizePolicy::Minimum, QSizePolicy::Minimum), grid->rowCount(), 0, 1,
                  grid->columnCount());
  // Centred on the window it speaks for, wherever the desktop would put it:
  // once shown, when the box has taken its final size.
  struct CentreWhenShown : QObject {
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
      if (event->type() == QEvent::Show)
        QTimer::singleShot(0, watched, [box = static_cast<QWidget*>(watched)] {
          if (const QWidget* over = box->parentWidget())
            box->move(over->window()->frameGeometry().center() - QPoint(box->width() / 2, box->height() / 2));
        });
      return false;
    }
  };
  box.installEventFilter(new CentreWhenShown(&box));
}

Answer QtShell::msgBox(const std::string& title, const std::string& text, Icon icon, Buttons buttons) {
  if (unattended) return buttons == Buttons::YesNo ? Answer::Yes : Answer::Ok;
  QMessageBox box(activeWindow());
  box.setWindowTitle(q(title));
  box.setText(q(text));
  box.setIcon(icon == Icon::Critical      ? QMessageBox::Critical
              : icon == Icon::Exclamation ? QMessageBox::Warning
              : icon == Icon::Question    ? QMessageBox::Question
                                          : QMessageBox::Information);
  if (buttons == Buttons::YesNo) {
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::Yes);
    fitBoxToItsTitle(box);
    return box.exec() == QMessageBox::Yes ? Answer::Yes : Answer::No;
  }
  box.setStandardButtons(QMessageBox::Ok);
  fitBoxToItsTitle(box);
  box.exec();
  return Answer::Ok;
}

void QtShell::keepPreviousInputs() {
  if (!program_ || ending_) return;
  keepOwnInputs();
  const FormRegistry& registry = program_->registry();
  const bool calculator = std::any_of(open_.begin(), open_.end(),
                                      [&registry](const FormModel* f) { return registry.calculatorByForm(f->name()); });
  if (!calculator) return;
  try {
    writeTextFile(previousInputsFile(program_->userAppData), {jsonText(recoveryJob(open_, registry, program_->crs))});
  } catch (const std::exception&) {
    // Previous inputs are a convenience; a folder that cannot take them costs nothing typed now.
  }
}

void QtShell::keepOwnInputs() {
  for (FormModel* form : open_) {
    try {
      form->keepInputs();
    } catch (const std::exception&) {
      // As the previous inputs: a folder that cannot take them costs nothing typed now.
    }
  }
}

void QtShell::endProgram() {
  ending_ = true;
  if (program_) {
    keepOwnInputs();
    // One more box of the desktop program's own, after the box that ended
    // it: the user learns that nothing typed is lost, or why it could not be kept.
    try {
      const auto job = recoveryJob(open_, program_->registry(), program_->crs);
      writeTextFile(recoveryFile(program_->userAppData), {jsonText(job)});
      msgBox("Tervalo", "Tervalo ends here. Your entries are kept and will be offered when you start Tervalo again.",
             Icon::Information, Buttons::Ok);
    } catch (const std::exception& e) {
      // Only the file system can refuse them (the text never fails); the box says why.
      msgBox("Tervalo", std::string("Tervalo ends here. Your entries could not be kept: ") + e.what(), Icon::Exclamation,
             Buttons::Ok);
    }
  }
  throw ProgramEnd();
}

void QtShell::showModal(FormModel& form) {
  if (!hasView(form.name())) return;
  form.setOpen(true);
  open_.push_back(&form);
  QDialog* view = nullptr;
  struct Close {
    QtShell& shell;
    FormModel& form;
    QDialog*& view;
    ~Close() {
      // A calculator window closing keeps its inputs for Reopen Previous Inputs.
      if (!std::uncaught_exceptions()) shell.keepPreviousInputs();
      shell.open_.pop_back();
      form.setOpen(false);
      delete view;
    }
  } close{*this, form, view};
  // Steps being replayed go in first, so the window opens showing them.
  playPending(form);
  if (!form.isOpen() || unattended) return;
  view = makeView(form, activeWindow());
  runDialog(*view);
}

void QtShell::replay(const Job& job) {
  pending_.assign(job.steps.begin(), job.steps.end());
  program_->crs = job.crs;
  FormModel& main = *open_.front();
  const CalculatorInfo* calculator = program_->registry().calculatorByJob(job.calculator);
  // A calculator window opens modally from its menu entry: the main window's
  // fields come back first. Section subdivision's entry resets the main
  // window's names, so its fields come back after it.
  if (calculator->openFromMenu) playPending(main);
  main.click(calculator->menu);
  playPending(main);
  pending_.clear();
}

void QtShell::playPending(FormModel& form) {
  while (!pending_.empty() && pending_.front().form == form.name() && form.isOpen()) {
    const JobStep step = pending_.front();
    pending_.pop_front();
    playStep(form, step);
  }
}

std::optional<std::string> QtShell::chooseFile(FileDialog kind, const std::string& title, const std::string& initial,
                                               const std::vector<std::string>& filters) {
  if (unattended) {
    if (unattendedFiles.empty()) return std::nullopt;
    const std::string file = unattendedFiles.front();
    unattendedFiles.pop_front();
    return file;
  }
  // Each dialog starts in the folder it was last left in; the name proposed stays.
  QSettings settings;
  const QString folderKey = "dialogs/" + q(title);
  QString start = q(initial);
  if (const QString last = settings.value(folderKey).toString(); !last.isEmpty() && QFileInfo(last).isDir()) {
    const QFileInfo proposed(start);
    start = proposed.isDir() || start.isEmpty() ? last : QDir(last).filePath(proposed.fileName());
  }
  QStringList kinds;
  for (const std::string& f : filters) kinds << q(f);
  QString selected;
  QString chosen = kind == FileDialog::Open
                       ? QFileDialog::getOpenFileName(activeWindow(), q(title), start, kinds.join(";;"), &selected)
                       : QFileDialog::getSaveFileName(activeWindow(), q(title), start, kinds.join(";;"), &selected);
  if (chosen.isEmpty()) return std::nullopt;
  settings.setValue(folderKey, QFileInfo(chosen).absolutePath());
  // A name typed without an ending takes the ending of the kind chosen ("LandXML (*.xml)").
  const QRegularExpressionMatch ending = QRegularExpression(R"(\(\*(\.\w+))").match(selected);
  if (kind == FileDialog::Save && QFileInfo(chosen).suffix().isEmpty() && ending.hasMatch()) chosen += ending.captured(1);
  return chosen.toStdString();
}

bool QtShell::startEditor(const std::vector<std::filesystem::path>& files) {
  if (const char* editor = std::getenv("TERVALO_EDITOR"); editor && *editor) {
    QStringList command = QProcess::splitCommand(QString::fromLocal8Bit(editor));
    if (command.isEmpty()) return false;
    const QString program = command.takeFirst();
    for (const auto& f : files) command << q(f.string());
    return QProcess::startDetached(program, command);
  }
  // The desktop opens one file a call; all are asked for.
  bool all = true;
  for (const auto& f : files) all = QDesktopServices::openUrl(QUrl::fromLocalFile(q(f.string()))) && all;
  return all;
}

void QtShell::openInEditor(const std::filesystem::path& file) { openInEditor(std::vector<std::filesystem::path>{file}); }

void QtShell::openInEditor(const std::vector<std::filesystem::path>& files) {
  if (unattended || files.empty() || startEditor(files)) return;
  std::string names;
  for (const auto& f : files) names += "\n" + std::filesystem::absolute(f).string();
  msgBox("Editor",
         std::string(files.size() > 1 ? "No text editor could be started for these files:" : "No text editor could be started for") +
             names + "\n\n" + (files.size() > 1 ? "They are saved; open them with your editor." : "The file is saved; open it with your editor."),
         Icon::Information, Buttons::Ok);
}

void QtShell::openFolder(const std::filesystem::path& folder) {
  std::error_code ec;
  std::filesystem::create_directories(folder, ec);
  if (unattended || QDesktopServices::openUrl(QUrl::fromLocalFile(q(folder.string())))) return;
  msgBox("Folder", "No file manager could be started for\n" + folder.string(), Icon::Information, Buttons::Ok);
}

void QtShell::savePicture(const Picture& picture, const std::filesystem::path& file) {
  writePictureFile(picture, file, QApplication::font());
}

std::optional<std::filesystem::path> QtShell::runPrintDialog(const PrintJob& job) {
  return printWithDialog(job, QApplication::activeWindow());
}

void QtShell::savePdf(const PrintJob& job, const std::filesystem::path& file) { writePrintPdf(job, file); }

void QtShell::print(const PrintJob& job) {
  try {
    if (const auto file = runPrintDialog(job)) fileWritten(std::filesystem::absolute(*file));
  } catch (const RunTimeError& e) {
    msgBox("Print", e.what(), Icon::Critical, Buttons::Ok);
  }
}

Date QtShell::today() { return localToday(); }

std::string QtShell::clipboardText() { return QApplication::clipboard()->text().toStdString(); }

void QtShell::setClipboardText(const std::string& text) { QApplication::clipboard()->setText(QString::fromStdString(text)); }

}  // namespace tervalo
