#pragma once
// Recognising a coordinate file and reading its points into the point list.
// Faults end the program: an unrecognised file with its own box, anything
// else (a bad number, a 152nd point, reading past the end) as a RunTimeError
// naming the file and line.

#include <filesystem>
#include <string>

#include "points/point_list.h"

namespace tervalo {

// Sets the flag of the format of the file's first non-empty line: XY or NE
// for a coordinate report ("Copyright:" then its column header), SDMS for
// "AC:", CD for a line with two commas. Throws ProgramFault "Input File
// Format Not Recognized" when none fits.
void getFileFormat(const std::filesystem::path& file, FormatFlags& flags);

// Reads with the reader of the first flag set, in the order CD, XY, NE, SDMS.
void readFile(const std::filesystem::path& file, const FormatFlags& flags, PointList& points);

void readSDMSfile(const std::filesystem::path& file, PointList& points);
void readCDfile(const std::filesystem::path& file, PointList& points);
void readXYfile(const std::filesystem::path& file, PointList& points);
// An N-E report is read without error but yields no points; the count is 1.
void readNEfile(const std::filesystem::path& file, PointList& points);

// "X-Y coordinate report" and so on, for people; "" when no flag is set.
std::string formatName(const FormatFlags& flags);

}  // namespace tervalo
