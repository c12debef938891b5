#pragma once

#include <vector>

/// A colour in 8 bits per component.
struct Color
{
  unsigned char red = 0;
  unsigned char green = 0;
  unsigned char blue = 0;

  bool operator==(const Color& other) const = default;
  bool isGray() const { return red == green && green == blue; }
};

/// Table of colours: of an indexed image, or of a scale on which values are shown.
class Colormap
{
public:
  Colormap() = default;
  /// n black entries; none when n <= 0.
  explicit Colormap(int n) : _colors(n > 0 ? n : 0) {}

  int getSize() const { return static_cast<int>(_colors.size()); }
  Color& operator[](int i) { return _colors[i]; }
  const Color& operator[](int i) const { return _colors[i]; }
  bool operator==(const Colormap& other) const = default;

  /// Whether every entry is a grey level.
  bool isGrayscale() const;

  /// n entries in equal steps from cold to hot: blue, cyan, green, yellow, red, one component changing between each
  /// two. \throw SizeError  "Colormap dimension is not a multiple of 4"
  static Colormap cold2Hot(int n);

private:
  std::vector<Color> _colors;
};
