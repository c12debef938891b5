// How the slice widget follows what happens to its slice.

#include "counting_server.h"

#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "numeric/randomgenerator.h"
#include "slice/image/nyxsliceimageproxy.h"
#include "slice/image/nyxslicewidget.h"
#include "slice/image/nyxslicewidgetcanvas.h"
#include "slice/image/nyxslicewidgetmediator.h"
#include "slice/image/nyxslicewidgetstatusbar.h"
#include "tests/support/errors.h"
#include "tests/support/stacks.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QLabel>
#include <QPainter>
#include <QTest>
#include <QTransform>

namespace
{
std::unique_ptr<NYXSliceWidget> widgetOf(StackSlice& slice)
{
  auto widget = std::make_unique<NYXSliceWidget>();
  widget->resize(400, 300);
  widget->show();
  EXPECT_TRUE(QTest::qWaitForWindowExposed(widget.get()));
  widget->setSlice(&slice);
  return widget;
}

QImage pictureOf(NYXSliceWidget& widget)
{
  return widget.sliceCanvas().grabFramebuffer();
}

int numPixelsUnlike(const QImage& picture, QRgb color)
{
  int count = 0;
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x) count += picture.pixel(x, y) != color;
  return count;
}

/// A slice of 100 x 80 pixels whose image is missing, shown by a widget.
class SliceWidget : public testing::Test
{
protected:
  /// A new widget of the slice shows the same.
  void expectUpToDate()
  {
    const std::unique_ptr<NYXSliceWidget> fresh = widgetOf(slice);
    EXPECT_EQ(pictureOf(*widget), pictureOf(*fresh));
    EXPECT_EQ(widget->findChild<QLabel*>("itemsField")->text(), NYXSliceWidgetStatusBar::sliceText(slice));
  }

  /// The picture changed to one that is up to date.
  void expectChange()
  {
    EXPECT_NE(pictureOf(*widget), last);
    last = pictureOf(*widget);
    expectUpToDate();
  }

  QAction& action(const char* name) const { return *widget->mediator().findChild<QAction*>(name); }

  static constexpr QRgb background = 0xff808080; // dark grey

  NYXStack stack;
  StackSlice& slice = addSlice(stack, 100, 80);
  Model& closed = addModel(stack, "closed", MPrimitive::Polygon);
  Model& points = addModel(stack, "points", MPrimitive::Polypoint);
  const std::unique_ptr<NYXSliceWidget> widget = widgetOf(slice);
  QImage last = pictureOf(*widget);
};
} // namespace

TEST_F(SliceWidget, FollowsTheItemsOfItsSlice)
{
  ModelItem& item = addItem(closed, slice, {{10, 10}, {60, 10}, {60, 60}, {10, 60}});
  NYXEventServer::deliver(NYXModelItemCreateEvent(item));
  expectChange();
  item.moveVertex(2, Vector<int>{90, 70});
  NYXEventServer::deliver(NYXModelItemVertexEvent(item));
  expectChange();
  item.getProperties().setColor(0, 255, 0);
  NYXEventServer::deliver(NYXModelItemAttributeEvent(item));
  expectChange();
  item.getSelection().set(true);
  NYXEventServer::deliver(NYXModelItemSelectEvent(item));
  expectChange();
  item.detachFromModel();
  item.setModel(&points);
  item.attachToModel();
  NYXEventServer::deliver(NYXModelItemConvertEvent(item, closed, points));
  expectChange();
  EXPECT_EQ(widget->findChild<QLabel*>("itemsField")->text(), "4 point(s)");
  const ModelProperties properties = points.getProperties();
  const ModelItemProperties itemProperties = points.getItemProperties();
  points.getItemProperties().setPointSize(9);
  NYXEventServer::deliver(NYXModelPropertiesEvent(points, properties, itemProperties));
  expectChange();
  {
    const std::unique_ptr<ModelItem> deleted(&item);
    item.detach();
    NYXEventServer::deliver(NYXModelItemDeleteEvent(item));
  }
  expectChange();
}

TEST_F(SliceWidget, FollowsAModelThatTakesItsItemsAway)
{
  const std::unique_ptr<ModelItem> contour(&addItem(closed, slice, {{10, 10}, {60, 10}, {60, 60}}));
  const std::unique_ptr<ModelItem> point(&addItem(points, slice, {{40, 40}}));
  NYXEventServer::deliver(NYXModelCreateEvent(closed));
  expectChange();
  for (ModelItemOwner* owner : std::initializer_list<ModelItemOwner*>{&slice, &closed, &points})
    owner->removeAllItems();
  NYXEventServer::deliver(NYXModelDeleteEvent(closed));
  expectChange();
}

TEST_F(SliceWidget, FollowsThePixelsAndTheStackOfItsSlice)
{
  NYXStack other;
  StackSlice& otherSlice = addSlice(other, 100, 80);
  const NYXImageViewport& viewport = widget->sliceCanvas().viewport();
  setPixelSize(slice, 1, 2);
  NYXEventServer::deliver(NYXSliceImageCalibrationEvent(otherSlice));
  NYXEventServer::deliver(NYXStackImageCalibrationEvent(other));
  EXPECT_EQ(viewport.betaWidth(), 1);
  NYXEventServer::deliver(NYXSliceImageCalibrationEvent(slice));
  EXPECT_EQ(viewport.betaWidth(), 0.5);
  expectUpToDate();
  setPixelSize(slice, 2, 1);
  NYXEventServer::deliver(NYXStackImageCalibrationEvent(stack));
  EXPECT_EQ(viewport.betaWidth(), 1);
  EXPECT_EQ(viewport.betaHeight(), 0.5);
  NYXEventServer::deliver(NYXStackCloseEvent(other));
  EXPECT_EQ(&widget->sliceCanvas().getSlice(), &slice);
  NYXEventServer::deliver(NYXStackCloseEvent(stack));
  expectError<ProgramError>("No slice in this canvas", [&] { widget->sliceCanvas().getSlice(); });
  EXPECT_EQ(numPixelsUnlike(pictureOf(*widget), background), 0);
  EXPECT_EQ(widget->findChild<QLabel*>("itemsField")->text(), "");
}

TEST_F(SliceWidget, ShowsWhyAnImageIsMissingAndTheItemsAllTheSame)
{
  const NYXImageProxy& proxy = widget->sliceCanvas().getImageProxy();
  NYXSliceImageServer server;
  widget->mediator().setImageServer(server);
  ASSERT_TRUE(QTest::qWaitFor([&] { return proxy.problem().contains("missing.tif"); }));
  EXPECT_GT(numPixelsUnlike(pictureOf(*widget), background), 100); // of letters
  widget->sliceMediator().setForegroundMode();
  EXPECT_EQ(numPixelsUnlike(pictureOf(*widget), background), 0);
  ModelItem& item = addItem(closed, slice, {{5, 5}, {95, 5}, {95, 75}, {5, 75}});
  NYXEventServer::deliver(NYXModelItemCreateEvent(item));
  const QPoint onItem = widget->sliceCanvas().convertToCanvasPosition({5, 40});
  EXPECT_NE(pictureOf(*widget).pixel(onItem + QPoint(1, 0)), background);
  widget->sliceMediator().setAllgroundMode();
  EXPECT_NE(pictureOf(*widget).pixel(onItem + QPoint(1, 0)), background);
  EXPECT_EQ(widget->sliceCanvas().viewport().getImageSize(), QSize(100, 80));
  widget->mediator().removeImageServer();
}

TEST_F(SliceWidget, MakesRoomForItemsWhenNobodyKnowsTheSizeOfTheImage)
{
  StackSlice& bare = addSlice(stack, 0, 0);
  widget->setSlice(&bare);
  EXPECT_FALSE(widget->sliceCanvas().viewport().getImageSize().isValid());
  ModelItem& item = addItem(closed, bare, {{10, 10}, {60, 10}, {60, 50}});
  NYXEventServer::deliver(NYXModelItemCreateEvent(item));
  EXPECT_EQ(widget->sliceCanvas().viewport().getImageSize(), QSize(61, 51));
  EXPECT_TRUE(action("zoomIn").isEnabled());
  item.moveVertex(1, Vector<int>{30, 20});
  NYXEventServer::deliver(NYXModelItemVertexEvent(item));
  item.moveVertex(0, Vector<int>{80, 0});
  NYXEventServer::deliver(NYXModelItemVertexEvent(item));
  EXPECT_EQ(widget->sliceCanvas().viewport().getImageSize(), QSize(81, 51));
}

TEST_F(SliceWidget, ShowsImageOrItemsOrBoth)
{
  NYXSliceImageServer server;
  slice.setImageSource(Planes(80, 100, 31)[30]);
  ModelItem& item = addItem(closed, slice, {{5, 5}, {95, 5}, {95, 75}, {5, 75}});
  item.getProperties().setLineWidth(9);
  item.getProperties().setColor(255, 0, 0);
  widget->mediator().setImageServer(server);
  widget->setSlice(&slice);
  NYXSliceImageProxy& proxy = widget->sliceCanvas().getSliceImageProxy();
  std::vector<CanvasMode> told;
  QObject::connect(&widget->sliceMediator(), &NYXSliceWidgetMediator::canvasModeChanged,
                   [&told](CanvasMode mode) { told.push_back(mode); });
  const QPoint onItem = widget->sliceCanvas().convertToCanvasPosition({5, 40}) + QPoint(1, 0);
  const QPoint besideItem = widget->sliceCanvas().convertToCanvasPosition({50, 40});
  const QRgb image = qRgb(30, 30, 30), red = qRgb(255, 0, 0);
  const struct
  {
    const char* action;
    bool isAttached;
    QRgb onItem, besideItem;
  } modes[] = {{"displayImagesAndItems", true, red, image},
               {"displayItems", false, red, background},
               {"displayImages", true, image, image},
               {"displayItems", false, red, background},
               {"displayImagesAndItems", true, red, image}};
  for (const auto& m : modes)
  {
    SCOPED_TRACE(m.action);
    action(m.action).trigger();
    EXPECT_TRUE(action(m.action).isChecked());
    EXPECT_EQ(proxy.hasImageServer(), m.isAttached);
    EXPECT_TRUE(QTest::qWaitFor([&] { return proxy.hasImage() == m.isAttached; }));
    const QImage picture = pictureOf(*widget);
    EXPECT_EQ(picture.pixel(onItem), m.onItem);
    EXPECT_EQ(picture.pixel(besideItem), m.besideItem);
  }
  using enum CanvasMode;
  EXPECT_THAT(told, testing::ElementsAre(Allground, Foreground, Background, Foreground, Allground));
  widget->sliceMediator().setForegroundMode();
  widget->setSlice(&slice);
  EXPECT_FALSE(proxy.hasImageServer()); // nobody looks at the image
  widget->mediator().setImageServer(server);
  EXPECT_FALSE(proxy.hasImageServer());
  widget->mediator().removeImageServer();
}

TEST_F(SliceWidget, DrawsManyVerticesInFullOnceTheViewRests)
{
  RandomGenerator random(3);
  for (int i = 0; i < 150; ++i)
  {
    ModelItem& item = ModelItem::create(closed, slice);
    Vertices<int> vertices(2, 300);
    for (int k = 0; k < vertices.getNumVertices(); ++k)
      for (int axis = 0; axis < 2; ++axis)
        vertices[k][axis] = i / 2 + static_cast<int>(random.uniformL(static_cast<unsigned long>(5 + k % 15)));
    item.setVertices(vertices);
  }
  widget->sliceMediator().setForegroundMode();
  widget->sliceCanvas().repaintItems();
  const QImage thin = pictureOf(*widget);
  QImage full = thin;
  for (int i = 0; i < 20 && full == thin; ++i) // every look at it is a new frame, which puts it off
  {
    QTest::qWait(400);
    full = pictureOf(*widget);
  }
  EXPECT_GT(numPixelsUnlike(full, background), numPixelsUnlike(thin, background));

  QImage expected(full.size(), QImage::Format_ARGB32_Premultiplied);
  expected.fill(Qt::transparent);
  {
    const NYXImageViewport& viewport = widget->sliceCanvas().viewport();
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    const double sx = viewport.scaleX(), sy = viewport.scaleY();
    for (const ModelItem* item : slice.getItems())
      drawModelItem(painter, *item, QTransform(sx, 0, 0, sy, sx / 2, sy / 2), expected.rect(), NYXItemDetail::Full);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.fillRect(expected.rect(), QColor(background));
  }
  int largest = 0;
  for (int y = 0; y < full.height(); ++y)
    for (int x = 0; x < full.width(); ++x)
      largest = std::max(largest, std::abs(qRed(full.pixel(x, y)) - qRed(expected.pixel(x, y))));
  EXPECT_LE(largest, 2);
}
