#pragma once
// The horizontal curve drawn to scale: the back and forward tangents, the
// arc, the long chord, the external and the middle ordinate, PC, PI and PT
// with their stations. The back tangent runs east from the PC; the curve
// turns left by its delta.

#include <string>

#include "app/picture.h"
#include "hcurve/curve.h"

namespace tervalo {

// The labels as the results show them: stations ("7+32.0508", empty when no
// station was given), delta and radius texts.
struct SketchLabels {
  std::string pc, pi, pt, delta, radius;
};

Picture curveSketch(const CurveElements& curve, const SketchLabels& labels);

}  // namespace tervalo
