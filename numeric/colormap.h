#pragma once

#include <array>
#include <vector>

/// Table of colours: the palette of an indexed image, or a scale that colours values.
class Colormap
{
public:
  /// Red, green and blue, 0 to 255.
  using Color = std::array<unsigned char, 3>;

  /// `size` black entries.
  explicit Colormap(int size = 0) : _colors(static_cast<std::size_t>(size)) {}

  int getSize() const { return static_cast<int>(_colors.size()); }
  /// Colour i. Unchecked.
  const Color& getColor(int i) const { return _colors[static_cast<std::size_t>(i)]; }
  void setColor(int i, const Color& color) { _colors[static_cast<std::size_t>(i)] = color; }

  /// True when every entry has equal red, green and blue.
  bool isGrayscale() const;
  /// Replaces every entry by the mean of its red, green and blue.
  void setGrayscale();

  bool operator==(const Colormap& other) const = default;

  /// n entries in equal steps from cold to hot: blue, cyan, green, yellow, red, one component changing between each
  /// two. \throw SizeError  "Colormap dimension is not a multiple of 4"
  static Colormap cold2Hot(int n);

private:
  std::vector<Color> _colors;
};
