#include "qt/paper.h"

#include <mutex>
#include <string>

#include "app/module.h"
#include "text/errors.h"

namespace tervalo {

const PaperModule& paper() {
  static std::once_flag once;
  static const PaperModule* loaded = nullptr;
  static std::string fault;
  std::call_once(once, [] {
    std::string tried;
    using Entry = const PaperModule* (*)();
    if (auto entry = reinterpret_cast<Entry>(moduleEntry("libtervalo_paper.so", "TERVALO_PAPER_MODULE", "tervalo_paper_module", tried)))
      loaded = entry();
    else
      fault = "The printing module (printer and SVG drawings) cannot be loaded:" + tried;
  });
  if (!loaded) throw RunTimeError(fault);
  return *loaded;
}

}  // namespace tervalo
