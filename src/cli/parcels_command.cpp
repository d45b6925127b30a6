#include "cli/parcels_command.h"

#include <filesystem>
#include <iostream>
#include <optional>

#include "app/job.h"
#include "app/json_text.h"
#include "app/program.h"
#include "crs/crs.h"
#include "parcels/parcel_run.h"
#include "parcels/plat_file.h"
#include "text/errors.h"
#include "township/plan.h"

namespace tervalo {

namespace {

// The run of a job or plan, or the status of its refusal, said.
std::optional<ParcelRun> parcelRun(const std::string& file, const RunOptions& options, std::ostream& err, int& status) {
  try {
    return runForParcels(file, options, allForms());
  } catch (const JobError& e) {
    err << "tervalo-cli: " << file << ": " << e.what() << "\n";
    status = kExitUsage;
  } catch (const PlanError& e) {
    err << "tervalo-cli: " << file << ": " << e.what() << "\n";
    status = kExitUsage;
  } catch (const CrsError& e) {
    err << "tervalo-cli: " << file << ": " << e.what() << "\n";
    status = kExitEnded;
  } catch (const ProgramFault& e) {
    err << e.title() << ": " << e.what() << "\n";
    status = kExitEnded;
  }
  return std::nullopt;
}

}  // namespace

int platCommand(const std::string& file, const PlatCommandOptions& plat, const RunOptions& options, std::ostream& out, std::ostream& err) {
  const auto size = sheetSizeOf(plat.sheet);
  if (!size) {
    err << "tervalo-cli: --sheet is letter, tabloid or archd, not \"" << plat.sheet << "\"\n";
    return kExitUsage;
  }
  int status = 0;
  const auto run = parcelRun(file, options, err, status);
  if (!run) return status;
  for (const auto& s : run->stopped) err << "tervalo-cli: " << s << "\n";
  if (run->sections.empty()) return run->exitCode ? run->exitCode : kExitEnded;
  PlatPeople people = run->people;
  people.date = options.today ? formatShortDate(*options.today) : "";
  try {
    const Sheet sheet = drawPlat(sectionsPlat(*run, people), PlatOptions{*size, plat.scale});
    writeSheetFile(sheet, plat.out);
    out << "Plat written: " << std::filesystem::absolute(plat.out).string() << " (" << plat.sheet << ", 1\" = " << sheet.scale << "')\n";
  } catch (const DeedError& e) {
    err << "tervalo-cli: " << e.what() << "\n";
    return kExitUsage;
  } catch (const RunTimeError& e) {
    err << "Run-time Error: " << e.what() << "\n";
    return kExitEnded;
  }
  return run->exitCode;
}

int parcelsCommand(const std::string& file, bool json, const RunOptions& options, std::ostream& out, std::ostream& err) {
  int status = 0;
  const auto taken = parcelRun(file, options, err, status);
  if (!taken) return status;
  const ParcelRun& run = *taken;
  if (json) {
    out << jsonText(parcelsJson(run)) << "\n";
  } else {
    for (const auto& line : parcelsReport(run)) out << line << "\n";
  }
  for (const auto& s : run.stopped) err << "tervalo-cli: " << s << "\n";
  return run.sections.empty() && run.exitCode == 0 ? kExitEnded : run.exitCode;
}

}  // namespace tervalo
