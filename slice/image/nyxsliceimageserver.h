#pragma once

#include "app/core/nyxeventclient.h"
#include "slice/image/nyximageserver.h"

class StackSlice;

/// Image server of slices; drops the images of a stack that is closed.
class NYXSliceImageServer : public NYXImageServer, public NYXEventClient
{
  Q_OBJECT

public:
  /// The one that all windows share. It belongs to the application object, which must be there.
  static NYXSliceImageServer& server();

  /// Attaches itself to the event bus.
  explicit NYXSliceImageServer(QObject* parent = nullptr);

  /// Loads the image of a slice that will perhaps be shown next, when nobody waits for another one and as long as
  /// nothing has to be freed for it. nullptr does nothing.
  void prefetch(const StackSlice* slice);

protected:
  /// Asks for a NYXSliceImageProxy.
  std::unique_ptr<NYXImageServerData> newData(const NYXImageProxy& proxy) override;
  void stackCloseEvent(const NYXStackCloseEvent& event) override;
};
