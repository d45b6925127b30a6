#include "app/picture.h"

#include <algorithm>

namespace tervalo {

double verticalExaggeration(double run, double rise) {
  const double wanted = run / 2.5 / std::max(rise, 1e-6);
  double f = 1;
  for (int i = 0; f < wanted && i < 30; ++i) f *= (i % 3 == 1) ? 2.5 : 2;
  return f;
}

}  // namespace tervalo
