#pragma once

#include <vector>

/// Where an axis from 0 to `last` is marked: 0 and the multiples, up to `last`, of a step that is 1, 2 or 5 times a
/// power of ten, the least one that gives at most `maxNumSteps` of them. Only 0 when `last` is no positive number.
std::vector<double> axisTicks(double last, int maxNumSteps);
