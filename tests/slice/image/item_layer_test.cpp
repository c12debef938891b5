// The picture of a slice's items that is kept from frame to frame, beside one that is drawn anew item by item.

#include "model/rleitemset.h"
#include "numeric/randomgenerator.h"
#include "slice/image/nyxitempainter.h"
#include "slice/image/nyxsliceitemlayer.h"
#include "tests/support/stacks.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <QTransform>

#include <cmath>
#include <numbers>

namespace
{
Vertices<int> wave(int x, int y, int radius, int numVertices)
{
  Vertices<int> vertices(2, numVertices);
  for (int k = 0; k < numVertices; ++k)
  {
    const double angle = 2 * std::numbers::pi * k / numVertices;
    const double r = radius * (1 + 0.3 * std::sin(5 * angle));
    vertices[k][0] = x + static_cast<int>(r * std::cos(angle));
    vertices[k][1] = y + static_cast<int>(r * std::sin(angle));
  }
  return vertices;
}

/// A layer with its view, and a slice with items of all kinds on 600 x 500 pixels.
class ItemLayer : public testing::Test
{
protected:
  ItemLayer()
  {
    for (const MPrimitive geometry :
         {MPrimitive::Polygon, MPrimitive::Polyline, MPrimitive::Polypoint, MPrimitive::Region})
      addModel(stack, "model " + std::to_string(stack.getNumModels()), geometry);
    viewport.setImageSize({600, 500});
    viewport.setCanvasSize({160, 120});
    viewport.setBestFitMode(false, true);
    viewport.setZoomFactor(1);
    layer.setSlice(&slice);
  }

  ModelItem& add(int model, int x, int y, int radius, int numVertices)
  {
    ModelItem& item = ModelItem::create(*stack.getModel(model), slice);
    change(item, x, y, radius, numVertices);
    item.getProperties().setColor(uniform(256), uniform(256), uniform(256));
    return item;
  }

  ModelItem& addRandom() { return add(uniform(4), uniform(600), uniform(500), 5 + uniform(200), 3 + uniform(60)); }

  static void change(ModelItem& item, int x, int y, int radius, int numVertices)
  {
    if (!item.isRegion()) return item.setVertices(wave(x, y, radius, numVertices));
    RLEItemSet set;
    set.setBall(Vector<int>{x, y}, radius / 2);
    item.setRLEItemSet(set);
  }

  /// All items at full length, whatever the canvas shows of them.
  QImage drawnAnew() const
  {
    const QPoint origin = viewport.getViewOrigin();
    const double sx = viewport.scaleX(), sy = viewport.scaleY();
    const auto corner = [this](double place) { return std::round(place * pixelRatio) / pixelRatio; };
    const QTransform toCanvas(sx, 0, 0, sy, 0.5 * sx - corner(origin.x() * sx), 0.5 * sy - corner(origin.y() * sy));
    QImage picture(viewport.getCanvasSize() * pixelRatio, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixelRatio, pixelRatio);
    for (const ModelItem* item : slice.getItems())
      drawModelItem(painter, *item, toCanvas, QRectF(-1e6, -1e6, 2e6, 2e6), NYXItemDetail::Full);
    return picture;
  }

  QImage picture()
  {
    layer.update(viewport, pixelRatio);
    while (!layer.refine(1))
    {
    }
    return layer.update(viewport, pixelRatio);
  }

  /// The largest difference of a channel; strokes that are cut elsewhere may round otherwise by some levels of 255.
  static int difference(const QImage& a, const QImage& b)
  {
    if (a.size() != b.size()) return 256;
    int largest = 0;
    for (int y = 0; y < a.height(); ++y)
      for (std::ptrdiff_t i = 0; i < a.bytesPerLine(); ++i)
        largest = std::max(largest, std::abs(a.constScanLine(y)[i] - b.constScanLine(y)[i]));
    return largest;
  }
  static constexpr int rounding = 8;

  void changeView()
  {
    switch (uniform(6))
    {
    case 0:
    {
      const float zooms[] = {0.25F, 0.5F, 1, 2, 3, 0.37F, 17};
      return viewport.setZoomFactor(zooms[uniform(7)]);
    }
    case 1:
      return viewport.setCanvasSize({1 + uniform(200), 1 + uniform(150)});
    default:
      viewport.setViewOrigin(viewport.getViewOrigin() + QPoint(uniform(81) - 40, uniform(81) - 40));
      viewport.rectifyViewOrigin();
    }
  }

  void changeItems()
  {
    ModelItem* item = slice.getNumItems() > 0 ? slice.getItem(uniform(slice.getNumItems())) : nullptr;
    const int kind = item == nullptr || slice.getNumItems() < 5 ? 0 : uniform(7);
    if (kind == 0)
      item = &addRandom();
    else if (kind == 1)
      change(*item, uniform(600), uniform(500), 5 + uniform(100), 3 + uniform(60));
    else if (kind == 2)
      item->getProperties().setLineWidth(static_cast<float>(uniform(20)));
    else if (kind == 3)
      item->getProperties().setPointSize(static_cast<float>(uniform(20)));
    else if (kind == 4)
      item->getSelection().set(uniform(2) == 0);
    else if (kind == 5)
      convert(*item, *stack.getModel(uniform(4)));
    else
      return remove(*item);
    layer.invalidate(*item);
  }

  static void convert(ModelItem& item, Model& model)
  {
    item.detachFromModel();
    item.setModel(&model);
    item.attachToModel();
  }

  void remove(ModelItem& item)
  {
    const std::unique_ptr<ModelItem> removed(&item);
    item.detach();
    layer.invalidate(item);
  }

  /// A number below n.
  int uniform(int n) { return static_cast<int>(random.uniformL(static_cast<unsigned long>(n))); }

  RandomGenerator random{11};
  Stack stack;
  StackSlice& slice = addSlice(stack, 600, 500);
  NYXImageViewport viewport;
  NYXSliceItemLayer layer;
  double pixelRatio = 1;
};
} // namespace

TEST_F(ItemLayer, ShowsAfterAnyChangesWhatIsDrawnAnew)
{
  const std::pair<float, double> ratios[] = {{1, 1}, {3, 1}, {0.6F, 1}, {1, 2}};
  for (const auto& [ratio, pixels] : ratios)
  {
    pixelRatio = pixels;
    PixelCalibration calibration;
    calibration.setAspectRatio(ratio);
    viewport.setPixelCalibration(calibration);
    for (int step = 0; step < 100; ++step)
    {
      for (int k = uniform(3); k >= 0; --k) uniform(3) == 0 ? changeView() : changeItems();
      if (uniform(3) == 0) continue; // several changes within one frame
      ASSERT_LE(difference(picture(), drawnAnew()), rounding) << "ratio " << ratio << " step " << step;
    }
  }
}

TEST_F(ItemLayer, DrawsThinLinesUntilThereIsTime)
{
  for (int i = 0; i < 40; ++i) add(i % 2, 80 + i, 60, 50, 4000);
  layer.update(viewport, pixelRatio);
  ASSERT_TRUE(layer.needsRefinement());
  const QImage full = drawnAnew();
  EXPECT_GT(difference(layer.update(viewport, pixelRatio), full), rounding);
  EXPECT_LE(difference(picture(), full), rounding);
  EXPECT_FALSE(layer.needsRefinement());

  for (int step = 0; step < 30; ++step) // refinement is interrupted
  {
    step % 5 == 4 ? changeItems() : changeView();
    layer.update(viewport, pixelRatio);
    layer.refine(1);
    if (step % 3 != 0) continue;
    ASSERT_LE(difference(picture(), drawnAnew()), rounding) << "step " << step;
  }
}

TEST_F(ItemLayer, HasNothingToRefineWhileAFrameIsDue)
{
  for (int i = 0; i < 40; ++i) add(0, 80 + i, 60, 50, 4000);
  layer.update(viewport, pixelRatio);
  layer.invalidate(*slice.getItem(0));
  EXPECT_TRUE(layer.refine(1)); // who waits for more would wait for a window that is hidden, perhaps
  EXPECT_TRUE(layer.needsRefinement());
  EXPECT_LE(difference(picture(), drawnAnew()), rounding);
}

TEST_F(ItemLayer, RefinesAnewWhenAnItemOutOfViewComesOrGoes)
{
  ModelItem& outside = add(0, 550, 450, 20, 10);
  for (int i = 0; i < 40; ++i) add(0, 80 + i, 60, 50, 4000);
  layer.update(viewport, pixelRatio);
  EXPECT_FALSE(layer.refine(1));
  remove(outside); // the others move up in the list
  EXPECT_LE(difference(picture(), drawnAnew()), rounding);
  EXPECT_FALSE(layer.needsRefinement());
}

TEST_F(ItemLayer, LeavesOutWhatIsNotInView)
{
  for (int i = 0; i < 40; ++i) add(0, 450, 400, 50, 4000);
  EXPECT_LE(difference(layer.update(viewport, pixelRatio), drawnAnew()), rounding);
  EXPECT_FALSE(layer.needsRefinement()); // there is nothing to draw
  viewport.setViewOrigin({400, 350});
  layer.update(viewport, pixelRatio);
  EXPECT_TRUE(layer.needsRefinement());
}

TEST_F(ItemLayer, FollowsASliceThatIsTakenAway)
{
  add(0, 80, 60, 40, 30);
  EXPECT_NE(picture().pixel(80 + 40, 60), 0u);
  layer.setSlice(nullptr);
  QImage empty(viewport.getCanvasSize(), QImage::Format_ARGB32_Premultiplied);
  empty.fill(Qt::transparent);
  EXPECT_LE(difference(picture(), empty), rounding);
  layer.invalidate(*slice.getItem(0));
  EXPECT_LE(difference(picture(), empty), rounding);
}
