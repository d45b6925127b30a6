// Any bytes as a data collector's raw file: every record read or refused
// with its line, the file reduced radially or as its traverse, never a
// crash; everything the reduction says is valid UTF-8.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "text/encoding.h"
#include "text/errors.h"
#include "traverse/raw_survey.h"
#include "traverse/rw5.h"
#include "traverse/traverse_file.h"
#include "traverse/traverse_report.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const tervalo::RawRecords records = tervalo::readRawRecords(std::string(reinterpret_cast<const char*>(data), size));
  if (records.setups.size() > 50) return -1;  // a field day's worth is enough; not kept
  if (tervalo::recordsATraverse(records)) {
    try {
      tervalo::runTraverse(tervalo::traverseOfRecords(records), "11/25/2026");
    } catch (const tervalo::TraverseFileError&) {
    } catch (const tervalo::TraverseError&) {
    } catch (const tervalo::RunTimeError&) {  // a number past what a report prints: the program's own "Overflow"
    }
    return 0;
  }
  tervalo::RawSurvey survey;
  try {
    survey = tervalo::reduceRadial(records, {});
  } catch (const tervalo::RunTimeError&) {
    return 0;
  }
  for (const auto& line : survey.report)
    if (!tervalo::isValidUtf8(line)) std::abort();
  for (const auto& p : survey.points)
    if (!tervalo::isValidUtf8(p.name) || !tervalo::isValidUtf8(p.description)) std::abort();
  return 0;
}
