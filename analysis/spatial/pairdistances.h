#pragma once

/// Distances from one point to `count` others, the coordinates of which stand in one array per axis.
/// @{
void distancesFrom(const float* point, const float* const* axes, int space, int count, float* distances);
void distancesFrom(const double* point, const double* const* axes, int space, int count, double* distances);
void distancesFrom(const long double* point, const long double* const* axes, int space, int count,
                   long double* distances);
/// @}

/// For each distance d the smallest number j for which j * precision >= d; meaningful where that is below 2^31.
/// @{
void gridIndexes(const float* distances, int count, float precision, int* indexes);
void gridIndexes(const double* distances, int count, double precision, int* indexes);
void gridIndexes(const long double* distances, int count, long double precision, int* indexes);
/// @}
