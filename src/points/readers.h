#pragma once
// Recognising a coordinate file and reading its points into the point list.
// Faults end the program: an unrecognised file with its own box, anything
// else (a bad number, a 152nd point, reading past the end) as a RunTimeError
// naming the file and line.

#include <filesystem>
#include <string>
#include <vector>

#include "points/point_list.h"

namespace tervalo {

// Sets the flag of the format of the file's first non-empty line: XY or NE
// for a coordinate report ("Copyright:" then its column header), SDMS for
// "AC:", CD for a line with two commas. Throws ProgramFault "Input File
// Format Not Recognized" when none fits.
void getFileFormat(const std::filesystem::path& file, FormatFlags& flags);

// What a reader noticed but, reading the format as it always has, did not
// refuse: coordinates of an X-Y report with more than one thousands comma.
// Only the first comma is removed and reading stops at the second, so
// 1,170,582.9 reads 1170; state plane coordinates above a million feet are
// common, and the user must hear of every point so cut.
struct ReadNotes {
  std::vector<std::string> cutCoordinates;  // point names, in file order
  // For people; empty when nothing was noticed.
  std::string message() const;
};

// Reads with the reader of the first flag set, in the order CD, XY, NE, SDMS.
ReadNotes readFile(const std::filesystem::path& file, const FormatFlags& flags, PointList& points);

// A whole file recognised and read as above, with no limit on its number of
// points: the source of a restoration or a traverse. Throws ProgramFault.
PointList readWholeFile(const std::filesystem::path& file);

void readSDMSfile(const std::filesystem::path& file, PointList& points);
void readCDfile(const std::filesystem::path& file, PointList& points);
ReadNotes readXYfile(const std::filesystem::path& file, PointList& points);
// An N-E report is read without error but yields no points; the count is 1.
void readNEfile(const std::filesystem::path& file, PointList& points);

// "X-Y coordinate report" and so on, for people; "" when no flag is set.
std::string formatName(const FormatFlags& flags);

// What reading `fileName` gave, for people: the format it was read as and
// how many named points it gave; for an N-E report, that it gives none and
// why.
std::string sourceGiven(const std::string& fileName, const FormatFlags& flags, const PointList& points);

}  // namespace tervalo
