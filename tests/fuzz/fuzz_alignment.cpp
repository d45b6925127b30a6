// Any bytes as an alignment file: read, built, stationed and asked about,
// or refused with the program's own reason, never a crash; what is built
// gives finite points and projects its own points back.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include "alignment/alignment_file.h"
#include "alignment/alignment_landxml.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tervalo;
  const std::string text(reinterpret_cast<const char*>(data), size);
  try {
    const AlignmentFile f = parseAlignmentFile(text);
    const Alignment a = alignmentOf(f);
    std::optional<Profile> profile;
    if (!f.profile.empty()) profile.emplace(f.profile, a);
    for (double share : {0.0, 0.37, 1.0}) {
      const Pose p = a.at(a.length() * share, 3);
      if (!std::isfinite(p.northing) || !std::isfinite(p.easting)) std::abort();
      (void)a.stationText(a.stationAt(a.length() * share));
      try {
        (void)a.project(p.northing, p.easting);
      } catch (const AlignmentError&) {  // a degenerate alignment may find no foot; said, not crashed
      }
      if (profile && profile->covers(a.length() * share) && !std::isfinite(profile->at(a.length() * share).elevation)) std::abort();
    }
    (void)landXmlAlignments(alignmentLandXml(a, profile ? &*profile : nullptr, "fuzz", {"2026-11-26", "00:00:00"}));
  } catch (const AlignmentError&) {
  }
  return 0;
}
