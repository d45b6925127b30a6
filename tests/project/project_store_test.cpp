// The project store in both its homes, a GeoPackage file and a PostGIS
// database of the tests' own server, held to the same answers: settings,
// duplicates, every query and order the Points window asks for, edits,
// alignments, the journal; then a whole project copied from one home to the
// other and back with nothing lost; then what only a shared project does:
// an edit refused where another user changed the point since it was read,
// notices of other users' changes, a read-only role, and each fault with
// its own message.

#include <gtest/gtest.h>

#include <fstream>
#include <thread>

#include "project/frm_points.h"
#include "project/project_session.h"
#include "support/bench.h"
#include "support/recording_shell.h"
#include "support/temp_dir.h"
#include "support/test_server.h"

namespace tervalo {
namespace {

using testing::adminSql;
using testing::databaseProject;
using testing::freshDatabase;

ProjectPoint pt(const std::string& number, double n, double e, std::optional<double> z, const std::string& description,
                const std::string& feature = "", const std::string& evidence = "") {
  ProjectPoint p;
  p.number = number;
  p.northing = n;
  p.easting = e;
  p.elevation = z;
  p.description = description;
  p.feature = feature;
  p.evidence = evidence;
  return p;
}

std::vector<std::string> numbersOf(const std::vector<ProjectPoint>& points) {
  std::vector<std::string> out;
  for (const ProjectPoint& p : points) out.push_back(p.number);
  return out;
}

class ProjectStore : public ::testing::TestWithParam<std::string> {
 protected:
  testing::TempDir dir;
  std::string place(const std::string& name) { return GetParam() == "gpkg" ? (dir.path() / (name + ".gpkg")).string() : databaseProject(freshDatabase(name)); }
  static std::vector<std::string> numbersOf(const std::vector<ProjectPoint>& points) { return tervalo::numbersOf(points); }
  static std::vector<std::string> numbersOf(const std::vector<long long>& ids, ProjectFile& p) { return tervalo::numbersOf(p.byIds(ids)); }
};

// Texts a store must keep as they are: quotes and SQL, LIKE's own signs, tabs, accents.
const std::vector<ProjectPoint> kPoints = {
    pt("10", 5000.123456789012, 2000.5, 101.25, "IP FOUND", "IP", "FD 1/2 IP"),
    pt("2", 5100, 2100, std::nullopt, "FENCE COR", "fc"),
    pt("1", 4900, 1900, 99, "CP 1 O'NEIL", "CP"),
    pt("AB7", 5050, 2050, std::nullopt, "STONE 100% \"CUT\"", "ST", "FD STONE"),
    pt("1'; DROP TABLE points; --", 1, 2, -3.5, "tab\there\\ and é", "Fc"),
    pt("3", 4800, 1800, 0, "under_score", "ip")};

TEST_P(ProjectStore, HoldsAndAnswersAsTheOtherHomeDoes) {
  const std::string where = place("store");
  ProjectSettings settings;
  settings.crs.epsg = 3419;
  settings.surveyor = "A. Surveyor";
  settings.license = "LS-1234";
  {
    auto p = createProject(where, settings);
    EXPECT_THROW(createProject(where, settings), ProjectError);  // a project is made once
    const StoreCounts c = p->store(kPoints, OnDuplicate::Skip, "import test");
    EXPECT_EQ(c.stored, 6);
    EXPECT_EQ(c.added.size(), 6u);
  }
  auto p = openProject(where);
  EXPECT_EQ(p->settings().crs.epsg, 3419);
  EXPECT_EQ(p->settings().unit, "ft");
  EXPECT_EQ(p->settings().license, "LS-1234");
  EXPECT_EQ(p->count(), 6);

  // Every text and number back as stored; an unknown elevation none, never 0, and 0 kept as 0.
  const std::vector<ProjectPoint> all = p->points();
  ASSERT_EQ(numbersOf(all), numbersOf(kPoints));
  for (std::size_t i = 0; i < all.size(); ++i) {
    EXPECT_EQ(all[i].northing, kPoints[i].northing);
    EXPECT_EQ(all[i].elevation, kPoints[i].elevation) << all[i].number;
    EXPECT_EQ(all[i].description, kPoints[i].description);
    EXPECT_EQ(all[i].feature, kPoints[i].feature);
    EXPECT_EQ(all[i].source, "import test");
    EXPECT_EQ(all[i].modified.size(), 20u);
  }
  EXPECT_EQ(p->find("1'; DROP TABLE points; --")->description, "tab\there\\ and é");
  EXPECT_FALSE(p->find("1' OR '1'='1"));
  EXPECT_EQ(numbersOf(p->findAll({"AB7", "2", "none"})), (std::vector<std::string>{"2", "AB7"}));
  EXPECT_EQ(numbersOf(p->page(1, 2)), (std::vector<std::string>{"2", "1"}));
  EXPECT_EQ(p->rank(all[3].id), 3);

  // The window's filters and orders.
  struct Case {
    PointQuery q;
    std::vector<std::string> numbers;
  };
  using C = PointQuery::Column;
  const Case cases[] = {
      {{.fromNumber = 2, .toNumber = 10}, {"10", "2", "3"}},
      {{.description = "o'neil"}, {"1"}},
      {{.description = "100%"}, {"AB7"}},
      {{.description = "_"}, {"3"}},
      {{.feature = "FC"}, {"2", "1'; DROP TABLE points; --"}},
      {{.evidence = "fd stone"}, {"AB7"}},
      {{.order = C::Number}, {"1", "2", "3", "10", "AB7", "1'; DROP TABLE points; --"}},
      {{.order = C::Number, .descending = true}, {"1'; DROP TABLE points; --", "AB7", "10", "3", "2", "1"}},
      {{.order = C::Elevation}, {"2", "AB7", "1'; DROP TABLE points; --", "3", "1", "10"}},
      {{.order = C::Elevation, .descending = true}, {"10", "1", "3", "1'; DROP TABLE points; --", "2", "AB7"}},
      {{.order = C::Description}, {"1", "2", "10", "AB7", "1'; DROP TABLE points; --", "3"}},
      {{.order = C::Feature}, {"1", "1'; DROP TABLE points; --", "10", "AB7", "2", "3"}},
      {{.feature = "ip", .order = C::Stored, .descending = true}, {"3", "10"}},
  };
  for (const Case& c : cases) EXPECT_EQ(numbersOf(p->select(c.q), *p), c.numbers) << c.q.description << c.q.feature << static_cast<int>(c.q.order);
  EXPECT_EQ(p->values("feature", 10), (std::vector<std::string>{"CP", "fc", "IP", "ST"}));  // each text once in any case, as first stored
  EXPECT_EQ(p->values("evidence", 10), (std::vector<std::string>{"FD 1/2 IP", "FD STONE"}));
  EXPECT_TRUE(p->values("number; DROP TABLE points", 10).empty());

  // Duplicates as asked.
  const StoreCounts skipped = p->store({pt("2", 1, 1, 1, "NEW 2"), pt("20", 1, 1, 1, "NEW 20")}, OnDuplicate::Skip, "again");
  EXPECT_EQ(std::tie(skipped.stored, skipped.skipped), std::make_tuple(1, 1));
  const StoreCounts replaced = p->store({pt("2", 7, 8, std::nullopt, "REPLACED 2")}, OnDuplicate::Replace, "again");
  EXPECT_EQ(replaced.replaced, 1);
  ASSERT_EQ(replaced.replacedPoints.size(), 1u);
  EXPECT_EQ(replaced.replacedPoints[0].description, "FENCE COR");
  EXPECT_EQ(p->find("2")->description, "REPLACED 2");
  EXPECT_EQ(p->rank(p->find("2")->id), 1);  // a replaced point keeps its place
  const StoreCounts renumbered = p->store({pt("10", 1, 1, 1, "TEN AGAIN"), pt("AB7", 1, 1, 1, "AB AGAIN")}, OnDuplicate::Renumber, "again");
  EXPECT_EQ(renumbered.added, (std::vector<std::string>{"21", "22"}));

  // An edit: a point renumbered keeps its place; one removed; one added.
  ProjectPoint moved = *p->find("1");
  moved.number = "100";
  moved.modified.clear();
  p->apply({{"1", "3"}, {moved, pt("N1", 1, 2, 3, "ADDED")}}, "edit test");
  EXPECT_FALSE(p->find("1"));
  EXPECT_FALSE(p->find("3"));
  EXPECT_EQ(p->rank(p->find("100")->id), 2);
  EXPECT_EQ(p->find("N1")->source, "edit test");

  // Alignments by name, their centrelines exact.
  StoredAlignment a{"MAIN", "alignment", "{\"pis\": []}", {{5000.123456789012, 2000.987654321098}, {5100.5, 2200.25}}, ""};
  p->storeAlignment(a);
  a.definition = "{\"pis\": [1]}";
  p->storeAlignment(a);
  p->storeAlignment({"B ROAD", "landxml", "<LandXML/>", {}, ""});
  const auto kept = p->alignments();
  ASSERT_EQ(kept.size(), 2u);
  EXPECT_EQ(kept[1].definition, "{\"pis\": [1]}");
  EXPECT_EQ(kept[1].centreline, a.centreline);

  settings.surveyor = "B. Surveyor";
  p->setSigner(settings);
  EXPECT_EQ(openProject(where)->settings().surveyor, "B. Surveyor");
  const auto journal = p->history();
  ASSERT_GE(journal.size(), 8u);
  EXPECT_EQ(journal.front().source, "project new");
}

INSTANTIATE_TEST_SUITE_P(BothHomes, ProjectStore, ::testing::Values("gpkg", "postgis"));

void expectSameProjects(ProjectFile& a, ProjectFile& b) {
  const auto pa = a.points(), pb = b.points();
  ASSERT_EQ(pa.size(), pb.size());
  for (std::size_t i = 0; i < pa.size(); ++i) {
    const auto fields = [](const ProjectPoint& p) {
      return std::make_tuple(p.number, p.northing, p.easting, p.elevation, p.description, p.feature, p.evidence, p.source, p.modified);
    };
    EXPECT_EQ(fields(pa[i]), fields(pb[i])) << "point " << pa[i].number;
  }
  EXPECT_EQ(a.settings().crs.epsg, b.settings().crs.epsg);
  EXPECT_EQ(a.settings().crs.foot, b.settings().crs.foot);
  EXPECT_EQ(a.settings().unit, b.settings().unit);
  EXPECT_EQ(a.settings().firm, b.settings().firm);
  const auto aa = a.alignments(), ab = b.alignments();
  ASSERT_EQ(aa.size(), ab.size());
  for (std::size_t i = 0; i < aa.size(); ++i)
    EXPECT_EQ(std::tie(aa[i].name, aa[i].definition, aa[i].centreline, aa[i].modified), std::tie(ab[i].name, ab[i].definition, ab[i].centreline, ab[i].modified));
}

TEST(SharedProject, AProjectCopiedToADatabaseAndBackLosesNothing) {
  testing::TempDir dir;
  const auto first = dir.path() / "office.gpkg", back = dir.path() / "back.gpkg";
  ProjectSettings settings;
  settings.crs = {26915, "us"};  // a metric system in US feet: the project's own system
  settings.firm = "Surveys & Sons";
  {
    auto p = createProject(first, settings);
    std::vector<ProjectPoint> many;
    for (int i = 1; i <= 2500; ++i) many.push_back(pt(std::to_string(i * 7 % 2503), 4e6 + i / 3.0, 5e5 - i / 7.0, i % 5 ? std::optional(i / 9.0) : std::nullopt, "P\t" + std::to_string(i)));
    many.push_back(pt("CP 1", 1e-9, -1e9, 0, "ünïcode"));
    p->store(many, OnDuplicate::Skip, "field crew 2");
    p->storeAlignment({"CL", "alignment", "{}", {{4e6, 5e5}, {4e6 + 1 / 3.0, 5e5 + 1e-7}}, ""});
  }
  const std::string database = databaseProject(freshDatabase("copy"));
  EXPECT_EQ(copyProject(first, database), 2501);
  EXPECT_THROW(copyProject(first, database), ProjectError);  // the database holds a project now
  EXPECT_EQ(copyProject(database, back), 2501);
  auto a = openProject(first), b = openProject(database), c = openProject(back);
  expectSameProjects(*a, *b);
  expectSameProjects(*a, *c);
  const auto journal = b->history();
  EXPECT_TRUE(std::any_of(journal.begin(), journal.end(), [](const JournalEntry& j) { return j.what == "copied from office: 2501 points"; }));
  // Each copy's journal: the one copied, then its own making, copying and keeping of the alignment.
  EXPECT_EQ(journal.size(), a->history().size() + 3);
  EXPECT_EQ(c->history().size(), journal.size() + 3);
}

// Two users of one database, each with their own session, as two programs would be.
struct TwoUsers {
  std::string database = freshDatabase("crews");
  std::string where = databaseProject(database);
  std::unique_ptr<ProjectSession> office, field;
  TwoUsers() {
    createProject(where, {})->store({pt("5", 100, 200, 10, "IP FND"), pt("6", 110, 210, std::nullopt, "PK NAIL")}, OnDuplicate::Skip, "import");
    office = std::make_unique<ProjectSession>(openProject(where));
    field = std::make_unique<ProjectSession>(openProject(where));
  }
  static ProjectEdit editOf(const ProjectPoint& read, const std::string& description) {
    ProjectPoint p = read;
    p.description = description;
    p.modified.clear();
    p.source.clear();  // the edit's own
    return {{}, {p}, {{read.number, read.version}}};
  }
};

TEST(SharedProject, AnEditOfAPointChangedSinceItWasReadIsRefusedNamingItAndWhatItHolds) {
  TwoUsers u;
  const ProjectPoint officeRead = *u.office->file().find("5");
  u.field->edit(TwoUsers::editOf(*u.field->file().find("5"), "IP FND BENT"), "Edit point 5", "field");
  try {
    u.office->edit(TwoUsers::editOf(officeRead, "IP FND OFFICE"), "Edit point 5", "office");
    FAIL() << "a stale edit was stored";
  } catch (const ProjectConflict& e) {
    const std::string said = e.what();
    EXPECT_NE(said.find("Point 5 was changed by another user since you read it ("), std::string::npos) << said;
    EXPECT_NE(said.find("by field): it holds N 100.0000, E 200.0000, Z 10.000, \"IP FND BENT\" now"), std::string::npos) << said;
    ASSERT_TRUE(e.now);
    EXPECT_EQ(e.now->description, "IP FND BENT");
  }
  EXPECT_EQ(u.office->file().find("5")->description, "IP FND BENT");
  EXPECT_FALSE(u.office->canUndo());

  // A point deleted meanwhile, a number taken meanwhile: both refused, the whole edit with them.
  const ProjectPoint six = *u.office->file().find("6");
  u.field->edit({{"6"}, {}, {{"6", six.version}}}, "Delete 6", "field");
  ProjectEdit both = TwoUsers::editOf(*u.office->file().find("5"), "FINE");
  both.put.push_back(six);
  both.expect["6"] = six.version;
  EXPECT_THROW(u.office->edit(both, "Edit", "office"), ProjectConflict);
  EXPECT_EQ(u.office->file().find("5")->description, "IP FND BENT");
  u.field->edit({{}, {pt("7", 1, 1, 1, "FIELD 7")}, {{"7", 0}}}, "Add 7", "field");
  try {
    u.office->edit({{}, {pt("7", 2, 2, 2, "OFFICE 7")}, {{"7", 0}}}, "Add 7", "office");
    FAIL() << "a number taken meanwhile was stored over";
  } catch (const ProjectConflict& e) {
    EXPECT_NE(std::string(e.what()).find("Point 7 was stored by another user"), std::string::npos) << e.what();
  }

  // Undo never takes back what another user changed since; a step of one's own undoes.
  u.office->edit(TwoUsers::editOf(*u.office->file().find("5"), "OFFICE 5"), "Edit point 5", "office");
  u.office->undo();
  EXPECT_EQ(u.office->file().find("5")->description, "IP FND BENT");
  u.office->redo();
  u.field->edit(TwoUsers::editOf(*u.field->file().find("5"), "FIELD AGAIN"), "Edit point 5", "field");
  EXPECT_THROW(u.office->undo(), ProjectConflict);
  EXPECT_EQ(u.office->file().find("5")->description, "FIELD AGAIN");
  EXPECT_TRUE(u.office->canUndo());
}

TEST(SharedProject, ThePointsWindowSeesOtherUsersChangesAndShowsWhatARefusedEditMet) {
  TwoUsers u;
  testing::Bench b;
  b.program.project = std::move(u.office);
  auto& form = b.program.form<frmPoints>("frmPoints");
  form.setOpen(true);
  ASSERT_EQ(form.rowCount(), 2);
  EXPECT_FALSE(form.poll());
  u.field->edit(TwoUsers::editOf(*u.field->file().find("6"), "PK NAIL SET"), "Edit point 6", "field");
  bool seen = false;
  for (int i = 0; i < 200 && !seen; ++i) {
    seen = form.poll();
    if (!seen) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  ASSERT_TRUE(seen) << "no notice of the other user's change";
  EXPECT_EQ(form.cell(1, 4), "PK NAIL SET");
  EXPECT_NE(form.lblResult.caption.find("Another user changed the points"), std::string::npos);
  // The window's own edits are no news to it.
  form.setCell(1, 5, "PK");
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_FALSE(form.poll());

  // Read here, changed there, edited here: refused, and the row shows the other user's values.
  EXPECT_EQ(form.cell(0, 4), "IP FND");
  u.field->edit(TwoUsers::editOf(*u.field->file().find("5"), "FIELD 5"), "Edit point 5", "field");
  form.setCell(0, 4, "OFFICE 5");
  ASSERT_FALSE(b.shell.boxes.empty());
  EXPECT_NE(b.shell.boxes.back().text.find("Point 5 was changed by another user"), std::string::npos) << b.shell.boxes.back().text;
  EXPECT_NE(b.shell.boxes.back().text.find("The window shows the points as they are now."), std::string::npos);
  EXPECT_EQ(form.cell(0, 4), "FIELD 5");
}

TEST(SharedProject, AToolsStoreReplacesOnlyThePointsAsTheUserWasAskedAboutThem) {
  TwoUsers u;
  // The other user changes point 5 while this one is asked whether to replace it.
  struct Asking : testing::RecordingShell {
    std::function<void()> onQuestion;
    Answer msgBox(const std::string& title, const std::string& text, Icon icon, Buttons buttons) override {
      if (buttons == Buttons::YesNo && onQuestion) onQuestion();
      return RecordingShell::msgBox(title, text, icon, buttons);
    }
  } shell;
  shell.onQuestion = [&] { u.field->edit(TwoUsers::editOf(*u.field->file().find("5"), "FIELD 5"), "Edit point 5", "field"); };
  EXPECT_EQ(storeFromTool(*u.office, shell, {pt("5", 1, 2, 3, "TRAVERSE 5"), pt("50", 1, 2, 3, "NEW")}, "traverse", "Store"), "");
  EXPECT_NE(shell.boxes.back().text.find("Point 5 was changed by another user"), std::string::npos) << shell.boxes.back().text;
  EXPECT_EQ(u.office->file().find("5")->description, "FIELD 5");
  EXPECT_FALSE(u.office->file().find("50"));
  shell.onQuestion = nullptr;
  EXPECT_EQ(storeFromTool(*u.office, shell, {pt("5", 1, 2, 3, "TRAVERSE 5")}, "traverse", "Store"), "Stored 1 point in " + u.database + " (1 replacing a point).");
}

// A role of the test server that logs in by password, its password in a password file of the test's own.
struct Role {
  testing::TempDir dir;
  std::string name;
  Role(const std::string& role, const std::string& database, const std::string& password, const std::string& kept) : name(role) {
    adminSql("postgres", "DO $$ BEGIN IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = '" + role + "') THEN CREATE ROLE " + role +
                             " LOGIN PASSWORD '" + password + "'; END IF; END $$");
    adminSql(database, "GRANT SELECT ON ALL TABLES IN SCHEMA public TO " + role);
    const auto file = dir.write("pgpass", "*:*:*:" + role + ":" + kept + "\n");
    std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    setenv("PGPASSFILE", file.c_str(), 1);
  }
  ~Role() { unsetenv("PGPASSFILE"); }
};

std::string faultOf(const std::string& where) {
  try {
    openProject(where);
  } catch (const ProjectError& e) {
    return e.what();
  }
  return "opened";
}

TEST(SharedProject, AReadOnlyRoleBrowsesAndIsToldWhenItTriesToEdit) {
  TwoUsers u;
  Role reader("crew_reader", u.database, "look only", "look only");
  auto p = openProject(databaseProject(u.database, "crew_reader"));
  EXPECT_EQ(p->points().size(), 2u);
  EXPECT_EQ(p->select({.description = "nail"}).size(), 1u);
  for (const auto& edit : std::vector<std::function<void()>>{
           [&] { p->store({pt("9", 1, 1, 1, "")}, OnDuplicate::Skip, "reader"); },
           [&] { p->apply({{"5"}, {}}, "reader"); },
           [&] { p->storeAlignment({"A", "alignment", "{}", {}, ""}); }}) {
    try {
      edit();
      ADD_FAILURE() << "a read-only role changed the project";
    } catch (const ProjectError& e) {
      EXPECT_NE(std::string(e.what()).find("the role \"crew_reader\" may browse the project but not change it"), std::string::npos) << e.what();
    }
  }
  EXPECT_EQ(u.office->file().count(), 2);

  // A crew's role with the rights the README grants edits and stores.
  adminSql(u.database,
           "CREATE ROLE crew_writer LOGIN PASSWORD 'look only'; GRANT SELECT, INSERT, UPDATE, DELETE ON points, tervalo_journal, alignments TO "
           "crew_writer; GRANT SELECT ON tervalo_project TO crew_writer; GRANT USAGE ON ALL SEQUENCES IN SCHEMA public TO crew_writer");
  std::ofstream(reader.dir.path() / "pgpass", std::ios::app) << "*:*:*:crew_writer:look only\n";
  auto crew = openProject(databaseProject(u.database, "crew_writer"));
  crew->store({pt("9", 1, 1, 1, "CREW 9")}, OnDuplicate::Skip, "crew");
  crew->apply({{"5"}, {}, {{"5", crew->find("5")->version}}}, "crew");
  crew->storeAlignment({"A", "alignment", "{}", {{1, 2}, {3, 4}}, ""});
  EXPECT_EQ(numbersOf(u.office->file().points()), (std::vector<std::string>{"6", "9"}));
}

TEST(SharedProject, EachFaultOfTheServerOrTheDatabaseHasItsOwnMessage) {
  TwoUsers u;
  {
    Role wrong("crew_wrong", u.database, "right one", "wrong one");
    EXPECT_NE(faultOf(databaseProject(u.database, "crew_wrong")).find("the server refused the password"), std::string::npos);
  }
  {
    Role none("crew_none", u.database, "a secret", "a secret");
    unsetenv("PGPASSFILE");
    EXPECT_NE(faultOf(databaseProject(u.database, "crew_none")).find("asks for a password and your PostgreSQL password file"), std::string::npos);
  }
  EXPECT_NE(faultOf(databaseProject("no_such_job")).find("the server has no such database"), std::string::npos);
  EXPECT_NE(faultOf(databaseProject(freshDatabase("plain"))).find("is a PostgreSQL database but not a Tervalo project"), std::string::npos);
  EXPECT_NE(faultOf("PG:host=/nonexistent/socket dbname=x").find("no PostgreSQL server answers there"), std::string::npos);
  EXPECT_NE(faultOf(u.where + " password=secret").find("holds a password, which Tervalo would keep"), std::string::npos);
  EXPECT_NE(faultOf("PG:dbname='unclosed").find("is not a PostgreSQL connection"), std::string::npos);
  // A service as libpq reads it from the service file.
  testing::TempDir dir;
  const std::string server = testing::testServer();
  dir.write("services", "[firm]\n" + server.substr(0, server.find(' ')) + "\nuser=tervalo\ndbname=" + u.database + "\n");
  setenv("PGSERVICEFILE", (dir.path() / "services").c_str(), 1);
  EXPECT_EQ(faultOf("PG:service=firm"), "opened");
  EXPECT_NE(faultOf("PG:service=nowhere").find("no such PostgreSQL service"), std::string::npos);
  unsetenv("PGSERVICEFILE");
  adminSql(u.database, "UPDATE tervalo_project SET value = '99' WHERE key = 'schema'");
  EXPECT_NE(faultOf(u.where).find("comes from a newer Tervalo (project version 99)"), std::string::npos);
}

TEST(SharedProject, AConnectionLostInTheMiddleOfAStoreStoresNothing) {
  TwoUsers u;
  // The server ends the connection while the store is writing its second point.
  adminSql(u.database,
           "CREATE FUNCTION cut() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN IF NEW.number = 'CUT' THEN PERFORM "
           "pg_terminate_backend(pg_backend_pid()); END IF; RETURN NEW; END $$; CREATE TRIGGER cut BEFORE INSERT OR UPDATE ON points FOR EACH "
           "ROW EXECUTE FUNCTION cut()");
  auto p = openProject(u.where);
  try {
    p->store({pt("8", 1, 1, 1, ""), pt("CUT", 2, 2, 2, ""), pt("9", 3, 3, 3, "")}, OnDuplicate::Skip, "field");
    FAIL() << "the store ended well";
  } catch (const ProjectError& e) {
    EXPECT_NE(std::string(e.what()).find("cannot be changed: the connection to the server was lost, and nothing was stored"), std::string::npos)
        << e.what();
  }
  EXPECT_EQ(openProject(u.where)->count(), 2);
  // The project open in the program connects again for its next run.
  EXPECT_FALSE(p->find("8"));
  EXPECT_EQ(p->store({pt("8", 1, 1, 1, "")}, OnDuplicate::Skip, "field").stored, 1);
}

}  // namespace
}  // namespace tervalo
