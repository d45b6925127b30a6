// Mnemonics: enough letters for every control where the captions allow,
// as the view shows them.

#include <gtest/gtest.h>

#include <set>

#include "app/mnemonics.h"

namespace tervalo {
namespace {

TEST(Mnemonics, RepeatedCaptionsStillGetLettersOfTheirOwn) {
  // The grading window's two segment lists: each caption twice.
  Captioned controls;
  for (const char* list : {"Fin", "Sub"})
    for (const char* caption : {"Add", "Change", "Delete", "Clear List"}) controls.emplace_back(std::string(caption) + list, caption);
  for (const char* caption : {"Calculate", "Clear", "Return", "Open Inputs...", "Save Inputs...", "Left", "Right"})
    controls.emplace_back(caption, caption);
  const auto marked = markMnemonics(controls);
  std::set<char> letters;
  for (const auto& [name, caption] : controls) {
    const std::string& shown = marked.at(name);
    const auto at = shown.find('&');
    ASSERT_NE(at, std::string::npos) << name;
    EXPECT_TRUE(letters.insert(static_cast<char>(std::tolower(shown[at + 1]))).second) << shown;
  }
  EXPECT_EQ(marked.at("Calculate"), "Calc&ulate");  // its initial and early letters went to the lists
}

TEST(Mnemonics, OwnMarkersStayAndAmpersandsAreDoubled) {
  const auto marked = markMnemonics({{"mnuRecent1", "&1  /data/a.csv"}, {"mnuOther", "Curves & Grades"}});
  EXPECT_EQ(marked.at("mnuRecent1"), "&1  /data/a.csv");
  EXPECT_EQ(marked.at("mnuOther"), "&Curves && Grades");
}

}  // namespace
}  // namespace tervalo
