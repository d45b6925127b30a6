#pragma once
// The traverse file (JSON) and its reading: field notes as a file, kept by
// the Traverse window's Save Inputs and read by tervalo-cli traverse. A
// raw data collector file (.rw5) is read the same way, by its records.

#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

#include "traverse/traverse.h"

namespace tervalo {

inline constexpr int kTraverseVersion = 1;

// A file that is not a traverse file; the message names the place ("course
// 3: \"zenith\" must be an angle ...").
class TraverseFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Parses strictly: unknown keys, wrong kinds, a course with no direction or
// two, a newer version are refused with their place.
TraverseInput parseTraverse(const std::string& text);
// A traverse file, or a raw file by its ending (.rw5); a relative source is
// taken from the file's folder.
TraverseInput readTraverseFile(const std::string& file);
// The file as Save Inputs writes it; parseTraverse reads it back as it was.
std::string traverseText(const TraverseInput& input);

// An angle as the files and fields write it: "45-30-15", "45-30-15.25".
std::string angleText(double degrees);
// A course's direction as given: "Az 45-30-15", "S 10-20-00 W", "AR 95-10-30", "12-30-00 L".
std::string directionText(const CourseEntry& course);

}  // namespace tervalo
