// What is repainted while a tool is at work: only what changed, and all of that.
#include "edit_test_support.h"

#include "slice/image/nyximagewidgetcanvasextrapainter.h"

#include <QOpenGLFunctions>
#include <QPainter>

namespace
{
/// Notes the part of the canvas that is painted.
struct Watch : NYXImageWidgetCanvasExtraPainter
{
  void paint(QPainter& painter) override { part |= painter.clipBoundingRect(); }

  QRectF part;
};

class Repainting : public EditTest
{
protected:
  Repainting()
  {
    for (int i = 0; i < 4; ++i)
      addItem(model("cells"), slice(), {{20 + 90 * i, 20}, {90 + 90 * i, 20}, {55 + 90 * i, 90}});
    for (int i = 0; i < 40; ++i) // many vertices where the tools are tried
      item(0).insertVertex(1, {90 - i, 20 + (i % 2)});
    addItem(model("spots"), slice(), {{30, 200}, {60, 220}, {350, 200}});
    canvas().repaintItems();
    canvas().addExtraPainter(&watch);
    settle();
  }
  ~Repainting() override { canvas().removeExtraPainter(&watch); }

  void settle()
  {
    QTest::qWait(20);
    watch.part = {};
  }
  /// The canvas as it is, without painting it.
  QImage shown()
  {
    const double ratio = canvas().devicePixelRatioF();
    QImage image(canvas().size() * ratio, QImage::Format_RGBA8888);
    canvas().makeCurrent();
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, image.width(), image.height(), GL_RGBA, GL_UNSIGNED_BYTE, image.bits());
    canvas().doneCurrent();
    return image.mirrored().convertToFormat(QImage::Format_RGB32);
  }
  void expectComplete(const std::string& when)
  {
    QTest::qWait(1);
    const QImage partly = shown();
    canvas().update();
    QTest::qWait(1);
    const QImage whole = shown();
    int numWrong = 0;
    for (int y = 0; y < whole.height(); ++y)
      for (int x = 0; x < whole.width(); ++x)
        if (partly.pixel(x, y) != whole.pixel(x, y) && ++numWrong == 1)
          ADD_FAILURE() << when << " at " << x << ", " << y;
    EXPECT_EQ(numWrong, 0) << when;
  }
  /// Moves around within a square of 60 pixels, and looks now and then whether all is there.
  void moveAround(int x, int y, const std::string& tool)
  {
    for (int k = 0; k < 12; ++k)
    {
      move(x + (17 * k) % 60, y + (23 * k) % 60);
      QTest::qWait(1);
      if (k % 6 == 5) expectComplete(tool + " at move " + std::to_string(k));
    }
  }

  Watch watch;
};
} // namespace

TEST_F(Repainting, IsCompleteWithEachTool)
{
  for (const float zoom : {1.F, 1.7F})
  {
    setZoom(zoom);
    canvas().update();
    for (const char* name : {"cells", "fibres", "spots", "tissue"})
    {
      choose(mediator().manualMenu(), name);
      click(150, 150);
      press(170, 160);
      moveAround(150, 150, name);
      release(160, 160);
      moveAround(100, 130, name);
      key(Qt::Key_Escape);
    }
    for (const int selected : {0, 4})
    {
      mediator().selection().cancelSelection();
      item(selected).getSelection().set(true);
      mediator().updateEditActions();
      action("editPoints").trigger();
      for (const auto mode : {VertexEditionMode::Move, VertexEditionMode::Insert, VertexEditionMode::Delete})
      {
        mediator().edition().setMode(mode);
        moveAround(20, 20, "edition");
        press(55, 88);
        moveAround(30, 60, "edition, pressed");
        release(40, 60);
      }
      key(Qt::Key_Escape);
      while (history().getUndoListSize() > 0) history().undo();
    }
    mediator().selection().cancelSelection();
    press(10, 10);
    moveAround(30, 30, "rubber box");
    release(60, 60);
    moveAround(30, 180, "hover");
    while (slice().getSelectedItem() == nullptr) mediator().selection().selectAllModelItems();
    action("moveContour").trigger();
    press(100, 100);
    moveAround(90, 90, "shift");
    release(100, 100);
    key(Qt::Key_Escape);
    while (history().getUndoListSize() > 0) history().undo();
  }
}

TEST_F(Repainting, IsOfAPartOnly)
{
  const double whole = double(canvas().width()) * canvas().height();
  const auto share = [&] { return watch.part.width() * watch.part.height() / whole; };
  choose(mediator().manualMenu(), "fibres");
  click(200, 150);
  press(210, 150);
  settle();
  move(220, 155);
  QTest::qWait(5);
  EXPECT_GT(share(), 0);
  EXPECT_LT(share(), 0.02);
  release(220, 155);
  key(Qt::Key_Escape);
  addSelected("fibres", {{10, 280}, {30, 280}});
  action("editPoints").trigger();
  move(20, 270);
  press(10, 280);
  settle();
  move(14, 270);
  QTest::qWait(5);
  EXPECT_GT(share(), 0);
  EXPECT_LT(share(), 0.02);
}
