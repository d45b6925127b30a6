// A survey project as a GeoPackage, through GDAL's driver alone: the
// `points` layer in the project's system, and two attribute tables of its
// own, `tervalo_project` (what the project is) and `tervalo_journal` (one
// row a change). Built into the coordinate system module.

#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal.h>
#include <ogr_api.h>
#include <ogr_srs_api.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <map>
#include <unordered_set>

#include "crs/project_store.h"

namespace tervalo {

namespace {

const char* const kTextFields[] = {"number", "description", "feature", "evidence", "source", "modified"};
const char* const kFields[] = {"number", "northing", "easting", "elevation", "description", "feature", "evidence", "source", "modified"};

// A text as an SQL string literal for GDAL's attribute filter.
std::string literal(const std::string& text) {
  std::string out = "'";
  for (char c : text) out += c == '\'' ? std::string("''") : std::string(1, c);
  return out + "'";
}

std::string lastError() {
  const std::string text = CPLGetLastErrorMsg();
  return text.empty() ? "GDAL gave no reason" : text;
}

class GpkgProject : public ProjectFile {
 public:
  GpkgProject(const std::filesystem::path& file, GDALDatasetH ds) : file_(file), ds_(ds) {}
  ~GpkgProject() override {
    if (ds_) GDALClose(ds_);
  }

  static std::unique_ptr<ProjectFile> create(const std::filesystem::path& file, const ProjectSettings& settings, const std::string& wkt) {
    std::error_code ec;
    if (std::filesystem::exists(file, ec)) throw ProjectError("\"" + file.string() + "\" exists already: open it, or name a new project");
    GDALDriverH driver = GDALGetDriverByName("GPKG");
    if (!driver) throw ProjectError("GDAL has no GeoPackage driver");
    CPLErrorReset();
    GDALDatasetH ds = GDALCreate(driver, file.c_str(), 0, 0, 0, GDT_Unknown, nullptr);
    if (!ds) throw ProjectError("\"" + file.string() + "\" cannot be made: " + lastError());
    auto project = std::make_unique<GpkgProject>(file, ds);
    try {
      project->lay(settings, wkt);
    } catch (...) {
      project.reset();
      std::filesystem::remove(file, ec);  // a project is made whole or not at all
      throw;
    }
    return project;
  }

  static std::unique_ptr<ProjectFile> open(const std::filesystem::path& file) {
    std::error_code ec;
    if (!std::filesystem::exists(file, ec)) throw ProjectError("\"" + file.string() + "\" does not exist");
    const char* drivers[] = {"GPKG", nullptr};
    CPLErrorReset();
    GDALDatasetH ds = GDALOpenEx(file.c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE, drivers, nullptr, nullptr);
    if (!ds) {
      // Read-only folders and files still open, to be read.
      ds = GDALOpenEx(file.c_str(), GDAL_OF_VECTOR, drivers, nullptr, nullptr);
      if (!ds && lastError().find("locked") != std::string::npos)
        throw ProjectError("\"" + file.string() + "\" is being changed by another program (another Tervalo?): try again when it is done");
      if (!ds) throw ProjectError("\"" + file.string() + "\" is not a GeoPackage GDAL can open: " + lastError());
    }
    const bool writable = GDALDatasetTestCapability(ds, ODsCTransactions) && OGR_L_TestCapability(GDALDatasetGetLayerByName(ds, "points"), OLCSequentialWrite);
    auto project = std::make_unique<GpkgProject>(file, ds);
    const int schema = project->readSettings();
    if (schema < kProjectSchema && writable) {
      // The copy of the project as it was is made whole before anything changes.
      project.reset();
      std::filesystem::path backup = file;
      backup.replace_extension(".v" + std::to_string(schema) + ".gpkg");
      if (!std::filesystem::exists(backup, ec)) {
        const std::filesystem::path part = backup.string() + ".part";
        std::filesystem::copy_file(file, part, std::filesystem::copy_options::overwrite_existing, ec);
        if (!ec) std::filesystem::rename(part, backup, ec);
        if (ec) {
          std::filesystem::remove(part, ec);
          throw ProjectError("\"" + file.string() + "\" comes from an older Tervalo and is brought up to date after a copy is kept as \"" +
                             backup.string() + "\", which cannot be written");
        }
      }
      ds = GDALOpenEx(file.c_str(), GDAL_OF_VECTOR | GDAL_OF_UPDATE, drivers, nullptr, nullptr);
      if (!ds) throw ProjectError("\"" + file.string() + "\" cannot be opened again: " + lastError());
      project = std::make_unique<GpkgProject>(file, ds);
      project->readSettings();
      project->upgrade(schema);
    }
    return project;
  }

  const ProjectSettings& settings() const override { return settings_; }

  std::vector<ProjectPoint> points() override {
    std::vector<ProjectPoint> out;
    OGRLayerH layer = pointsLayer();
    OGR_L_SetAttributeFilter(layer, nullptr);
    OGR_L_ResetReading(layer);
    while (OGRFeatureH f = OGR_L_GetNextFeature(layer)) {
      out.push_back(point(f));
      out.back().id = OGR_F_GetFID(f);
      OGR_F_Destroy(f);
    }
    return out;
  }

  std::optional<ProjectPoint> find(const std::string& number) override {
    OGRFeatureH f = feature(number);
    if (!f) return std::nullopt;
    ProjectPoint p = point(f);
    p.id = OGR_F_GetFID(f);
    OGR_F_Destroy(f);
    return p;
  }

  StoreCounts store(std::vector<ProjectPoint> points, OnDuplicate onDuplicate, const std::string& source,
                    const std::map<std::string, long long>& /*expect: one writer at a time*/ = {}) override {
    StoreCounts counts;
    counts.read = static_cast<int>(points.size());
    OGRLayerH layer = pointsLayer();
    begin();
    try {
      std::unordered_set<std::string> numbers = this->numbers();
      // The next free number is past the points stored and those coming alike.
      long next = nextFree(numbers);
      if (onDuplicate == OnDuplicate::Renumber) {
        std::unordered_set<std::string> coming;
        for (const ProjectPoint& p : points) coming.insert(p.number);
        next = std::max(next, nextFree(coming));
      }
      // Many points at once: the index on numbers is made again after them, in the same transaction.
      const bool bulk = points.size() > 10000;
      if (bulk)
        for (const char* index : {"points_number", "points_feature", "points_evidence"}) sql(("DROP INDEX IF EXISTS " + std::string(index)).c_str());
      const std::string when = stampNow();
      for (ProjectPoint& p : points) {
        if (p.number.empty()) throw ProjectError("a point has no number");
        p.modified = when;
        if (p.source.empty()) p.source = source;
        OGRFeatureH old = numbers.count(p.number) ? feature(p.number) : nullptr;
        if (old && onDuplicate == OnDuplicate::Skip) {
          OGR_F_Destroy(old);
          ++counts.skipped;
          continue;
        }
        if (old && onDuplicate == OnDuplicate::Renumber) {
          OGR_F_Destroy(old);
          old = nullptr;
          p.number = std::to_string(next++);
          ++counts.renumbered;
        }
        if (old) {
          counts.replacedPoints.push_back(point(old));
          counts.replacedPoints.back().id = OGR_F_GetFID(old);
        } else {
          counts.added.push_back(p.number);
        }
        OGRFeatureH f = old ? old : OGR_F_Create(OGR_L_GetLayerDefn(layer));
        fill(f, p);
        const OGRErr e = old ? OGR_L_SetFeature(layer, f) : OGR_L_CreateFeature(layer, f);
        OGR_F_Destroy(f);
        if (e != OGRERR_NONE) throw ProjectError("point " + p.number + " cannot be stored: " + lastError());
        if (old) ++counts.replaced;
        numbers.insert(p.number);
        ++counts.stored;
      }
      if (bulk) makeIndexes();
      journal(source, std::to_string(counts.stored) + " stored, " + std::to_string(counts.skipped) + " skipped, " +
                          std::to_string(counts.replaced) + " replaced, " + std::to_string(counts.renumbered) + " renumbered");
      commit();
    } catch (...) {
      GDALDatasetRollbackTransaction(ds_);
      throw;
    }
    return counts;
  }

  long long count() override {
    long long n = 0;
    query("SELECT COUNT(*) FROM points", [&n](OGRFeatureH f) { n = OGR_F_GetFieldAsInteger64(f, 0); });
    return n;
  }

  std::vector<ProjectPoint> page(long long offset, int limit) override {
    std::vector<ProjectPoint> out;
    query(std::string(kSelect) + " ORDER BY fid LIMIT " + std::to_string(std::max(0, limit)) + " OFFSET " + std::to_string(std::max(0LL, offset)),
          [&out](OGRFeatureH f) { out.push_back(selected(f)); });
    return out;
  }

  std::vector<long long> select(const PointQuery& q) override {
    std::vector<std::string> where;
    if (q.fromNumber || q.toNumber) {
      where.push_back(std::string(kWhole));
      if (q.fromNumber) where.push_back("CAST(number AS INTEGER) >= " + std::to_string(*q.fromNumber));
      if (q.toNumber) where.push_back("CAST(number AS INTEGER) <= " + std::to_string(*q.toNumber));
    }
    if (!q.description.empty()) {
      std::string pattern;
      for (char c : q.description) pattern += (c == '%' || c == '_' || c == '\\') ? std::string("\\") + c : std::string(1, c);
      where.push_back("description LIKE " + literal("%" + pattern + "%") + " ESCAPE '\\'");
    }
    if (!q.feature.empty()) where.push_back("feature = " + literal(q.feature) + " COLLATE NOCASE");
    if (!q.evidence.empty()) where.push_back("evidence = " + literal(q.evidence) + " COLLATE NOCASE");
    std::string statement = "SELECT fid + 0 FROM points";
    for (std::size_t i = 0; i < where.size(); ++i) statement += (i ? " AND " : " WHERE ") + where[i];
    const char* way = q.descending ? " DESC" : "";
    using C = PointQuery::Column;
    std::string by;
    switch (q.order) {
      case C::Stored: by = std::string("fid") + way; break;
      case C::Number:
        by = std::string("CASE WHEN ") + kWhole + " THEN 0 ELSE 1 END" + way + ", CAST(number AS INTEGER)" + way + ", number" + way;
        break;
      default: {
        const char* names[] = {"", "", "northing", "easting", "elevation", "description", "feature", "evidence", "source", "modified"};
        by = std::string(names[static_cast<int>(q.order)]) + way + ", fid";
      }
    }
    statement += " ORDER BY " + by;
    std::vector<long long> out;
    query(statement, [&out](OGRFeatureH f) { out.push_back(OGR_F_GetFieldAsInteger64(f, 0)); });
    return out;
  }

  std::vector<ProjectPoint> byIds(const std::vector<long long>& ids) override {
    std::map<long long, ProjectPoint> found;
    for (std::size_t at = 0; at < ids.size(); at += 500) {
      std::string list;
      for (std::size_t i = at; i < std::min(ids.size(), at + 500); ++i) list += (i > at ? "," : "") + std::to_string(ids[i]);
      query(std::string(kSelect) + " WHERE fid IN (" + list + ")", [&found](OGRFeatureH f) {
        ProjectPoint p = selected(f);
        found[p.id] = std::move(p);
      });
    }
    std::vector<ProjectPoint> out;
    for (long long id : ids)
      if (auto it = found.find(id); it != found.end()) out.push_back(it->second);
    return out;
  }

  std::vector<ProjectPoint> findAll(const std::vector<std::string>& numbers) override {
    std::vector<ProjectPoint> out;
    for (std::size_t at = 0; at < numbers.size(); at += 500) {
      std::string list;
      for (std::size_t i = at; i < std::min(numbers.size(), at + 500); ++i) list += (i > at ? "," : "") + literal(numbers[i]);
      query(std::string(kSelect) + " WHERE number IN (" + list + ")", [&out](OGRFeatureH f) { out.push_back(selected(f)); });
    }
    return out;
  }

  std::vector<std::string> values(const std::string& field, int most) override {
    if (field != "feature" && field != "evidence") return {};
    std::vector<std::string> out;
    query("SELECT DISTINCT " + field + " COLLATE NOCASE FROM points WHERE " + field + " <> '' ORDER BY 1 LIMIT " + std::to_string(std::max(0, most)),
          [&out](OGRFeatureH f) { out.push_back(OGR_F_GetFieldAsString(f, 0)); });
    return out;
  }

  long long rank(long long id) override {
    long long n = 0;
    query("SELECT COUNT(*) FROM points WHERE fid < " + std::to_string(id), [&n](OGRFeatureH f) { n = OGR_F_GetFieldAsInteger64(f, 0); });
    return n;
  }

  std::map<std::string, long long> apply(const ProjectEdit& edit, const std::string& source) override {
    OGRLayerH layer = pointsLayer();
    begin();
    try {
      for (const ProjectPoint& gone : findAll(edit.remove))
        if (OGR_L_DeleteFeature(layer, gone.id) != OGRERR_NONE) fail("cannot be changed");
      const std::string when = stampNow();
      for (ProjectPoint p : edit.put) {
        if (p.number.empty()) throw ProjectError("a point has no number");
        if (p.modified.empty()) p.modified = when;
        if (p.source.empty()) p.source = source;
        // A point with its key keeps its place in the order stored (a renumbered point, one put back).
        OGRFeatureH old = feature(p.number);
        if (old && p.id > 0 && OGR_F_GetFID(old) != p.id) {
          if (OGR_L_DeleteFeature(layer, OGR_F_GetFID(old)) != OGRERR_NONE) fail("cannot be changed");
          OGR_F_Destroy(old);
          old = nullptr;
        }
        if (!old && p.id > 0) old = OGR_L_GetFeature(layer, p.id);
        OGRFeatureH f = old ? old : OGR_F_Create(OGR_L_GetLayerDefn(layer));
        fill(f, p);
        if (!old && p.id > 0) OGR_F_SetFID(f, p.id);
        const OGRErr e = old ? OGR_L_SetFeature(layer, f) : OGR_L_CreateFeature(layer, f);
        OGR_F_Destroy(f);
        if (e != OGRERR_NONE) throw ProjectError("point " + p.number + " cannot be stored: " + lastError());
      }
      journal(source, std::to_string(edit.remove.size()) + " removed, " + std::to_string(edit.put.size()) + " stored");
      commit();
    } catch (...) {
      GDALDatasetRollbackTransaction(ds_);
      throw;
    }
    return {};  // one writer at a time: no versions to keep
  }

  const std::filesystem::path& path() const override { return file_; }
  std::string name() const override { return file_.stem().string(); }

  std::vector<JournalEntry> history() override {
    std::vector<JournalEntry> out;
    query("SELECT changed, source, what FROM tervalo_journal ORDER BY fid", [&out](OGRFeatureH f) {
      out.push_back({OGR_F_GetFieldAsString(f, 0), OGR_F_GetFieldAsString(f, 1), OGR_F_GetFieldAsString(f, 2)});
    });
    return out;
  }

  void append(const std::vector<ProjectPoint>& points, const std::vector<JournalEntry>& entries) override {
    OGRLayerH layer = pointsLayer();
    begin();
    try {
      for (const char* index : {"points_number", "points_feature", "points_evidence"}) sql(("DROP INDEX IF EXISTS " + std::string(index)).c_str());
      for (const ProjectPoint& p : points) {
        OGRFeatureH f = OGR_F_Create(OGR_L_GetLayerDefn(layer));
        fill(f, p);
        const OGRErr e = OGR_L_CreateFeature(layer, f);
        OGR_F_Destroy(f);
        if (e != OGRERR_NONE) throw ProjectError("point " + p.number + " cannot be stored: " + lastError());
      }
      makeIndexes();
      for (const JournalEntry& j : entries) journal(j);
      commit();
    } catch (...) {
      GDALDatasetRollbackTransaction(ds_);
      throw;
    }
  }

  void setSigner(const ProjectSettings& people) override {
    OGRLayerH about = GDALDatasetGetLayerByName(ds_, "tervalo_project");
    if (!about) fail("cannot be changed");
    begin();
    try {
      for (const auto& [key, value] : {std::pair<const char*, std::string>{"surveyor", people.surveyor},
                                       {"license", people.license},
                                       {"firm", people.firm}}) {
        // The key's row changed where there is one, else added.
        OGRFeatureH row = nullptr;
        OGR_L_ResetReading(about);
        while (OGRFeatureH f = OGR_L_GetNextFeature(about)) {
          if (key == std::string(OGR_F_GetFieldAsString(f, 0))) {
            row = f;
            break;
          }
          OGR_F_Destroy(f);
        }
        const bool found = row != nullptr;
        if (!found) row = OGR_F_Create(OGR_L_GetLayerDefn(about));
        OGR_F_SetFieldString(row, 0, key);
        OGR_F_SetFieldString(row, 1, value.c_str());
        const OGRErr e = found ? OGR_L_SetFeature(about, row) : OGR_L_CreateFeature(about, row);
        OGR_F_Destroy(row);
        if (e != OGRERR_NONE) fail("cannot be changed");
      }
      journal("project signer", "surveyor, license and firm set");
      commit();
    } catch (...) {
      GDALDatasetRollbackTransaction(ds_);
      throw;
    }
    settings_.surveyor = people.surveyor;
    settings_.license = people.license;
    settings_.firm = people.firm;
  }

  void storeAlignment(const StoredAlignment& a) override {
    begin();
    try {
      // The layer is made with the first alignment kept: a project without one is as it was.
      OGRLayerH layer = GDALDatasetGetLayerByName(ds_, "alignments");
      if (!layer) {
        OGRLayerH points = GDALDatasetGetLayerByName(ds_, "points");
        char** options = CSLSetNameValue(nullptr, "GEOMETRY_NAME", "geom");
        layer = GDALDatasetCreateLayer(ds_, "alignments", points ? OGR_L_GetSpatialRef(points) : nullptr, wkbLineString, options);
        CSLDestroy(options);
        if (!layer) fail("cannot be changed");
        for (const char* name : {"name", "format", "definition", "modified"}) {
          OGRFieldDefnH d = OGR_Fld_Create(name, OFTString);
          const OGRErr e = OGR_L_CreateField(layer, d, TRUE);
          OGR_Fld_Destroy(d);
          if (e != OGRERR_NONE) fail("cannot be changed");
        }
      }
      // The one of this name, if any, goes.
      std::vector<GIntBig> old;
      OGR_L_ResetReading(layer);
      while (OGRFeatureH f = OGR_L_GetNextFeature(layer)) {
        if (a.name == OGR_F_GetFieldAsString(f, OGR_F_GetFieldIndex(f, "name"))) old.push_back(OGR_F_GetFID(f));
        OGR_F_Destroy(f);
      }
      for (GIntBig fid : old)
        if (OGR_L_DeleteFeature(layer, fid) != OGRERR_NONE) fail("cannot be changed");
      OGRFeatureH f = OGR_F_Create(OGR_L_GetLayerDefn(layer));
      const std::string stamp = a.modified.empty() ? stampNow() : a.modified;
      for (const auto& [name, value] : {std::pair<const char*, const std::string*>{"name", &a.name}, {"format", &a.format},
                                        {"definition", &a.definition}, {"modified", &stamp}})
        OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, name), value->c_str());
      OGRGeometryH g = OGR_G_CreateGeometry(wkbLineString);
      for (const auto& [n, e] : a.centreline) OGR_G_AddPoint_2D(g, e, n);
      OGR_F_SetGeometryDirectly(f, g);
      const OGRErr e = OGR_L_CreateFeature(layer, f);
      OGR_F_Destroy(f);
      if (e != OGRERR_NONE) fail("cannot be changed");
      journal("alignment " + a.name, old.empty() ? "kept" : "kept in the place of the one before");
      commit();
    } catch (...) {
      GDALDatasetRollbackTransaction(ds_);
      throw;
    }
  }

  std::vector<StoredAlignment> alignments() override {
    std::vector<StoredAlignment> out;
    OGRLayerH layer = GDALDatasetGetLayerByName(ds_, "alignments");
    if (!layer) return out;
    OGR_L_ResetReading(layer);
    while (OGRFeatureH f = OGR_L_GetNextFeature(layer)) {
      StoredAlignment a;
      a.name = OGR_F_GetFieldAsString(f, OGR_F_GetFieldIndex(f, "name"));
      a.format = OGR_F_GetFieldAsString(f, OGR_F_GetFieldIndex(f, "format"));
      a.definition = OGR_F_GetFieldAsString(f, OGR_F_GetFieldIndex(f, "definition"));
      a.modified = OGR_F_GetFieldAsString(f, OGR_F_GetFieldIndex(f, "modified"));
      if (OGRGeometryH g = OGR_F_GetGeometryRef(f))
        for (int i = 0; i < OGR_G_GetPointCount(g); ++i) a.centreline.push_back({OGR_G_GetY(g, i), OGR_G_GetX(g, i)});
      out.push_back(std::move(a));
      OGR_F_Destroy(f);
    }
    std::sort(out.begin(), out.end(), [](const StoredAlignment& x, const StoredAlignment& y) { return x.name < y.name; });
    return out;
  }

 private:
  // The columns of a point as a query selects them, its key first.
  static constexpr const char* kSelect =
      "SELECT fid + 0, number, northing, easting, elevation, description, feature, evidence, source, modified FROM points";
  // A number that is a whole number, which a range takes.
  static constexpr const char* kWhole = "number <> '' AND number NOT GLOB '*[^0-9]*' AND length(number) < 19";

  static ProjectPoint selected(OGRFeatureH f) {
    ProjectPoint p = point(f);
    p.id = OGR_F_GetFieldAsInteger64(f, 0);
    return p;
  }

  // A statement of SQLite's own, each row of its answer handed to `row`.
  void query(const std::string& statement, const std::function<void(OGRFeatureH)>& row) {
    CPLErrorReset();
    OGRLayerH result = GDALDatasetExecuteSQL(ds_, statement.c_str(), nullptr, "SQLITE");
    if (!result) {
      if (CPLGetLastErrorType() >= CE_Failure) fail("cannot be read");
      return;
    }
    OGR_L_ResetReading(result);
    while (OGRFeatureH f = OGR_L_GetNextFeature(result)) {
      row(f);
      OGR_F_Destroy(f);
    }
    GDALDatasetReleaseResultSet(ds_, result);
  }

  void upgrade(int from) {
    begin();
    try {
      if (from < 2) {
        makeIndexes();
      }
      sql(("UPDATE tervalo_project SET value = '" + std::to_string(kProjectSchema) + "' WHERE key = 'schema'").c_str());
      journal("open", "brought up to date from project version " + std::to_string(from));
      commit();
    } catch (...) {
      GDALDatasetRollbackTransaction(ds_);
      throw;
    }
  }

  void makeIndexes() {
    sql("CREATE UNIQUE INDEX IF NOT EXISTS points_number ON points(number)");
    sql("CREATE INDEX IF NOT EXISTS points_feature ON points(feature COLLATE NOCASE)");
    sql("CREATE INDEX IF NOT EXISTS points_evidence ON points(evidence COLLATE NOCASE)");
  }

  OGRLayerH pointsLayer() const {
    OGRLayerH layer = GDALDatasetGetLayerByName(ds_, "points");
    if (!layer) throw ProjectError("\"" + file_.string() + "\" is a GeoPackage but not a Tervalo project: it has no points layer");
    return layer;
  }

  // The numbers the project holds, read without the rest of each point.
  std::unordered_set<std::string> numbers() {
    OGRLayerH layer = pointsLayer();
    const char* ignored[] = {"northing", "easting", "elevation", "description", "feature", "evidence", "source", "modified", "OGR_GEOMETRY", nullptr};
    OGR_L_SetIgnoredFields(layer, ignored);
    OGR_L_SetAttributeFilter(layer, nullptr);
    OGR_L_ResetReading(layer);
    std::unordered_set<std::string> out;
    const int field = OGR_FD_GetFieldIndex(OGR_L_GetLayerDefn(layer), "number");
    while (OGRFeatureH f = OGR_L_GetNextFeature(layer)) {
      out.insert(OGR_F_GetFieldAsString(f, field));
      OGR_F_Destroy(f);
    }
    OGR_L_SetIgnoredFields(layer, nullptr);
    return out;
  }

  static long nextFree(const std::unordered_set<std::string>& numbers) {
    long most = 0;
    for (const std::string& n : numbers)
      if (!n.empty() && n.size() < 10 && std::all_of(n.begin(), n.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); }))
        most = std::max(most, std::stol(n));
    return most + 1;
  }

  OGRFeatureH feature(const std::string& number) {
    OGRLayerH layer = pointsLayer();
    OGR_L_SetAttributeFilter(layer, ("number = " + literal(number)).c_str());
    OGR_L_ResetReading(layer);
    OGRFeatureH f = OGR_L_GetNextFeature(layer);
    OGR_L_SetAttributeFilter(layer, nullptr);
    return f;
  }

  static ProjectPoint point(OGRFeatureH f) {
    ProjectPoint p;
    const auto text = [f](const char* name) {
      const int i = OGR_F_GetFieldIndex(f, name);
      return i >= 0 && OGR_F_IsFieldSetAndNotNull(f, i) ? std::string(OGR_F_GetFieldAsString(f, i)) : std::string();
    };
    const auto number = [f](const char* name) -> std::optional<double> {
      const int i = OGR_F_GetFieldIndex(f, name);
      if (i < 0 || !OGR_F_IsFieldSetAndNotNull(f, i)) return std::nullopt;
      return OGR_F_GetFieldAsDouble(f, i);
    };
    p.number = text("number");
    p.northing = number("northing").value_or(0);
    p.easting = number("easting").value_or(0);
    p.elevation = number("elevation");
    p.description = text("description");
    p.feature = text("feature");
    p.evidence = text("evidence");
    p.source = text("source");
    p.modified = text("modified");
    return p;
  }

  // The points layer's fields by name, found once: every one must be there.
  void resolve() {
    OGRFeatureDefnH defn = OGR_L_GetLayerDefn(pointsLayer());
    for (std::size_t i = 0; i < std::size(kFields); ++i) {
      fields_[i] = OGR_FD_GetFieldIndex(defn, kFields[i]);
      if (fields_[i] < 0)
        throw ProjectError("\"" + file_.string() + "\" is not a Tervalo project: its points have no field " + kFields[i]);
    }
  }

  void fill(OGRFeatureH f, const ProjectPoint& p) const {
    const std::string* texts[] = {&p.number, &p.description, &p.feature, &p.evidence, &p.source, &p.modified};
    const int textIndex[] = {fields_[0], fields_[4], fields_[5], fields_[6], fields_[7], fields_[8]};
    for (std::size_t i = 0; i < std::size(texts); ++i) OGR_F_SetFieldString(f, textIndex[i], texts[i]->c_str());
    OGR_F_SetFieldDouble(f, fields_[1], p.northing);
    OGR_F_SetFieldDouble(f, fields_[2], p.easting);
    const int z = fields_[3];
    if (p.elevation)
      OGR_F_SetFieldDouble(f, z, *p.elevation);
    else
      OGR_F_SetFieldNull(f, z);
    OGRGeometryH g = OGR_G_CreateGeometry(wkbPoint);
    OGR_G_SetPoint_2D(g, 0, p.easting, p.northing);
    OGR_F_SetGeometryDirectly(f, g);
  }

  void begin() {
    CPLErrorReset();
    if (GDALDatasetStartTransaction(ds_, FALSE) != OGRERR_NONE) fail("cannot be changed");
  }

  void commit() {
    if (GDALDatasetCommitTransaction(ds_) != OGRERR_NONE) fail("cannot be changed");
  }

  // A fault of the file: a second writer, a read-only file, a full disk, in the program's words.
  [[noreturn]] void fail(const std::string& what) const {
    const std::string why = lastError();
    if (why.find("locked") != std::string::npos || why.find("busy") != std::string::npos)
      throw ProjectError("\"" + file_.string() + "\" " + what + ": another program (another Tervalo?) is changing it; try again when it is done");
    if (why.find("readonly") != std::string::npos || why.find("read-only") != std::string::npos)
      throw ProjectError("\"" + file_.string() + "\" " + what + ": it is read-only");
    if (why.find("disk is full") != std::string::npos)
      throw ProjectError("\"" + file_.string() + "\" " + what + ": No space left on device");
    throw ProjectError("\"" + file_.string() + "\" " + what + ": " + why);
  }

  void sql(const char* statement) {
    CPLErrorReset();
    OGRLayerH result = GDALDatasetExecuteSQL(ds_, statement, nullptr, nullptr);
    if (result) GDALDatasetReleaseResultSet(ds_, result);
    if (CPLGetLastErrorType() >= CE_Failure) fail("cannot be changed");
  }

  void journal(const std::string& source, const std::string& what) { journal({stampNow(), source, what}); }

  void journal(const JournalEntry& entry) {
    OGRLayerH layer = GDALDatasetGetLayerByName(ds_, "tervalo_journal");
    if (!layer) return;
    OGRFeatureH f = OGR_F_Create(OGR_L_GetLayerDefn(layer));
    OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "changed"), entry.changed.c_str());
    OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "source"), entry.source.c_str());
    OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "what"), entry.what.c_str());
    const OGRErr e = OGR_L_CreateFeature(layer, f);
    OGR_F_Destroy(f);
    if (e != OGRERR_NONE) fail("cannot be changed");
  }

  void lay(const ProjectSettings& settings, const std::string& wkt) {
    settings_ = settings;
    OGRSpatialReferenceH srs = OSRNewSpatialReference(nullptr);
    if (OSRSetFromUserInput(srs, wkt.c_str()) != OGRERR_NONE) {
      OSRDestroySpatialReference(srs);
      throw ProjectError("GDAL cannot take the project's coordinate system");
    }
    OSRSetAxisMappingStrategy(srs, OAMS_TRADITIONAL_GIS_ORDER);
    begin();
    char** options = CSLSetNameValue(nullptr, "GEOMETRY_NAME", "geom");
    OGRLayerH points = GDALDatasetCreateLayer(ds_, "points", srs, wkbPoint, options);
    CSLDestroy(options);
    OSRDestroySpatialReference(srs);
    if (!points) fail("cannot be made");
    const auto field = [this](OGRLayerH layer, const char* name, OGRFieldType type) {
      OGRFieldDefnH d = OGR_Fld_Create(name, type);
      const OGRErr e = OGR_L_CreateField(layer, d, TRUE);
      OGR_Fld_Destroy(d);
      if (e != OGRERR_NONE) fail("cannot be made");
    };
    field(points, "number", OFTString);
    field(points, "northing", OFTReal);
    field(points, "easting", OFTReal);
    field(points, "elevation", OFTReal);
    for (const char* name : kTextFields)
      if (std::string(name) != "number") field(points, name, OFTString);
    OGRLayerH about = GDALDatasetCreateLayer(ds_, "tervalo_project", nullptr, wkbNone, nullptr);
    OGRLayerH journalLayer = GDALDatasetCreateLayer(ds_, "tervalo_journal", nullptr, wkbNone, nullptr);
    if (!about || !journalLayer) fail("cannot be made");
    field(about, "key", OFTString);
    field(about, "value", OFTString);
    for (const char* name : {"changed", "source", "what"}) field(journalLayer, name, OFTString);
    const std::pair<std::string, std::string> rows[] = {{"schema", std::to_string(kProjectSchema)},
                                                        {"unit", settings.unit},
                                                        {"epsg", settings.crs.none() ? "" : std::to_string(settings.crs.epsg)},
                                                        {"foot", settings.crs.foot},
                                                        {"surveyor", settings.surveyor},
                                                        {"license", settings.license},
                                                        {"firm", settings.firm}};
    for (const auto& [key, value] : rows) {
      OGRFeatureH f = OGR_F_Create(OGR_L_GetLayerDefn(about));
      OGR_F_SetFieldString(f, 0, key.c_str());
      OGR_F_SetFieldString(f, 1, value.c_str());
      const OGRErr e = OGR_L_CreateFeature(about, f);
      OGR_F_Destroy(f);
      if (e != OGRERR_NONE) fail("cannot be made");
    }
    resolve();
    journal("project new", "made");
    commit();
    // Numbers are unique and found by an index, as the section form finds them; the Points window filters by feature and evidence.
    makeIndexes();
  }

  // The project's version, as the file gives it.
  int readSettings() {
    OGRLayerH about = GDALDatasetGetLayerByName(ds_, "tervalo_project");
    pointsLayer();
    if (!about) throw ProjectError("\"" + file_.string() + "\" is a GeoPackage but not a Tervalo project: it has no tervalo_project table");
    std::map<std::string, std::string> values;
    OGR_L_ResetReading(about);
    while (OGRFeatureH f = OGR_L_GetNextFeature(about)) {
      values[OGR_F_GetFieldAsString(f, 0)] = OGR_F_GetFieldAsString(f, 1);
      OGR_F_Destroy(f);
    }
    const int schema = std::atoi(values["schema"].c_str());
    if (schema > kProjectSchema)
      throw ProjectError("\"" + file_.string() + "\" comes from a newer Tervalo (project version " + values["schema"] + ")");
    if (schema < 1) throw ProjectError("\"" + file_.string() + "\" is not a Tervalo project: its version is missing");
    resolve();
    settings_ = settingsOf(values);
    return schema;
  }

  std::filesystem::path file_;
  GDALDatasetH ds_;
  ProjectSettings settings_;
  std::array<int, 9> fields_{};
};

}  // namespace

std::unique_ptr<ProjectFile> gpkgProject(const std::filesystem::path& file, const ProjectSettings* create, const std::string& wkt) {
  return create ? GpkgProject::create(file, *create, wkt) : GpkgProject::open(file);
}

}  // namespace tervalo
