#pragma once

#include "app/core/nyxeventclient.h"

/// Keeps an event batch open while it lives; within another batch it does nothing.
class NYXEventBatch
{
public:
  NYXEventBatch() : _isMine(!NYXEventClient::eventBatchEnabled())
  {
    if (_isMine) NYXEventClient::enableEventBatch(true);
  }
  NYXEventBatch(const NYXEventBatch&) = delete;
  NYXEventBatch& operator=(const NYXEventBatch&) = delete;
  ~NYXEventBatch();

private:
  bool _isMine;
};
