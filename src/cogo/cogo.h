#pragma once
// Coordinate geometry between the project's points, one command a line, as
// the COGO window's command line and `tervalo-cli cogo` take them: POINT,
// INVERSE, LOCATE, INTERSECT, STATION, POINTAT, DIVIDE, AREA and MAPCHECK.
// Each command answers as JSON (the result the command line prints with
// --json) and as lines of text for the window's log; the points it makes
// are held until the caller stores them, in one transaction.

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "crs/crs.h"
#include "crs/project_store.h"

namespace tervalo {

class CogoError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Degrees of an angle as a surveyor types one: D-MM-SS (45-30-15.5),
// 45°30'15", or packed degrees.minutes-seconds (45.3015); nothing for
// another text.
std::optional<double> cogoAngle(const std::string& text);
// Degrees of an azimuth of a bearing: N45-30-15E, N 45-30-15 E, N 45°30'15" E.
std::optional<double> cogoBearing(const std::string& text);
// An angle as 45°30'15" with `places` decimals of seconds (0 to 4).
std::string angleText(double degrees, int places);
// A bearing as N 45°30'15" E.
std::string bearingWords(double azimuth, int places);

struct CogoOptions {
  CrsChoice crs;            // with a system, inverses give ground distances
  std::string unit = "ft";  // the project's: "ft" or "m"
  int secondsPlaces = 0;    // decimals of seconds in the text answers
  double metresPerUnit = 1200.0 / 3937;  // for hectares: the US survey foot unless the project says otherwise
};

// A project's options: its system, unit and foot (CrsError where PROJ cannot describe its system).
CogoOptions cogoOptionsOf(const ProjectSettings& settings);

class CogoEngine {
 public:
  // `lookup` finds a point the project holds by its number.
  CogoEngine(std::function<std::optional<ProjectPoint>(const std::string&)> lookup, CogoOptions options);

  // Runs one line: its result (with "line" and "command"), or nothing for a
  // blank line, a comment or a line of a MAPCHECK still open. CogoError
  // says why a line is refused; nothing it would make is kept then.
  std::optional<nlohmann::ordered_json> run(const std::string& line, int lineNumber);
  // A MAPCHECK left open at the end of a file: CogoError.
  void finish();

  // The points made so far, in order, and the text answer of the last command.
  const std::vector<ProjectPoint>& made() const { return made_; }
  const std::vector<std::string>& answer() const { return answer_; }
  // Forgets the points made (stored by the caller).
  void clearMade() { made_.clear(); }

 private:
  struct Mapcheck;
  nlohmann::ordered_json dispatch(const std::vector<std::string>& words);
  ProjectPoint point(const std::string& number);
  void make(ProjectPoint p);
  std::function<std::optional<ProjectPoint>(const std::string&)> lookup_;
  CogoOptions options_;
  std::vector<ProjectPoint> made_;
  std::vector<std::string> answer_;
  std::shared_ptr<Mapcheck> mapcheck_;
  int mapcheckLine_ = 0;
  int line_ = 0;  // the line being run
};

// The words of a command line: blank-separated, a quoted text one word, a
// `#` and all after it a comment.
std::vector<std::string> cogoWords(const std::string& line);

}  // namespace tervalo
