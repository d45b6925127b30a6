#include "cli/parcels_command.h"

#include <iostream>

#include "app/job.h"
#include "app/json_text.h"
#include "app/program.h"
#include "crs/crs.h"
#include "parcels/parcel_run.h"
#include "text/errors.h"
#include "township/plan.h"

namespace tervalo {

int parcelsCommand(const std::string& file, bool json, const RunOptions& options, std::ostream& out, std::ostream& err) {
  ParcelRun run;
  try {
    run = runForParcels(file, options, allForms());
  } catch (const JobError& e) {
    err << "tervalo-cli: " << file << ": " << e.what() << "\n";
    return kExitUsage;
  } catch (const PlanError& e) {
    err << "tervalo-cli: " << file << ": " << e.what() << "\n";
    return kExitUsage;
  } catch (const CrsError& e) {
    err << "tervalo-cli: " << file << ": " << e.what() << "\n";
    return kExitEnded;
  } catch (const ProgramFault& e) {
    err << e.title() << ": " << e.what() << "\n";
    return kExitEnded;
  }
  if (json) {
    out << jsonText(parcelsJson(run)) << "\n";
  } else {
    for (const auto& line : parcelsReport(run)) out << line << "\n";
  }
  for (const auto& s : run.stopped) err << "tervalo-cli: " << s << "\n";
  return run.sections.empty() && run.exitCode == 0 ? kExitEnded : run.exitCode;
}

}  // namespace tervalo
