#pragma once
// The project open in the program: its file, and the changes made to it in
// this run, each taken back and done again as one step (an edit in the
// Points window, a tool's Store, an import). Every window reads the
// project through it and sees by `version` when to read again. In a shared
// project each step carries the versions of the points it left, so that
// Undo never takes back what another user has changed since.

#include <memory>
#include <string>
#include <vector>

#include "crs/project_store.h"

namespace tervalo {

class Shell;
class ProjectSession;

// A tool's computed points stored in the open project as one step named
// `what`. Where the project holds some of their numbers, the user chooses
// once: replace those points (a run made again) or store them under the
// next free numbers. Returns what the window says of it; "" when nothing
// was stored (the box said why).
std::string storeFromTool(ProjectSession& session, Shell& shell, std::vector<ProjectPoint> points, const std::string& source,
                          const std::string& what);

class ProjectSession {
 public:
  explicit ProjectSession(std::unique_ptr<ProjectFile> file);

  ProjectFile& file() { return *file_; }
  // The project's name: its file's, without the ending.
  std::string name() const;
  // "Project: Rowe Farm (EPSG:3419 ..., feet), 1,204 points" for the main window.
  std::string status();

  // An edit, made in one transaction and kept as one step named `what`.
  void edit(const ProjectEdit& edit, const std::string& what, const std::string& source);
  // Points stored as ProjectFile::store stores them, kept as one step.
  StoreCounts store(std::vector<ProjectPoint> points, OnDuplicate onDuplicate, const std::string& source, const std::string& what,
                    const std::map<std::string, long long>& expect = {});

  bool canUndo() const { return !done_.empty(); }
  bool canRedo() const { return !undone_.empty(); }
  // What the next Undo or Redo takes back or does again, "" for nothing.
  std::string undoText() const { return done_.empty() ? "" : done_.back().what; }
  std::string redoText() const { return undone_.empty() ? "" : undone_.back().what; }
  void undo();
  void redo();

  // Changes with every change of the points, so that a window knows its rows are stale.
  int version() const { return version_; }
  // Whether another user changed a shared project's points since last asked; the version moves when so.
  bool poll();

 private:
  struct Step {
    std::string what, source;
    ProjectEdit back;  // what takes the step back
  };
  // The edit that puts back the points `edit` is about to change, as they are now.
  ProjectEdit inverseOf(const ProjectEdit& edit);
  void replay(std::vector<Step>& from, std::vector<Step>& to, const char* word);
  void moved(const std::map<std::string, long long>& versions);
  std::unique_ptr<ProjectFile> file_;
  std::vector<Step> done_, undone_;
  int version_ = 0;
  long long count_ = -1;  // the point count, read again after each change
};

}  // namespace tervalo
