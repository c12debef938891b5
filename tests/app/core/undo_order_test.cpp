// How the history of the stack and those of its slices are undone together.
#include "drawn_stack.h"

#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/actions/nyxmodelcreationaction.h"
#include "app/core/actions/nyxmodeldeletionaction.h"
#include "app/core/actions/nyxmovevertexaction.h"
#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/actions/nyxstackpropertiesaction.h"

#include <memory>

namespace
{
struct UndoOrder : testing::Test
{
  UndoOrder() : histories(d.stack().histories()) {}

  void rename(const std::string& name)
  {
    NYXStackProperties properties(d.stack());
    properties.name = name;
    d.stack().history().pushStep(std::make_unique<NYXStackPropertiesAction>(d.stack(), properties));
  }

  /// Moves a vertex of the first cell of a slice.
  void moveOn(int slice)
  {
    ModelItem& cell = *d.slice(slice).getItem(0);
    d.stack()
        .sliceHistory(d.slice(slice))
        .pushStep(std::make_unique<NYXMoveVertexAction>(cell, 0, Vector<int>{++numMoves, 77}));
  }

  void drawOn(int slice, Model& model)
  {
    auto item = std::make_unique<ModelItem>(&model, &d.slice(slice));
    item->setVertices(curveThrough<int>({{1, 1}, {9, 1}, {1, 9}}));
    d.stack().sliceHistory(d.slice(slice)).pushStep(std::make_unique<NYXItemCreationAction>(std::move(item)));
  }

  Model& createModel()
  {
    d.stack().history().pushStep(std::make_unique<NYXModelCreationAction>(d.stack(), std::make_unique<Model>("new")));
    return d.model("new");
  }

  /// What Undo and Redo say while a slice is shown, or none.
  std::string undoText(int slice) { return histories.undoDescription(shown(slice), false).toStdString(); }
  std::string redoText(int slice) { return histories.redoDescription(shown(slice), false).toStdString(); }
  void undo(int slice) { histories.undo(shown(slice)); }
  void redo(int slice) { histories.redo(shown(slice)); }
  const StackSlice* shown(int slice) { return slice < 0 ? nullptr : &d.slice(slice); }

  DrawnStack d;
  NYXStackHistories& histories;
  int numMoves = 0;
};

TEST_F(UndoOrder, TakesTheNewerStepOfStackAndShownSlice)
{
  const std::string before = d.state();
  rename("one");
  moveOn(0);
  rename("two");
  moveOn(1);
  const std::string after = d.state();
  EXPECT_EQ(undoText(0), "Stack properties");
  EXPECT_EQ(undoText(1), "Move item vertex");
  EXPECT_EQ(undoText(2), "Stack properties");
  EXPECT_EQ(undoText(-1), "Stack properties");
  undo(0);
  EXPECT_EQ(undoText(0), "Move item vertex");
  undo(0);
  undo(0);
  EXPECT_EQ(d.stack().getName(), "cells") << "the move on slice 1 does not hinder it";
  EXPECT_FALSE(histories.isUndoable(shown(0)));
  EXPECT_EQ(undoText(0), "(Nothing to undo)");
  undo(1);
  EXPECT_EQ(d.state(), before);
  redo(0);
  EXPECT_EQ(d.stack().getName(), "one");
  EXPECT_EQ(redoText(0), "Move item vertex") << "older than the second name";
  redo(0);
  redo(0);
  redo(1);
  EXPECT_EQ(d.state(), after);
}

TEST_F(UndoOrder, AStepThatTouchesSlicesWaitsForNewerOnesOnOthers)
{
  drawOn(2, createModel());
  EXPECT_FALSE(histories.isUndoable(shown(0)));
  EXPECT_EQ(histories.undoObstacle(shown(0)), shown(2));
  undo(0); // nothing happens
  EXPECT_EQ(d.model("new").getNumItems(), 1);
  undo(2);
  EXPECT_EQ(undoText(0), "Model creation");
  undo(0);
  EXPECT_EQ(d.stack().findModel("new"), -1);
  EXPECT_EQ(redoText(2), "Model creation");
  redo(0);
  redo(2);
  EXPECT_EQ(d.model("new").getNumItems(), 1);
}

TEST_F(UndoOrder, AStepIsNotMadeAgainBeforeWhatItFollowedOnOtherSlices)
{
  moveOn(1);
  d.stack().history().pushStep(std::make_unique<NYXModelDeletionAction>(d.model("cells")));
  undo(1);
  undo(1);
  EXPECT_FALSE(histories.isRedoable(shown(0)));
  EXPECT_EQ(histories.redoObstacle(shown(0)), shown(1));
  redo(1);
  redo(0);
  EXPECT_EQ(d.stack().findModel("cells"), -1);
}

TEST_F(UndoOrder, ASliceStepWaitsForTheStackStepThatTookItsObjectAway)
{
  const std::string before = d.state();
  moveOn(1);
  d.stack().history().pushStep(std::make_unique<NYXModelDeletionAction>(d.model("cells")));
  StackSlice& slice = d.slice(1);
  d.stack().history().pushStep(std::make_unique<NYXSliceInsertionDeletionAction>(slice));
  EXPECT_EQ(histories.undoDescription(&slice, false), "Delete slice");
  undo(0);
  undo(0);
  undo(1);
  EXPECT_EQ(d.state(), before);
}

TEST_F(UndoOrder, NewStepsEndWhatCouldBeMadeAgainWithObjectsThatDie)
{
  drawOn(1, createModel());
  undo(1);
  undo(1);
  moveOn(0); // the model is lost for good, and so must be what was drawn in it
  EXPECT_FALSE(histories.isRedoable(shown(1)));
  EXPECT_EQ(d.stack().sliceHistory(d.slice(1)).getRedoListSize(), 0);
  undo(0);
  moveOn(1);
  EXPECT_TRUE(histories.isRedoable(shown(0))) << "steps on other slices do not hinder it";
  rename("other");
  EXPECT_FALSE(histories.isRedoable(shown(0)));
}

TEST_F(UndoOrder, ASliceThatDiesTakesItsHistoryAlong)
{
  auto inserted = std::make_unique<StackSlice>();
  inserted->setName("inserted");
  StackSlice& slice = *inserted;
  d.stack().history().pushStep(std::make_unique<NYXSliceInsertionDeletionAction>(d.stack(), std::move(inserted), 0));
  drawOn(0, d.model("cells"));
  d.stack().setModified(false);
  undo(0);
  histories.undo(&slice);
  rename("new"); // the inserted slice dies
  undo(0);
  EXPECT_TRUE(d.stack().isModified());
  EXPECT_FALSE(histories.isUndoable(shown(0)));
}

TEST_F(UndoOrder, NothingIsUndoneWhileAStepIsOpen)
{
  rename("one");
  d.stack().sliceHistory(d.slice(0)).openStep();
  EXPECT_FALSE(histories.isUndoable(shown(1)));
  d.stack().sliceHistory(d.slice(0)).closeStep();
  EXPECT_TRUE(histories.isUndoable(shown(1)));
}
} // namespace
