#pragma once

#include <functional>
#include <vector>

class NYXAction;
class NYXEvent;
class NYXEventClient;

/// The process-wide event bus: an ordered list of borrowed clients. Used on the GUI thread only.
///
/// Clients are served in attachment order. They may come, go and cease to exist during a delivery, and post events of
/// their own: who comes is still served at the end of it, who goes no longer, nobody twice (who goes and comes again
/// keeps its place). When a client throws, the others are served all the same, and the first error is thrown on.
class NYXEventServer
{
public:
  /// Ignored when the client is attached already.
  static void attach(NYXEventClient& client);
  static void detach(NYXEventClient& client);
  /// Detaches a client that ceases to exist.
  static void forget(const NYXEventClient& client);

  static void deliver(const NYXEvent& event);
  static void deliver(NYXAction& action);
  static void deliverBatchEnd();

private:
  struct Entry
  {
    NYXEventClient* client; // nullptr when it ceased to exist
    bool isAttached;
  };
  class Delivery;

  static std::vector<Entry>& entries();
  static void forEachClient(const std::function<void(NYXEventClient&)>& serve);
};
