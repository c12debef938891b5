#pragma once

/// Alignment of a slice against the slice before it: shifts in pixels, rotation in degrees.
class Registration
{
public:
  Registration() = default;
  Registration(int horizontalShift, int verticalShift, int angle)
    : Registration(horizontalShift, verticalShift, static_cast<float>(angle))
  {
  }
  Registration(int horizontalShift, int verticalShift, float angle)
    : _horizontalShift(horizontalShift), _verticalShift(verticalShift), _angle(angle)
  {
  }

  int getHorizontalShift() const { return _horizontalShift; }
  int getVerticalShift() const { return _verticalShift; }
  float getAngle() const { return _angle; }
  void setHorizontalShift(int shift) { _horizontalShift = shift; }
  void setVerticalShift(int shift) { _verticalShift = shift; }
  void setAngle(float degrees) { _angle = degrees; }

  bool isNull() const { return *this == Registration(); }
  bool operator==(const Registration& other) const = default;

private:
  int _horizontalShift = 0;
  int _verticalShift = 0;
  float _angle = 0;
};

/// Sums and differences of shifts and angles; an angle outside [0, 360) is corrected once by 360.
Registration operator+(const Registration& a, const Registration& b);
Registration operator-(const Registration& a, const Registration& b);
