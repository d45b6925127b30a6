// The coordinate system module: PROJ for every position, factor and WKT,
// GDAL for GIS files. Built as a module of its own and loaded by geo() the
// first time a system is used, so the program starts without either.

#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal.h>
#include <ogr_api.h>
#include <ogr_srs_api.h>
#include <proj.h>
#include <proj_experimental.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "crs/crs.h"
#include "crs/project_store.h"

namespace tervalo {

std::unique_ptr<ProjectFile> gpkgProject(const std::filesystem::path& file, const ProjectSettings* create, const std::string& wkt);
std::unique_ptr<ProjectFile> pgProject(const std::string& connection, const ProjectSettings* create, const std::string& wkt);

namespace {

constexpr double kUsFootMetres = 1200.0 / 3937.0;
constexpr double kFootMetres = 0.3048;
constexpr double kRadian = 3.14159265358979323846 / 180;

struct PjFree {
  void operator()(PJ* p) const { proj_destroy(p); }
};
using Pj = std::unique_ptr<PJ, PjFree>;

std::string lower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

class ProjGeo : public Geo {
 public:
  ProjGeo() : ctx_(proj_context_create()) {
    proj_log_level(ctx_, PJ_LOG_NONE);
    CPLSetErrorHandler(CPLQuietErrorHandler);
    GDALAllRegister();
  }
  ~ProjGeo() override { proj_context_destroy(ctx_); }

  CrsDescription describe(int epsg) override { return base(epsg).description; }

  std::vector<CrsListEntry> search(const std::string& text, std::size_t most) override {
    if (all_.empty()) {
      PROJ_CRS_LIST_PARAMETERS* params = proj_get_crs_list_parameters_create();
      PJ_TYPE projected = PJ_TYPE_PROJECTED_CRS;
      params->types = &projected;
      params->typesCount = 1;
      int count = 0;
      PROJ_CRS_INFO** list = proj_get_crs_info_list_from_database(ctx_, "EPSG", params, &count);
      for (int i = 0; i < count; ++i)
        if (!list[i]->deprecated) all_.push_back({std::atoi(list[i]->code), list[i]->name});
      proj_crs_info_list_destroy(list);
      proj_get_crs_list_parameters_destroy(params);
    }
    // Every word of the text in the name or the code, in any case.
    std::vector<std::string> words;
    std::string word;
    for (char c : lower(text) + " ") {
      if (c == ' ') {
        if (!word.empty()) words.push_back(word);
        word.clear();
      } else {
        word += c;
      }
    }
    std::vector<CrsListEntry> found;
    for (const CrsListEntry& e : all_) {
      const std::string hay = lower(e.name) + " " + std::to_string(e.epsg);
      if (std::all_of(words.begin(), words.end(), [&hay](const std::string& w) { return hay.find(w) != std::string::npos; })) {
        found.push_back(e);
        if (found.size() >= most) break;
      }
    }
    return found;
  }

  std::vector<GeographicPosition> geographic(const CrsChoice& crs, const std::vector<PlanePosition>& at) override {
    System& s = system(crs);
    std::vector<GeographicPosition> out;
    for (const PlanePosition& p : at) {
      const PJ_COORD c = proj_trans(s.toGeographic.get(), PJ_FWD, proj_coord(p.x, p.y, 0, 0));
      if (!std::isfinite(c.lp.lam) || !std::isfinite(c.lp.phi))
        throw CrsError("PROJ cannot place " + std::to_string(p.x) + ", " + std::to_string(p.y) + " in " + s.description.name);
      out.push_back({c.lpzt.phi, c.lpzt.lam});  // normalised: longitude first, in degrees
    }
    return out;
  }

  std::vector<PlanePosition> plane(const CrsChoice& crs, const std::vector<GeographicPosition>& at) override {
    System& s = system(crs);
    std::vector<PlanePosition> out;
    for (const GeographicPosition& g : at) {
      const PJ_COORD c = proj_trans(s.toGeographic.get(), PJ_INV, proj_coord(g.longitude, g.latitude, 0, 0));
      if (!std::isfinite(c.xy.x) || !std::isfinite(c.xy.y))
        throw CrsError("PROJ cannot place latitude " + std::to_string(g.latitude) + ", longitude " + std::to_string(g.longitude) +
                       " in " + s.description.name);
      out.push_back({c.xy.x, c.xy.y});
    }
    return out;
  }

  std::vector<GridFactors> factors(const CrsChoice& crs, const std::vector<PlanePosition>& at) override {
    System& s = system(crs);
    std::vector<GridFactors> out;
    PJ* projection = s.projection.get();
    for (const GeographicPosition& g : geographic(crs, at)) {
      const PJ_FACTORS f = proj_factors(projection, proj_coord(g.longitude * kRadian, g.latitude * kRadian, 0, 0));
      if (proj_errno(projection) != 0) {
        proj_errno_reset(projection);
        throw CrsError("PROJ has no scale factor for " + s.description.name + " at that point");
      }
      out.push_back({f.parallel_scale, f.meridian_convergence / kRadian});
    }
    return out;
  }

  std::string wkt(const CrsChoice& crs, bool esri) override {
    System& s = system(crs);
    const char* text = proj_as_wkt(ctx_, s.crs.get(), esri ? PJ_WKT1_ESRI : PJ_WKT2_2019, nullptr);
    if (!text) throw CrsError("PROJ gives no WKT for " + s.description.name);
    return text;
  }

  double meanRadius(const CrsChoice& crs, double latitude) override {
    System& s = system(crs);
    Pj ellipsoid(proj_get_ellipsoid(ctx_, s.crs.get()));
    double a = 0, b = 0, inverseFlattening = 0;
    int computed = 0;
    if (!ellipsoid || !proj_ellipsoid_get_parameters(ctx_, ellipsoid.get(), &a, &b, &computed, &inverseFlattening))
      throw CrsError("PROJ gives no ellipsoid for " + s.description.name);
    // PROJ's own Gaussian mean radius at the latitude (the geometric mean of
    // the radii in the meridian and the prime vertical): the radius of the
    // sphere it makes, read as the length of one radian of its equator.
    char definition[160];
    if (inverseFlattening > 0)
      std::snprintf(definition, sizeof definition, "+proj=eqc +a=%.17g +rf=%.17g +R_lat_g=%.17g", a, inverseFlattening, latitude);
    else
      std::snprintf(definition, sizeof definition, "+proj=eqc +R=%.17g", a);
    Pj sphere(proj_create(ctx_, definition));
    if (!sphere) throw CrsError("PROJ gives no mean radius for " + s.description.name);
    const double radius = proj_trans(sphere.get(), PJ_FWD, proj_coord(1, 0, 0, 0)).xy.x;
    if (!std::isfinite(radius) || radius <= 0) throw CrsError("PROJ gives no mean radius for " + s.description.name);
    return radius / s.metresPerJobUnit;
  }

  void writeGis(const GisDocument& d, const std::string& driverName, const std::filesystem::path& file) override {
    GDALDriverH driver = GDALGetDriverByName(driverName.c_str());
    if (!driver) throw CrsError("GDAL has no " + driverName + " driver");
    // GeoJSON and KML hold WGS 84 longitudes and latitudes: the positions
    // go there by the operation PROJ chooses, and the file says so. Every
    // other file holds the system's own coordinates in the system's own unit,
    // so that what it declares is what it holds.
    const bool wgs84 = driverName == "GeoJSON" || driverName == "KML";
    Placing placing = d.crs.none() ? Placing{} : placingFor(d.crs, wgs84);
    // Every position placed before the first layer: the file names the operations used.
    std::vector<PlanePosition> cornerAt, lineFrom, lineTo;
    for (const GisCorner& c : d.corners) cornerAt.push_back(placing.place(c.at));
    for (const GisLine& l : d.lines) {
      lineFrom.push_back(placing.place(l.from));
      lineTo.push_back(placing.place(l.to));
    }
    OGRSpatialReferenceH srs = nullptr;
    if (!d.crs.none()) {
      srs = OSRNewSpatialReference(nullptr);
      if (OSRSetFromUserInput(srs, placing.declared.c_str()) != OGRERR_NONE) {
        OSRDestroySpatialReference(srs);
        throw CrsError("GDAL cannot take the system " + system(d.crs).description.name);
      }
      OSRSetAxisMappingStrategy(srs, OAMS_TRADITIONAL_GIS_ORDER);
    }
    GDALDatasetH ds = GDALCreate(driver, file.c_str(), 0, 0, 0, GDT_Unknown, nullptr);
    if (!ds) {
      if (srs) OSRDestroySpatialReference(srs);
      throw CrsError(std::string("GDAL cannot create the file: ") + CPLGetLastErrorMsg());
    }
    std::string fault;
    // GeoJSON holds one layer: corners and lines together, in longitude and latitude (RFC 7946).
    const bool one = driverName == "GeoJSON";
    char** options = nullptr;
    if (one) options = CSLSetNameValue(options, "RFC7946", "YES");
    if (one && !d.crs.none()) options = CSLSetNameValue(options, "DESCRIPTION", placing.said().c_str());
    const char* cornerFields[] = {"name", "point", "other_points", "description", "evidence", "feature", "status", "rule"};
    const char* lineFields[] = {"line", "group"};
    const auto addFields = [&](OGRLayerH layer, const auto& names) {
      for (const char* name : names) {
        OGRFieldDefnH field = OGR_Fld_Create(name, OFTString);
        if (OGR_L_CreateField(layer, field, TRUE) != OGRERR_NONE && fault.empty()) fault = CPLGetLastErrorMsg();
        OGR_Fld_Destroy(field);
      }
    };
    // A layer's features in one transaction where the driver has them (a
    // GeoPackage): one commit for a township's thousands, not one each.
    const auto transaction = [&](auto fill) {
      const bool started = GDALDatasetStartTransaction(ds, FALSE) == OGRERR_NONE;
      fill();
      if (started && GDALDatasetCommitTransaction(ds) != OGRERR_NONE && fault.empty()) fault = CPLGetLastErrorMsg();
    };
    // Each layer made and filled before the next: KML writes its folders one after another.
    OGRLayerH corners = GDALDatasetCreateLayer(ds, one ? "corners and lines" : "corners", srs, one ? wkbUnknown : wkbPoint, options);
    CSLDestroy(options);
    if (!corners) fault = CPLGetLastErrorMsg();
    if (corners) {
      addFields(corners, cornerFields);
      if (one) addFields(corners, lineFields);
      transaction([&] {
      for (std::size_t k = 0; k < d.corners.size(); ++k) {
        const GisCorner& c = d.corners[k];
        OGRFeatureH f = OGR_F_Create(OGR_L_GetLayerDefn(corners));
        const std::string* values[] = {&c.name, &c.number, &c.otherNumbers, &c.description, &c.evidence, &c.feature, &c.status, &c.rule};
        for (std::size_t i = 0; i < std::size(values); ++i) OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, cornerFields[i]), values[i]->c_str());
        OGRGeometryH point = OGR_G_CreateGeometry(wkbPoint);
        OGR_G_SetPoint_2D(point, 0, cornerAt[k].x, cornerAt[k].y);
        OGR_F_SetGeometryDirectly(f, point);
        if (OGR_L_CreateFeature(corners, f) != OGRERR_NONE && fault.empty()) fault = CPLGetLastErrorMsg();
        OGR_F_Destroy(f);
      }
      });
    }
    OGRLayerH lines = one ? corners : (corners ? GDALDatasetCreateLayer(ds, "lines", srs, wkbLineString, nullptr) : nullptr);
    if (corners && !lines && fault.empty()) fault = CPLGetLastErrorMsg();
    if (lines) {
      if (!one) addFields(lines, lineFields);
      transaction([&] {
      for (std::size_t k = 0; k < d.lines.size(); ++k) {
        const GisLine& l = d.lines[k];
        OGRFeatureH f = OGR_F_Create(OGR_L_GetLayerDefn(lines));
        OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "line"), l.name.c_str());
        OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "group"), l.group.c_str());
        OGRGeometryH line = OGR_G_CreateGeometry(wkbLineString);
        OGR_G_AddPoint_2D(line, lineFrom[k].x, lineFrom[k].y);
        OGR_G_AddPoint_2D(line, lineTo[k].x, lineTo[k].y);
        OGR_F_SetGeometryDirectly(f, line);
        if (OGR_L_CreateFeature(lines, f) != OGRERR_NONE && fault.empty()) fault = CPLGetLastErrorMsg();
        OGR_F_Destroy(f);
      }
      });
    }
    CPLErrorReset();
    GDALClose(ds);  // writes what is left: a fault here is the driver's last error
    if (CPLGetLastErrorType() >= CE_Failure && fault.empty()) fault = CPLGetLastErrorMsg();
    if (srs) OSRDestroySpatialReference(srs);
    if (!fault.empty()) throw CrsError("GDAL could not write the " + driverName + " file: " + fault);
  }

  std::unique_ptr<ProjectFile> project(const std::filesystem::path& file, const ProjectSettings* create) override {
    std::string wkt;
    if (create && create->crs.none()) {
      // No system: a local engineering system in the project's unit, so that nothing puts it on the earth.
      const std::string unit = create->unit == "m" ? "LENGTHUNIT[\"metre\",1]" : "LENGTHUNIT[\"US survey foot\",0.304800609601219]";
      wkt = "ENGCRS[\"Tervalo local coordinates\",EDATUM[\"Tervalo local datum\"],CS[Cartesian,2],AXIS[\"easting (E)\",east,ORDER[1]," +
            unit + "],AXIS[\"northing (N)\",north,ORDER[2]," + unit + "]]";
    } else if (create) {
      System& s = system(create->crs);
      const bool altered = s.metresPerJobUnit != base(create->crs.epsg).description.metresPerUnit;
      // A metric system in feet is the project's own, named so, that no GIS takes it for EPSG's in metres.
      Pj named(altered ? proj_alter_name(ctx_, s.crs.get(), (s.description.name + " (" + (create->crs.foot == "us" ? "US survey foot" : "foot") + ")").c_str())
                       : proj_clone(ctx_, s.crs.get()));
      // An identifier of the project's own, or GDAL would take the UTM zone for EPSG's by its parameters alone.
      if (altered && named) named.reset(proj_alter_id(ctx_, named.get(), "TERVALO", std::to_string(create->crs.epsg).c_str()));
      const char* text = named ? proj_as_wkt(ctx_, named.get(), PJ_WKT2_2019, nullptr) : nullptr;
      if (!text) throw CrsError("PROJ gives no WKT for " + s.description.name);
      wkt = text;
    }
    if (sharedProject(file.string())) return pgProject(file.string(), create, wkt);
    return gpkgProject(file, create, wkt);
  }

 private:
  // How a GIS file's positions are taken from the job's coordinates, and
  // the system the file declares for them.
  struct Placing {
    Pj operation;          // none: the job's coordinates as they are
    std::string declared;  // the system for GDAL: WKT, or "OGC:CRS84"
    std::string from;      // the job's system by name
    std::vector<std::string> used;  // the operations PROJ took, each once, with their accuracy
    PlanePosition place(const PlanePosition& p) {
      if (!operation) return p;
      const PJ_COORD c = proj_trans(operation.get(), PJ_FWD, proj_coord(p.x, p.y, 0, 0));
      if (!std::isfinite(c.xy.x) || !std::isfinite(c.xy.y))
        throw CrsError("PROJ cannot place " + std::to_string(p.x) + ", " + std::to_string(p.y) + " from " + from);
      if (Pj last{proj_trans_get_last_used_operation(operation.get())}) {
        const double accuracy = proj_coordoperation_get_accuracy(nullptr, last.get());
        char metres[32] = "unknown accuracy";
        if (accuracy >= 0) std::snprintf(metres, sizeof metres, "accuracy %g m", accuracy);
        const std::string name = std::string(proj_get_name(last.get())) + " (" + metres + ")";
        if (std::find(used.begin(), used.end(), name) == used.end()) used.push_back(name);
      }
      return {c.xy.x, c.xy.y};
    }
    // The file's own word on its positions.
    std::string said() const {
      std::string text = "WGS 84 longitudes and latitudes from " + from + " by PROJ's operation";
      if (used.size() > 1) text += "s";
      for (std::size_t i = 0; i < used.size(); ++i) text += (i ? "; " : " ") + used[i];
      return text;
    }
  };

  Placing placingFor(const CrsChoice& crs, bool wgs84) {
    System& s = system(crs);
    Placing p;
    p.from = s.description.name;
    if (wgs84) {
      p.declared = "OGC:CRS84";
      Pj target(proj_create(ctx_, "OGC:CRS84"));
      Pj op(target ? proj_create_crs_to_crs_from_pj(ctx_, s.crs.get(), target.get(), nullptr, nullptr) : nullptr);
      if (!op) throw CrsError("PROJ finds no way from " + p.from + " to WGS 84");
      p.operation.reset(proj_normalize_for_visualization(ctx_, op.get()));
      return p;
    }
    Base& b = base(crs.epsg);
    const char* text = proj_as_wkt(ctx_, b.crs.get(), PJ_WKT2_2019, nullptr);
    if (!text) throw CrsError("PROJ gives no WKT for " + p.from);
    p.declared = text;
    if (s.metresPerJobUnit != b.description.metresPerUnit) {
      // Feet on a metric system: the file holds the system's metres.
      Pj op(proj_create_crs_to_crs_from_pj(ctx_, s.crs.get(), b.crs.get(), nullptr, nullptr));
      if (!op) throw CrsError("PROJ cannot take " + p.from + " from feet to its " + b.description.unit + "s");
      p.operation.reset(proj_normalize_for_visualization(ctx_, op.get()));
    }
    return p;
  }

  struct Base {
    Pj crs;
    CrsDescription description;
  };
  // The system as the job's coordinates are: in the foot given, where the
  // system itself is in metres.
  struct System {
    Pj crs;
    Pj toGeographic;
    Pj projection;  // the map projection alone, geographic to metres: for PROJ's factors
    CrsDescription description;
    double metresPerJobUnit = 1;
  };

  Base& base(int epsg) {
    if (auto found = bases_.find(epsg); found != bases_.end()) return found->second;
    const std::string code = std::to_string(epsg);
    Pj crs(proj_create_from_database(ctx_, "EPSG", code.c_str(), PJ_CATEGORY_CRS, 0, nullptr));
    if (!crs) throw CrsError("EPSG:" + code + " is not a coordinate system in PROJ's database");
    if (proj_get_type(crs.get()) != PJ_TYPE_PROJECTED_CRS)
      throw CrsError("EPSG:" + code + " (" + proj_get_name(crs.get()) + ") is not a projected system: corners need plane coordinates");
    CrsDescription d;
    d.epsg = epsg;
    d.name = proj_get_name(crs.get());
    Pj geodetic(proj_crs_get_geodetic_crs(ctx_, crs.get()));
    Pj datum(geodetic ? proj_crs_get_datum(ctx_, geodetic.get()) : nullptr);
    if (!datum && geodetic) datum.reset(proj_crs_get_datum_ensemble(ctx_, geodetic.get()));
    d.datum = datum ? proj_get_name(datum.get()) : "";
    Pj cs(proj_crs_get_coordinate_system(ctx_, crs.get()));
    const char* unit = nullptr;
    double factor = 1;
    proj_cs_get_axis_info(ctx_, cs.get(), 0, nullptr, nullptr, nullptr, &factor, &unit, nullptr, nullptr);
    d.unit = unit ? unit : "metre";
    d.metresPerUnit = factor;
    double w = 0, s = 0, e = 0, n = 0;
    const char* area = nullptr;
    if (proj_get_area_of_use(ctx_, crs.get(), &w, &s, &e, &n, &area) && area) d.area = area;
    return bases_.emplace(epsg, Base{std::move(crs), d}).first->second;
  }

  System& system(const CrsChoice& choice) {
    if (choice.none()) throw CrsError("no coordinate system is chosen: the coordinates are local");
    const std::string key = std::to_string(choice.epsg) + "/" + choice.foot;
    if (auto found = systems_.find(key); found != systems_.end()) return found->second;
    Base& b = base(choice.epsg);
    System s;
    s.description = b.description;
    s.metresPerJobUnit = b.description.metresPerUnit;
    if (!choice.foot.empty()) {
      const double foot = choice.foot == "us" ? kUsFootMetres : kFootMetres;
      const bool metric = std::fabs(b.description.metresPerUnit - 1) < 1e-12;
      if (!metric && std::fabs(b.description.metresPerUnit - foot) > 1e-12)
        throw CrsError(b.description.name + " is in " + b.description.unit + "s: its foot is fixed, not the " +
                       (choice.foot == "us" ? "US survey" : "international") + " foot");
      if (metric) {
        // The same system with its axes in the foot of the coordinates.
        s.crs.reset(proj_crs_alter_cs_linear_unit(ctx_, b.crs.get(), choice.foot == "us" ? "US survey foot" : "foot", foot,
                                                  "EPSG", choice.foot == "us" ? "9003" : "9002"));
        if (!s.crs) throw CrsError("PROJ cannot express " + b.description.name + " in feet");
        s.metresPerJobUnit = foot;
      }
    }
    if (!s.crs) s.crs.reset(proj_clone(ctx_, b.crs.get()));
    Pj geodetic(proj_crs_get_geodetic_crs(ctx_, s.crs.get()));
    Pj toGeographic(proj_create_crs_to_crs_from_pj(ctx_, s.crs.get(), geodetic.get(), nullptr, nullptr));
    if (!toGeographic) throw CrsError("PROJ finds no way from " + b.description.name + " to latitude and longitude");
    // Easting before northing, and longitude before latitude, whatever the system's axis order.
    s.toGeographic.reset(proj_normalize_for_visualization(ctx_, toGeographic.get()));
    // The projection as PROJ's own proj program takes it: the system's
    // definition without its unit, so that its factors are pure numbers.
    const char* projString = proj_as_proj_string(ctx_, b.crs.get(), PJ_PROJ_4, nullptr);
    const std::string definition = projString ? projString : "";
    std::string kept;
    for (std::size_t at = 0; at < definition.size();) {
      const std::size_t end = std::min(definition.find(' ', at), definition.size());
      const std::string token = definition.substr(at, end - at);
      if (!token.empty() && token.rfind("+units=", 0) != 0 && token.rfind("+to_meter=", 0) != 0 && token != "+type=crs")
        kept += token + " ";
      at = end + 1;
    }
    s.projection.reset(proj_create(ctx_, kept.c_str()));
    if (!s.projection) throw CrsError("PROJ cannot take the projection of " + b.description.name);
    return systems_.emplace(key, std::move(s)).first->second;
  }

  PJ_CONTEXT* ctx_;
  std::map<int, Base> bases_;
  std::map<std::string, System> systems_;
  std::vector<CrsListEntry> all_;
};

}  // namespace
}  // namespace tervalo

extern "C" __attribute__((visibility("default"))) tervalo::Geo* tervalo_make_geo() {
  static tervalo::ProjGeo geo;
  return &geo;
}
