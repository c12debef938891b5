#pragma once

#include "slice/image/nyximageproxy.h"

class StackSlice;

/// Proxy of the image of a slice.
class NYXSliceImageProxy : public NYXImageProxy
{
  Q_OBJECT

public:
  explicit NYXSliceImageProxy(const StackSlice* slice = nullptr, QObject* parent = nullptr);

  /// Takes over the image source and the pixel calibration of a slice; nullptr for none. Borrowed: whoever deletes the
  /// slice sets another one. To be called again when the slice gets another image.
  void setSlice(const StackSlice* slice);
  const StackSlice* getSlice() const { return _slice; }

  /// The size of a slice's image when its file cannot tell: what the source has been given for that, else one that is
  /// large enough for the items; not valid when nobody knows.
  static QSize fallbackImageSize(const StackSlice& slice);

private:
  const StackSlice* _slice = nullptr;
};
