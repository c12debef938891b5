#pragma once

#include "viewer/painters/axespaintergl.h"
#include "viewer/painters/boundingboxpaintergl.h"
#include "viewer/painters/landmarkspaintergl.h"
#include "viewer/painters/scalebarpaintergl.h"
#include "viewer/scene/backgroundgl.h"
#include "viewer/scene/viewercamera.h"

#include <optional>
#include <string>
#include <vector>

/// Painters in the order in which they were added, where they are seen from, and what is around them: the same picture
/// in a window and without one.
///
/// Opaque painters are drawn in that order. Transparent ones follow, what is farther from the viewer first: the back of
/// each counts as far as the farthest corner of its box, its front as the nearest, so that what is inside another one
/// is drawn between the two. The layers of one that has layers are drawn in parts, between the turns of the others.
class SceneGL
{
public:
  using Painter = PainterGL<float>;

  /// A pass over a painter.
  struct Turn
  {
    Painter* painter;
    PaintPass pass;
    DepthRange range = {}; ///< the layers that are drawn, of painters that have layers

    bool operator==(const Turn&) const = default;
  };
  /// What is at a pixel.
  struct Hit
  {
    Painter* painter;
    ViewerCamera::Point point;
  };

  /// Painters are borrowed. One that is listed already is not added again.
  void addPainter(Painter& painter);
  void removePainter(const Painter& painter);
  void removePainters();
  const std::vector<Painter*>& getPainters() const { return _painters; }

  /// The box around all painters, also those that are hidden.
  const BoundingBox<float>& getBoundingBox() const { return _box; }
  /// Computes the box anew; size and centre of the scene follow it.
  void updateBoundingBox();

  ViewerCamera& camera() { return _camera; }
  const ViewerCamera& camera() const { return _camera; }
  const BackgroundGL& getBackground() const { return _background; }
  void setBackground(const BackgroundGL& background) { _background = background; }

  bool hasBoundingBox() const { return _hasBoundingBox; }
  void setBoundingBoxVisible(bool isVisible) { _hasBoundingBox = isVisible; }
  bool hasScaleBar() const { return _hasScaleBar; }
  void setScaleBarVisible(bool isVisible) { _hasScaleBar = isVisible; }
  bool hasAxes() const { return _hasAxes; }
  void setAxesVisible(bool isVisible) { _hasAxes = isVisible; }
  /// Draws marks in front of everything; borrowed, nullptr: none.
  void setLandmarksPainter(LandmarksPainterGL* painter) { _landmarksPainter = painter; }
  /// The symbol of the unit of length of the scale bar.
  void setUnit(const std::string& unit) { _scaleBarPainter.setUnit(unit); }

  /// The matrices, the light or the size changed: they are told to OpenGL with the next frame. A frame in another
  /// context, or after other drawing, needs it too.
  void setDirty() { _isProjectionDirty = _isLightDirty = true; }
  void setProjectionDirty() { _isProjectionDirty = true; }
  void setLightDirty() { _isLightDirty = true; }

  /// Draws a frame into what is current. \param pixelRatio  pixels for one of the screen's
  void paint(int width, int height, float pixelRatio);
  /// The painter and the point of the scene at a pixel counted from the lower left, drawn beside the frame.
  std::optional<Hit> pick(int x, int y, int width, int height);

  /// The turns of transparent painters for the current pose.
  std::vector<Turn> transparentTurns() const;

private:
  void applyProjection() const;
  void applyLight();
  void applyModelView() const;
  void paintSurroundings(int width, int height, float pixelRatio);

  std::vector<Painter*> _painters;
  BoundingBox<float> _box{3};
  ViewerCamera _camera;
  BackgroundGL _background;
  BoundingBoxPainterGL _boundingBoxPainter;
  ScaleBarPainterGL _scaleBarPainter;
  AxesPainterGL _axesPainter;
  LandmarksPainterGL* _landmarksPainter = nullptr;
  bool _hasBoundingBox = false;
  bool _hasScaleBar = true;
  bool _hasAxes = true;
  bool _isProjectionDirty = true;
  bool _isLightDirty = true;
};
