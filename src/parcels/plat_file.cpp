#include "parcels/plat_file.h"

#include <string>

#include "app/module.h"
#include "app/output_file.h"
#include "parcels/plat_dxf.h"
#include "text/errors.h"
#include "text/justify.h"

namespace tervalo {

void writeSheetFile(const Sheet& sheet, const std::filesystem::path& file) {
  const std::string ending = upper(file.extension().string());
  if (ending == ".DXF") return writePlatDxf(sheet, file);
  if (ending != ".PDF" && ending != ".SVG")
    throw RunTimeError("Name the plat's file with the ending of the kind you want: .pdf, .svg or .dxf (not \"" + file.filename().string() + "\").");
  using Writer = bool (*)(const Sheet*, const char*, const char*, std::string*);
  std::string tried;
  const auto write = reinterpret_cast<Writer>(moduleEntry("libtervalo_paper.so", "TERVALO_PAPER_MODULE", "tervalo_write_sheet", tried));
  if (!write) throw RunTimeError("PDF and SVG plats are painted by the paper module, which could not be loaded:\n" + tried);
  std::string fault;
  writeFileWith(file, [&](const std::filesystem::path& temp) {
    return write(&sheet, temp.c_str(), ending == ".PDF" ? "pdf" : "svg", &fault);
  });
}

}  // namespace tervalo
