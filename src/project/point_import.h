#pragma once
// The points of a file for a survey project: the program's four coordinate
// formats (by content), a delimited file by its header or a column order,
// LandXML CgPoints, and raw files reduced as the traverse command reduces
// them. Faults are ProjectError naming the file and the line.

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "crs/project_store.h"
#include "export/corner_map.h"
#include "points/point_list.h"
#include "restore/restoration_file.h"

namespace tervalo {

// Why `number` cannot be a point number, which the section form looks up
// as typed in capitals and every file writes between commas; "" when it can.
std::string numberFault(const std::string& number);

// A delimited text by its column order (P, N, E, Z and D, such as "PNEZD";
// "" for the order its header line names): comma (with quotes), tab or
// blank separated, a header line passed over. `name` names the file in
// messages.
std::vector<ProjectPoint> columnsFile(const std::string& name, const std::string& text, std::string order);

// The column order the first line of the file `name` names as a header ("PNEZD"), "" for none.
std::string headerColumns(const std::string& name);

// The points of the file `name`, by its ending or its content; `columns`
// as above overrides both; one number given twice is refused. GNSS points
// of a raw file go onto `crs`'s grid.
std::vector<ProjectPoint> pointsOfFile(const std::string& name, const std::string& columns, const CrsChoice& crs);

// A traverse run's points (its JSON "points") as project points with
// `source`; the held stations too where `withHeld`.
std::vector<ProjectPoint> traversePoints(const nlohmann::ordered_json& runPoints, const std::string& source, bool withHeld);

// A section's corners (or any map's points) as project points: each under
// its point number, else its name, with its description and evidence. A
// corner entered from `project` (found there by its number) is left out:
// the project keeps the monument as it was found, its own description too.
std::vector<ProjectPoint> mapPoints(const CornerMap& map, const std::string& source, ProjectFile* project = nullptr);

// The corners a restoration restored, each with the rule that placed it;
// `from` names the restoration ("restoration section14.restore.json").
std::vector<ProjectPoint> restoredPoints(const RestorationRun& run, const std::string& from);

// The project's points as every export writes them, titled by the project's name.
CornerMap mapOfProject(ProjectFile& project);

// A project point as the point list holds one (evidence kept apart where there is any).
PointRecord pointRecordOf(const ProjectPoint& p);

// The project's points as a list the tools look point numbers up in.
PointList pointListOf(ProjectFile& project);

}  // namespace tervalo
