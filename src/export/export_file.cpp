#include "export/export_file.h"

#include <cctype>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fstream>

#include "app/output_file.h"

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

void writeDocument(const std::filesystem::path& file, const std::string& text) {
  writeFileWith(file, [&text](const std::filesystem::path& temp) {
    std::ofstream out(temp, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    return static_cast<bool>(out);
  });
}

}  // namespace tervalo
