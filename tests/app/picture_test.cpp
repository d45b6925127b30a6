#include "app/picture.h"
#include "app/print_job.h"

#include <gtest/gtest.h>

namespace tervalo {
namespace {

// A map's scale bar is a round length of at most a quarter of its width; a
// profile's exaggeration the round factor that makes it about 2.5 to 1.
TEST(Picture, RoundScaleBarsAndExaggerations) {
  for (const auto& [width, bar] : {std::pair{5280.0, 1000.0}, {4000.0, 1000.0}, {3999.0, 500.0}, {1999.0, 200.0},
                                   {100.0, 20.0}, {0.9, 0.2}, {80000.0, 20000.0}})
    EXPECT_DOUBLE_EQ(scaleBarLength(width), bar) << width;
  for (const auto& [run, rise, factor] : {std::tuple{400.0, 4.0, 50.0}, {400.0, 160.0, 1.0}, {400.0, 80.0, 2.0},
                                          {100.0, 10.0, 5.0}, {1000.0, 0.0, 5e8}})
    EXPECT_DOUBLE_EQ(verticalExaggeration(run, rise), factor) << run << " " << rise;
}

// Pages break at form feeds (alone or inside a line) and when full; no
// empty page is made, except for an empty text.
TEST(PrintJob, PagesBreakAtFormFeedsAndWhenFull) {
  using Pages = std::vector<std::vector<std::string>>;
  const std::tuple<std::vector<std::string>, int, Pages> cases[] = {
      {{}, 60, {{}}},
      {{"a", "\f", "b", "\f"}, 60, {{"a"}, {"b"}}},
      {{"\f", "a", "\f", "\f", "b"}, 60, {{"a"}, {"b"}}},
      {{"a\fb", "c"}, 60, {{"a"}, {"b", "c"}}},
      {{"a", "b", "c", "", "d"}, 2, {{"a", "b"}, {"c", ""}, {"d"}}},
      {{"a", "b", "\f", "c"}, 2, {{"a", "b"}, {"c"}}},
  };
  for (const auto& [lines, perPage, pages] : cases) EXPECT_EQ(textPages(lines, perPage), pages) << lines.size();
  EXPECT_EQ(widestLine({"abc", "\u00B0\u00B0\u00B0\u00B0", ""}), 4);
}

}  // namespace
}  // namespace tervalo
