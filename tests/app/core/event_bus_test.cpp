#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace
{
/// Counts what it hears of stacks, and may do something at each news.
struct Listener : NYXEventClient
{
  void stackNameEvent(const NYXStackNameEvent& event) override { hear(event); }
  void stackModifyEvent(const NYXStackModifyEvent& event) override { hear(event); }
  void stackOpenEvent(const NYXStackOpenEvent& event) override { hear(event); }
  void stackCloseEvent(const NYXStackCloseEvent& event) override { hear(event); }

  void hear(const NYXEvent& event)
  {
    types.push_back(event.type());
    lastSender = event.getSender();
    if (reaction) reaction();
  }

  std::vector<int> types;
  const NYXEventClient* lastSender = nullptr;
  std::function<void()> reaction;
};

TEST(EventBus, DeliversOnceToEveryAttachedClientThePosterIncluded)
{
  NYXStack stack;
  Listener poster, other, stranger;
  NYXEventServer::attach(poster);
  NYXEventServer::attach(poster);
  NYXEventServer::attach(other);
  poster.notifyEvent(NYXStackOpenEvent(stack));
  EXPECT_EQ(poster.types, std::vector<int>{NYXEvent::StackOpen});
  EXPECT_EQ(other.types, std::vector<int>{NYXEvent::StackOpen});
  EXPECT_EQ(other.lastSender, &poster);
  EXPECT_TRUE(stranger.types.empty());
}

TEST(EventBus, ClientsMayLeaveDuringTheDelivery)
{
  NYXStack stack;
  Listener first, last;
  auto leaving = std::make_unique<Listener>();
  NYXEventServer::attach(first);
  NYXEventServer::attach(*leaving);
  NYXEventServer::attach(last);
  leaving->reaction = [&]
  {
    NYXEventServer::detach(first);
    NYXEventServer::detach(*leaving);
  };
  last.notifyEvent(NYXStackOpenEvent(stack));
  EXPECT_EQ(last.types.size(), 1u);
  leaving.reset();
  last.notifyEvent(NYXStackOpenEvent(stack));
  EXPECT_EQ(first.types.size(), 1u);
  EXPECT_EQ(last.types.size(), 2u);
}

TEST(EventBus, AStackIsModifiedByNewsOfItselfOnly)
{
  NYXStack a, b;
  a.notifyEvent(NYXStackNameEvent(a));
  EXPECT_TRUE(a.isModified());
  EXPECT_FALSE(b.isModified());
}

TEST(StackServer, TellsOfOpenedAndClosedStacks)
{
  NYXStackServer& server = NYXStackServer::server();
  const int before = server.getSessionNumStacks();
  Listener listener;
  NYXEventServer::attach(listener);
  NYXStack& first = server.addStack(std::make_unique<NYXStack>());
  NYXStack& second = server.addStack(std::make_unique<NYXStack>());
  EXPECT_EQ(server.getNextStack(first), &second);
  EXPECT_EQ(server.getPreviousStack(first), nullptr);
  listener.reaction = [&] { EXPECT_EQ(server.find(first), 0) << "still listed while its closing is told"; };
  server.removeStack(first);
  listener.reaction = nullptr;
  EXPECT_EQ(server.find(second), 0);
  server.removeStack(second);
  EXPECT_EQ(listener.types,
            (std::vector<int>{NYXEvent::StackOpen, NYXEvent::StackOpen, NYXEvent::StackClose, NYXEvent::StackClose}));
  EXPECT_EQ(server.getSessionNumStacks(), before + 2);
}
} // namespace
