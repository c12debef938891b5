#pragma once

#include "examples/anatomy.h"

#include <vector>

/// How the specimen looks in the microscope: stained tissue with uneven staining and illumination, and camera noise.
class Micrograph
{
public:
  explicit Micrograph(std::vector<anatomy::Vesicle> vesicles) : _vesicles(std::move(vesicles)) {}

  /// Grey level 0 to 255 of pixel (u, v) of a slice that shows the place p.
  unsigned char greyLevel(const anatomy::Point& p, int slice, int u, int v) const;

private:
  double tissue(const anatomy::Point& p) const;
  double vesicleContrast(const anatomy::Point& p) const;

  std::vector<anatomy::Vesicle> _vesicles;
};
