// Random sequences of steps, undone and made again: what is saved depends only on the steps that stand.
#include "drawn_stack.h"

#include "app/core/actions/nyxinsertvertexaction.h"
#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/actions/nyxitemdeletionaction.h"
#include "app/core/actions/nyxitemselectionattributesaction.h"
#include "app/core/actions/nyxitemselectionconversionaction.h"
#include "app/core/actions/nyxitemshiftaction.h"
#include "app/core/actions/nyxlengthunitaction.h"
#include "app/core/actions/nyxmodelcreationaction.h"
#include "app/core/actions/nyxmodeldeletionaction.h"
#include "app/core/actions/nyxmodelorderaction.h"
#include "app/core/actions/nyxmodelpropertiesaction.h"
#include "app/core/actions/nyxmovevertexaction.h"
#include "app/core/actions/nyxregistrationaction.h"
#include "app/core/actions/nyxremovevertexaction.h"
#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/actions/nyxsliceorderaction.h"
#include "app/core/actions/nyxslicepropertiesaction.h"
#include "app/core/actions/nyxstackpropertiesaction.h"
#include "app/core/nyxactionstep.h"

#include <memory>
#include <random>
#include <set>

namespace
{
using ActionPtr = std::unique_ptr<NYXAction>;

/// Makes steps at random.
class RandomUser
{
public:
  RandomUser(DrawnStack& drawn, unsigned int seed) : _drawn(drawn), _random(seed) {}

  int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }

  StackSlice& slice() { return _drawn.slice(below(stack().getNumSlices())); }

  void makeStackStep()
  {
    const NYXActionStep step(stack().history());
    for (int i = below(3); i >= 0; --i) pushUnlessNull(stack().history(), stackAction());
  }

  void makeSliceStep(StackSlice& slice)
  {
    NYXActionHistory& history = stack().sliceHistory(slice);
    const NYXActionStep step(history);
    for (int i = below(4); i >= 0; --i) pushUnlessNull(history, itemAction(slice));
  }

private:
  NYXStack& stack() { return _drawn.stack(); }
  std::string newName() { return "n" + std::to_string(++_numNames); }
  Vector<int> point() { return Vector<int>{below(100), below(80)}; }

  static void pushUnlessNull(NYXActionHistory& history, ActionPtr action)
  {
    if (action && !action->isNull()) history.push(std::move(action), true);
  }

  /// A model of the stack whose items have vertices.
  Model* modelWithVertices()
  {
    Model* const model = stack().getNumModels() > 0 ? stack().getModel(below(stack().getNumModels())) : nullptr;
    return model && model->getGeometry() != MPrimitive::Region ? model : nullptr;
  }

  ActionPtr creation(StackSlice& slice)
  {
    Model* const model = modelWithVertices();
    if (!model) return nullptr;
    auto item = std::make_unique<ModelItem>(model, &slice);
    for (int i = 3 + below(4); i > 0; --i) item->appendVertex(point());
    return std::make_unique<NYXItemCreationAction>(std::move(item));
  }

  ActionPtr itemAction(StackSlice& slice)
  {
    if (slice.getNumItems() == 0 || below(4) == 0) return creation(slice);
    ModelItem& item = *slice.getItem(below(slice.getNumItems()));
    if (item.isRegion()) return std::make_unique<NYXItemShiftAction>(item, below(9) - 4, below(9) - 4);
    const int numVertices = item.getVertices().getSize();
    switch (below(7))
    {
    case 0:
      return std::make_unique<NYXItemDeletionAction>(item);
    case 1:
      return std::make_unique<NYXInsertVertexAction>(item, below(numVertices + 1), point());
    case 2:
      return std::make_unique<NYXMoveVertexAction>(item, below(numVertices), point());
    case 3:
      if (numVertices < 5) return nullptr;
      return std::make_unique<NYXRemoveVertexAction>(item, below(numVertices));
    case 4:
    {
      ModelItemProperties properties;
      properties.setPointSize(static_cast<float>(below(3)));
      item.getSelection().set(true, below(numVertices), true);
      return std::make_unique<NYXItemSelectionAttributesAction>(item, properties);
    }
    case 5:
    {
      Model* const model = modelWithVertices();
      if (!model || numVertices < 3) return nullptr;
      if (model->getGeometry() != MPrimitive::Polypoint) item.getSelection().set(true); // all, or there are too few
      return std::make_unique<NYXItemSelectionConversionAction>(item, model);
    }
    default:
      return std::make_unique<NYXItemShiftAction>(item, below(9) - 4, below(9) - 4);
    }
  }

  ActionPtr modelAction()
  {
    if (stack().getNumModels() < 3 || below(3) == 0)
    {
      auto model = std::make_unique<Model>(newName());
      model->getProperties().setGeometry(static_cast<MPrimitive>(below(3)));
      return std::make_unique<NYXModelCreationAction>(stack(), std::move(model));
    }
    Model& model = *stack().getModel(below(stack().getNumModels()));
    switch (below(3))
    {
    case 0:
      return std::make_unique<NYXModelDeletionAction>(model);
    case 1:
      return std::make_unique<NYXModelOrderAction>(model, below(stack().getNumModels()));
    default:
      NYXModelProperties properties(model);
      properties.name = newName();
      properties.properties.setQuadMeshWidth(below(50));
      return std::make_unique<NYXModelPropertiesAction>(model, properties);
    }
  }

  ActionPtr sliceAction()
  {
    if (stack().getNumSlices() < 3 || below(4) == 0)
    {
      auto inserted = std::make_unique<StackSlice>();
      inserted->setName(newName());
      return std::make_unique<NYXSliceInsertionDeletionAction>(stack(), std::move(inserted),
                                                               below(stack().getNumSlices() + 1));
    }
    StackSlice& changed = slice();
    switch (below(4))
    {
    case 0:
      return std::make_unique<NYXSliceInsertionDeletionAction>(changed);
    case 1:
      return std::make_unique<NYXSliceOrderAction>(changed, below(stack().getNumSlices()));
    case 2:
      return std::make_unique<NYXRegistrationAction>(changed, Registration(below(9), below(9), below(90)));
    default:
      NYXSliceProperties properties(changed);
      properties.name = newName();
      properties.position = static_cast<NYXSliceProperties::Position>(below(3));
      properties.depth = properties.position == NYXSliceProperties::Default ? 0.f : static_cast<float>(below(100)) / 7;
      return std::make_unique<NYXSlicePropertiesAction>(changed, properties);
    }
  }

  ActionPtr stackAction()
  {
    const int kind = below(8);
    if (kind < 3) return modelAction();
    if (kind < 6) return sliceAction();
    if (kind < 7) return std::make_unique<NYXLengthUnitAction>(stack(), -9 + 3 * below(3));
    NYXStackProperties properties(stack());
    properties.defaultRelativePosition = static_cast<float>(below(100)) / 3;
    return std::make_unique<NYXStackPropertiesAction>(stack(), properties);
  }

  DrawnStack& _drawn;
  std::mt19937 _random;
  int _numNames = 0;
};

class RandomActions : public testing::TestWithParam<unsigned int>
{
};

/// The user stays on one slice: undo and redo walk along the states that there were.
TEST_P(RandomActions, OnOneSliceWalkAlongTheStates)
{
  DrawnStack drawn;
  RandomUser user(drawn, GetParam());
  StackSlice& shown = drawn.slice(0);
  NYXStackHistories& histories = drawn.stack().histories();
  std::vector<std::string> states = {drawn.state()};
  std::size_t now = 0, saved = 0;
  for (int i = 0; i < 150; ++i)
  {
    const int kind = user.below(5);
    const bool isOut = shown.getStack() == nullptr; // deleted: nothing can be drawn on it
    if (kind < 2)
    {
      const int numSteps =
          drawn.stack().history().getUndoListSize() + drawn.stack().sliceHistory(shown).getUndoListSize();
      kind == 0 || isOut ? user.makeStackStep() : user.makeSliceStep(shown);
      const int numStepsNow =
          drawn.stack().history().getUndoListSize() + drawn.stack().sliceHistory(shown).getUndoListSize();
      if (numStepsNow == numSteps) continue;
      states.resize(++now);
      states.push_back(drawn.state());
      if (saved >= now) saved = states.max_size(); // lost
    }
    else if (kind < 4)
    {
      ASSERT_EQ(histories.isUndoable(&shown), now > 0);
      histories.undo(&shown);
      now -= now > 0 ? 1 : 0;
    }
    else
    {
      ASSERT_EQ(histories.isRedoable(&shown), now + 1 < states.size());
      histories.redo(&shown);
      now += now + 1 < states.size() ? 1 : 0;
    }
    ASSERT_TRUE(drawn.state() == states[now]) << i;
    ASSERT_EQ(drawn.stack().isModified(), now != saved) << i;
    if (user.below(20) == 0)
    {
      drawn.stack().setModified(false);
      saved = now;
    }
  }
}

/// The user walks about: what was undone in any order can be made again, in any order, to the same end.
TEST_P(RandomActions, OnAllSlicesAreUndoneAndMadeAgainInAnyOrder)
{
  DrawnStack drawn;
  RandomUser user(drawn, 1000 + GetParam());
  NYXStackHistories& histories = drawn.stack().histories();
  const std::string start = drawn.stateWithoutBookmarks();
  for (int i = 0; i < 100; ++i)
  {
    const int kind = user.below(10);
    StackSlice& shown = user.slice();
    if (kind < 2)
      user.makeStackStep();
    else if (kind < 6)
      user.makeSliceStep(shown);
    else if (kind < 8)
      histories.undo(&shown);
    else
      histories.redo(&shown);
  }
  const auto goAllTheWay = [&](auto mayGo, auto go)
  {
    const auto canGo = [&]
    {
      for (int i = 0; i < drawn.stack().getNumSlices(); ++i)
        if (mayGo(&drawn.slice(i))) return true;
      return mayGo(nullptr);
    };
    while (canGo()) go(user.below(10) == 0 ? nullptr : &user.slice());
  };
  const auto undoAll = [&]
  {
    goAllTheWay([&](const StackSlice* shown) { return histories.isUndoable(shown); },
                [&](const StackSlice* shown) { histories.undo(shown); });
  };
  goAllTheWay([&](const StackSlice* shown) { return histories.isRedoable(shown); },
              [&](const StackSlice* shown) { histories.redo(shown); });
  const std::string end = drawn.stateWithoutBookmarks();
  for (int round = 0; round < 3; ++round)
  {
    undoAll();
    ASSERT_TRUE(drawn.stateWithoutBookmarks() == start);
    ASSERT_FALSE(drawn.stack().isModified());
    goAllTheWay([&](const StackSlice* shown) { return histories.isRedoable(shown); },
                [&](const StackSlice* shown) { histories.redo(shown); });
    ASSERT_TRUE(drawn.stateWithoutBookmarks() == end);
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomActions, testing::Range(0u, 6u));
} // namespace
