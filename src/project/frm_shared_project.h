#pragma once
// The Shared Project window (Project > Open Shared Project...): a firm's
// project in a PostgreSQL database with PostGIS, named by a service or by
// a connection's words, opened or made new. It keeps no password: libpq
// takes it from the user's password file.

#include "app/form_model.h"

namespace tervalo {

class frmSharedProject : public FormModel {
 public:
  explicit frmSharedProject(Program& program);

  Label lblConnection{"&Database:"};
  TextBox txtConnection;
  Label lblHelp{
      "A service of your PostgreSQL service file (service=NAME), or a connection's words (dbname=NAME host=SERVER user=ROLE "
      "sslmode=require). The password comes from your PostgreSQL password file (~/.pgpass), never from here."};
  Button btnOpen{"&Open"};
  Button btnNew{"&Make New Project Here..."};
  Button btnCancel{"Cancel"};

  // What the user chose, for the main window: the project in GDAL's form
  // ("PG:service=firm"), and whether it is to be made new.
  std::string chosen;
  bool makeNew = false;

  void opened() override;

 private:
  void choose(bool fresh);
};

}  // namespace tervalo
