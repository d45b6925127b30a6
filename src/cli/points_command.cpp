#include "cli/points_command.h"

#include <algorithm>
#include <filesystem>
#include <ostream>

#include "points/readers.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/input_file.h"
#include "text/justify.h"

namespace tervalo {

int pointsCommand(const std::string& file, std::ostream& out, std::ostream& err) {
  try {
    checkInputFile(file);
  } catch (const InputFileError& e) {
    if (e.kind() == InputFileError::Kind::Unreadable)
      err << "Input File Error!: File does not exist.\n";
    else if (e.kind() == InputFileError::Kind::Folder)
      err << "tervalo-cli: \"" << file << "\" is a folder, not a coordinate file.\n";
    else
      err << "tervalo-cli: \"" << file << "\" " << e.what() << ".\n";
    return 2;
  }
  FormatFlags flags;
  PointList points;
  ReadNotes notes;
  try {
    getFileFormat(file, flags);
    notes = readFile(file, flags, points);
  } catch (const ProgramFault& fault) {
    err << fault.title() << ": " << fault.what() << "\n";
    return 3;
  }
  if (const std::string warning = notes.message(); !warning.empty()) err << "Warning: " << warning << "\n";
  out << "Format: " << formatName(flags) << "\n";
  // The readers' bound differs by format (an SDMS file's is its last index, a
  // comma-delimited file's one more than its points): say both what was read and the bound.
  const auto held = [](const PointRecord& p) {
    return !(p.name.empty() && p.x == 0 && p.y == 0 && p.feature.empty() && p.description.empty());
  };
  const auto read = std::count_if(points.records.begin(), points.records.begin() + PointList::kSourceCapacity, held);
  out << "Points read: " << read << "\n";
  out << "Search bound: " << points.pointCount << " (the last index the section form searches)\n";
  if (formatName(flags) == "N-E coordinate report") out << "(An N-E coordinate report is read but yields no points.)\n";
  // Columns as wide as the longest name and feature, so nothing is cut.
  int nameWidth = 15, featureWidth = 10;
  for (const PointRecord& p : points.records) {
    nameWidth = std::max(nameWidth, static_cast<int>(textLength(p.name)) + 1);
    featureWidth = std::max(featureWidth, static_cast<int>(textLength(p.feature)) + 1);
  }
  out << rightJustify("Index", 5) << "  " << leftJustify("Name", nameWidth) << rightJustify("X", 16) << rightJustify("Y", 16)
      << "  " << leftJustify("Feature", featureWidth) << "Description\n";
  for (int i = 0; i < PointList::kSourceCapacity; ++i) {
    const PointRecord& p = points.records[static_cast<std::size_t>(i)];
    if (!held(p)) continue;
    out << rightJustify(std::to_string(i), 5) << "  " << leftJustify(p.name, nameWidth)
        << rightJustify(Format(p.x, "#######0.0000"), 16) << rightJustify(Format(p.y, "#######0.0000"), 16) << "  "
        << leftJustify(p.feature, featureWidth) << p.description << "\n";
  }
  return 0;
}

}  // namespace tervalo
