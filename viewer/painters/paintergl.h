#pragma once

#include "geometry/boundingbox.h"

#include <limits>
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

/// A part of the scene between two distances towards the viewer: from `far` on, up to before `near`.
///
/// The distance of a point is the Z coordinate that the rotation of the pose gives it.
struct DepthRange
{
  double far = -std::numeric_limits<double>::infinity();
  double near = std::numeric_limits<double>::infinity();

  bool contains(double depth) const { return far <= depth && depth < near; }
  bool operator==(const DepthRange&) const = default;
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

  /// Which of its layers an object that has layers draws; all of them at first.
  const DepthRange& getDepthRange() const { return _depthRange; }
  void setDepthRange(const DepthRange& range) { _depthRange = range; }

  /// The box around the object in 3D, also while it is hidden; empty when there is nothing to draw.
  virtual BoundingBox<T> boundingBox() const = 0;
  /// Whether something behind the object shines through.
  virtual bool isTransparent() const { return false; }
  /// Whether back and front of a transparent object are drawn in passes of their own; else all of it is, as front.
  virtual bool hasFaces() const { return false; }
  /// Whether a transparent object is made of layers across the line of view, between which others can be drawn.
  virtual bool hasLayers() const { return false; }
  virtual void paint(PaintPass pass) = 0;

private:
  std::string _name;
  bool _isVisible = true;
  float _pixelRatio = 1;
  DepthRange _depthRange;
};
