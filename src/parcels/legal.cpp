#include "parcels/legal.h"

#include <cmath>

#include "cogo/cogo.h"
#include "text/format.h"

namespace tervalo {
namespace {

std::string ordinal(const std::string& meridian) {
  static const char* const kWords[] = {"First", "Second", "Third", "Fourth", "Fifth", "Sixth"};
  const int n = std::atoi(meridian.c_str());
  return n >= 1 && n <= 6 ? kWords[n - 1] : meridian;
}

std::string lengthWords(double v, const MetesWords& w) {
  return Format(w.ground ? v / w.combinedFactor : v, "0.00") + (w.unit == "m" ? " metres" : " feet");
}

}  // namespace

std::string sectionWords(const SectionRecord& r) {
  const int range = r.range < 0 ? -r.range : r.range;
  const bool east = r.direction == "E" || r.range < 0;
  return "Section " + std::to_string(r.section) + ", Township " + std::to_string(r.township) + " North, Range " + std::to_string(range) +
         (east ? " East" : " West") + " of the " + ordinal(r.meridian) + " Principal Meridian";
}

std::string aliquotDescription(const AliquotPart& part, const SectionRecord& record) {
  const double acres = part.groundAcres.value_or(part.acres);
  std::string words = part.lot ? part.words + " of " : "The " + part.words + " (" + part.name + ") of ";
  return words + sectionWords(record) + ", containing " + Format(acres, "0.00") + " acres, more or less";
}

std::string courseWords(const Course& c, const MetesWords& w) {
  if (!c.curve) return bearingWords(c.azimuth, w.places) + ", a distance of " + lengthWords(c.length, w);
  return std::string("along a curve to the ") + (c.right ? "right" : "left") + " having a radius of " + lengthWords(c.radius, w) +
         ", an arc length of " + lengthWords(c.arc, w) + ", a delta angle of " + angleText(c.delta, w.places) +
         ", and a chord bearing and distance of " + bearingWords(c.azimuth, w.places) + ", " + lengthWords(c.length, w);
}

std::string metesAndBounds(const std::vector<Course>& courses, double area, const MetesWords& w) {
  std::string text = (w.tie.empty() ? "Beginning at " : "Commencing at ") + w.commencing;
  for (std::size_t i = 0; i < w.tie.size(); ++i)
    text += "; thence " + courseWords(w.tie[i], w) + (i + 1 == w.tie.size() ? " to the point of beginning" : "");
  for (std::size_t i = 0; i < courses.size(); ++i)
    text += "; thence " + courseWords(courses[i], w) + (i + 1 == courses.size() ? " to the point of beginning" : "");
  const double shown = w.ground ? area / (w.combinedFactor * w.combinedFactor) : area;
  if (w.unit == "m")
    text += ". Containing " + Format(shown / 10000, "0.0000") + " hectares (" + grouped(std::llround(shown)) + " square metres), more or less.";
  else
    text += ". Containing " + Format(shown / 43560, "0.00") + " acres (" + grouped(std::llround(shown)) + " square feet), more or less.";
  if (!w.basis.empty()) text += " " + w.basis;
  text += w.ground ? " Distances are ground distances (grid distances divided by the combined factor " + Format(w.combinedFactor, "0.00000000") + ")."
                   : " Distances are grid distances.";
  return text;
}

}  // namespace tervalo
