#pragma once

#include "app/core/nyxevent.h"

/// Base of everything that listens to the event bus. Handlers do nothing by default.
///
/// A client attaches itself with NYXEventServer::attach() and is detached by its destructor.
class NYXEventClient
{
public:
  NYXEventClient() = default;
  NYXEventClient(const NYXEventClient&) = delete;
  NYXEventClient& operator=(const NYXEventClient&) = delete;
  virtual ~NYXEventClient();

  /// Posts an event with this client as its sender; every attached client receives it, this one included.
  void notifyEvent(NYXEvent& event);
  void notifyEvent(NYXEvent&& event) { notifyEvent(event); }

  /// Calls the handler of the event's kind.
  void processEvent(const NYXEvent& event);

protected:
  virtual void stackOpenEvent(const NYXStackOpenEvent&) {}
  virtual void stackCloseEvent(const NYXStackCloseEvent&) {}
  virtual void stackNameEvent(const NYXStackNameEvent&) {}
  virtual void stackFileNameEvent(const NYXStackFileNameEvent&) {}
  virtual void stackModifyEvent(const NYXStackModifyEvent&) {}
  virtual void preferencesEvent(const NYXPreferencesEvent&) {}
};
