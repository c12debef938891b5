#include "slice/image/nyxsliceimageserver.h"

#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "slice/image/nyxsliceimageproxy.h"
#include "slice/image/nyxsliceimageserverdata.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>

NYXSliceImageServer& NYXSliceImageServer::server()
{
  static QPointer<NYXSliceImageServer> server;
  if (!server) server = new NYXSliceImageServer(QCoreApplication::instance());
  return *server;
}

NYXSliceImageServer::NYXSliceImageServer(QObject* parent) : NYXImageServer(parent)
{
  NYXEventServer::attach(*this);
}

void NYXSliceImageServer::prefetch(const StackSlice* slice)
{
  if (slice) loadWhenIdle(NYXSliceImageProxy(slice));
}

std::unique_ptr<NYXImageServerData> NYXSliceImageServer::newData(const NYXImageProxy& proxy)
{
  const auto* const sliceProxy = dynamic_cast<const NYXSliceImageProxy*>(&proxy);
  if (!sliceProxy) return NYXImageServer::newData(proxy);
  return std::make_unique<NYXSliceImageServerData>(*sliceProxy);
}

void NYXSliceImageServer::stackCloseEvent(const NYXStackCloseEvent& event)
{
  const Stack* const stack = &event.getStack();
  const auto belongsToStack = [stack](const NYXImageServerData& data)
  {
    const auto* const sliceData = dynamic_cast<const NYXSliceImageServerData*>(&data);
    return sliceData && sliceData->getStack() == stack;
  };
  removeUnused(belongsToStack);
  // Windows that hear of it after this server still show images of the stack.
  QTimer::singleShot(0, this, [this, belongsToStack] { removeUnused(belongsToStack); });
}
