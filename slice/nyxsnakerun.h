#pragma once

#include "geometry/curve.h"
#include "image/activecontour/activecontour.h"
#include "image/image.h"
#include "image/imagesource.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class ModelItem;
class NYXStack;
class StackSlice;

/// The active contour on the slice of a closed contour, from that contour, and on the slices that follow when the
/// configuration says so, on each from where it came to rest on the one before.
///
/// It is made in the thread of the windows and takes copies of what it needs, so that run() may be called in another.
/// The slices that follow end before one that is locked or has no image.
class NYXSnakeRun
{
public:
  NYXSnakeRun(const SnakeConfig& config, const NYXStack& stack, const ModelItem& item, const Image& image);

  ProgressSubject& subject() { return _subject; }
  /// Gets the vertices on the first slice as they move, every few milliseconds, in the thread of run().
  using Observer = std::function<void(const Vertices<int>&)>;
  void setObserver(Observer observer) { _observer = std::move(observer); }
  /// The slices to work on, the contour's first.
  std::vector<StackSlice*> slices() const;

  /// \throw Cancelled  the subject was
  void run();

  /// What came out: the vertices for the first slices, those before the one where the snake aborted.
  const std::vector<Vertices<int>>& results() const { return _results; }
  bool isAborted() const { return _results.size() < _slices.size(); }
  /// Why a slice's image could not be read, which has ended the run; empty otherwise.
  const std::string& problem() const { return _problem; }
  /// The slice at which the slices that follow end, since it is locked or has no image; empty for none.
  const std::string& obstacle() const { return _obstacle; }
  /// Whether the snake was still moving on some slice when its iterations were used up.
  bool isUnfinished() const { return _isUnfinished; }

private:
  struct Place
  {
    StackSlice* slice;
    std::string name;
    std::unique_ptr<ImageSource> source; // none for the first slice
  };

  bool read(const ImageSource& source);
  bool runOn(const Place& place);
  ActiveContour::Observer observer() const;
  Vertices<int> onImage(const Curve<double>& curve, const PixelMatrix<float>& image) const;

  SnakeConfig _config;
  Image _image;         // of the slice at work
  Curve<double> _curve; // in the reduced image
  std::vector<Place> _slices;
  ProgressSubject _subject;
  Observer _observer;
  std::vector<Vertices<int>> _results;
  std::string _problem;
  std::string _obstacle;
  bool _isUnfinished = false;
};
