#include "app/header_data.h"


#include <fstream>
#include <sstream>

#include "text/justify.h"
#include "text/input_file.h"

namespace tervalo {

extern const char* const kBuiltInCounties;  // counties.txt, built in

std::vector<std::string> headerBlock(const HeaderData& h, const std::string& dataFile) {
  const std::string stars(79, '*');
  std::vector<std::string> lines{
      stars,
      "S.P. " + leftJustify(h.spNumber, 8) + "T.H. " + leftJustify(h.th, 6) + "County: " + leftJustify(h.county, 16) +
          "Date: " + h.date,
      "HDatum: " + leftJustify(h.horizontalDatum, 16) + "VDatum: " + leftJustify(h.verticalDatum, 16) + "By: " +
          leftJustify(h.operatorName, 20),
      "Description: " + h.comment,
  };
  if (h.includePath) lines.push_back("Data File: " + dataFile);
  lines.push_back(stars);
  return lines;
}

namespace {

std::vector<std::string> splitNames(std::istream& in) {
  std::vector<std::string> names;
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) names.push_back(line);
  }
  return names;
}

}  // namespace

std::vector<std::string> countyNames(const std::string& dataFolder) {
  if (!dataFolder.empty()) {
    try {
      std::istringstream own(readInputFile(dataFolder + "counties.txt"));
      auto names = splitNames(own);
      if (!names.empty()) return names;
    } catch (const InputFileError&) {  // none of the user's own (or none that can be read): the built-in list
    }
  }
  std::istringstream builtIn(kBuiltInCounties);
  return splitNames(builtIn);
}

}  // namespace tervalo
