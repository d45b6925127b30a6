#pragma once
// The sections of a job or a township plan run for their parcels: each
// section subdivided exactly as its window or the township run does it, then
// broken into its aliquot parts and lots, with descriptions, for the
// `parcels` and `plat` commands.

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/runner.h"
#include "crs/crs.h"
#include "parcels/aliquot.h"
#include "parcels/plat.h"
#include "secsub/section_record.h"

namespace tervalo {

class FormRegistry;

struct PlattedSection {
  SectionRecord record;
  std::array<bool, slot::count> computed{};
  SectionParts parts;
  std::vector<std::string> descriptions;  // one per part, in the parts' order
  std::string basis;                      // the basis of bearings
};

// The people and words of a plat: the surveyor, license, firm, date, certificate.
struct PlatPeople {
  std::string surveyor, license, firm, date;
  std::vector<std::string> certificate;
};

struct ParcelRun {
  std::vector<PlattedSection> sections;
  CrsChoice crs;
  int exitCode = 0;                  // the run's: 0, or the runner's or township's status
  std::vector<std::string> stopped;  // sections that did not run, and why
  PlatPeople people;                 // from the job's project, where it names one
};

// A section as its run left it, with its parts and their descriptions.
PlattedSection plattedSection(const SectionRecord& record, const std::array<bool, slot::count>& computed, const CrsChoice& crs);

// Runs the file: a township plan where it has "sections", else a section
// job. JobError or PlanError when it cannot be played; CrsError when the
// combined factor of its system cannot be had.
ParcelRun runForParcels(const std::string& file, const RunOptions& options, const FormRegistry& registry);

// The parcels JSON of the command line contract.
nlohmann::ordered_json parcelsJson(const ParcelRun& run);
// The same as a report a surveyor reads: per section its parts, areas,
// descriptions, and the check of the parts against the whole.
std::vector<std::string> parcelsReport(const ParcelRun& run);

// The certificate a plat carries where the project gives none.
std::vector<std::string> standardCertificate();

// The plat of the run's sections: every aliquot part and lot with its name
// and acres, the corners by what is known of them, the basis of bearings.
PlatInput sectionsPlat(const ParcelRun& run, const PlatPeople& people);

// "Bearings are based on the North line of Section 14, bearing N 89°59'12\" E, on <system>."
std::string basisOfBearings(const SectionRecord& record, const CrsChoice& crs);

}  // namespace tervalo
