#include "app/core/nyxeventserver.h"

#include "app/core/nyxeventclient.h"

#include <algorithm>

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
  std::erase(clients(), &client);
}

void NYXEventServer::deliver(const NYXEvent& event)
{
  for (std::size_t i = 0; i < clients().size();)
  {
    NYXEventClient* const client = clients()[i];
    client->processEvent(event);
    // Clients may have left: go on behind this one, or at its place when it left itself.
    const auto place = std::ranges::find(clients(), client);
    if (place != clients().end()) i = static_cast<std::size_t>(place - clients().begin()) + 1;
  }
}
