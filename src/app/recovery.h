#pragma once
// What the user typed, kept across a program end: the inputs of every open
// window as a job that reopens the calculator with them at the next start.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace tervalo {

class FormModel;
class FormRegistry;

// The recovery job for the windows open at the end, main window first.
// Every text box, combo, check box and chosen option button is set again,
// in screen order.
nlohmann::ordered_json recoveryJob(const std::vector<FormModel*>& openForms, const FormRegistry& registry);

// Where the recovery job is kept in the data folder.
std::filesystem::path recoveryFile(const std::string& dataFolder);

// Reads and removes the recovery job, if there is one.
std::optional<std::string> takeRecoveryJob(const std::string& dataFolder);

}  // namespace tervalo
