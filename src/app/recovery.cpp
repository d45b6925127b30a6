#include "app/recovery.h"


#include "app/form_model.h"
#include "app/program.h"

namespace tervalo {

namespace {

using Json = nlohmann::ordered_json;

Json inputsJob(const std::vector<FormModel*>& openForms, const FormRegistry& registry, bool reachSection) {
  std::string calculator = "secsub";
  for (const FormModel* form : openForms)
    if (const CalculatorInfo* c = registry.calculatorByForm(form->name())) calculator = c->job;

  Json steps = Json::array();
  for (const FormModel* form : openForms) {
    Json set = Json::object();
    for (const auto& entry : form->controls()) {
      if (const auto* box = std::get_if<TextBox*>(&entry.control)) set[entry.name] = (*box)->text;
      if (const auto* combo = std::get_if<ComboBox*>(&entry.control)) set[entry.name] = (*combo)->text;
      if (const auto* check = std::get_if<CheckBox*>(&entry.control)) set[entry.name] = (*check)->checked;
      if (const auto* option = std::get_if<OptionButton*>(&entry.control); option && (*option)->checked)
        set[entry.name] = true;
    }
    Json step{{"form", form->name()}, {"set", std::move(set)}};
    // The section form is reached from the main window's Continue.
    if (reachSection && form->name() == "frmMain" && calculator == "secsub" && openForms.size() > 1)
      step["click"] = "btnContinue";
    steps.push_back(std::move(step));
    for (const JobStep& extra : form->recoverySteps()) {
      Json more{{"form", form->name()}, {"set", Json::object()}, {"click", extra.click}};
      for (const auto& setting : extra.set)
        std::visit([&](const auto& v) { more["set"][setting.first] = v; }, setting.second);
      steps.push_back(std::move(more));
    }
  }
  return Json{{"calculator", calculator}, {"steps", std::move(steps)}};
}

}  // namespace

nlohmann::ordered_json recoveryJob(const std::vector<FormModel*>& openForms, const FormRegistry& registry, const CrsChoice& crs) {
  Json job = inputsJob(openForms, registry, true);
  if (!crs.none()) job["crs"] = crsToJson(crs);
  return job;
}

nlohmann::ordered_json savedInputsJob(const std::vector<FormModel*>& forms, const FormRegistry& registry, const CrsChoice& crs) {
  Json job{{"version", kJobVersion}};
  job.update(inputsJob(forms, registry, false));
  if (!crs.none()) job["crs"] = crsToJson(crs);
  return job;
}

std::filesystem::path previousInputsFile(const std::string& dataFolder) { return dataFolder + "previous.job.json"; }

std::filesystem::path recoveryFile(const std::string& dataFolder) { return dataFolder + "recovery.job.json"; }

RecoveredInputs takeRecoveryJob(const std::string& dataFolder, const FormRegistry& registry) {
  const auto file = recoveryFile(dataFolder);
  std::error_code ec;
  if (!std::filesystem::is_regular_file(file, ec)) return {};
  RecoveredInputs found;
  try {
    found.job = readJobFile(file.string(), registry);
    std::filesystem::remove(file, ec);
    return found;
  } catch (const JobError& e) {
    // Kept for whoever wants to read it; a free name so no earlier one is lost.
    std::filesystem::path aside;
    for (int n = 1; aside.empty() || std::filesystem::exists(aside, ec); ++n)
      aside = file.parent_path() / ("recovery.damaged-" + std::to_string(n) + ".job.json");
    std::filesystem::rename(file, aside, ec);
    found.setAside = std::string("The entries kept when Tervalo last ended cannot be read: ") + e.what() + ". " +
                     (ec ? "They stay in \"" + file.string() + "\" (" + ec.message() + ")"
                         : "They are set aside as \"" + aside.string() + "\"") +
                     "; Tervalo starts without them.";
  }
  return found;
}

}  // namespace tervalo
