#include "app/core/nyxeventserver.h"

#include "app/core/nyxeventclient.h"

#include <algorithm>
#include <exception>

/// While one is open, no entry moves. They nest when a handler posts an event.
class NYXEventServer::Delivery
{
public:
  Delivery() { ++_numOpen; }
  Delivery(const Delivery&) = delete;
  Delivery& operator=(const Delivery&) = delete;
  ~Delivery()
  {
    --_numOpen;
    dropDetached();
  }

  static void dropDetached()
  {
    if (_numOpen == 0) std::erase_if(entries(), [](const Entry& entry) { return !entry.isAttached; });
  }

private:
  static inline int _numOpen = 0;
};

std::vector<NYXEventServer::Entry>& NYXEventServer::entries()
{
  static std::vector<Entry> list;
  return list;
}

void NYXEventServer::attach(NYXEventClient& client)
{
  const auto entry = std::ranges::find(entries(), &client, &Entry::client);
  if (entry == entries().end())
    entries().push_back({&client, true});
  else
    entry->isAttached = true;
}

void NYXEventServer::detach(NYXEventClient& client)
{
  const auto entry = std::ranges::find(entries(), &client, &Entry::client);
  if (entry == entries().end()) return;
  entry->isAttached = false;
  Delivery::dropDetached();
}

void NYXEventServer::forget(const NYXEventClient& client)
{
  const auto entry = std::ranges::find(entries(), &client, &Entry::client);
  if (entry == entries().end()) return;
  *entry = {nullptr, false};
  Delivery::dropDetached();
}

void NYXEventServer::forEachClient(const std::function<void(NYXEventClient&)>& serve)
{
  std::exception_ptr firstError;
  {
    const Delivery delivery;
    for (std::size_t i = 0; i < entries().size(); ++i)
    {
      if (!entries()[i].isAttached) continue;
      try
      {
        serve(*entries()[i].client);
      }
      catch (...)
      {
        if (!firstError) firstError = std::current_exception();
      }
    }
  }
  if (firstError) std::rethrow_exception(firstError);
}

void NYXEventServer::deliver(const NYXEvent& event)
{
  forEachClient([&](NYXEventClient& client) { client.processEvent(event); });
}

void NYXEventServer::deliver(NYXAction& action)
{
  forEachClient([&](NYXEventClient& client) { client.processAction(action); });
}

void NYXEventServer::deliverBatchEnd()
{
  forEachClient([](NYXEventClient& client) { client.atEventBatchEnd(); });
}
