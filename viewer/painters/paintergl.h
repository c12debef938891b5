#pragma once

#include "geometry/boundingbox.h"

#include <string>

/// What a painter draws in a pass over the scene.
enum class PaintPass
{
  Opaque,     ///< everything that is seen of the object from outside
  OpaqueCut,  ///< the same in a view that cuts objects open
  BackFaces,  ///< of a transparent surface, the triangles that are seen from inside
  FrontFaces, ///< and those that are seen from outside
  Picking     ///< everything, in the colour that is set, which nothing may change
};

/// Draws one object of a 3D scene with OpenGL.
///
/// A painter keeps its geometry in buffers of the graphics card, which are filled when it is painted for the first
/// time. It is painted and destroyed while the context of that first time is current.
template <class T> class PainterGL
{
public:
  PainterGL() = default;
  PainterGL(const PainterGL&) = delete;
  PainterGL& operator=(const PainterGL&) = delete;
  virtual ~PainterGL() = default;

  /// What the user calls the object.
  const std::string& getName() const { return _name; }
  void setName(const std::string& name) { _name = name; }
  bool isVisible() const { return _isVisible; }
  void setVisible(bool isVisible) { _isVisible = isVisible; }

  /// How many pixels of the picture make one of the screen's, in which lines and dots are measured.
  float getPixelRatio() const { return _pixelRatio; }
  void setPixelRatio(float ratio) { _pixelRatio = ratio; }

  /// The box around the object in 3D, also while it is hidden; empty when there is nothing to draw.
  virtual BoundingBox<T> boundingBox() const = 0;
  /// Whether something behind the object shines through.
  virtual bool isTransparent() const { return false; }
  /// Whether back and front of a transparent object are drawn in passes of their own; else all of it is, as front.
  virtual bool hasFaces() const { return false; }
  virtual void paint(PaintPass pass) = 0;

private:
  std::string _name;
  bool _isVisible = true;
  float _pixelRatio = 1;
};
