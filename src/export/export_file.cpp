#include "export/export_file.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>

#include "app/output_file.h"
#include "export/section_points.h"
#include "text/errors.h"

namespace tervalo {

std::string exportKind(const std::filesystem::path& file) {
  std::string ending = file.extension().string();
  for (char& c : ending) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ending;
}

XmlStamp stampOf(const Date& today) {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm local{};
  localtime_r(&now, &local);
  char date[16], time[16];
  std::snprintf(date, sizeof date, "%04d-%02d-%02d", today.year, today.month, today.day);
  std::snprintf(time, sizeof time, "%02d:%02d:%02d", local.tm_hour, local.tm_min, local.tm_sec);
  return {date, time};
}

void writeDocument(const std::filesystem::path& file, const std::string& text) { writeBytesFile(file, text); }

std::optional<std::filesystem::path> exportFile(Shell& shell, const std::string& title, const std::filesystem::path& file,
                                                const ExportWriters& writers) {
  const std::string kind = exportKind(file);
  try {
    const auto writer = std::find_if(writers.begin(), writers.end(), [&kind](const auto& w) { return w.first == kind; });
    if (writer == writers.end()) {
      std::string endings;
      for (const auto& w : writers) endings += (endings.empty() ? "" : w.first == writers.back().first ? " or " : ", ") + w.first;
      throw ExportError("Name the file with the ending of the kind you want: " + endings + ".");
    }
    writer->second();
  } catch (const ExportError& e) {
    shell.msgBox(title, e.what(), Icon::Exclamation, Buttons::Ok);
    return std::nullopt;
  } catch (const RunTimeError& e) {
    shell.msgBox(title, e.what(), Icon::Critical, Buttons::Ok);
    return std::nullopt;
  }
  const std::filesystem::path written = std::filesystem::absolute(file);
  shell.fileWritten(written);
  return written;
}

}  // namespace tervalo
