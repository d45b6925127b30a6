// A survey project a firm shares, in a PostgreSQL database with PostGIS.
// Its layers and fields are a GeoPackage project's, made by GDAL's
// PostgreSQL driver so that GIS programs read them as their own; beside
// them each point has a `version`, taken from one sequence at every insert
// and update (by any program), and a notice goes out on every change.
// Points are read and written through libpq with every value bound. Writers
// take turns by a lock of the transaction, so that no two ever wait on each
// other; an edit is refused whole when a point it read has changed since.
// Built into the coordinate system module.

#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal.h>
#include <libpq-fe.h>
#include <ogr_api.h>
#include <ogr_srs_api.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "crs/project_store.h"

namespace tervalo {

namespace {

// The lock every writer of a project takes for its transaction (one database, one project).
constexpr const char* kWriterLock = "SELECT pg_advisory_xact_lock(80423117)";
constexpr const char* kColumns = "fid, number, northing, easting, elevation, description, feature, evidence, source, modified, version";
// The Points window's order of numbers: whole numbers by value, then the
// others by their leading whole number and byte by byte, as a GeoPackage
// project sorts them; an index of these keys answers it without a sort.
const std::string kWhole = "number ~ '^[0-9]{1,18}$'";
const std::string kNumberKeys[] = {"CASE WHEN " + kWhole + " THEN 0 ELSE 1 END", "COALESCE(substring(number from '^[-+]?[0-9]{1,18}')::bigint, 0)",
                                   "number COLLATE \"C\""};
const char* const kFields[] = {"number", "northing", "easting", "elevation", "description", "feature", "evidence", "source", "modified"};

// A text PostgreSQL takes: UTF-8 as it is; a byte that is not (a field file
// in Latin-1) read as Latin-1; nothing from a NUL on, as a GeoPackage keeps it.
std::string utf8(const std::string& in) {
  const std::string text = in.substr(0, in.find('\0'));
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    const auto c = static_cast<unsigned char>(text[i]);
    std::size_t n = c < 0x80 ? 1 : (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : (c >> 3) == 30 ? 4 : 0;
    bool ok = n > 0 && i + n <= text.size();
    for (std::size_t k = 1; ok && k < n; ++k) ok = (static_cast<unsigned char>(text[i + k]) >> 6) == 2;
    if (ok) {
      out.append(text, i, n);
      i += n;
    } else {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
      ++i;
    }
  }
  return out;
}

std::string number17(double v) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", v);
  return text;
}

// A list as one bound value: PostgreSQL's array text, each element quoted.
std::string arrayOf(const std::vector<std::string>& items) {
  std::string out = "{";
  for (std::size_t i = 0; i < items.size(); ++i) {
    out += i ? ",\"" : "\"";
    for (char c : utf8(items[i])) {
      if (c == '"' || c == '\\') out += '\\';
      out += c;
    }
    out += '"';
  }
  return out + "}";
}

std::string arrayOf(const std::vector<long long>& items) {
  std::string out = "{";
  for (std::size_t i = 0; i < items.size(); ++i) out += (i ? "," : "") + std::to_string(items[i]);
  return out + "}";
}

using Value = std::optional<std::string>;

class Rows {
 public:
  explicit Rows(PGresult* r) : r_(r) {}
  Rows(Rows&& o) noexcept : r_(std::exchange(o.r_, nullptr)) {}
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;
  Rows& operator=(Rows&&) = delete;
  ~Rows() { PQclear(r_); }
  int size() const { return PQntuples(r_); }
  std::string text(int row, int column) const { return PQgetvalue(r_, row, column); }
  bool null(int row, int column) const { return PQgetisnull(r_, row, column) != 0; }
  long long whole(int row, int column) const { return std::atoll(PQgetvalue(r_, row, column)); }
  double real(int row, int column) const { return std::strtod(PQgetvalue(r_, row, column), nullptr); }
  PGresult* get() const { return r_; }

 private:
  PGresult* r_;
};

// What libpq said when it could not connect, in the program's words.
std::string connectFault(const std::string& shown, const std::string& why) {
  const std::string head = "\"" + shown + "\" cannot be opened: ";
  std::string line = why.substr(0, why.find('\n'));
  if (const auto at = line.find("FATAL:  "); at != std::string::npos) line = line.substr(at + 8);
  const auto has = [&why](const char* text) { return why.find(text) != std::string::npos; };
  if (has("password authentication failed"))
    return head + "the server refused the password (" + line +
           "). Tervalo keeps no passwords: put the right one in your PostgreSQL password file (~/.pgpass, or the file PGPASSFILE names)";
  if (has("no password supplied"))
    return head + "the server asks for a password and your PostgreSQL password file (~/.pgpass, or the file PGPASSFILE names) has none for it";
  if (has("does not exist") && has("database"))
    return head + "the server has no such database (" + line + "). Its administrator makes one (createdb) with PostGIS; then make the project in it";
  if (has("definition of service") || has("service file"))
    return head + "no such PostgreSQL service (" + line + "): services are named in ~/.pg_service.conf or the file PGSERVICEFILE names";
  if (has("Connection refused") || has("No such file or directory") || has("could not translate host name") || has("timeout expired"))
    return head + "no PostgreSQL server answers there (" + line + ")";
  return head + line;
}

class PgProject : public ProjectFile {
 public:
  PgProject(std::string connection, PGconn* conn) : shown_(std::move(connection)), path_(shown_), conn_(conn) {
    PQsetNoticeProcessor(conn_, [](void*, const char*) {}, nullptr);
  }
  ~PgProject() override { PQfinish(conn_); }

  // The connection in GDAL's form, checked: no password in it, where it would be kept in the recent list and journals.
  static std::string conninfo(const std::string& connection) {
    const std::string info = connection.substr(3);
    char* error = nullptr;
    PQconninfoOption* options = PQconninfoParse(info.c_str(), &error);
    if (!options) {
      const std::string why = error ? error : "libpq cannot read it";
      PQfreemem(error);
      throw ProjectError("\"" + connection + "\" is not a PostgreSQL connection: " + why.substr(0, why.find('\n')));
    }
    bool password = false;
    for (PQconninfoOption* o = options; o->keyword; ++o)
      if (std::strcmp(o->keyword, "password") == 0 && o->val && *o->val) password = true;
    PQconninfoFree(options);
    if (password)
      throw ProjectError("\"" + connection +
                         "\" holds a password, which Tervalo would keep in its recent list: name the connection without it and put the "
                         "password in your PostgreSQL password file (~/.pgpass, or the file PGPASSFILE names)");
    return info;
  }

  static std::unique_ptr<PgProject> connect(const std::string& connection) {
    const std::string info = conninfo(connection);
    const char* keys[] = {"dbname", "fallback_application_name", nullptr};
    const char* values[] = {info.c_str(), "tervalo", nullptr};
    PGconn* conn = PQconnectdbParams(keys, values, 1);
    if (!conn) throw ProjectError("\"" + connection + "\" cannot be opened: libpq has no memory left");
    if (PQstatus(conn) != CONNECTION_OK) {
      const std::string why = PQerrorMessage(conn);
      PQfinish(conn);
      throw ProjectError(connectFault(connection, why));
    }
    auto project = std::make_unique<PgProject>(connection, conn);
    project->run("SET client_encoding TO 'UTF8'", {}, "cannot be opened");
    return project;
  }

  static std::unique_ptr<ProjectFile> create(const std::string& connection, const ProjectSettings& settings, const std::string& wkt) {
    auto project = connect(connection);
    project->lay(settings, wkt);
    project->open();
    return project;
  }

  static std::unique_ptr<ProjectFile> open(const std::string& connection) {
    auto project = connect(connection);
    project->open();
    return project;
  }

  const ProjectSettings& settings() const override { return settings_; }
  const std::filesystem::path& path() const override { return path_; }
  std::string name() const override { return PQdb(conn_); }

  std::vector<ProjectPoint> points() override { return pointsOf(run(std::string("SELECT ") + kColumns + " FROM points ORDER BY fid", {}, kRead)); }

  std::optional<ProjectPoint> find(const std::string& number) override {
    const auto found = pointsOf(run(std::string("SELECT ") + kColumns + " FROM points WHERE number = $1", {utf8(number)}, kRead));
    if (found.empty()) return std::nullopt;
    return found.front();
  }

  std::vector<ProjectPoint> findAll(const std::vector<std::string>& numbers) override {
    if (numbers.empty()) return {};
    return pointsOf(run(std::string("SELECT ") + kColumns + " FROM points WHERE number = ANY($1::text[]) ORDER BY fid", {arrayOf(numbers)}, kRead));
  }

  long long count() override { return run("SELECT count(*) FROM points", {}, kRead).whole(0, 0); }

  std::vector<ProjectPoint> page(long long offset, int limit) override {
    return pointsOf(run(std::string("SELECT ") + kColumns + " FROM points ORDER BY fid LIMIT $1 OFFSET $2",
                        {std::to_string(std::max(0, limit)), std::to_string(std::max(0LL, offset))}, kRead));
  }

  std::vector<long long> select(const PointQuery& q) override {
    const std::string& whole = kWhole;
    const std::string value = "(CASE WHEN " + whole + " THEN number::bigint END)";
    std::vector<std::string> where;
    std::vector<Value> values;
    const auto bind = [&values](std::string v) {
      values.emplace_back(std::move(v));
      return "$" + std::to_string(values.size());
    };
    if (q.fromNumber || q.toNumber) where.push_back(whole);
    if (q.fromNumber) where.push_back(value + " >= " + bind(std::to_string(*q.fromNumber)) + "::bigint");
    if (q.toNumber) where.push_back(value + " <= " + bind(std::to_string(*q.toNumber)) + "::bigint");
    if (!q.description.empty()) {
      std::string pattern;
      for (char c : utf8(q.description)) pattern += (c == '%' || c == '_' || c == '\\') ? std::string("\\") + c : std::string(1, c);
      where.push_back("description ILIKE " + bind("%" + pattern + "%") + " ESCAPE '\\'");
    }
    if (!q.feature.empty()) where.push_back("lower(feature) = lower(" + bind(utf8(q.feature)) + ")");
    if (!q.evidence.empty()) where.push_back("lower(evidence) = lower(" + bind(utf8(q.evidence)) + ")");
    std::string statement = "SELECT fid FROM points";
    for (std::size_t i = 0; i < where.size(); ++i) statement += (i ? " AND " : " WHERE ") + where[i];
    // The order a GeoPackage project gives: texts byte by byte, an unknown elevation before every known one.
    const std::string way = q.descending ? " DESC" : " ASC";
    using C = PointQuery::Column;
    std::string by;
    switch (q.order) {
      case C::Stored: by = "fid" + way; break;
      case C::Number:
        by = kNumberKeys[0] + way + ", " + kNumberKeys[1] + way + ", " + kNumberKeys[2] + way;
        break;
      case C::Northing: by = "northing" + way + ", fid"; break;
      case C::Easting: by = "easting" + way + ", fid"; break;
      case C::Elevation: by = "elevation" + way + (q.descending ? " NULLS LAST" : " NULLS FIRST") + ", fid"; break;
      default: {
        const char* names[] = {"", "", "", "", "", "description", "feature", "evidence", "source", "modified"};
        by = std::string(names[static_cast<int>(q.order)]) + " COLLATE \"C\"" + way + ", fid";
      }
    }
    const Rows rows = run(statement + " ORDER BY " + by, values, kRead);
    std::vector<long long> out;
    out.reserve(static_cast<std::size_t>(rows.size()));
    for (int i = 0; i < rows.size(); ++i) out.push_back(rows.whole(i, 0));
    return out;
  }

  std::vector<ProjectPoint> byIds(const std::vector<long long>& ids) override {
    if (ids.empty()) return {};
    std::unordered_map<long long, ProjectPoint> found;
    for (ProjectPoint& p : pointsOf(run(std::string("SELECT ") + kColumns + " FROM points WHERE fid = ANY($1::bigint[])", {arrayOf(ids)}, kRead)))
      found.emplace(p.id, std::move(p));
    std::vector<ProjectPoint> out;
    for (long long id : ids)
      if (auto it = found.find(id); it != found.end()) out.push_back(it->second);
    return out;
  }

  std::vector<std::string> values(const std::string& field, int most) override {
    if (field != "feature" && field != "evidence") return {};
    // Each text once in any case, as it was first stored.
    const Rows rows = run("SELECT (array_agg(" + field + " ORDER BY fid))[1] FROM points WHERE " + field + " <> '' GROUP BY lower(" + field +
                              ") ORDER BY lower(" + field + ") COLLATE \"C\" LIMIT $1",
                          {std::to_string(std::max(0, most))}, kRead);
    std::vector<std::string> out;
    for (int i = 0; i < rows.size(); ++i) out.push_back(rows.text(i, 0));
    return out;
  }

  long long rank(long long id) override { return run("SELECT count(*) FROM points WHERE fid < $1::bigint", {std::to_string(id)}, kRead).whole(0, 0); }

  StoreCounts store(std::vector<ProjectPoint> points, OnDuplicate onDuplicate, const std::string& source,
                    const std::map<std::string, long long>& expect = {}) override {
    StoreCounts counts;
    counts.read = static_cast<int>(points.size());
    write([&] {
      checkExpected(expect);
      std::unordered_set<std::string> numbers;
      {
        const Rows rows = run("SELECT number FROM points", {}, kChange);
        for (int i = 0; i < rows.size(); ++i) numbers.insert(rows.text(i, 0));
      }
      long next = nextFree(numbers);
      if (onDuplicate == OnDuplicate::Renumber) {
        std::unordered_set<std::string> coming;
        for (const ProjectPoint& p : points) coming.insert(utf8(p.number));
        next = std::max(next, nextFree(coming));
      }
      // The points held already, as they are, for the step that takes the store back.
      std::vector<std::string> held;
      for (const ProjectPoint& p : points)
        if (numbers.count(utf8(p.number))) held.push_back(p.number);
      std::unordered_map<std::string, ProjectPoint> before;
      if (onDuplicate == OnDuplicate::Replace)
        for (ProjectPoint& p : findAll(held)) before.emplace(p.number, std::move(p));
      std::vector<ProjectPoint> adding;
      std::unordered_map<std::string, std::size_t> pending;  // numbers among `adding`, where
      const std::string when = stampNow();
      for (ProjectPoint& p : points) {
        p.number = utf8(p.number);
        if (p.number.empty()) throw ProjectError("a point has no number");
        p.modified = when;
        if (p.source.empty()) p.source = source;
        const bool heldAlready = numbers.count(p.number) > 0;
        if (heldAlready && onDuplicate == OnDuplicate::Skip) {
          ++counts.skipped;
          continue;
        }
        if (heldAlready && onDuplicate == OnDuplicate::Renumber) {
          p.number = std::to_string(next++);
          ++counts.renumbered;
        } else if (heldAlready) {
          ++counts.replaced;
          ++counts.stored;
          if (auto at = pending.find(p.number); at != pending.end()) {
            adding[at->second] = p;  // a number twice in one store: the later point
          } else {
            if (auto it = before.find(p.number); it != before.end()) counts.replacedPoints.push_back(it->second);
            const Rows v = run("UPDATE points SET " + setList() + " WHERE number = $1 RETURNING version", pointValues(p), kChange);
            if (v.size() > 0) counts.versions[p.number] = v.whole(0, 0);
          }
          continue;
        }
        counts.added.push_back(p.number);
        pending[p.number] = adding.size();
        adding.push_back(p);
        numbers.insert(p.number);
        ++counts.stored;
      }
      copyIn(adding);
      versionsOf(counts.added, counts.versions);
      journal(source, std::to_string(counts.stored) + " stored, " + std::to_string(counts.skipped) + " skipped, " +
                          std::to_string(counts.replaced) + " replaced, " + std::to_string(counts.renumbered) + " renumbered");
      if (adding.size() > 10000) analyze();
    });
    return counts;
  }

  std::map<std::string, long long> apply(const ProjectEdit& edit, const std::string& source) override {
    std::map<std::string, long long> versions;
    write([&] {
      checkExpected(edit.expect);
      std::vector<std::string> named;
      for (const std::string& n : edit.remove) named.push_back(utf8(n));
      if (!named.empty()) run("DELETE FROM points WHERE number = ANY($1::text[])", {arrayOf(named)}, kChange);
      const std::string when = stampNow();
      for (ProjectPoint p : edit.put) {
        p.number = utf8(p.number);
        if (p.number.empty()) throw ProjectError("a point has no number");
        if (p.modified.empty()) p.modified = when;
        if (p.source.empty()) p.source = source;
        named.push_back(p.number);
        // A point with its key keeps its place in the order stored (a renumbered point, one put back).
        std::optional<long long> target;
        if (const Rows r = run("SELECT fid FROM points WHERE number = $1", {p.number}, kChange); r.size() > 0) target = r.whole(0, 0);
        if (target && p.id > 0 && *target != p.id) {
          run("DELETE FROM points WHERE fid = $1::bigint", {std::to_string(*target)}, kChange);
          target.reset();
        }
        if (!target && p.id > 0 && run("SELECT 1 FROM points WHERE fid = $1::bigint", {std::to_string(p.id)}, kChange).size() > 0) target = p.id;
        std::vector<Value> values = pointValues(p);
        if (target) {
          values.push_back(std::to_string(*target));
          run("UPDATE points SET " + setList() + " WHERE fid = $" + std::to_string(values.size()) + "::bigint", values, kChange);
        } else if (p.id > 0) {
          values.push_back(std::to_string(p.id));
          run("INSERT INTO points (" + insertList() + ", fid) VALUES (" + insertValues() + ", $" + std::to_string(values.size()) + "::bigint)",
              values, kChange);
        } else {
          run("INSERT INTO points (" + insertList() + ") VALUES (" + insertValues() + ")", values, kChange);
        }
      }
      for (const std::string& n : named) versions[n] = 0;
      versionsOf(named, versions);
      journal(source, std::to_string(edit.remove.size()) + " removed, " + std::to_string(edit.put.size()) + " stored");
    });
    return versions;
  }

  void setSigner(const ProjectSettings& people) override {
    write([&] {
      for (const auto& [key, value] : {std::pair<const char*, std::string>{"surveyor", people.surveyor},
                                       {"license", people.license},
                                       {"firm", people.firm}})
        if (run("UPDATE tervalo_project SET value = $2 WHERE key = $1 RETURNING key", {key, utf8(value)}, kChange).size() == 0)
          run("INSERT INTO tervalo_project (key, value) VALUES ($1, $2)", {key, utf8(value)}, kChange);
      journal("surveyor", "the plats' signer set");
    });
    settings_.surveyor = people.surveyor;
    settings_.license = people.license;
    settings_.firm = people.firm;
  }

  void storeAlignment(const StoredAlignment& a) override {
    write([&] {
      const Rows gone = run("DELETE FROM alignments WHERE name = $1 RETURNING fid", {utf8(a.name)}, kChange);
      std::vector<std::string> xs, ys;
      for (const auto& [n, e] : a.centreline) {
        xs.push_back(number17(e));
        ys.push_back(number17(n));
      }
      const std::string stamp = a.modified.empty() ? stampNow() : a.modified;
      run("INSERT INTO alignments (name, format, definition, modified, geom) VALUES ($1, $2, $3, $4, "
          "CASE WHEN cardinality($5::float8[]) > 1 THEN ST_SetSRID(ST_MakeLine(ARRAY(SELECT ST_MakePoint(x, y) FROM unnest($5::float8[], "
          "$6::float8[]) AS t(x, y))), $7::integer) END)",
          {utf8(a.name), utf8(a.format), utf8(a.definition), stamp, "{" + join(xs) + "}", "{" + join(ys) + "}", std::to_string(srid_)}, kChange);
      journal("alignment " + utf8(a.name), gone.size() == 0 ? "kept" : "kept in the place of the one before");
    });
  }

  std::vector<StoredAlignment> alignments() override {
    const Rows rows = run(
        "SELECT a.name, a.format, a.definition, a.modified, (SELECT string_agg(ST_Y(d.geom)::text || ' ' || ST_X(d.geom)::text, ',' ORDER BY "
        "d.path) FROM ST_DumpPoints(a.geom) d) FROM alignments a ORDER BY a.name COLLATE \"C\"",
        {}, kRead);
    std::vector<StoredAlignment> out;
    for (int i = 0; i < rows.size(); ++i) {
      StoredAlignment a{rows.text(i, 0), rows.text(i, 1), rows.text(i, 2), {}, rows.text(i, 3)};
      const std::string line = rows.text(i, 4);
      for (std::size_t at = 0; at < line.size();) {
        char* end = nullptr;
        const double n = std::strtod(line.c_str() + at, &end);
        const double e = std::strtod(end, &end);
        a.centreline.push_back({n, e});
        at = static_cast<std::size_t>(end - line.c_str()) + 1;
      }
      out.push_back(std::move(a));
    }
    return out;
  }

  std::vector<JournalEntry> history() override {
    const Rows rows = run("SELECT changed, source, what FROM tervalo_journal ORDER BY fid", {}, kRead);
    std::vector<JournalEntry> out;
    for (int i = 0; i < rows.size(); ++i) out.push_back({rows.text(i, 0), rows.text(i, 1), rows.text(i, 2)});
    return out;
  }

  void append(const std::vector<ProjectPoint>& points, const std::vector<JournalEntry>& entries) override {
    write([&] {
      copyIn(points);
      if (points.size() > 10000) analyze();
      for (const JournalEntry& j : entries) journal(j);
    });
  }

  bool changedElsewhere() override {
    if (!PQconsumeInput(conn_)) return false;
    bool changed = false;
    while (PGnotify* n = PQnotifies(conn_)) {
      if (n->be_pid != PQbackendPID(conn_)) changed = true;
      PQfreemem(n);
    }
    return changed;
  }

 private:
  static constexpr const char* kRead = "cannot be read";
  static constexpr const char* kChange = "cannot be changed";

  static std::string join(const std::vector<std::string>& items) {
    std::string out;
    for (std::size_t i = 0; i < items.size(); ++i) out += (i ? "," : "") + items[i];
    return out;
  }

  // A point's values in the order of setList and insertList, from $1.
  std::vector<Value> pointValues(const ProjectPoint& p) const {
    return {p.number,
            number17(p.northing),
            number17(p.easting),
            p.elevation ? Value(number17(*p.elevation)) : std::nullopt,
            utf8(p.description),
            utf8(p.feature),
            utf8(p.evidence),
            utf8(p.source),
            utf8(p.modified)};
  }
  std::string geometry() const { return "ST_SetSRID(ST_MakePoint($3::float8, $2::float8), " + std::to_string(srid_) + ")"; }
  std::string setList() const {
    return "number = $1, northing = $2::float8, easting = $3::float8, elevation = $4::float8, description = $5, feature = $6, evidence = $7, "
           "source = $8, modified = $9, geom = " +
           geometry();
  }
  static std::string insertList() { return "number, northing, easting, elevation, description, feature, evidence, source, modified, geom"; }
  std::string insertValues() const { return "$1, $2::float8, $3::float8, $4::float8, $5, $6, $7, $8, $9, " + geometry(); }

  static std::vector<ProjectPoint> pointsOf(const Rows& rows) {
    std::vector<ProjectPoint> out;
    out.reserve(static_cast<std::size_t>(rows.size()));
    for (int i = 0; i < rows.size(); ++i) {
      ProjectPoint p;
      p.id = rows.whole(i, 0);
      p.number = rows.text(i, 1);
      p.northing = rows.real(i, 2);
      p.easting = rows.real(i, 3);
      if (!rows.null(i, 4)) p.elevation = rows.real(i, 4);
      p.description = rows.text(i, 5);
      p.feature = rows.text(i, 6);
      p.evidence = rows.text(i, 7);
      p.source = rows.text(i, 8);
      p.modified = rows.text(i, 9);
      p.version = rows.whole(i, 10);
      out.push_back(std::move(p));
    }
    return out;
  }

  static long nextFree(const std::unordered_set<std::string>& numbers) {
    long most = 0;
    for (const std::string& n : numbers)
      if (!n.empty() && n.size() < 10 && n.find_first_not_of("0123456789") == std::string::npos) most = std::max(most, std::stol(n));
    return most + 1;
  }

  // A statement with its values bound, never pasted into its text.
  Rows run(const std::string& statement, const std::vector<Value>& values, const char* what) {
    // A connection lost between runs (a server restarted) is made again; one lost within a run ends the run.
    if (!inRun_ && PQstatus(conn_) == CONNECTION_BAD) {
      PQreset(conn_);
      if (PQstatus(conn_) == CONNECTION_OK) {
        PQclear(PQexec(conn_, "SET client_encoding TO 'UTF8'"));
        PQclear(PQexec(conn_, "LISTEN tervalo_points"));
      }
    }
    std::vector<const char*> pointers;
    for (const Value& v : values) pointers.push_back(v ? v->c_str() : nullptr);
    Rows rows(PQexecParams(conn_, statement.c_str(), static_cast<int>(pointers.size()), nullptr, pointers.data(), nullptr, nullptr, 0));
    const ExecStatusType status = rows.get() ? PQresultStatus(rows.get()) : PGRES_FATAL_ERROR;
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) fault(rows.get(), what);
    return rows;
  }

  [[noreturn]] void fault(PGresult* result, const std::string& what) const {
    const std::string head = "\"" + shown_ + "\" " + what + ": ";
    const bool changing = what == kChange;
    if (PQstatus(conn_) == CONNECTION_BAD)
      throw ProjectError(head + "the connection to the server was lost" + (changing ? ", and nothing was stored" : ""));
    const char* state = result ? PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
    const std::string code = state ? state : "";
    std::string why = result ? PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY) ? PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY) : ""
                             : PQerrorMessage(conn_);
    if (why.empty()) why = PQerrorMessage(conn_);
    if (code == "42501")
      throw ProjectError(head + "the role \"" + std::string(PQuser(conn_)) +
                         "\" may browse the project but not change it; the database's owner grants that right");
    if (code == "23505") throw ProjectError(head + "another user stored a point of the same number at the same time; nothing was stored, try again");
    if (code.rfind("08", 0) == 0 || code == "57P01" || code == "57P02" || code == "57P03")
      throw ProjectError(head + "the connection to the server was lost" + (changing ? ", and nothing was stored" : ""));
    throw ProjectError(head + why.substr(0, why.find('\n')));
  }

  // `body` in one transaction with the writers' lock: all of it, or nothing.
  void write(const std::function<void()>& body) {
    if (!writable_)
      throw ProjectError("\"" + shown_ + "\" cannot be changed: the role \"" + std::string(PQuser(conn_)) +
                         "\" may browse the project but not change it; the database's owner grants that right");
    run("BEGIN", {}, kChange);
    inRun_ = true;
    try {
      run(kWriterLock, {}, kChange);
      body();
      run("COMMIT", {}, kChange);
      inRun_ = false;
    } catch (...) {
      inRun_ = false;
      if (PQstatus(conn_) == CONNECTION_OK) PQclear(PQexec(conn_, "ROLLBACK"));
      throw;
    }
  }

  // Every point the edit read is as it was read, or the edit is refused naming the first that is not.
  void checkExpected(const std::map<std::string, long long>& expect) {
    if (expect.empty()) return;
    std::vector<std::string> numbers;
    for (const auto& [n, v] : expect) numbers.push_back(n);
    std::unordered_map<std::string, ProjectPoint> now;
    for (ProjectPoint& p : pointsOf(run(std::string("SELECT ") + kColumns + " FROM points WHERE number = ANY($1::text[]) ORDER BY number FOR UPDATE",
                                        {arrayOf(numbers)}, kChange)))
      now.emplace(p.number, std::move(p));
    for (const auto& [n, v] : expect) {
      const auto it = now.find(utf8(n));
      if (v == 0 && it == now.end()) continue;
      if (it != now.end() && it->second.version == v) continue;
      if (it == now.end())
        throw ProjectConflict("Point " + n + " was deleted by another user since you read it, so your edit was not stored", std::nullopt);
      const ProjectPoint& p = it->second;
      const auto fixed = [](double x, int places) {
        char text[64];
        std::snprintf(text, sizeof text, "%.*f", places, x);
        return std::string(text);
      };
      const std::string holds = "N " + fixed(p.northing, 4) + ", E " + fixed(p.easting, 4) +
                                (p.elevation ? ", Z " + fixed(*p.elevation, 3) : std::string(", no elevation")) +
                                (p.description.empty() ? "" : ", \"" + p.description + "\"");
      throw ProjectConflict("Point " + n + (v == 0 ? " was stored" : " was changed") + " by another user since you read it (" + p.modified +
                                (p.source.empty() ? "" : ", by " + p.source) + "): it holds " + holds + " now, so your edit was not stored",
                            p);
    }
  }

  // New points in the order given, through COPY: every value data, never statement text.
  void copyIn(const std::vector<ProjectPoint>& points) {
    if (points.empty()) return;
    Rows start(PQexec(conn_, ("COPY points (" + insertList() + ") FROM STDIN").c_str()));
    if (!start.get() || PQresultStatus(start.get()) != PGRES_COPY_IN) fault(start.get(), kChange);
    const auto field = [](std::string& out, const std::string& text) {
      for (char c : text) {
        switch (c) {
          case '\\': out += "\\\\"; break;
          case '\t': out += "\\t"; break;
          case '\n': out += "\\n"; break;
          case '\r': out += "\\r"; break;
          default: out += c;
        }
      }
    };
    const std::string srid = "SRID=" + std::to_string(srid_) + ";POINT(";
    std::string buffer;
    bool sent = true;
    for (std::size_t i = 0; i < points.size() && sent; ++i) {
      const ProjectPoint& p = points[i];
      field(buffer, utf8(p.number));
      buffer += '\t' + number17(p.northing) + '\t' + number17(p.easting) + '\t' + (p.elevation ? number17(*p.elevation) : "\\N");
      for (const std::string* t : {&p.description, &p.feature, &p.evidence, &p.source, &p.modified}) {
        buffer += '\t';
        field(buffer, utf8(*t));
      }
      buffer += '\t' + srid + number17(p.easting) + ' ' + number17(p.northing) + ")\n";
      if (buffer.size() > (1 << 20) || i + 1 == points.size()) {
        sent = PQputCopyData(conn_, buffer.data(), static_cast<int>(buffer.size())) == 1;
        buffer.clear();
      }
    }
    if (!sent || PQputCopyEnd(conn_, nullptr) != 1) fault(nullptr, kChange);
    std::optional<Rows> failed;
    while (PGresult* r = PQgetResult(conn_)) {
      Rows rows(r);
      if (PQresultStatus(r) != PGRES_COMMAND_OK && !failed) failed.emplace(std::move(rows));
    }
    if (failed) fault(failed->get(), kChange);
  }

  // The versions the points of these numbers hold now, into `out`.
  void versionsOf(const std::vector<std::string>& numbers, std::map<std::string, long long>& out) {
    if (numbers.empty()) return;
    const Rows v = run("SELECT number, version FROM points WHERE number = ANY($1::text[])", {arrayOf(numbers)}, kChange);
    for (int i = 0; i < v.size(); ++i) out[v.text(i, 0)] = v.whole(i, 1);
  }

  // After many points at once the planner learns of them, so that the window's orders take their indexes
  // (the owner's right: another role's store goes without).
  void analyze() { run("ANALYZE points", {}, kChange); }

  void journal(const std::string& source, const std::string& what) { journal({stampNow(), source, what}); }
  void journal(const JournalEntry& j) {
    run("INSERT INTO tervalo_journal (changed, source, what) VALUES ($1, $2, $3)", {utf8(j.changed), utf8(j.source), utf8(j.what)}, kChange);
  }

  // The layers made by GDAL's PostgreSQL driver as a GeoPackage project's
  // are; then what the driver cannot make: the versions, the notices and
  // the indexes. Refused where the database holds a project already.
  void lay(const ProjectSettings& settings, const std::string& wkt) {
    const Rows there = run("SELECT to_regclass('points') IS NOT NULL OR to_regclass('tervalo_project') IS NOT NULL, "
                           "EXISTS (SELECT 1 FROM pg_extension WHERE extname = 'postgis')",
                           {}, "cannot be made");
    if (there.text(0, 0) == "t") throw ProjectError("\"" + shown_ + "\" holds a project already: open it, or name another database");
    if (there.text(0, 1) != "t") {
      const Rows made(PQexec(conn_, "CREATE EXTENSION IF NOT EXISTS postgis"));
      if (PQresultStatus(made.get()) != PGRES_COMMAND_OK)
        throw ProjectError("\"" + shown_ + "\" cannot be made: the database has no PostGIS, and the role \"" + std::string(PQuser(conn_)) +
                           "\" may not add it; its administrator runs CREATE EXTENSION postgis in it");
    }
    layByGdal(wkt);
    try {
      write([&] {
        run("ALTER TABLE points ADD COLUMN version bigint NOT NULL DEFAULT 0", {}, "cannot be made");
        run("CREATE SEQUENCE tervalo_point_version", {}, "cannot be made");
        // Every insert and update, by Tervalo or any other program, gives the point a version no point has had.
        run("CREATE FUNCTION tervalo_point_versioned() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN NEW.version := "
            "nextval('tervalo_point_version'); RETURN NEW; END $$",
            {}, "cannot be made");
        run("CREATE TRIGGER tervalo_point_versioned BEFORE INSERT OR UPDATE ON points FOR EACH ROW EXECUTE FUNCTION tervalo_point_versioned()",
            {}, "cannot be made");
        run("CREATE FUNCTION tervalo_points_changed() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN PERFORM pg_notify('tervalo_points', ''); "
            "RETURN NULL; END $$",
            {}, "cannot be made");
        run("CREATE TRIGGER tervalo_points_changed AFTER INSERT OR UPDATE OR DELETE ON points FOR EACH STATEMENT EXECUTE FUNCTION "
            "tervalo_points_changed()",
            {}, "cannot be made");
        run("CREATE UNIQUE INDEX points_number ON points (number)", {}, "cannot be made");
        run("CREATE INDEX points_number_order ON points ((" + kNumberKeys[0] + "), (" + kNumberKeys[1] + "), (" + kNumberKeys[2] + ")) INCLUDE (fid)",
            {}, "cannot be made");
        run("CREATE INDEX points_feature ON points (lower(feature))", {}, "cannot be made");
        run("CREATE INDEX points_evidence ON points (lower(evidence))", {}, "cannot be made");
        const std::pair<std::string, std::string> rows[] = {{"schema", std::to_string(kProjectSchema)},
                                                            {"unit", settings.unit},
                                                            {"epsg", settings.crs.none() ? "" : std::to_string(settings.crs.epsg)},
                                                            {"foot", settings.crs.foot},
                                                            {"surveyor", utf8(settings.surveyor)},
                                                            {"license", utf8(settings.license)},
                                                            {"firm", utf8(settings.firm)}};
        for (const auto& [key, value] : rows) run("INSERT INTO tervalo_project (key, value) VALUES ($1, $2)", {key, value}, "cannot be made");
        journal("project new", "made");
      });
    } catch (...) {
      // A project is made whole or not at all.
      PQclear(PQexec(conn_, "DROP TABLE IF EXISTS points, tervalo_project, tervalo_journal, alignments CASCADE"));
      throw;
    }
  }

  void layByGdal(const std::string& wkt) {
    const char* drivers[] = {"PostgreSQL", nullptr};
    CPLErrorReset();
    GDALDatasetH ds = GDALOpenEx(shown_.c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE, drivers, nullptr, nullptr);
    if (!ds) throw ProjectError("\"" + shown_ + "\" cannot be made: GDAL cannot open the database: " + std::string(CPLGetLastErrorMsg()));
    OGRSpatialReferenceH srs = OSRNewSpatialReference(nullptr);
    std::string fault;
    if (OSRSetFromUserInput(srs, wkt.c_str()) != OGRERR_NONE) fault = "GDAL cannot take the project's coordinate system";
    OSRSetAxisMappingStrategy(srs, OAMS_TRADITIONAL_GIS_ORDER);
    const auto layer = [&](const char* name, OGRwkbGeometryType type, std::vector<std::pair<const char*, OGRFieldType>> fields) {
      if (!fault.empty()) return;
      char** options = CSLSetNameValue(nullptr, "FID", "fid");
      if (type != wkbNone) options = CSLSetNameValue(options, "GEOMETRY_NAME", "geom");
      OGRLayerH l = GDALDatasetCreateLayer(ds, name, type == wkbNone ? nullptr : srs, type, options);
      CSLDestroy(options);
      for (const auto& [field, kind] : fields) {
        if (!l) break;
        OGRFieldDefnH d = OGR_Fld_Create(field, kind);
        if (OGR_L_CreateField(l, d, TRUE) != OGRERR_NONE) l = nullptr;
        OGR_Fld_Destroy(d);
      }
      if (!l) fault = std::string("GDAL cannot make the layer ") + name + ": " + CPLGetLastErrorMsg();
    };
    std::vector<std::pair<const char*, OGRFieldType>> pointFields;
    for (const char* f : kFields) pointFields.push_back({f, std::string(f) == "northing" || std::string(f) == "easting" || std::string(f) == "elevation" ? OFTReal : OFTString});
    if (GDALDatasetStartTransaction(ds, FALSE) != OGRERR_NONE) fault = std::string("GDAL cannot begin: ") + CPLGetLastErrorMsg();
    layer("points", wkbPoint, pointFields);
    layer("tervalo_project", wkbNone, {{"key", OFTString}, {"value", OFTString}});
    layer("tervalo_journal", wkbNone, {{"changed", OFTString}, {"source", OFTString}, {"what", OFTString}});
    layer("alignments", wkbLineString, {{"name", OFTString}, {"format", OFTString}, {"definition", OFTString}, {"modified", OFTString}});
    if (fault.empty() && GDALDatasetCommitTransaction(ds) != OGRERR_NONE) fault = std::string("GDAL cannot commit: ") + CPLGetLastErrorMsg();
    OSRDestroySpatialReference(srs);
    GDALClose(ds);
    if (!fault.empty()) throw ProjectError("\"" + shown_ + "\" cannot be made: " + fault);
  }

  // What the project is, read from the database: refused when it is not a Tervalo project, or a newer one's.
  void open() {
    const Rows there = run("SELECT to_regclass('tervalo_project') IS NOT NULL, to_regclass('points') IS NOT NULL", {}, kRead);
    if (there.text(0, 0) != "t")
      throw ProjectError("\"" + shown_ + "\" is a PostgreSQL database but not a Tervalo project: it has no tervalo_project table");
    if (there.text(0, 1) != "t") throw ProjectError("\"" + shown_ + "\" is a PostgreSQL database but not a Tervalo project: it has no points layer");
    std::map<std::string, std::string> values;
    const Rows about = run("SELECT key, value FROM tervalo_project", {}, kRead);
    for (int i = 0; i < about.size(); ++i) values[about.text(i, 0)] = about.text(i, 1);
    const int schema = std::atoi(values["schema"].c_str());
    if (schema > kProjectSchema) throw ProjectError("\"" + shown_ + "\" comes from a newer Tervalo (project version " + values["schema"] + ")");
    if (schema < 1) throw ProjectError("\"" + shown_ + "\" is not a Tervalo project: its version is missing");
    std::unordered_set<std::string> columns;
    const Rows c = run("SELECT attname FROM pg_attribute WHERE attrelid = 'points'::regclass AND attnum > 0 AND NOT attisdropped", {}, kRead);
    for (int i = 0; i < c.size(); ++i) columns.insert(c.text(i, 0));
    for (const char* f : {"fid", "number", "northing", "easting", "elevation", "description", "feature", "evidence", "source", "modified", "version", "geom"})
      if (!columns.count(f)) throw ProjectError("\"" + shown_ + "\" is not a Tervalo project: its points have no field " + f);
    srid_ = run("SELECT Find_SRID(current_schema()::text, 'points', 'geom')", {}, kRead).whole(0, 0);
    // Every right a change takes (the function answers for any one of a list, so each is asked alone).
    writable_ = run("SELECT has_table_privilege('points', 'INSERT') AND has_table_privilege('points', 'UPDATE') AND "
                    "has_table_privilege('points', 'DELETE') AND has_table_privilege('tervalo_journal', 'INSERT') AND "
                    "has_sequence_privilege('tervalo_point_version', 'USAGE')",
                    {}, kRead)
                    .text(0, 0) == "t";
    settings_ = settingsOf(values);
    run("LISTEN tervalo_points", {}, kRead);
  }

  std::string shown_;  // the connection as the user named it
  std::filesystem::path path_;
  PGconn* conn_;
  ProjectSettings settings_;
  long long srid_ = 0;
  bool writable_ = true;
  bool inRun_ = false;  // within a writing transaction
};

}  // namespace

std::unique_ptr<ProjectFile> pgProject(const std::string& connection, const ProjectSettings* create, const std::string& wkt) {
  return create ? PgProject::create(connection, *create, wkt) : PgProject::open(connection);
}

}  // namespace tervalo
