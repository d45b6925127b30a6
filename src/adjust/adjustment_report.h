#pragma once
// A network's adjustment as the surveyor signs it: the report (the input,
// the statistics and their verdict, the residuals by standardized residual,
// the adjusted coordinates with their standard deviations and ellipses, the
// relative precision table), the picture with the ellipses drawn to a
// stated enlargement, and the adjusted points for the project.

#include <string>
#include <vector>

#include "adjust/adjustment.h"
#include "app/picture.h"
#include "crs/project_store.h"

namespace tervalo {

// The report's lines; `title` names the network (its file).
std::vector<std::string> adjustmentReport(const Network& network, const Adjustment& adjustment, const std::string& title);

// One sentence for a window: the verdict and why.
std::string adjustmentVerdict(const Network& network, const Adjustment& adjustment);

// The network: its observations as lines (the flagged one to be looked at
// twice), held and adjusted points, and each adjusted point's 95 % ellipse
// enlarged by a round factor so the largest is about a tenth of the
// network, the factor said in the caption.
Picture networkPicture(const Network& network, const Adjustment& adjustment);

// The points the adjustment moved, for the project, each with `source`.
std::vector<ProjectPoint> adjustedPoints(const Adjustment& adjustment, const std::string& source);

}  // namespace tervalo
