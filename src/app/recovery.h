#pragma once
// What the user typed, kept across a program end: the inputs of every open
// window as a job that reopens the calculator with them at the next start.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "crs/crs.h"

#include "app/job.h"

namespace tervalo {

class FormModel;
class FormRegistry;

// The recovery job for the windows open at the end, main window first.
// Every text box, combo, check box and chosen option button is set again,
// in screen order; the section form is reached again by Continue.
nlohmann::ordered_json recoveryJob(const std::vector<FormModel*>& openForms, const FormRegistry& registry,
                                   const CrsChoice& crs = {});

// A calculator window's inputs as the program's document: the same job,
// marked with its version, with no button pressed but those that rebuild a
// list (the grading width's segments).
nlohmann::ordered_json savedInputsJob(const std::vector<FormModel*>& forms, const FormRegistry& registry,
                                      const CrsChoice& crs = {});

// Where the inputs of the last calculator window closed are kept.
std::filesystem::path previousInputsFile(const std::string& dataFolder);

// Where the recovery job is kept in the data folder.
std::filesystem::path recoveryFile(const std::string& dataFolder);

// The recovery job found at start-up: the job to offer, or, when the file
// cannot be played (damaged, or from a newer Tervalo), the words that say it
// was set aside under another name, never deleted.
struct RecoveredInputs {
  std::optional<Job> job;
  std::string setAside;
};

// Reads the recovery job, if there is one, and takes it out of the way, so it
// is offered or reported once.
RecoveredInputs takeRecoveryJob(const std::string& dataFolder, const FormRegistry& registry);

}  // namespace tervalo
