#pragma once

#include "model/registration.h"

#include <QPoint>
#include <QSize>
#include <QTransform>

/// Step of the angle of manual rotation, in degrees.
constexpr double ImageRegistrationRotationPrecision = 0.1;

/// The image of a slice as registration sees it: its size in pixels, and theirs in lengths.
struct NYXSliceFrame
{
  QSize size;
  double pixelWidth = 1;
  double pixelHeight = 1;

  /// What the slice turns about, in pixels; whole numbers are the centres of pixels.
  QPointF center() const { return {size.width() / 2.0, size.height() / 2.0}; }
};

/// Where the pixels of a slice lie that is placed on the slice before it, and those of the slice before: in the pixels
/// that the slice has where it is not registered. The same as the maps of StackReconstruction, but for their units.
/// @{
QTransform placement(const NYXSliceFrame& slice, const Registration& registration);
QTransform placementOfPrevious(const NYXSliceFrame& slice, const NYXSliceFrame& previous);
/// @}

/// To the nearest whole pixel, halves up.
QPoint roundedPosition(const QPointF& position);

/// Brings an angle in degrees into [0, 360) and cuts it toward zero to a multiple of the rotation's precision. Angles
/// that are such a multiple but for the digits of a float stay so.
double actualAngle(double degrees);

/// The angle in degrees from the direction of one position to that of another, seen from a centre; clockwise on the
/// screen, as the angle of a registration.
double angleBetween(const QPointF& center, const QPointF& from, const QPointF& to);
