#pragma once
// Legal descriptions in the field's words: an aliquot part or government lot
// by its place in the section, and any closed parcel by metes and bounds,
// from a named corner to the point of beginning and round it course by
// course, with the basis of bearings and whether distances are grid or ground.

#include <string>
#include <vector>

#include "parcels/aliquot.h"
#include "parcels/deed.h"
#include "secsub/section_record.h"

namespace tervalo {

// "Section 14, Township 12 North, Range 3 West of the Fifth Principal Meridian".
std::string sectionWords(const SectionRecord& record);

// "The Northeast Quarter of the Northwest Quarter (NE 1/4 NW 1/4) of Section
// 14, ..., containing 40.00 acres, more or less" (ground acres where there are).
std::string aliquotDescription(const AliquotPart& part, const SectionRecord& record);

struct MetesWords {
  std::string commencing;      // "the Northwest corner of Section 14, ..." or "point 101"
  std::vector<Course> tie;     // from it to the point of beginning; none when the parcel begins there
  std::string unit = "ft";
  std::string basis;           // "Bearings are based on the North line of Section 14, bearing N 89°59'12\" E."
  bool ground = false;         // the distances are ground distances
  double combinedFactor = 1;   // grid = ground x factor; ground lengths are the courses' divided by it
  int places = 0;              // decimals of seconds
};

// "Commencing at ...; thence ... to the point of beginning; thence ...; ...
// to the point of beginning. Containing 40.00 acres (1,742,400 square feet),
// more or less. <basis> Distances are grid distances in feet."
std::string metesAndBounds(const std::vector<Course>& courses, double area, const MetesWords& words);

// A course in the description's words: "N 45°30'15\" E, a distance of 120.00
// feet" or "along a curve to the right having a radius of ...".
std::string courseWords(const Course& course, const MetesWords& words);

}  // namespace tervalo
