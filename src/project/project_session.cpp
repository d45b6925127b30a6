#include "project/project_session.h"

#include <unordered_set>

#include "text/format.h"

namespace tervalo {

ProjectSession::ProjectSession(std::unique_ptr<ProjectFile> file) : file_(std::move(file)) {}

std::string ProjectSession::name() const { return file_->path().stem().string(); }

std::string ProjectSession::status() {
  if (count_ < 0) count_ = file_->count();
  const ProjectSettings& s = file_->settings();
  return "Project: " + name() + " (" + crsTitle(s.crs) + ", " + (s.unit == "m" ? "metres" : "feet") + "), " +
         grouped(count_) + (count_ == 1 ? " point" : " points");
}

ProjectEdit ProjectSession::inverseOf(const ProjectEdit& edit) {
  std::vector<std::string> numbers;
  std::unordered_set<std::string> seen;
  for (const std::string& n : edit.remove)
    if (seen.insert(n).second) numbers.push_back(n);
  for (const ProjectPoint& p : edit.put)
    if (seen.insert(p.number).second) numbers.push_back(p.number);
  ProjectEdit back;
  std::unordered_set<std::string> held;
  for (ProjectPoint& p : file_->findAll(numbers)) {
    held.insert(p.number);
    back.put.push_back(std::move(p));
  }
  for (const std::string& n : numbers)
    if (!held.count(n)) back.remove.push_back(n);
  return back;
}

void ProjectSession::edit(const ProjectEdit& edit, const std::string& what, const std::string& source) {
  ProjectEdit back = inverseOf(edit);
  file_->apply(edit, source);
  done_.push_back({what, source, std::move(back)});
  undone_.clear();
  ++version_;
  count_ = -1;
}

StoreCounts ProjectSession::store(std::vector<ProjectPoint> points, OnDuplicate onDuplicate, const std::string& source,
                                  const std::string& what) {
  StoreCounts counts = file_->store(std::move(points), onDuplicate, source);
  ProjectEdit back;
  back.remove = counts.added;
  back.put = counts.replacedPoints;
  done_.push_back({what, source, std::move(back)});
  undone_.clear();
  ++version_;
  count_ = -1;
  return counts;
}

void ProjectSession::undo() {
  if (done_.empty()) return;
  Step step = done_.back();
  ProjectEdit again = inverseOf(step.back);
  file_->apply(step.back, "undo " + step.source);
  done_.pop_back();
  undone_.push_back({step.what, step.source, std::move(again)});
  ++version_;
  count_ = -1;
}

void ProjectSession::redo() {
  if (undone_.empty()) return;
  Step step = undone_.back();
  ProjectEdit back = inverseOf(step.back);
  file_->apply(step.back, "redo " + step.source);
  undone_.pop_back();
  done_.push_back({step.what, step.source, std::move(back)});
  ++version_;
  count_ = -1;
}

}  // namespace tervalo
