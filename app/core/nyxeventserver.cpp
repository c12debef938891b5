#include "app/core/nyxeventserver.h"

#include "app/core/nyxeventclient.h"

#include <algorithm>

namespace
{
int numOpenDeliveries = 0; // deliveries nest when a handler posts an event
}

std::vector<NYXEventClient*>& NYXEventServer::clients()
{
  static std::vector<NYXEventClient*> list;
  return list;
}

void NYXEventServer::attach(NYXEventClient& client)
{
  if (std::ranges::find(clients(), &client) == clients().end()) clients().push_back(&client);
}

void NYXEventServer::detach(NYXEventClient& client)
{
  // The places of the others must not move while somebody walks along the list.
  if (numOpenDeliveries == 0)
    std::erase(clients(), &client);
  else
    std::ranges::replace(clients(), &client, nullptr);
}

void NYXEventServer::deliver(const NYXEvent& event)
{
  struct OpenDelivery
  {
    OpenDelivery() { ++numOpenDeliveries; }
    ~OpenDelivery()
    {
      if (--numOpenDeliveries == 0) std::erase(clients(), nullptr);
    }
  } const openDelivery;

  for (std::size_t i = 0; i < clients().size(); ++i)
  {
    if (clients()[i] != nullptr) clients()[i]->processEvent(event);
  }
}
