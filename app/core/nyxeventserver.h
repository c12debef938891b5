#pragma once

#include <vector>

class NYXEvent;
class NYXEventClient;

/// The process-wide event bus: an ordered list of borrowed clients. Used on the GUI thread only.
class NYXEventServer
{
public:
  /// Ignored when the client is attached already.
  static void attach(NYXEventClient& client);
  static void detach(NYXEventClient& client);

  /// Hands the event to every client in attachment order. Clients may come and go during the delivery.
  static void deliver(const NYXEvent& event);

private:
  static std::vector<NYXEventClient*>& clients();
};
