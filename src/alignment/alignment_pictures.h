#pragma once
// An alignment drawn for its window, by the one painter: the plan (the
// centreline, its key points named, a tick at every full station, and the
// point last asked about) and the profile (grade lines through the VPIs,
// the vertical curves, their high and low points) with a stated vertical
// exaggeration.

#include <optional>

#include "alignment/alignment.h"
#include "alignment/profile.h"
#include "app/picture.h"

namespace tervalo {

Picture planPicture(const Alignment& alignment, std::optional<PicturePoint> asked = std::nullopt);
Picture profilePicture(const Alignment& alignment, const Profile& profile);

}  // namespace tervalo
