#include "project/project_session.h"

#include <unordered_set>

#include "app/shell.h"
#include "text/format.h"

namespace tervalo {

ProjectSession::ProjectSession(std::unique_ptr<ProjectFile> file) : file_(std::move(file)) {}

std::string ProjectSession::name() const { return file_->name(); }

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

// The versions this session's own change left: every kept step that expects one of those
// points expects it as it is now, for the step above it on the stack is what moved it.
void ProjectSession::moved(const std::map<std::string, long long>& versions) {
  for (std::vector<Step>* steps : {&done_, &undone_})
    for (Step& step : *steps)
      for (auto& [number, version] : step.back.expect)
        if (const auto it = versions.find(number); it != versions.end()) version = it->second;
}

void ProjectSession::edit(const ProjectEdit& edit, const std::string& what, const std::string& source) {
  ProjectEdit back = inverseOf(edit);
  back.expect = file_->apply(edit, source);
  moved(back.expect);
  done_.push_back({what, source, std::move(back)});
  undone_.clear();
  ++version_;
  count_ = -1;
}

StoreCounts ProjectSession::store(std::vector<ProjectPoint> points, OnDuplicate onDuplicate, const std::string& source,
                                  const std::string& what, const std::map<std::string, long long>& expect) {
  StoreCounts counts = file_->store(std::move(points), onDuplicate, source, expect);
  ProjectEdit back;
  back.remove = counts.added;
  back.put = counts.replacedPoints;
  back.expect = counts.versions;
  moved(counts.versions);
  done_.push_back({what, source, std::move(back)});
  undone_.clear();
  ++version_;
  count_ = -1;
  return counts;
}

bool ProjectSession::poll() {
  if (!file_->changedElsewhere()) return false;
  ++version_;
  count_ = -1;
  return true;
}

void ProjectSession::undo() { replay(done_, undone_, "undo "); }

void ProjectSession::redo() { replay(undone_, done_, "redo "); }

// The last step of `from` taken back (its edit applied), and kept in `to` as the edit that does it again.
void ProjectSession::replay(std::vector<Step>& from, std::vector<Step>& to, const char* word) {
  if (from.empty()) return;
  Step step = from.back();
  ProjectEdit again = inverseOf(step.back);
  again.expect = file_->apply(step.back, word + step.source);
  from.pop_back();
  moved(again.expect);
  to.push_back({step.what, step.source, std::move(again)});
  ++version_;
  count_ = -1;
}

std::string storeFromTool(ProjectSession& session, Shell& shell, std::vector<ProjectPoint> points, const std::string& source,
                          const std::string& what) {
  const std::string title = "Store in Project";
  if (points.empty()) {
    shell.msgBox(title, "There are no points to store.", Icon::Information);
    return "";
  }
  OnDuplicate way = OnDuplicate::Replace;
  try {
    std::vector<std::string> numbers;
    for (const ProjectPoint& p : points) numbers.push_back(p.number);
    const std::vector<ProjectPoint> held = session.file().findAll(numbers);
    // What the user is asked about is what is replaced: a point another user changes meanwhile refuses the store.
    std::map<std::string, long long> readAt;
    for (const std::string& n : numbers) readAt[n] = 0;
    for (const ProjectPoint& p : held) readAt[p.number] = p.version;
    if (!held.empty()) {
      std::string some;
      for (std::size_t i = 0; i < held.size() && i < 5; ++i) some += (i ? ", " : "") + held[i].number;
      if (held.size() > 5) some += " and " + std::to_string(held.size() - 5) + " more";
      way = shell.msgBox(title,
                         "The project holds " + some + " already. Replace those points with these? No: store these under the next free numbers.",
                         Icon::Question, Buttons::YesNo) == Answer::Yes
                ? OnDuplicate::Replace
                : OnDuplicate::Renumber;
    }
    if (way == OnDuplicate::Renumber) readAt.clear();  // the held points are left as they are
    const StoreCounts c = session.store(std::move(points), way, source, what, readAt);
    return "Stored " + grouped(c.stored) + (c.stored == 1 ? " point" : " points") + " in " + session.name() +
           (c.replaced ? " (" + grouped(c.replaced) + " replacing a point)" : "") +
           (c.renumbered ? " (" + grouped(c.renumbered) + " under the next free numbers)" : "") + ".";
  } catch (const ProjectError& e) {
    const std::string said = e.what();
    shell.msgBox(title, said + (said.find("stored") == std::string::npos ? ". Nothing was stored." : "."), Icon::Exclamation);
    return "";
  }
}

}  // namespace tervalo
