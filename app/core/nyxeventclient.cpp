#include "app/core/nyxeventclient.h"

#include "app/core/nyxeventserver.h"

NYXEventClient::~NYXEventClient()
{
  NYXEventServer::detach(*this);
}

void NYXEventClient::notifyEvent(NYXEvent& event)
{
  event.setSender(this);
  NYXEventServer::deliver(event);
}

void NYXEventClient::processEvent(const NYXEvent& event)
{
  switch (event.type())
  {
  case NYXEvent::StackOpen:
    return stackOpenEvent(static_cast<const NYXStackOpenEvent&>(event));
  case NYXEvent::StackClose:
    return stackCloseEvent(static_cast<const NYXStackCloseEvent&>(event));
  case NYXEvent::StackName:
    return stackNameEvent(static_cast<const NYXStackNameEvent&>(event));
  case NYXEvent::StackFileName:
    return stackFileNameEvent(static_cast<const NYXStackFileNameEvent&>(event));
  case NYXEvent::StackModify:
    return stackModifyEvent(static_cast<const NYXStackModifyEvent&>(event));
  case NYXEvent::Preferences:
    return preferencesEvent(static_cast<const NYXPreferencesEvent&>(event));
  default:
    return;
  }
}
