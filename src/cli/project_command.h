#pragma once
// tervalo-cli project new|import|export|list: a survey project's points
// from the command line, in the shapes DESIGN.md gives.

#include <ostream>
#include <string>

#include "crs/project_store.h"
#include "text/date.h"

namespace tervalo {

// Exit status 0 done, 2 a project or file that cannot be used (nothing stored), 3 a file not written.
int projectNew(const std::string& project, const ProjectSettings& settings, std::ostream& out, std::ostream& err);
int projectImport(const std::string& project, const std::string& file, const std::string& columns, OnDuplicate onDuplicate, bool json,
                  std::ostream& out, std::ostream& err);
int projectList(const std::string& project, bool json, std::ostream& out, std::ostream& err);
int projectCopy(const std::string& from, const std::string& to, bool json, std::ostream& out, std::ostream& err);
int projectExport(const std::string& project, const std::string& file, bool json, const Date& today, std::ostream& out,
                  std::ostream& err);

}  // namespace tervalo
