#include "app/core/nyxeventbatch.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "tests/support/errors.h"

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

TEST(EventBus, ClientsMayComeGoAndEndDuringTheDelivery)
{
  NYXStack stack;
  Listener first, mover, last, newcomer;
  auto leaving = std::make_unique<Listener>(), ending = std::make_unique<Listener>();
  for (Listener* client : {&first, &mover, leaving.get(), ending.get(), &last}) NYXEventServer::attach(*client);
  mover.reaction = [&]
  {
    NYXEventServer::detach(first); // served already
    NYXEventServer::detach(mover);
    NYXEventServer::attach(mover); // not to be served twice
    ending.reset();
    NYXEventServer::attach(newcomer);
  };
  leaving->reaction = [&] { leaving.reset(); };
  last.notifyEvent(NYXStackOpenEvent(stack));
  mover.reaction = nullptr;
  for (const Listener* client : {&first, &mover, &last, &newcomer}) EXPECT_EQ(client->types.size(), 1u);
  last.notifyEvent(NYXStackOpenEvent(stack));
  EXPECT_EQ(first.types.size(), 1u);
  for (const Listener* client : {&mover, &last, &newcomer}) EXPECT_EQ(client->types.size(), 2u);
}

TEST(EventBus, NewsOfAHandlerIsDeliveredBeforeTheRest)
{
  NYXStack stack;
  Listener first, last;
  NYXEventServer::attach(first);
  NYXEventServer::attach(last);
  first.reaction = [&]
  {
    if (first.types.size() == 1) first.notifyEvent(NYXStackCloseEvent(stack));
  };
  first.notifyEvent(NYXStackOpenEvent(stack));
  EXPECT_EQ(first.types, (std::vector<int>{NYXEvent::StackOpen, NYXEvent::StackClose}));
  EXPECT_EQ(last.types, (std::vector<int>{NYXEvent::StackClose, NYXEvent::StackOpen}));
}

TEST(EventBus, AClientThatThrowsKeepsNothingFromTheOthers)
{
  NYXStack stack;
  Listener faulty, other;
  NYXEventServer::attach(faulty);
  NYXEventServer::attach(other);
  faulty.reaction = [] { throw ProgramError(); };
  EXPECT_THROW(faulty.notifyEvent(NYXStackOpenEvent(stack)), ProgramError);
  EXPECT_EQ(other.types.size(), 1u);
}

/// Writes down the number of the handler that is called.
struct HandlerLog : NYXEventClient
{
  HandlerLog() { NYXEventServer::attach(*this); }

#define NOTE(number, handler, Event)                                                                                   \
  void handler(const Event&) override                                                                                  \
  {                                                                                                                    \
    called.push_back(number);                                                                                          \
  }
  NOTE(0, stackOpenEvent, NYXStackOpenEvent)
  NOTE(1, stackCloseEvent, NYXStackCloseEvent)
  NOTE(2, stackNameEvent, NYXStackNameEvent)
  NOTE(3, stackFileNameEvent, NYXStackFileNameEvent)
  NOTE(4, stackModifyEvent, NYXStackModifyEvent)
  NOTE(5, stackRegistrationEvent, NYXStackRegistrationEvent)
  NOTE(6, stackSliceSpacingEvent, NYXStackSliceSpacingEvent)
  NOTE(7, stackImageCalibrationEvent, NYXStackImageCalibrationEvent)
  NOTE(8, sliceAnnotationEvent, NYXSliceAnnotationEvent)
  NOTE(9, sliceLockEvent, NYXSliceLockEvent)
  NOTE(10, sliceNameEvent, NYXSliceNameEvent)
  NOTE(11, sliceSpacingEvent, NYXSliceSpacingEvent)
  NOTE(12, sliceImageCalibrationEvent, NYXSliceImageCalibrationEvent)
  NOTE(13, sliceItemSelectionEvent, NYXSliceItemSelectionEvent)
  NOTE(14, modelCreateEvent, NYXModelCreateEvent)
  NOTE(15, modelDeleteEvent, NYXModelDeleteEvent)
  NOTE(16, modelPropertiesEvent, NYXModelPropertiesEvent)
  NOTE(17, modelItemCreateEvent, NYXModelItemCreateEvent)
  NOTE(18, modelItemDeleteEvent, NYXModelItemDeleteEvent)
  NOTE(19, modelItemVertexEvent, NYXModelItemVertexEvent)
  NOTE(20, modelItemAttributeEvent, NYXModelItemAttributeEvent)
  NOTE(21, modelItemTriangulationTagEvent, NYXModelItemTriangulationTagEvent)
  NOTE(22, modelItemSelectEvent, NYXModelItemSelectEvent)
  NOTE(23, modelItemConvertEvent, NYXModelItemConvertEvent)
  NOTE(24, poseCreateEvent, NYXPoseCreateEvent)
  NOTE(25, poseDeleteEvent, NYXPoseDeleteEvent)
  NOTE(26, preferencesEvent, NYXPreferencesEvent)
#undef NOTE
  void atEventBatchEnd() override
  {
    ++numBatches;
  }

  std::vector<int> called;
  int numBatches = 0;
};

TEST(EventBus, EachKindReachesItsHandler)
{
  NYXStack stack;
  StackSlice slice;
  Model model;
  ModelItem item(&model, &slice);
  Pose pose;
  HandlerLog log;
  log.notifyEvent(NYXStackOpenEvent(stack));
  log.notifyEvent(NYXStackCloseEvent(stack));
  log.notifyEvent(NYXStackFileNameEvent(stack));
  stack.setModified(true); // 4, and no news of content flips the flag
  log.notifyEvent(NYXStackNameEvent(stack));
  log.notifyEvent(NYXStackRegistrationEvent(stack));
  log.notifyEvent(NYXStackSliceSpacingEvent(stack));
  log.notifyEvent(NYXStackImageCalibrationEvent(stack));
  log.notifyEvent(NYXSliceAnnotationEvent(slice));
  log.notifyEvent(NYXSliceLockEvent(slice, true));
  log.notifyEvent(NYXSliceNameEvent(slice));
  log.notifyEvent(NYXSliceSpacingEvent(slice));
  log.notifyEvent(NYXSliceImageCalibrationEvent(slice));
  log.notifyEvent(NYXSliceItemSelectionEvent(slice));
  log.notifyEvent(NYXModelCreateEvent(model));
  log.notifyEvent(NYXModelDeleteEvent(model));
  log.notifyEvent(NYXModelPropertiesEvent(model, ModelProperties(), ModelItemProperties()));
  log.notifyEvent(NYXModelItemCreateEvent(item));
  log.notifyEvent(NYXModelItemDeleteEvent(item));
  log.notifyEvent(NYXModelItemVertexEvent(item));
  log.notifyEvent(NYXModelItemAttributeEvent(item));
  log.notifyEvent(NYXModelItemTriangulationTagEvent(item));
  log.notifyEvent(NYXModelItemSelectEvent(item));
  log.notifyEvent(NYXModelItemConvertEvent(item, model, model));
  log.notifyEvent(NYXPoseCreateEvent(pose));
  log.notifyEvent(NYXPoseDeleteEvent(pose));
  log.notifyEvent(NYXPreferencesEvent());
  EXPECT_EQ(log.called, (std::vector<int>{0,  1,  3,  4,  2,  5,  6,  7,  8,  9,  10, 11, 12, 13,
                                          14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26}));
}

TEST(EventBus, BatchesTellOfTheirEndOnce)
{
  HandlerLog log;
  {
    const NYXEventBatch outer;
    const NYXEventBatch inner;
    EXPECT_TRUE(NYXEventClient::eventBatchEnabled());
    expectError<UsageError>("An event sequence is already open", [] { NYXEventClient::enableEventBatch(true); });
    EXPECT_EQ(log.numBatches, 0);
  }
  EXPECT_EQ(log.numBatches, 1);
  expectError<UsageError>("There is no event sequence to end", [] { NYXEventClient::enableEventBatch(false); });
  EXPECT_EQ(log.numBatches, 1);
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
