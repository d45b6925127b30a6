#include "adjust/frm_network.h"

#include <cmath>

#include <nlohmann/json.hpp>

#include "adjust/adjustment_report.h"
#include "app/json_text.h"
#include "app/output_file.h"
#include "app/program.h"
#include "app/shell.h"
#include "project/project_session.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/input_file.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {
namespace {

constexpr const char* kTitle = "Network Adjustment";

// A number as typed, without trailing zeros or point: 2, 0.01.
std::string numberText(double v) {
  std::string text = Format(v, "0.########");
  if (!text.empty() && text.back() == '.') text.pop_back();
  return text;
}

// A field's number; `least` and `above` say what it may be.
double fieldNumber(const std::string& text, const std::string& what, double least, bool above) {
  const auto v = finiteNumber(text);
  if (!v) throw NetworkError(what + ": \"" + text + "\" is not a number");
  if (above ? !(*v > least) : !(*v >= least))
    throw NetworkError(what + " must be " + (above ? "more than " : "") + numberText(least) + (above ? "" : " or more"));
  return *v;
}

}  // namespace

frmNetwork::frmNetwork(Program& program) : FormModel(program, "frmNetwork", "Network Adjustment") {
  for (auto [name, label] : {std::pair{"lblFile", &lblFile}, {"lblDefaults", &lblDefaults}, {"lblAngle", &lblAngle}, {"lblDistance", &lblDistance},
                             {"lblPpm", &lblPpm}, {"lblCentering", &lblCentering}, {"lblSignificance", &lblSignificance}, {"lblResult", &lblResult}})
    add(name, *label);
  add("txtFile", txtFile).change([this] { changed(); });
  add("btnBrowse", btnBrowse).click([this] {
    const auto chosen = shell().chooseFile(FileDialog::Open, "Open a Network", txtFile.text.empty() ? this->program().userAppData : txtFile.text,
                                           {"Networks (*.network.json)", "All files (*)"});
    if (chosen && !chosen->empty()) openPath(*chosen);
  });
  for (auto [name, box] : texts())
    if (box != &txtFile) add(name, *box).numeric().change([this] { changed(); });
  add("btnAdjust", btnAdjust).click([this] { btnAdjust_Click(); });
  add("lstReport", lstReport);
  add("btnStore", btnStore).click([this] { store(); });
  add("btnPrint", btnPrint).click([this] { shell().print({"Network adjustment", lstReport.items, picture()}); });
  add("btnSaveReport", btnSaveReport).click([this] {
    const auto chosen = shell().chooseFile(FileDialog::Save, "Save the Adjustment Report", this->program().userAppData + "adjustment.rpt",
                                           {"Reports (*.rpt *.txt)", "PDF document (*.pdf)"});
    if (!chosen || chosen->empty()) return;
    try {
      // A PDF holds the report and the picture on a page of its own; any other name, the text.
      const std::filesystem::path file(*chosen);
      if (upper(file.extension().string()) == ".PDF")
        shell().savePdf({"Network adjustment", lstReport.items, picture()}, file);
      else
        this->program().writeOutputFile(file, lstReport.items);
      shell().fileWritten(std::filesystem::absolute(file));
    } catch (const RunTimeError& e) {
      shell().msgBox(kTitle, e.what(), Icon::Exclamation);
    }
  });
  add("btnSavePicture", btnSavePicture).click([this] {
    const auto chosen = shell().chooseFile(FileDialog::Save, "Save the Network Picture", this->program().userAppData + "network.pdf",
                                           {"PDF document (*.pdf)", "SVG drawing (*.svg)", "PNG image (*.png)"});
    if (!chosen || chosen->empty()) return;
    try {
      shell().savePicture(picture(), *chosen);
    } catch (const RunTimeError& e) {
      shell().msgBox(kTitle, e.what(), Icon::Exclamation);
    }
  });
  add("btnReturn", btnReturn).click([this] { unload(); });
}

std::vector<std::pair<const char*, TextBox*>> frmNetwork::texts() {
  return {{"txtFile", &txtFile}, {"txtAngle", &txtAngle}, {"txtDistance", &txtDistance}, {"txtPpm", &txtPpm},
          {"txtCentering", &txtCentering}, {"txtSignificance", &txtSignificance}};
}

void frmNetwork::changed() {
  adjustment_.reset();
  network_.reset();
  for (Button* b : {&btnStore, &btnPrint, &btnSaveReport, &btnSavePicture}) b->enabled = false;
}

bool frmNetwork::openPath(const std::string& file) {
  if (!readDefaults(file, "Open a Network")) return false;
  lstReport.items.clear();
  lblResult.caption = "";
  return true;
}

bool frmNetwork::readDefaults(const std::string& file, const std::string& title) {
  nlohmann::ordered_json j;
  try {
    j = parseStrictJson(readInputFile(file));
  } catch (const std::exception& e) {
    shell().msgBox(title, "The file " + file + " cannot be read as a network: " + e.what() + ".", Icon::Exclamation);
    return false;
  }
  txtFile.text = file;
  loaded_ = file;
  // The file's own defaults and significance into the fields, the program's where it gives none.
  txtAngle.text = "5", txtDistance.text = "0.01", txtPpm.text = "5", txtCentering.text = "0", txtSignificance.text = "5";
  if (j.is_object() && j.contains("defaults") && j["defaults"].is_object()) {
    const auto& d = j["defaults"];
    if (d.contains("angle") && d["angle"].is_number()) txtAngle.text = numberText(d["angle"].get<double>());
    if (d.contains("distance") && d["distance"].is_number()) txtDistance.text = numberText(d["distance"].get<double>()), txtPpm.text = "0";
    if (d.contains("distance") && d["distance"].is_array() && d["distance"].size() == 2 && d["distance"][0].is_number() &&
        d["distance"][1].is_number())
      txtDistance.text = numberText(d["distance"][0].get<double>()), txtPpm.text = numberText(d["distance"][1].get<double>());
    if (d.contains("centering") && d["centering"].is_number()) txtCentering.text = numberText(d["centering"].get<double>());
  }
  if (j.is_object() && j.contains("significance") && j["significance"].is_number())
    txtSignificance.text = numberText(j["significance"].get<double>() * 100);
  changed();
  return true;
}

void frmNetwork::btnAdjust_Click() {
  changed();
  if (txtFile.text.empty()) {
    shell().msgBox(kTitle, "Choose the network file first (Browse...).", Icon::Exclamation);
    return;
  }
  // A file typed rather than browsed for brings its own defaults first, as Browse does.
  if (txtFile.text != loaded_ && !readDefaults(txtFile.text, kTitle)) return;
  Network network;
  Adjustment a;
  try {
    nlohmann::ordered_json j;
    try {
      j = parseStrictJson(readInputFile(txtFile.text));
    } catch (const std::exception& e) {
      throw NetworkError("the file " + txtFile.text + " cannot be read: " + e.what());
    }
    if (!j.is_object()) throw NetworkError("the file " + txtFile.text + " is not a network file");
    // The instrument's standard deviations stand for every observation that gives none.
    j["defaults"]["angle"] = fieldNumber(txtAngle.text, "The angle's standard deviation", 0, true);
    j["defaults"]["distance"] = {fieldNumber(txtDistance.text, "The distance's standard deviation", 0, true),
                                 fieldNumber(txtPpm.text, "The parts per million", 0, false)};
    j["defaults"]["centering"] = fieldNumber(txtCentering.text, "The centering error", 0, false);
    const double percent = fieldNumber(txtSignificance.text, "The significance", 0, true);
    if (percent >= 50) throw NetworkError("The significance must be less than 50 %");
    j["significance"] = percent / 100;
    network = parseNetwork(j.dump());
    a = adjustNetwork(network);
  } catch (const NetworkError& e) {
    std::string why = e.what();
    if (!why.empty()) why[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(why[0])));
    shell().msgBox(kTitle, "The network cannot be adjusted. " + why + ".", Icon::Exclamation);
    return;
  } catch (const InputFileError& e) {
    shell().msgBox(kTitle, std::string("The network cannot be adjusted: ") + e.what() + ".", Icon::Exclamation);
    return;
  }
  const std::string name = std::filesystem::path(txtFile.text).filename().string();
  lstReport.items = adjustmentReport(network, a, name);
  lblResult.caption = adjustmentVerdict(network, a);
  network_ = network;
  adjustment_ = a;
  btnPrint.enabled = btnSaveReport.enabled = btnSavePicture.enabled = true;
  btnStore.enabled = program().project != nullptr;
  // A failed test or a flagged blunder is said loudly; nothing is removed.
  if (!a.passed || a.flagged)
    shell().msgBox(kTitle,
                   "The network did not pass its tests. " + lblResult.caption +
                       (a.flagged ? " Remove or reweight the flagged observation and adjust again."
                                  : " Check the standard deviations given against the instrument, and look for a blunder."),
                   Icon::Critical);
}

Picture frmNetwork::picture() const {
  if (!network_ || !adjustment_) {
    Picture p;
    p.hint = "Choose a network file and Adjust: the network is drawn here with its error ellipses.";
    return p;
  }
  return networkPicture(*network_, *adjustment_);
}

void frmNetwork::store() {
  if (!program().project || !adjustment_) return;
  const std::string source = "network " + std::filesystem::path(txtFile.text).filename().string() + " adjusted by least squares";
  const std::string said = storeFromTool(*program().project, shell(), adjustedPoints(*adjustment_, source), source, "Store the adjusted network");
  if (!said.empty()) lblResult.caption = adjustmentVerdict(*network_, *adjustment_) + "\n" + said;
}

std::filesystem::path frmNetwork::keptFile(const std::string& dataFolder) { return std::filesystem::path(dataFolder) / "network.kept.json"; }

void frmNetwork::keepInputs() {
  nlohmann::ordered_json kept{{"version", 1}};
  for (const auto& [name, box] : texts()) kept["fields"][name] = box->text;
  writeTextFile(keptFile(program().userAppData), {jsonText(kept)});
}

void frmNetwork::opened() {
  btnStore.enabled = program().project != nullptr && adjustment_.has_value();
  if (keptTaken_) return;
  keptTaken_ = true;
  // Read once, at the window's first opening; a damaged kept file is left unread.
  try {
    const auto kept = parseStrictJson(readInputFile(keptFile(program().userAppData)));
    for (const auto& [name, box] : texts()) box->text = kept.at("fields").at(name).get<std::string>();
    loaded_ = txtFile.text;  // the fields as they were left, the file's or the user's
  } catch (const std::exception&) {
  }
}

}  // namespace tervalo
