#pragma once
// The report header data: who, where and when, printed at the head of the
// section subdivision report. Kept exactly as typed.

#include <string>
#include <vector>

namespace tervalo {

struct HeaderData {
  std::string spNumber;
  std::string th;
  std::string date;
  std::string county;
  std::string operatorName;
  std::string horizontalDatum;
  std::string verticalDatum;
  std::string comment;
  bool includePath = false;
};

// The header block: 79 asterisks, the S.P. line, the datum line, the
// description line, the data file line (only when the include-path flag is
// set), 79 asterisks. Fields are left-justified to their fixed widths.
std::vector<std::string> headerBlock(const HeaderData& header, const std::string& dataFile);

// The county names of the header form: `counties.txt` in the data folder
// (one name a line) when there is one, otherwise the program's own list.
std::vector<std::string> countyNames(const std::string& dataFolder);

}  // namespace tervalo
