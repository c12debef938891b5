#pragma once

#include "slice/image/nyximageserverdata.h"

class NYXSliceImageProxy;
class Stack;
class StackSlice;

/// The image of a slice in a server.
class NYXSliceImageServerData : public NYXImageServerData
{
  Q_OBJECT

public:
  /// For the source of a proxy that has one, and its slice.
  explicit NYXSliceImageServerData(const NYXSliceImageProxy& proxy,
                                   NYXImageReader::ReadFunction read = NYXImageReader::defaultReadFunction());

  /// The slice whose image was asked for first. It may be gone: to be compared, not to be used.
  const StackSlice* getSlice() const { return _slice; }
  /// The stack that the slice belonged to.
  const Stack* getStack() const { return _stack; }

private:
  const StackSlice* _slice;
  const Stack* _stack;
};
