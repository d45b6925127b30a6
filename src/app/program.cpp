#include "app/program.h"

#include <cmath>

#include "app/form_model.h"
#include "app/output_file.h"
#include "app/shell.h"
#include "project/project_session.h"
#include "text/errors.h"

namespace tervalo {

void FormRegistry::addForm(std::string name, Factory make) { forms_[std::move(name)] = std::move(make); }

void FormRegistry::addCalculator(CalculatorInfo info) { calculators_.push_back(std::move(info)); }

bool FormRegistry::hasForm(std::string_view name) const { return forms_.find(name) != forms_.end(); }

std::unique_ptr<FormModel> FormRegistry::make(std::string_view name, Program& program) const {
  const auto it = forms_.find(name);
  return it == forms_.end() ? nullptr : it->second(program);
}

std::vector<std::string> FormRegistry::formNames() const {
  std::vector<std::string> names;
  for (const auto& [name, make] : forms_) names.push_back(name);
  return names;
}

const CalculatorInfo* FormRegistry::calculatorByJob(std::string_view job) const {
  for (const auto& c : calculators_)
    if (c.job == job) return &c;
  return nullptr;
}

const CalculatorInfo* FormRegistry::calculatorByForm(std::string_view form) const {
  for (const auto& c : calculators_)
    if (c.form == form) return &c;
  return nullptr;
}

const CalculatorInfo* FormRegistry::calculatorByMenu(std::string_view menu) const {
  for (const auto& c : calculators_)
    if (c.menu == menu) return &c;
  return nullptr;
}

Program::Program(Shell& shell, std::string dataFolder, const FormRegistry& registry)
    : userAppData(std::move(dataFolder)),
      pi(4 * std::atan(1.0)),
      recent(userAppData),
      recentProjects(userAppData, "recent-projects.json"),
      shell_(shell),
      registry_(registry),
      history_(userAppData) {}

Program::~Program() = default;

FormModel& Program::form(std::string_view name) {
  if (auto it = forms_.find(name); it != forms_.end()) return *it->second;
  auto model = registry_.make(name, *this);
  if (!model) throw RunTimeError("The window " + std::string(name) + " is not part of this program.");
  FormModel& made = *model;
  forms_.emplace(std::string(name), std::move(model));
  order_.push_back(&made);
  return made;
}

void Program::openCalculator(std::string_view menu) {
  const CalculatorInfo* info = registry_.calculatorByMenu(menu);
  if (!info || !registry_.hasForm(info->form) || !info->openFromMenu) return;
  info->openFromMenu(*this);
}

void Program::writeOutputFile(const std::filesystem::path& file, const std::vector<std::string>& lines, const std::string& holds) {
  writeOutputFiles({{file, lines}}, holds);
}

void Program::writeOutputFiles(const std::vector<std::pair<std::filesystem::path, std::vector<std::string>>>& files,
                               const std::string& holds) {
  lastKept.clear();
  // Nothing a run replaces is lost: the earlier files are kept first.
  if (keepsHistory)
    for (const auto& file : files)
      if (auto kept = history_.keepEarlier(file.first)) lastKept.emplace_back(file.first, std::move(*kept));
  if (outputBatch)
    outputBatch->add(files);
  else
    writeTextFiles(files);
  for (const auto& file : files) {
    shell_.fileWritten(std::filesystem::absolute(file.first));
    if (keepsHistory) history_.written(file.first, holds);
  }
}

}  // namespace tervalo
