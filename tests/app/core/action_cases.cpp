#include "action_cases.h"

#include "app/core/actions/nyxinsertvertexaction.h"
#include "app/core/actions/nyxitemappendpointsaction.h"
#include "app/core/actions/nyxitemconversionaction.h"
#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/actions/nyxitemdeletionaction.h"
#include "app/core/actions/nyxitemselectionattributesaction.h"
#include "app/core/actions/nyxitemselectionconversionaction.h"
#include "app/core/actions/nyxitemshiftaction.h"
#include "app/core/actions/nyxitemtriangulationtagaction.h"
#include "app/core/actions/nyxitemverticeschangeaction.h"
#include "app/core/actions/nyxlengthunitaction.h"
#include "app/core/actions/nyxmodelcreationaction.h"
#include "app/core/actions/nyxmodeldeletionaction.h"
#include "app/core/actions/nyxmodelitembrushaction.h"
#include "app/core/actions/nyxmodelorderaction.h"
#include "app/core/actions/nyxmodelpropertiesaction.h"
#include "app/core/actions/nyxmovevertexaction.h"
#include "app/core/actions/nyxposeinsertiondeletionaction.h"
#include "app/core/actions/nyxregistrationaction.h"
#include "app/core/actions/nyxremoveselectionaction.h"
#include "app/core/actions/nyxremovevertexaction.h"
#include "app/core/actions/nyxselectionaction.h"
#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/actions/nyxsliceorderaction.h"
#include "app/core/actions/nyxslicepropertiesaction.h"
#include "app/core/actions/nyxstackpropertiesaction.h"

std::unique_ptr<ModelItem> newItem(DrawnStack& drawn)
{
  auto item = std::make_unique<ModelItem>(&drawn.model("nuclei"), &drawn.slice(2));
  item->setVertices(curveThrough<int>({{1, 1}, {20, 1}, {20, 20}}));
  return item;
}

namespace
{
Vertices<int> points(const std::vector<std::vector<int>>& pixels)
{
  return curveThrough<int>(pixels);
}

ModelItem& selected(ModelItem& item, const std::vector<int>& vertices)
{
  for (const int i : vertices) item.getSelection().set(true, i, false);
  return item;
}

NYXModelProperties otherProperties(const Model& model)
{
  NYXModelProperties properties(model);
  properties.name = "somata";
  properties.properties.setSurfaceOpacity(9);
  properties.itemProperties.setColor(9, 8, 7);
  return properties;
}

NYXSliceProperties otherProperties(const StackSlice& slice)
{
  NYXSliceProperties properties(slice);
  properties.name = "torn";
  properties.annotation = "left";
  properties.pixelCalibration.setPixelWidth(0.3f);
  properties.position = NYXSliceProperties::Absolute;
  properties.depth = 7;
  return properties;
}

NYXStackProperties otherProperties(const NYXStack& stack)
{
  NYXStackProperties properties(stack);
  properties.name = "rat";
  properties.annotation = "note";
  properties.invertZAxis = true;
  properties.defaultRelativePosition = 0.1f;
  properties.defaultPixelCalibration.setLengthUnit(LengthUnit(-9));
  return properties;
}
} // namespace

const std::vector<ActionCase>& actionCases()
{
  static const std::vector<ActionCase> list = {
      {"item creation",
       [](DrawnStack& d) { return make<NYXItemCreationAction>(newItem(d)); },
       "Item creation",
       {17},
       false},
      {"creation of several items",
       [](DrawnStack& d)
       {
         std::vector<std::unique_ptr<ModelItem>> items;
         for (int i = 0; i < 3; ++i) items.push_back(newItem(d));
         return make<NYXItemCreationAction>(std::move(items));
       },
       "Item creation",
       {17, 17, 17},
       false},
      {"item deletion",
       [](DrawnStack& d) { return make<NYXItemDeletionAction>(d.item("cells", 2)); },
       "Item deletion",
       {18}},
      {"deletion of several items",
       [](DrawnStack& d)
       {
         return make<NYXItemDeletionAction>(
             std::vector<ModelItem*>{&d.item("cells", 4), &d.item("fibres", 0), &d.item("cells", 0)});
       },
       "Item deletion",
       {18, 18, 18}},
      {"points appended",
       [](DrawnStack& d) {
         return make<NYXItemAppendPointsAction>(d.item("spots", 0), points({{1, 2}, {3, 4}}));
       },
       "Append points to item",
       {19}},
      {"region merged",
       [](DrawnStack& d)
       {
         ModelItem other(&d.model("tissue"), &d.slice(0));
         other.setRLEItemSet(disc(45, 45, 9));
         return make<NYXItemAppendPointsAction>(d.item("tissue", 0), other);
       },
       "Append points to item",
       {19}},
      {"vertex inserted",
       [](DrawnStack& d) {
         return make<NYXInsertVertexAction>(d.item("cells", 0), 4, Vector<int>{3, 30});
       },
       "Insert item vertex",
       {19}},
      {"vertex moved",
       [](DrawnStack& d) {
         return make<NYXMoveVertexAction>(d.item("cells", 0), 0, Vector<int>{2, 3});
       },
       "Move item vertex",
       {19}},
      {"vertex removed",
       [](DrawnStack& d) {
         return make<NYXRemoveVertexAction>(selected(d.item("spots", 0), {1, 3}), 1);
       },
       "Remove item vertex",
       {19}},
      {"vertices removed within a radius", // 0, and 1 at a distance of sqrt(5)
       [](DrawnStack& d) {
         return make<NYXRemoveVertexAction>(selected(d.item("spots", 0), {0, 3}), Vector<int>{5, 5}, 2.24);
       },
       "Remove item vertex",
       {19}},
      {"selected vertices removed",
       [](DrawnStack& d) { return make<NYXRemoveSelectionAction>(selected(d.item("cells", 0), {2})); },
       "Remove item selection",
       {19}},
      {"unselected vertices removed",
       [](DrawnStack& d) {
         return make<NYXRemoveSelectionAction>(selected(d.item("spots", 0), {0, 2}), true);
       },
       "Remove item selection",
       {19}},
      {"selection",
       [](DrawnStack& d)
       {
         ModelItemSelection selection = d.item("cells", 0).getSelection();
         selection.set(true, 1, false);
         return make<NYXSelectionAction>(d.item("cells", 0), selection);
       },
       "Item selection",
       {22}},
      {"properties of an item",
       [](DrawnStack& d)
       {
         ModelItemProperties properties;
         properties.setColor(1, 2, 3);
         return make<NYXItemSelectionAttributesAction>(selected(d.item("cells", 1), {0}), properties);
       },
       "Item properties",
       {20}},
      {"properties of some points",
       [](DrawnStack& d)
       {
         ModelItemProperties properties;
         properties.setPointSize(7);
         return make<NYXItemSelectionAttributesAction>(selected(d.item("spots", 0), {1, 2}), properties);
       },
       "Item properties",
       {19, 17}},
      {"conversion of a selected item",
       [](DrawnStack& d)
       { return make<NYXItemSelectionConversionAction>(selected(d.item("cells", 1), {0}), &d.model("nuclei")); },
       "Conversion to: nuclei",
       {23}},
      {"conversion of some points to a region",
       [](DrawnStack& d)
       { return make<NYXItemSelectionConversionAction>(selected(d.item("spots", 0), {3}), &d.model("tissue")); },
       "Conversion to: tissue",
       {19, 17, 23}},
      {"conversion of a contour to a region",
       [](DrawnStack& d) { return make<NYXItemConversionAction>(d.item("cells", 1), d.model("tissue")); },
       "Conversion to: tissue",
       {23}},
      {"conversion of a region to points",
       [](DrawnStack& d) { return make<NYXItemConversionAction>(d.item("tissue", 0), d.model("spots")); },
       "Conversion to: spots",
       {23}},
      {"all vertices changed",
       [](DrawnStack& d) {
         return make<NYXItemVerticesChangeAction>(d.item("cells", 0), points({{0, 0}, {9, 0}, {0, 9}}));
       },
       "Change item vertices",
       {19}},
      {"triangulation tag",
       [](DrawnStack& d)
       { return make<NYXItemTriangulationTagAction>(d.item("cells", 0), CurveStackTriangulationContourTag::Begin); },
       "Item triangulation tag",
       {21}},
      {"brush",
       [](DrawnStack& d)
       { return make<NYXModelItemBrushAction>(d.item("tissue", 0), disc(45, 45, 9), NYXModelItemBrushAction::Paint); },
       "Paint region",
       {19}},
      {"eraser",
       [](DrawnStack& d)
       { return make<NYXModelItemBrushAction>(d.item("tissue", 0), disc(45, 45, 9), NYXModelItemBrushAction::Erase); },
       "Erase from region",
       {19}},
      {"contour shifted",
       [](DrawnStack& d) { return make<NYXItemShiftAction>(d.item("cells", 0), 5, -3); },
       "Move item",
       {19}},
      {"region shifted",
       [](DrawnStack& d) { return make<NYXItemShiftAction>(d.item("tissue", 0), -5, 3); },
       "Move item",
       {19}},
      {"model creation",
       [](DrawnStack& d) { return make<NYXModelCreationAction>(d.stack(), std::make_unique<Model>("vessels")); },
       "Model creation",
       {14},
       false},
      {"model deletion",
       [](DrawnStack& d) { return make<NYXModelDeletionAction>(d.model("cells")); },
       "Model deletion",
       {15}},
      {"model properties",
       [](DrawnStack& d)
       { return make<NYXModelPropertiesAction>(d.model("cells"), otherProperties(d.model("cells"))); },
       "Model properties",
       {16}},
      {"model order",
       [](DrawnStack& d) { return make<NYXModelOrderAction>(d.model("nuclei"), 1); },
       "Order of models",
       {16}},
      {"slice insertion",
       [](DrawnStack& d)
       {
         auto slice = std::make_unique<StackSlice>();
         slice->setName("new");
         slice->setImageSource(ImageSourceFile("new.tif"));
         d.stack().setImagesPath("images");
         return make<NYXSliceInsertionDeletionAction>(d.stack(), std::move(slice), 1);
       },
       "Insert slice",
       {},
       false},
      {"slice deletion",
       [](DrawnStack& d) { return make<NYXSliceInsertionDeletionAction>(d.slice(0)); },
       "Delete slice",
       {}},
      {"slice order", [](DrawnStack& d) { return make<NYXSliceOrderAction>(d.slice(0), 2); }, "Order of slices", {6}},
      {"slice properties",
       [](DrawnStack& d) { return make<NYXSlicePropertiesAction>(d.slice(1), otherProperties(d.slice(1))); },
       "Slice properties",
       {10, 8, 12, 11}},
      {"registration of a slice",
       [](DrawnStack& d) { return make<NYXRegistrationAction>(d.slice(1), Registration(1, 2, 3)); },
       "Slice registration",
       {5}},
      {"registration of all slices",
       [](DrawnStack& d)
       {
         std::vector<NYXRegistrationAction::Alignment> all;
         for (int i = 1; i < 3; ++i) all.push_back({&d.slice(i), Registration(i, -i, 10 * i)});
         return make<NYXRegistrationAction>(all);
       },
       "Stack registration",
       {5}},
      {"stack properties",
       [](DrawnStack& d) { return make<NYXStackPropertiesAction>(d.stack(), otherProperties(d.stack())); },
       "Stack properties",
       {2, 6, 7}},
      {"length unit", [](DrawnStack& d) { return make<NYXLengthUnitAction>(d.stack(), -9); }, "Length unit", {6, 7}},
      {"pose insertion",
       [](DrawnStack& d)
       { return make<NYXPoseInsertionDeletionAction>(d.stack(), std::make_unique<Pose>(Pose::canonicalPose1())); },
       "Pose creation",
       {24},
       false},
      {"pose deletion",
       [](DrawnStack& d) { return make<NYXPoseInsertionDeletionAction>(*d.stack().getPose(0)); },
       "Pose deletion",
       {25}},
  };
  return list;
}
