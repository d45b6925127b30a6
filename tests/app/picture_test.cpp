#include "app/picture.h"

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

}  // namespace
}  // namespace tervalo
