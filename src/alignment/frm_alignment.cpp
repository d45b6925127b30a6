#include "alignment/frm_alignment.h"

#include <cmath>

#include <nlohmann/json.hpp>

#include "alignment/alignment_dxf.h"
#include "alignment/alignment_file.h"
#include "alignment/alignment_landxml.h"
#include "alignment/alignment_pictures.h"
#include "app/json_text.h"
#include "app/output_file.h"
#include "app/program.h"
#include "app/shell.h"
#include "crs/project_store.h"
#include "project/project_session.h"
#include "export/export_file.h"
#include "text/angle.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/input_file.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {
namespace {

constexpr const char* kTitle = "Alignment";

std::string fixed(double v, const char* pattern) { return FormatShown(v, pattern); }

}  // namespace

frmAlignment::frmAlignment(Program& program) : FormModel(program, "frmAlignment", "Alignment") {
  for (auto [name, label] : {std::pair{"lblFile", &lblFile}, {"lblSummary", &lblSummary}, {"lblElements", &lblElements}, {"lblStation", &lblStation},
                             {"lblOffset", &lblOffset}, {"lblNorthing", &lblNorthing}, {"lblEasting", &lblEasting}, {"lblAnswer", &lblAnswer}})
    add(name, *label);
  add("txtFile", txtFile);
  add("btnBrowse", btnBrowse).click([this] {
    const auto chosen = shell().chooseFile(FileDialog::Open, "Open an Alignment", txtFile.text.empty() ? this->program().userAppData : txtFile.text,
                                           {"Alignments (*.alignment.json *.xml)", "All files (*)"});
    if (chosen && !chosen->empty()) openFile(*chosen);
  });
  add("btnOpen", btnOpen).click([this] { openFile(txtFile.text); });
  add("lstElements", lstElements);
  add("txtStation", txtStation);
  add("txtOffset", txtOffset).numeric();
  add("btnPoint", btnPoint).click([this] { pointAtStation(); });
  add("txtNorthing", txtNorthing).numeric();
  add("txtEasting", txtEasting).numeric();
  add("btnStation", btnStation).click([this] { stationOfPoint(); });
  add("btnStore", btnStore).click([this] { store(); });
  add("lblKept", lblKept);
  add("cmbKept", cmbKept);
  add("btnOpenKept", btnOpenKept).click([this] { openKept(cmbKept.text); });
  add("btnLandXml", btnLandXml).click([this] { exportLandXml(); });
  add("btnDxf", btnDxf).click([this] { exportDxf(); });
  add("btnReturn", btnReturn).click([this] { unload(); });
}

std::vector<std::pair<const char*, TextBox*>> frmAlignment::texts() {
  return {{"txtFile", &txtFile}, {"txtStation", &txtStation}, {"txtOffset", &txtOffset}, {"txtNorthing", &txtNorthing}, {"txtEasting", &txtEasting}};
}

bool frmAlignment::openFile(const std::string& file) {
  if (file.empty()) {
    shell().msgBox(kTitle, "Choose the alignment file first (Browse...).", Icon::Exclamation);
    return false;
  }
  std::string name = std::filesystem::path(file).stem().string();
  if (name.ends_with(".alignment")) name.erase(name.size() - 10);
  std::string text;
  try {
    text = readInputFile(file);
  } catch (const InputFileError& e) {
    shell().msgBox(kTitle, "The file " + file + " cannot be read: " + e.what() + ".", Icon::Exclamation);
    return false;
  }
  if (!load(text, upper(std::filesystem::path(file).extension().string()) == ".XML" ? "landxml" : "alignment", name, "The file " + file)) return false;
  txtFile.text = file;
  return true;
}

bool frmAlignment::openKept(const std::string& name) {
  if (!program().project) return false;
  for (const StoredAlignment& a : program().project->file().alignments())
    if (a.name == name) return load(a.definition, a.format, a.name, "The alignment " + name + " kept in the project");
  shell().msgBox(kTitle, "The project keeps no alignment named " + name + ".", Icon::Exclamation);
  return false;
}

bool frmAlignment::load(const std::string& text, const std::string& format, const std::string& fallbackName, const std::string& from) {
  std::optional<LandXmlAlignment> read;
  std::optional<Profile> profile;
  try {
    read.emplace(readAlignment(text, format, fallbackName));
    if (!read->profile.empty()) profile.emplace(read->profile, read->alignment);
  } catch (const AlignmentError& e) {
    shell().msgBox(kTitle, from + " cannot be read as an alignment: " + e.what() + ".", Icon::Exclamation);
    return false;
  }
  const std::string name = read->name;
  format_ = format;
  definition_ = text;
  alignment_.emplace(std::move(read->alignment));
  profile_ = std::move(profile);
  name_ = name;
  asked_.reset();
  const Alignment& a = *alignment_;
  lblSummary.caption = name + ": " + fixed(a.length(), "0.000") + " " + a.input().units + ", " + a.stationText(a.stationAt(0)) + " to " +
                       a.stationText(a.stationAt(a.length())) + ", " + std::to_string(a.elements().size()) + " elements" +
                       (profile_ ? ", a profile of " + std::to_string(profile_->vpis().size()) + " VPIs" : ", no profile");
  // The table: each element from its station, then the key points and curves.
  lstElements.items = {leftJustify("Element", 22) + leftJustify("From", 12) + rightJustify("Length", 11) + rightJustify("Radius", 12)};
  for (const Element& e : a.elements()) {
    const std::string kind = e.kind == ElementKind::Line ? "Tangent" : e.kind == ElementKind::Arc ? "Circular curve" : e.k0 == 0 ? "Spiral in" : "Spiral out";
    const double radius = e.kind == ElementKind::Line ? 0 : 1 / std::max(std::fabs(e.k0), std::fabs(e.k1));
    lstElements.items.push_back(leftJustify(kind + (e.pi >= 0 ? " PI " + std::to_string(e.pi + 1) : ""), 22) + leftJustify(a.stationText(a.stationAt(e.start)), 12) +
                                rightJustify(fixed(e.length, "0.000"), 11) +
                                (radius > 0 ? rightJustify(fixed(radius, "0.000"), 12) + (e.k0 + e.k1 > 0 ? " R" : " L") : std::string()));
  }
  lstElements.items.emplace_back("");
  for (const KeyPoint& k : a.keyPoints())
    lstElements.items.push_back(leftJustify(k.name, 6) + leftJustify(a.stationText(a.stationAt(k.along)), 12) + rightJustify(fixed(k.northing, "0.0000"), 14) +
                                rightJustify(fixed(k.easting, "0.0000"), 14));
  for (const PiCurve& c : a.curves())
    lstElements.items.push_back("PI " + std::to_string(c.pi + 1) + ": delta " + decimalToDmsCarried(std::fabs(c.delta)) + (c.delta > 0 ? " RT" : " LT") +
                                "  R " + fixed(c.radius, "0.000") + "  T " + fixed(c.tangentIn, "0.000") + "  Lc " + fixed(c.circleLength, "0.000") +
                                (c.in ? "  Ls " + fixed(c.in->length, "0.000") + " p " + fixed(c.in->p, "0.000") + " k " + fixed(c.in->k, "0.000") : ""));
  if (profile_)
    for (const VerticalCurveData& c : profile_->curves())
      lstElements.items.push_back("VPI " + std::to_string(c.vpi + 1) + ": PVC " + a.stationText(a.stationAt(c.pvc)) + "  PVT " +
                                  a.stationText(a.stationAt(c.pvt)) + "  K " + fixed(c.k, "0.0") +
                                  (c.turning ? std::string(c.g1 > 0 ? "  high " : "  low ") + a.stationText(a.stationAt(*c.turning)) + " (" +
                                                   fixed(*c.turningElevation, "0.000") + ")"
                                             : ""));
  lblAnswer.caption = "";
  btnLandXml.enabled = btnDxf.enabled = true;
  btnStore.enabled = program().project != nullptr;
  return true;
}

void frmAlignment::pointAtStation() {
  if (!alignment_ && !openFile(txtFile.text)) return;
  const Alignment& a = *alignment_;
  const auto station = parseStation(txtStation.text);
  if (!station) {
    shell().msgBox(kTitle, "Station: \"" + txtStation.text + "\" is no station (12+34.56 or 1234.56).", Icon::Exclamation);
    return;
  }
  const auto offset = txtOffset.text.empty() ? std::optional<double>(0) : finiteNumber(txtOffset.text);
  if (!offset) {
    shell().msgBox(kTitle, "Offset: \"" + txtOffset.text + "\" is not a number.", Icon::Exclamation);
    return;
  }
  try {
    const double along = a.alongAt(*station);
    const Pose p = a.at(along, *offset);
    asked_ = PicturePoint{p.easting, p.northing};
    lblAnswer.caption = a.stationText(*station) + (*offset != 0 ? ", " + fixed(std::fabs(*offset), "0.000") + (*offset > 0 ? " right" : " left") : "") +
                        ": N " + fixed(p.northing, "0.0000") + "  E " + fixed(p.easting, "0.0000");
    if (profile_ && profile_->covers(along)) {
      const ProfilePoint z = profile_->at(along);
      lblAnswer.caption += "  elevation " + fixed(z.elevation, "0.000") + "  grade " + fixed(z.grade * 100, "0.000") + " %";
    }
  } catch (const AlignmentError& e) {
    std::string why = e.what();
    why[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(why[0])));
    shell().msgBox(kTitle, why + ".", Icon::Exclamation);
  }
}

void frmAlignment::stationOfPoint() {
  if (!alignment_ && !openFile(txtFile.text)) return;
  const Alignment& a = *alignment_;
  const auto n = finiteNumber(txtNorthing.text), e = finiteNumber(txtEasting.text);
  if (!n || !e) {
    shell().msgBox(kTitle, "Give the point's northing and easting as numbers.", Icon::Exclamation);
    return;
  }
  try {
    const std::vector<Projection> found = a.project(*n, *e);
    asked_ = PicturePoint{*e, *n};
    std::string said = found.size() > 1 ? "On " + std::to_string(found.size()) + " elements, the nearest first: " : "";
    for (std::size_t i = 0; i < found.size(); ++i) {
      const Projection& f = found[i];
      const Element& el = a.elements()[static_cast<std::size_t>(f.element)];
      const std::string kind = el.kind == ElementKind::Line ? "tangent" : el.kind == ElementKind::Arc ? "curve" : "spiral";
      said += (i ? "; " : "") + a.stationText(a.stationAt(f.along)) + ", " + fixed(std::fabs(f.offset), "0.000") + (f.offset >= 0 ? " right" : " left") +
              " (" + kind + (el.pi >= 0 ? " at PI " + std::to_string(el.pi + 1) : "") + ")";
    }
    lblAnswer.caption = said;
  } catch (const AlignmentError& ex) {
    std::string why = ex.what();
    why[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(why[0])));
    shell().msgBox(kTitle, why + ".", Icon::Exclamation);
  }
}

Picture frmAlignment::plan() const {
  if (!alignment_) {
    Picture p;
    p.hint = "Open an alignment file: its plan is drawn here.";
    return p;
  }
  return planPicture(*alignment_, asked_);
}

Picture frmAlignment::profile() const {
  if (!alignment_ || !profile_) {
    Picture p;
    p.hint = alignment_ ? "This alignment has no profile." : "Its profile is drawn here.";
    return p;
  }
  return profilePicture(*alignment_, *profile_);
}

void frmAlignment::exportLandXml() {
  if (!alignment_) return;
  const auto chosen = shell().chooseFile(FileDialog::Save, "Export the Alignment", program().userAppData + name_ + ".xml", {"LandXML (*.xml)"});
  if (!chosen || chosen->empty()) return;
  try {
    writeDocument(*chosen, alignmentLandXml(*alignment_, profile_ ? &*profile_ : nullptr, name_, stampOf(shell().today())));
    shell().fileWritten(std::filesystem::absolute(*chosen));
  } catch (const RunTimeError& e) {
    shell().msgBox("Export the Alignment", e.what(), Icon::Exclamation);
  }
}

void frmAlignment::exportDxf() {
  if (!alignment_) return;
  const auto chosen = shell().chooseFile(FileDialog::Save, "Export the Plan", program().userAppData + name_ + ".dxf", {"DXF drawing (*.dxf)"});
  if (!chosen || chosen->empty()) return;
  try {
    writeAlignmentDxf(*alignment_, *chosen);
    shell().fileWritten(std::filesystem::absolute(*chosen));
  } catch (const RunTimeError& e) {
    shell().msgBox("Export the Plan", e.what(), Icon::Exclamation);
  }
}

std::filesystem::path frmAlignment::keptFile(const std::string& dataFolder) { return std::filesystem::path(dataFolder) / "alignment.kept.json"; }

void frmAlignment::keepInputs() {
  nlohmann::ordered_json kept{{"version", 1}};
  for (const auto& [name, box] : texts()) kept["fields"][name] = box->text;
  writeTextFile(keptFile(program().userAppData), {jsonText(kept)});
}

void frmAlignment::showKept() {
  cmbKept.items.clear();
  if (program().project) {
    try {
      for (const StoredAlignment& a : program().project->file().alignments()) cmbKept.items.push_back(a.name);
    } catch (const ProjectError&) {
    }
  }
  if (std::find(cmbKept.items.begin(), cmbKept.items.end(), cmbKept.text) == cmbKept.items.end())
    cmbKept.text = cmbKept.items.empty() ? "" : cmbKept.items.front();
  cmbKept.enabled = btnOpenKept.enabled = !cmbKept.items.empty();
  btnStore.enabled = program().project != nullptr && alignment_.has_value();
}

void frmAlignment::store() {
  if (!program().project || !alignment_) return;
  StoredAlignment kept{name_, format_, definition_};
  // The centreline as GIS programs draw it: a vertex every few feet on the curves.
  for (const Element& e : alignment_->elements()) {
    const int pieces = e.kind == ElementKind::Line ? 1 : std::max(8, static_cast<int>(e.length / 5));
    for (int i = kept.centreline.empty() ? 0 : 1; i <= pieces; ++i) {
      const Pose p = poseOn(e, e.length * i / pieces);
      kept.centreline.push_back({p.northing, p.easting});
    }
  }
  try {
    program().project->file().storeAlignment(kept);
  } catch (const ProjectError& e) {
    shell().msgBox("Store in Project", std::string("The alignment is not kept: ") + e.what() + ".", Icon::Exclamation);
    return;
  }
  lblAnswer.caption = "The alignment " + name_ + " is kept in the project.";
  showKept();
}

void frmAlignment::opened() {
  showKept();
  if (keptTaken_) return;
  keptTaken_ = true;
  // Read once, at the window's first opening; a damaged kept file is left unread.
  try {
    const auto kept = parseStrictJson(readInputFile(keptFile(program().userAppData)));
    for (const auto& [name, box] : texts()) box->text = kept.at("fields").at(name).get<std::string>();
  } catch (const std::exception&) {
  }
}

}  // namespace tervalo
