#include "project/frm_shared_project.h"

#include "app/program.h"
#include "app/shell.h"
#include "crs/project_store.h"
#include "text/justify.h"

namespace tervalo {

frmSharedProject::frmSharedProject(Program& program) : FormModel(program, "frmSharedProject", "Shared Project") {
  add("lblConnection", lblConnection);
  add("txtConnection", txtConnection);
  add("lblHelp", lblHelp);
  add("btnOpen", btnOpen).click([this] { choose(false); });
  add("btnNew", btnNew).click([this] { choose(true); });
  add("btnCancel", btnCancel).click([this] {
    chosen.clear();
    unload();
  });
}

void frmSharedProject::opened() {
  chosen.clear();
  makeNew = false;
  // The last shared project opened, proposed again.
  if (txtConnection.text.empty())
    for (const std::string& file : program().recentProjects.files())
      if (sharedProject(file)) {
        txtConnection.text = file.substr(3);
        break;
      }
}

void frmSharedProject::choose(bool fresh) {
  std::string words = stripBlanks(txtConnection.text);
  if (sharedProject(words)) words = stripBlanks(words.substr(3));
  if (words.empty()) {
    shell().msgBox("Shared Project", "Name the database: service=NAME, or dbname=NAME host=SERVER.", Icon::Exclamation);
    focusRequest = "txtConnection";
    return;
  }
  if (words.find("password") != std::string::npos) {
    shell().msgBox("Shared Project",
                   "The connection holds a password, which Tervalo would keep in its recent list. Name the database without it, and put the "
                   "password in your PostgreSQL password file (~/.pgpass, or the file PGPASSFILE names).",
                   Icon::Exclamation);
    focusRequest = "txtConnection";
    return;
  }
  // A bare name is a service's, as the firm's administrator names them.
  if (words.find('=') == std::string::npos) words = "service=" + words;
  chosen = "PG:" + words;
  makeNew = fresh;
  unload();
}

}  // namespace tervalo
