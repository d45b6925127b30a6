#pragma once
// The cross-section of one side as a picture: the finished segments from the
// centerline out, the topsoil at the shoulder, the subgrade segments, both
// outer slopes carried on to the grading P.I., which is marked with its
// offset and elevation. A reversed slope shows at once.

#include "app/picture.h"
#include "grading/grading.h"

namespace tervalo {

// Offsets run away from the centerline on the side's own hand (a left side
// to the left); elevations are drawn `exaggeration` times taller, a factor
// chosen so the section fills its picture and said in the caption.
struct GradeSketch {
  Picture picture;
  double exaggeration = 1;
};

GradeSketch gradingSketch(const GradingInput& in, const GradingResult& result);

}  // namespace tervalo
