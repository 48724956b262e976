#include <cmath>

#include "frame/interface/host_services.h"

int CheckedPower(double x, double y, double& result) {
  const double value = std::pow(x, y);
  if (!std::isfinite(value)) return 0;
  result = value;
  return 1;
}
