// The dialogs of models: edit, transfer and filter.
#include "dialog_test_support.h"

#include "app/core/actions/nyxmodeldeletionaction.h"
#include "app/nyxfiltermodelsdialog.h"
#include "app/nyxmodelchecklist.h"
#include "app/nyxmodelsdialog.h"
#include "app/nyxtransfermodelsdialog.h"

#include <QAbstractItemModel>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QTreeView>

namespace
{
class ModelsDialogs : public DialogTest
{
protected:
  std::string names() const
  {
    std::string text;
    for (int i = 0; i < stack.getNumModels(); ++i) text += stack.getModel(i)->getName() + " ";
    return text;
  }

  static QString message(const QDialog& dialog, const char* name = "message")
  {
    QCoreApplication::processEvents();
    return find<QLabel>(dialog, name).text();
  }

  /// Opens the editor of a name in the list and types another name.
  static QLineEdit* renameInList(const QDialog& dialog, int row, const QString& name)
  {
    auto& list = find<QTreeView>(dialog, "modelList");
    list.selectionModel()->select(list.model()->index(row, 0),
                                  QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    press(dialog, "renameModelButton");
    auto* const edit = dialog.findChild<QLineEdit*>("nameInList");
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, name);
    QTest::keyClick(edit, Qt::Key_Return);
    QCoreApplication::processEvents();
    return dialog.findChild<QLineEdit*>("nameInList");
  }
};

TEST_F(ModelsDialogs, NewModelsGetAFreeNameAndColor)
{
  stack.getModel(2)->setName("Model");
  before = file();
  NYXModelsDialog dialog(stack);
  dialog.show();
  press(dialog, "newModelButton");
  ASSERT_EQ(stack.getNumModels(), 5);
  const Model& model = *stack.getModel(4);
  EXPECT_EQ(model.getName(), "Model 2");
  EXPECT_EQ(model.getItemProperties().getColor(), (ModelItemProperties::Color{230, 159, 0}));
  EXPECT_EQ(dialog.selectedModels(), std::vector<Model*>{stack.getModel(4)});
  EXPECT_NE(dialog.findChild<QLineEdit*>("nameInList"), nullptr);
  expectOneStep();
}

TEST_F(ModelsDialogs, RenameInPlaceRefusesWhatExists)
{
  NYXModelsDialog dialog(stack);
  dialog.show();
  for (const char* refused : {"cells", "", "a__SC__b"})
  {
    QLineEdit* const edit = renameInList(dialog, 2, refused);
    ASSERT_NE(edit, nullptr) << refused; // stays open
    EXPECT_FALSE(edit->hasAcceptableInput());
    QTest::keyClick(edit, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  expectNoStep();
  renameInList(dialog, 2, "somata");
  EXPECT_EQ(names(), "cells fibres somata tissue ");
  expectOneStep();
}

TEST_F(ModelsDialogs, DeleteTellsHowManyItemsWentWithTheModels)
{
  NYXModelsDialog dialog(stack);
  dialog.show();
  press(dialog, "deleteModelButton");
  EXPECT_EQ(message(dialog), "Model \"cells\" deleted, with 6 items. Undo restores them.");
  EXPECT_EQ(dialog.selectedModels(), std::vector<Model*>{stack.getModel(0)});
  expectOneStep();
  stack.history().undo();
  dialog.select({stack.getModel(0), stack.getModel(1)});
  press(dialog, "deleteModelButton");
  EXPECT_EQ(message(dialog), "2 models deleted, with 7 items. Undo restores them.");
  EXPECT_EQ(names(), "nuclei tissue ");
  expectOneStep();
}

TEST_F(ModelsDialogs, OrderFollowsButtonsAndDrags)
{
  NYXModelsDialog dialog(stack);
  dialog.show();
  const auto drop = [&](int row)
  {
    find<QTreeView>(dialog, "modelList").model()->dropMimeData(nullptr, Qt::MoveAction, row, 0, {});
    QCoreApplication::processEvents();
  };
  EXPECT_FALSE(isEnabled(dialog, "modelUpButton"));
  press(dialog, "modelDownButton");
  EXPECT_EQ(names(), "fibres cells nuclei tissue ");
  EXPECT_EQ(dialog.selectedModels(), std::vector<Model*>{stack.getModel(1)});
  expectOneStep();
  press(dialog, "modelUpButton");
  EXPECT_EQ(names(), "cells fibres nuclei tissue ");
  dialog.select({stack.getModel(0), stack.getModel(2)});
  drop(4);
  EXPECT_EQ(names(), "fibres tissue cells nuclei ");
  EXPECT_FALSE(isEnabled(dialog, "modelDownButton"));
  drop(1);
  EXPECT_EQ(names(), "fibres cells nuclei tissue ");
  drop(1); // stays
  EXPECT_EQ(stack.history().getUndoListSize(), 4);
}

TEST_F(ModelsDialogs, PropertiesOfOneModel)
{
  NYXModelsDialog dialog(stack);
  dialog.show();
  dialog.select({stack.getModel(2)});
  EXPECT_FALSE(isEnabled(dialog, "applyButton"));
  type(dialog, "modelName", "somata");
  choose(dialog, "modelGeometry", 1);
  type(dialog, "lineWidth", "2.5");
  type(dialog, "surfaceOpacity", "40");
  type(dialog, "quadMeshWidth", "31");
  choose(dialog, "renderingMode", 4);
  choose(dialog, "vertexSymbol", 0);
  press(dialog, "applyButton");
  for (const char* flag : {"hidden3D", "economicRendering", "endCap"}) find<QCheckBox>(dialog, flag).click();
  stack.history().undo(); // what is not applied yet stays
  QCoreApplication::processEvents();
  EXPECT_TRUE(find<QCheckBox>(dialog, "endCap").isChecked());
  EXPECT_EQ(find<QLineEdit>(dialog, "modelName").text(), "nuclei");
  stack.history().redo();
  stack.history().clear();
  before = file();
  press(dialog, "okButton");
  EXPECT_FALSE(dialog.isVisible());
  const Model& model = *stack.getModel(2);
  EXPECT_EQ(model.getName(), "somata");
  EXPECT_EQ(model.getGeometry(), MPrimitive::Polyline);
  EXPECT_EQ(model.getItemProperties().getLineWidth(), 2.5f);
  EXPECT_EQ(model.getProperties().getSurfaceOpacity(), 102);
  EXPECT_EQ(model.getProperties().getQuadMeshWidth(), 31);
  EXPECT_EQ(model.getProperties().getRenderingMode(), RenderingMode::TriangularMesh);
  EXPECT_EQ(model.getItemProperties().getVertexSymbol(), VertexSymbol::Cube);
  EXPECT_FALSE(model.getItemProperties().getRenderingVisibility());
  EXPECT_TRUE(model.getProperties().getEconomicRendering());
  EXPECT_TRUE(model.getProperties().getEndCapFlag());
  EXPECT_FALSE(model.getProperties().hasBeginCapFlag()); // what was not touched stays undefined
  EXPECT_FALSE(model.getProperties().definesSurfaceShininess());
  expectOneStep();
}

TEST_F(ModelsDialogs, PropertiesOfSeveralModels)
{
  stack.getModel(0)->getProperties().setVertexSmoothing(3);
  before = file();
  NYXModelsDialog dialog(stack);
  dialog.show();
  dialog.select({stack.getModel(0), stack.getModel(2)});
  EXPECT_FALSE(isEnabled(dialog, "modelName"));
  EXPECT_EQ(find<QLineEdit>(dialog, "modelName").placeholderText(), "(several)");
  EXPECT_FALSE(isEnabled(dialog, "modelGeometry")); // one of them has items
  EXPECT_FALSE(find<QWidget>(dialog, "modelGeometry").toolTip().isEmpty());
  type(dialog, "normalSmoothing", "7");
  press(dialog, "applyButton");
  EXPECT_EQ(stack.getModel(0)->getProperties().getNormalSmoothing(), 7);
  EXPECT_EQ(stack.getModel(2)->getProperties().getNormalSmoothing(), 7);
  EXPECT_EQ(stack.getModel(0)->getProperties().getVertexSmoothing(), 3);
  EXPECT_FALSE(stack.getModel(2)->getProperties().definesVertexSmoothing());
  expectOneStep();
}

TEST_F(ModelsDialogs, CancelLeavesChangesToPropertiesOut)
{
  NYXModelsDialog dialog(stack);
  dialog.show();
  type(dialog, "modelName", "other");
  QTest::keyClick(&dialog, Qt::Key_Escape);
  EXPECT_FALSE(dialog.isVisible());
  expectNoStep();
}

TEST_F(ModelsDialogs, RefusedNamesCannotBeApplied)
{
  NYXModelsDialog dialog(stack);
  dialog.show();
  type(dialog, "modelName", "fibres");
  EXPECT_FALSE(isEnabled(dialog, "okButton"));
  EXPECT_FALSE(isEnabled(dialog, "applyButton"));
  EXPECT_FALSE(dialog.apply());
  EXPECT_EQ(message(dialog), "There is a model \"fibres\" already");
  expectNoStep();
}

TEST_F(ModelsDialogs, TransferCopiesModelsInOneStep)
{
  NYXStack& other = addStack("other");
  addModel(other, "cells", MPrimitive::Polygon);
  other.getSlice(0)->setName("slice 2"); // its first, and without an image
  other.deleteSlice(2);
  ImageSourceFile small("missing.tif");
  small.setFallbackSize(80, 45);
  other.getSlice(0)->setImageSource(small);
  const std::string otherBefore = textOf(other, folder);

  NYXTransferModelsDialog dialog(other);
  dialog.show();
  find<NYXModelCheckList>(dialog, "models").setChecked("nuclei", false);
  EXPECT_EQ(message(dialog, "outcome").section('\n', 0, 0), "4 items will be copied, pixel by pixel.");
  EXPECT_TRUE(message(dialog, "outcome").contains("2 items left out: no slice matches."));
  EXPECT_TRUE(message(dialog, "outcome").contains("1 item left out: beyond the image."));
  choose(dialog, "sliceMatching", 1);
  EXPECT_EQ(message(dialog, "outcome").section('\n', 0, 0), "3 items will be copied, pixel by pixel.");
  find<QCheckBox>(dialog, "keepItemsOutside").click();
  EXPECT_EQ(message(dialog, "outcome").section('\n', 0, 0), "4 items will be copied, pixel by pixel.");
  press(dialog, "okButton");
  ASSERT_EQ(other.getNumModels(), 4);
  EXPECT_EQ(other.getModel(1)->getName(), "cells 2");
  EXPECT_EQ(other.getModel(1)->getNumItems(), 4);
  EXPECT_EQ(other.getModel(2)->getName(), "fibres");
  expectOneStep(other, otherBefore);
  expectNoStep();
}

TEST_F(ModelsDialogs, TransferFollowsStacksThatOpenAndClose)
{
  NYXTransferModelsDialog dialog(stack);
  dialog.show();
  EXPECT_EQ(message(dialog, "outcome"), "Open another stack first: there is only this one.");
  EXPECT_FALSE(isEnabled(dialog, "okButton"));
  NYXStack& other = addStack("other");
  addModel(other, "new", MPrimitive::Polygon);
  QCoreApplication::processEvents();
  choose(dialog, "fromStack", 1);
  EXPECT_TRUE(isEnabled(dialog, "okButton"));
  NYXStackServer::server().removeStack(other);
  QCoreApplication::processEvents();
  EXPECT_FALSE(isEnabled(dialog, "okButton"));
  EXPECT_TRUE(dialog.isVisible());
  NYXStackServer::server().removeStack(stack);
  EXPECT_FALSE(dialog.isVisible());
}

TEST_F(ModelsDialogs, FilterDeletesInOneStep)
{
  NYXFilterModelsDialog dialog(stack); // cells: 10 pixels of 0.325 high, 10 to 60 wide
  dialog.show();
  EXPECT_EQ(message(dialog, "outcome"), "7 of 7 items would stay, 0 would be deleted.");
  EXPECT_FALSE(isEnabled(dialog, "applyButton"));
  choose(dialog, "measure", 2);
  type(dialog, "sizeFrom", "31.6"); // 300 pixels are 31.69
  EXPECT_EQ(message(dialog, "outcome"),
            "5 of 7 items would stay, 2 would be deleted. Items without such a size, which stay: 1.");
  type(dialog, "lastSlice", "2"); // without cells 2 and 5
  EXPECT_EQ(message(dialog, "outcome").section(',', 0, 0), "3 of 7 items would stay");
  type(dialog, "modelPattern", "c*s");
  EXPECT_EQ(message(dialog, "outcome"), "2 of 6 items would stay, 4 would be deleted.");
  type(dialog, "slicePattern", "*1");
  EXPECT_EQ(message(dialog, "outcome"), "1 of 6 items would stay, 5 would be deleted.");
  expectNoStep();
  press(dialog, "applyButton");
  EXPECT_EQ(message(dialog), "5 items deleted. Undo restores them.");
  EXPECT_EQ(stack.getModel(0)->getNumItems(), 1);
  EXPECT_EQ(stack.getModel(0)->getItem(0)->boundingBox().getMaximum()[0], 50);
  EXPECT_EQ(stack.getModel(1)->getNumItems(), 1);
  expectOneStep();
}

TEST_F(ModelsDialogs, FilterLimitsCanBeClearedAndItsSafeButtonChangesNothing)
{
  NYXFilterModelsDialog dialog(stack);
  dialog.show();
  type(dialog, "sizeFrom", "4");
  EXPECT_EQ(message(dialog, "outcome"), "6 of 7 items would stay, 1 would be deleted.");
  type(dialog, "sizeFrom", "");
  EXPECT_EQ(message(dialog, "outcome"), "7 of 7 items would stay, 0 would be deleted.");
  type(dialog, "sizeFrom", "4");
  QTest::keyClick(&find<QWidget>(dialog, "sizeFrom"), Qt::Key_Return); // ends the typing
  EXPECT_TRUE(dialog.isVisible());
  QTest::keyClick(&dialog, Qt::Key_Return);
  EXPECT_FALSE(dialog.isVisible());
  expectNoStep();
}

TEST_F(ModelsDialogs, FollowChangesElsewhereAndCloseWithTheirStack)
{
  NYXModelsDialog edit(stack);
  NYXFilterModelsDialog filter(stack);
  edit.show();
  filter.show();
  edit.select({stack.getModel(1), stack.getModel(2)});
  type(edit, "lineWidth", "4");
  stack.history().pushStep(std::make_unique<NYXModelDeletionAction>(*stack.getModel(1)));
  EXPECT_EQ(edit.selectedModels(), std::vector<Model*>{stack.getModel(1)}); // "nuclei", now in second place
  EXPECT_EQ(message(filter, "outcome"), "6 of 6 items would stay, 0 would be deleted.");
  EXPECT_EQ(find<QListWidget>(filter, "models").count(), 3);
  EXPECT_TRUE(isEnabled(edit, "applyButton")); // for the model that is left
  stack.history().undo();
  QCoreApplication::processEvents();
  EXPECT_EQ(find<QTreeView>(edit, "modelList").model()->rowCount(), 4);
  NYXStackServer::server().removeStack(stack);
  EXPECT_FALSE(edit.isVisible());
  EXPECT_FALSE(filter.isVisible());
}

TEST_F(ModelsDialogs, RememberTheirSizes)
{
  {
    NYXFilterModelsDialog dialog(stack);
    dialog.show();
    dialog.resize(700, 500);
    dialog.reject();
  }
  EXPECT_EQ(NYXFilterModelsDialog(stack).size(), QSize(700, 500));
  EXPECT_EQ(QSettings().value("dialogs/filterModelsDialog/size").toSize(), QSize(700, 500));
}
} // namespace
