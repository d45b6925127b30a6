// tervalo-cli: plays job files and shows what the program reads from a
// coordinate file, without a display.

#include <CLI/CLI.hpp>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <optional>

#include "app/data_folder.h"
#include "app/job.h"
#include "app/json_text.h"
#include "app/program.h"
#include "app/runner.h"
#include "cli/parcels_command.h"
#include "cli/points_command.h"
#include "cli/adjust_command.h"
#include "cli/alignment_command.h"
#include "cli/cogo_command.h"
#include "cli/project_command.h"
#include "cli/restore_command.h"
#include "cli/traverse_command.h"
#include "township/township.h"
#include "text/errors.h"

namespace {

// Exit statuses: the runner's (0, then 1 to 4).
constexpr int kUnwritten = tervalo::kExitCannotWriteResult;
constexpr int kUsage = tervalo::kExitUsage;
constexpr int kEnded = tervalo::kExitEnded;

struct RunOptionsCli {
  std::string job;
  bool json = false;
  std::string today;
  std::string dataDir;
  std::vector<std::string> exports{};  // traverse: files to export the adjusted traverse to
};

// The options of run and township: a file, and how to run and report it.
std::optional<tervalo::RunOptions> runOptions(const RunOptionsCli& o, int& status) {
  tervalo::RunOptions options;
  if (!o.today.empty()) {
    options.today = tervalo::parseIsoDate(o.today);
    if (!options.today) {
      std::cerr << "tervalo-cli: --today takes a date as YYYY-MM-DD, not \"" << o.today << "\"\n";
      status = kUsage;
      return std::nullopt;
    }
  }
  try {
    options.dataFolder = o.dataDir.empty() ? tervalo::prepareDataFolder() : tervalo::prepareDataFolder(o.dataDir);
  } catch (const tervalo::RunTimeError& e) {
    std::cerr << "Run-time Error: " << e.what() << "\n";
    status = kEnded;
    return std::nullopt;
  }
  return options;
}

// --epsg and --foot as a system PROJ takes (none without --epsg); false, said, when it does not.
bool crsOfOptions(int epsg, const std::string& foot, tervalo::CrsChoice& crs) {
  if (epsg == 0) return true;
  try {
    nlohmann::ordered_json given{{"epsg", epsg}};
    if (!foot.empty()) given["foot"] = foot;
    crs = tervalo::usableCrsFromJson(given);
    return true;
  } catch (const tervalo::CrsError& e) {
    std::cerr << "tervalo-cli: --epsg: " << e.what() << "\n";
    return false;
  }
}

int runCommand(const RunOptionsCli& o) {
  tervalo::Job job;
  try {
    job = tervalo::readJobFile(o.job, tervalo::allForms());
  } catch (const tervalo::JobError& e) {
    std::cerr << "tervalo-cli: " << o.job << ": " << e.what() << "\n";
    return kUsage;
  }
  int status = 0;
  const auto options = runOptions(o, status);
  if (!options) return status;
  const auto outcome = tervalo::runJob(job, *options, tervalo::allForms(), o.json ? nullptr : &std::cerr);
  if (o.json)
    std::cout << tervalo::jsonText(outcome.result) << "\n";
  else
    std::cout << tervalo::summarize(outcome.result);
  return outcome.exitCode;
}

int townshipCommand(const RunOptionsCli& o) {
  tervalo::TownshipPlan plan;
  try {
    plan = tervalo::readPlanFile(o.job);
  } catch (const tervalo::PlanError& e) {
    std::cerr << "tervalo-cli: " << o.job << ": " << e.what() << "\n";
    return kUsage;
  }
  int status = 0;
  auto options = runOptions(o, status);
  if (!options) return status;
  options->windows = o.json;  // the summary shows no section's windows
  tervalo::TownshipOutcome outcome;
  try {
    outcome = tervalo::runTownship(plan, *options, tervalo::allForms());
  } catch (const tervalo::ProgramFault& e) {
    std::cerr << e.title() << ": " << e.what() << "\n";
    return kEnded;
  }
  if (o.json) {
    std::cout << tervalo::jsonText(outcome.result) << "\n";
  } else {
    for (const auto& line : outcome.summary) std::cout << line << "\n";
    std::cout << "Files written:\n";
    for (const auto& file : outcome.result["files"]) std::cout << "  " << file.get<std::string>() << "\n";
    for (const auto& s : outcome.result["sections"]) {
      std::cout << "Section " << s["section"].get<std::string>() << ":\n";
      for (const auto& m : s["result"]["messages"])
        std::cerr << "[section " << s["section"].get<std::string>() << "] " << m["icon"].get<std::string>() << " box \""
                  << m["title"].get<std::string>() << "\": " << m["text"].get<std::string>() << "\n";
      for (const auto& f : s["result"]["files"]) std::cout << "  " << f.get<std::string>() << "\n";
    }
  }
  return outcome.exitCode;
}

int run(int argc, char** argv) {
  CLI::App app{"Tervalo coordinate geometry, without a display."};
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("tervalo-cli ") + TERVALO_VERSION);
  app.footer("Exit status:\n"
             "  0  the job, plan, restoration or traverse ran to its end\n"
             "  1  the result could not be written to standard output\n"
             "  2  a file or arguments that cannot be played: nothing runs\n"
             "  3  the program ended, a section of a plan ended or was refused, a corner or\n"
             "     traverse could not be computed, or a file could not be written\n"
             "  4  the job ran to its end but showed a box with the critical icon");

  // A command on one file, with --json, --today and --data-dir.
  const auto addCommand = [&app](const char* name, const char* what, const char* file, const char* fileWhat, RunOptionsCli& o,
                                 const char* dated, const char* dataDir) {
    auto* command = app.add_subcommand(name, what);
    command->add_option(file, o.job, fileWhat)->required();
    command->add_flag("--json", o.json, "Print the whole result as JSON on standard output");
    command->add_option("--today", o.today, std::string("The date for ") + dated + ", as YYYY-MM-DD");
    command->add_option("--data-dir", o.dataDir, dataDir);
    return command;
  };
  RunOptionsCli run, township, restore, traverse, parcels, plat;
  auto* runCmd = addCommand("run", "Play a job file through the program's windows and report the result.", "job",
                            "The job file (JSON)", run, "reports", "The data folder for default output files");
  auto* townshipCmd = addCommand("township", "Run every section of a township plan and check that shared corners agree.", "plan",
                                 "The plan file (JSON)", township, "reports", "The data folder the sections' and township's files go to");
  auto* restoreCmd = addCommand("restore", "Restore the lost corners of a restoration file by proportionate measurement.", "file",
                                "The restoration file (JSON)", restore, "the report",
                                "The data folder the report and the restored corners go to");
  auto* traverseCmd = addCommand("traverse", "Close and adjust a traverse from a traverse file or a data collector's raw file (.rw5).",
                                 "file", "The traverse file (JSON) or raw file (.rw5)", traverse, "the report",
                                 "The data folder the report and the adjusted points go to");
  auto* parcelsCmd = addCommand("parcels",
                                "Run a section job or a township plan and list its aliquot parts and government lots with their areas and "
                                "legal descriptions.",
                                "file", "The section job or township plan (JSON)", parcels, "the sections' reports",
                                "The data folder the sections' files go to");
  auto* platCmd = addCommand("plat", "Run a section job or a township plan and draw the plat sheet of its parcels (PDF, SVG or DXF).",
                             "file", "The section job or township plan (JSON)", plat, "the sheet's date",
                             "The data folder the sections' files go to");
  tervalo::PlatCommandOptions platOptions;
  platCmd->add_option("--out", platOptions.out, "The plat's file; its ending (.pdf, .svg, .dxf) picks the format")->required();
  platCmd->add_option("--sheet", platOptions.sheet, "The sheet: letter, tabloid or archd (letter)")
      ->check(CLI::IsMember({"letter", "tabloid", "archd"}));
  platCmd->add_option("--scale", platOptions.scale, "The scale in feet (or metres) to the inch; without it the largest round scale that fits")
      ->check(CLI::PositiveNumber);
  tervalo::RawCommandOptions rawOptions;
  int rawEpsg = 0;
  std::string rawFoot;
  traverseCmd->add_option("--tolerance", rawOptions.tolerance,
                          "A raw file's tolerance in seconds for a set's spread, a check shot and a second backsight (10)")
      ->check(CLI::PositiveNumber);
  traverseCmd->add_option("--epsg", rawEpsg, "A raw file's coordinate system, by EPSG code: its GNSS points are placed on its grid");
  traverseCmd->add_option("--foot", rawFoot, "With --epsg on a system in metres: the coordinates' foot, us or international")
      ->check(CLI::IsMember({"us", "international"}));
  std::string traverseMethod;
  traverseCmd->add_option("--method", traverseMethod, "The adjustment: compass, transit, crandall or ls (least squares); without it the file's")
      ->check(CLI::IsMember({"compass", "transit", "crandall", "ls"}));
  traverseCmd->add_option("--precision", rawOptions.precision, "The allowable precision, N of 1:N (5000)")->check(CLI::Range(1.0, 1e9));
  traverseCmd->add_option("--angular", rawOptions.angular,
                          "The allowable angular misclosure, K of K seconds times the square root of the angles (10)")
      ->check(CLI::Range(0.0, 3600.0));
  traverseCmd->add_option("--export", traverse.exports,
                          "Also export the adjusted traverse to FILE, its kind by the ending (.csv .txt .xml .dxf .gpkg .geojson .kml); "
                          "a name without a folder lies in the data folder");

  // The survey project: new, import, export, list.
  auto* projectCmd = app.add_subcommand("project",
                                        "Make a survey project (a GeoPackage, or a PostgreSQL database with PostGIS named PG:service=NAME or "
                                        "PG:\"dbname=... host=...\") and import, export, list and copy its points.");
  projectCmd->require_subcommand(1);
  std::string projectFile, projectOther, projectColumns, projectUnit = "ft", projectFoot, projectDuplicate = "skip";
  int projectEpsg = 0;
  bool projectJson = false;
  auto* projectNewCmd = projectCmd->add_subcommand("new", "Make a new project");
  projectNewCmd->add_option("project", projectFile, "The project (NAME.gpkg, or PG:service=NAME)")->required();
  projectNewCmd->add_option("--epsg", projectEpsg, "The coordinate system by its EPSG code; none: local coordinates");
  projectNewCmd->add_option("--foot", projectFoot, "On a system in metres: the coordinates' foot, us or international")
      ->check(CLI::IsMember({"us", "international"}));
  projectNewCmd->add_option("--unit", projectUnit, "Local coordinates' unit, ft or m (ft)")->check(CLI::IsMember({"ft", "m"}));
  tervalo::ProjectSettings projectPeople;
  projectNewCmd->add_option("--surveyor", projectPeople.surveyor, "The surveyor who signs the project's plats");
  projectNewCmd->add_option("--license", projectPeople.license, "The surveyor's license number, for the plat's certificate");
  projectNewCmd->add_option("--firm", projectPeople.firm, "The firm, for the plat's title block");
  auto* projectImportCmd = projectCmd->add_subcommand("import", "Import the points of a file into the project");
  projectImportCmd->add_option("project", projectFile, "The project (NAME.gpkg, or PG:service=NAME)")->required();
  projectImportCmd->add_option("file", projectOther,
                               "A coordinate file (the four formats the program reads, a CSV by its header or --columns), "
                               "LandXML (.xml) or a raw file (.rw5)")
      ->required();
  projectImportCmd->add_option("--columns", projectColumns, "The file's column order: P, N, E, Z and D, such as PNEZD");
  projectImportCmd->add_option("--on-duplicate", projectDuplicate,
                               "A number the project holds already: skip it, replace the point, or renumber from the next free number")
      ->check(CLI::IsMember({"skip", "replace", "renumber"}));
  projectImportCmd->add_flag("--json", projectJson, "Print the counts as JSON");
  auto* projectExportCmd = projectCmd->add_subcommand("export", "Export the project's points to a file, its kind by its ending");
  projectExportCmd->add_option("project", projectFile, "The project (NAME.gpkg, or PG:service=NAME)")->required();
  projectExportCmd->add_option("file", projectOther, "The file (.csv .txt .xml .dxf .gpkg .geojson .kml)")->required();
  projectExportCmd->add_flag("--json", projectJson, "Print the result as JSON");
  auto* projectListCmd = projectCmd->add_subcommand("list", "List the project's points");
  projectListCmd->add_option("project", projectFile, "The project (NAME.gpkg, or PG:service=NAME)")->required();
  projectListCmd->add_flag("--json", projectJson, "Print the project and its points as JSON");
  auto* projectCopyCmd = projectCmd->add_subcommand("copy", "Copy a whole project into a new one: a GeoPackage to a database, or back");
  projectCopyCmd->add_option("project", projectFile, "The project copied (NAME.gpkg, or PG:service=NAME)")->required();
  projectCopyCmd->add_option("to", projectOther, "The new project (NAME.gpkg, or PG:service=NAME of a database without one)")->required();
  projectCopyCmd->add_flag("--json", projectJson, "Print the result as JSON");

  // COGO commands from a text file, on a project's points.
  std::string cogoProject, cogoFile;
  bool cogoJson = false;
  int cogoSeconds = 0;
  auto* cogoCmd = app.add_subcommand("cogo", "Run the COGO commands of a text file on a project's points; the new points are stored at the end.");
  cogoCmd->add_option("project", cogoProject, "The project (NAME.gpkg, or PG:service=NAME)")->required();
  cogoCmd->add_option("file", cogoFile, "The command file: one command a line, # begins a comment")->required();
  cogoCmd->add_flag("--json", cogoJson, "Print every result and the points stored as JSON");
  cogoCmd->add_option("--seconds", cogoSeconds, "Decimals of seconds in the answers' angles and bearings, 0 to 3 (0)")->check(CLI::Range(0, 3));

  // An alignment: its key points, a station's point, a point's station, a stakeout.
  std::string alignmentFile, alignmentStation;
  std::vector<double> alignmentPoint;
  tervalo::AlignmentQuery alignmentQuery;
  auto* alignmentCmd = app.add_subcommand("alignment", "An alignment's key points and curves, the point at a station and offset, the station "
                                                       "and offset of a point, or a stakeout listing.");
  alignmentCmd->add_option("file", alignmentFile, "The alignment file (NAME.alignment.json) or a LandXML file (.xml)")->required();
  auto* stationOpt = alignmentCmd->add_option("--station", alignmentStation, "The point at this station (12+34.56)");
  alignmentCmd->add_option("--offset", alignmentQuery.offset, "With --station or --every: the offset, right positive (0)");
  auto* pointOpt = alignmentCmd->add_option("--point", alignmentPoint, "The station and offset of the point at N E")->expected(2);
  auto* everyOpt = alignmentCmd->add_option("--every", alignmentQuery.every, "A stakeout listing at this interval, with every key point");
  stationOpt->excludes(pointOpt)->excludes(everyOpt);
  pointOpt->excludes(everyOpt);
  alignmentCmd->add_option("--landxml", alignmentQuery.landxml, "Also write the alignment and its profile to this LandXML file");
  alignmentCmd->add_option("--dxf", alignmentQuery.dxf, "Also draw the alignment's plan, stationed, in this DXF file");
  alignmentCmd->add_flag("--json", alignmentQuery.json, "Print the answer as JSON");

  // A network adjusted by least squares.
  std::string adjustFile;
  bool adjustJson = false;
  auto* adjustCmd = app.add_subcommand("adjust", "Adjust a network file by least squares: statistics, residuals, blunders and error ellipses.");
  adjustCmd->add_option("file", adjustFile, "The network file (NAME.network.json)")->required();
  adjustCmd->add_flag("--json", adjustJson, "Print the adjustment as JSON");

  std::string pointsFile;
  auto* pointsCmd = app.add_subcommand("points", "Show the format recognised in a coordinate file and every point read.");
  pointsCmd->add_option("file", pointsFile, "The coordinate file")->required();

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    // A word where a command belongs is named, with the commands there are.
    if (argc > 1 && argv[1][0] != '-') {
      bool known = false;
      for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        known = known || command->get_name() == argv[1];
      if (!known) {
        std::cerr << "tervalo-cli: there is no command \"" << argv[1] << "\"; the commands are run, township, restore, traverse, "
                  << "points, project, cogo, parcels, plat, adjust and alignment (tervalo-cli --help says what each does).\n";
        return kUsage;
      }
    }
    // Help and the version are asked for and succeed; every other fault of the arguments is a usage error.
    return app.exit(e) == 0 ? 0 : kUsage;
  }
  if (runCmd->parsed()) return runCommand(run);
  if (townshipCmd->parsed()) return townshipCommand(township);
  if (pointsCmd->parsed()) return tervalo::pointsCommand(pointsFile, std::cout, std::cerr);
  if (adjustCmd->parsed()) return tervalo::adjustCommand(adjustFile, adjustJson, std::cout, std::cerr);
  if (alignmentCmd->parsed()) {
    if (*stationOpt) alignmentQuery.station = alignmentStation;
    if (*pointOpt) alignmentQuery.point = std::pair{alignmentPoint[0], alignmentPoint[1]};
    return tervalo::alignmentCommand(alignmentFile, alignmentQuery, std::cout, std::cerr);
  }
  if (cogoCmd->parsed()) return tervalo::cogoCommand(cogoProject, cogoFile, cogoJson, cogoSeconds, std::cout, std::cerr);
  if (projectNewCmd->parsed()) {
    tervalo::ProjectSettings settings = projectPeople;
    settings.unit = projectUnit;
    if (!crsOfOptions(projectEpsg, projectFoot, settings.crs)) return kUsage;
    return tervalo::projectNew(projectFile, settings, std::cout, std::cerr);
  }
  if (projectImportCmd->parsed())
    return tervalo::projectImport(projectFile, projectOther, projectColumns,
                                  projectDuplicate == "replace"    ? tervalo::OnDuplicate::Replace
                                  : projectDuplicate == "renumber" ? tervalo::OnDuplicate::Renumber
                                                                   : tervalo::OnDuplicate::Skip,
                                  projectJson, std::cout, std::cerr);
  if (projectListCmd->parsed()) return tervalo::projectList(projectFile, projectJson, std::cout, std::cerr);
  if (projectCopyCmd->parsed()) return tervalo::projectCopy(projectFile, projectOther, projectJson, std::cout, std::cerr);
  if (projectExportCmd->parsed()) return tervalo::projectExport(projectFile, projectOther, projectJson, tervalo::localToday(), std::cout, std::cerr);
  // restore and traverse: a file, its data folder and date, then the command itself.
  const auto fileCommand = [](const RunOptionsCli& options, auto act) {
    int status = 0;
    const auto given = runOptions(options, status);
    return given ? act(given->dataFolder, given->today.value_or(tervalo::localToday())) : status;
  };
  if (parcelsCmd->parsed())
    return fileCommand(parcels, [&](const std::string& folder, const tervalo::Date& today) {
      tervalo::RunOptions options;
      options.dataFolder = folder;
      options.today = today;
      return tervalo::parcelsCommand(parcels.job, parcels.json, options, std::cout, std::cerr);
    });
  if (platCmd->parsed())
    return fileCommand(plat, [&](const std::string& folder, const tervalo::Date& today) {
      tervalo::RunOptions options;
      options.dataFolder = folder;
      options.today = today;
      return tervalo::platCommand(plat.job, platOptions, options, std::cout, std::cerr);
    });
  if (restoreCmd->parsed())
    return fileCommand(restore, [&](const std::string& folder, const tervalo::Date& today) {
      return tervalo::restoreCommand(restore.job, restore.json, folder, today, std::cout, std::cerr);
    });
  if (traverseCmd->parsed()) {
    if (!crsOfOptions(rawEpsg, rawFoot, rawOptions.crs)) return kUsage;
    if (!traverseMethod.empty()) rawOptions.method = tervalo::ruleNamed(traverseMethod == "ls" ? "least-squares" : traverseMethod);
    return fileCommand(traverse, [&](const std::string& folder, const tervalo::Date& today) {
      return tervalo::traverseCommand(traverse.job, traverse.exports, traverse.json, folder, today, std::cout, std::cerr, rawOptions);
    });
  }
  return kUsage;
}

}  // namespace

int main(int argc, char** argv) {
  // A closed pipe is a failed write, reported below, not a silent death.
  std::signal(SIGPIPE, SIG_IGN);
  int status = kEnded;
  try {
    status = run(argc, argv);
  } catch (const std::filesystem::filesystem_error& e) {
    std::cerr << "Run-time Error: " << tervalo::fileSystemFault(e) << "\n";
    return kEnded;
  } catch (const nlohmann::json::exception& e) {
    std::cerr << "Run-time Error: Invalid data: " << e.what() << "\n";
    return kEnded;
  } catch (const std::exception& e) {
    std::cerr << "Run-time Error: Internal error: " << e.what() << "\n";
    return kEnded;
  }
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "tervalo-cli: the result cannot be written to standard output.\n";
    return status == 0 ? kUnwritten : status;
  }
  return status;
}
