#pragma once
// How the program names itself to the desktop: the organisation and
// application names (settings and the per-user data location follow them)
// and the application id of its launcher, icon and metainfo.

namespace tervalo {

inline constexpr const char* kOrganization = "TervaloProject";
inline constexpr const char* kApplication = "Tervalo";
inline constexpr const char* kApplicationId = "org.tervalo.Tervalo";

}  // namespace tervalo
