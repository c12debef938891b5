// The 3D window at work: it follows the stack, shows and hides, keeps poses, writes pictures and surfaces.
#include "rendering_window.h"

#include "app/core/actions/nyxitemverticeschangeaction.h"
#include "app/core/actions/nyxlengthunitaction.h"
#include "app/core/actions/nyxmodeldeletionaction.h"
#include "app/core/actions/nyxmodelpropertiesaction.h"
#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/actions/nyxslicepropertiesaction.h"
#include "app/core/actions/nyxstackpropertiesaction.h"
#include "image/image.h"
#include "image/imagesourcefile.h"
#include "model/io/stackreader.h"
#include "model/pose.h"
#include "tests/support/temporaryfolder.h"
#include "viewer/landmarksdelegate.h"
#include "viewer/nyxcreatevideodialog.h"
#include "viewer/nyxposelist.h"
#include "viewer/nyxsceneimages.h"
#include "viewer/nyxsurfaceexportdialog.h"
#include "viewer/viewermediator.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPointer>
#include <QProcess>
#include <QProgressDialog>
#include <QPushButton>
#include <QScrollBar>
#include <QSlider>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolTip>
#include <QTreeWidget>

namespace
{
/// Acts once on each modal dialog that appears meanwhile, but for those that a slow machine shows of progress.
void inDialogs(const std::function<void(QDialog&)>& act, const std::function<void()>& work)
{
  QTimer timer;
  QPointer<QWidget> last;
  QObject::connect(&timer, &QTimer::timeout,
                   [&]
                   {
                     auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                     if (dialog == nullptr || dialog == last || qobject_cast<QProgressDialog*>(dialog)) return;
                     last = dialog;
                     act(*dialog);
                   });
  timer.start(5);
  work();
}

NYXStack& openExample()
{
  auto example = std::make_unique<NYXStack>();
  StackReader().read(*example, MIRELO_EXAMPLE);
  return NYXStackServer::server().addStack(std::move(example));
}

QImage pictureOf(ViewerCanvasGL& canvas)
{
  return canvas.uncroppedSnapshot();
}

/// The greatest difference of a colour, and how many pixels differ by more than 2.
std::pair<int, int> differences(const QImage& a, const QImage& b)
{
  int greatest = 0, count = 0;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x)
    {
      const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
      const int d =
          std::max({std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
      greatest = std::max(greatest, d);
      count += d > 2;
    }
  return {greatest, count};
}
} // namespace

TEST_F(RenderingWindow, ShowsAnEditedContourAndRebuildsOnlyItsModel)
{
  PainterGL<float>* const left = painterOf("left");
  PainterGL<float>* const right = painterOf("right");
  ASSERT_TRUE(left && right);
  EXPECT_NEAR(left->boundingBox().getMaximum()[1], 10, 1e-4);
  Vertices<int> higher(item(2, 0).getVertices());
  higher.data()[1] = 0; // the first corner goes up to the border
  stack.sliceHistory(*stack.getSlice(2)).pushStep(std::make_unique<NYXItemVerticesChangeAction>(item(2, 0), higher));
  waitUntilBuilt();
  EXPECT_EQ(painterOf("right"), right);
  EXPECT_NEAR(painterOf("left")->boundingBox().getMaximum()[1], 50, 1);
  stack.sliceHistory(*stack.getSlice(2)).undo();
  waitUntilBuilt();
  EXPECT_NEAR(painterOf("left")->boundingBox().getMaximum()[1], 10, 1e-4);
}

TEST_F(RenderingWindow, ChangesOfColourAndOpacityKeepTheBuffers)
{
  PainterGL<float>* const left = painterOf("left");
  NYXModelProperties properties(model(0));
  properties.properties.setSurfaceOpacity(100);
  properties.itemProperties.setColor(0, 0, 255);
  stack.history().pushStep(std::make_unique<NYXModelPropertiesAction>(model(0), properties));
  EXPECT_FALSE(window->models().isStale());
  EXPECT_EQ(painterOf("left"), left);
  EXPECT_TRUE(left->isTransparent());
  properties.properties.setRenderingMode(RenderingMode::Curve);
  stack.history().pushStep(std::make_unique<NYXModelPropertiesAction>(model(0), properties));
  waitUntilBuilt();
  EXPECT_NE(painterOf("left"), nullptr);
  stack.history().pushStep(std::make_unique<NYXModelDeletionAction>(model(0)));
  EXPECT_EQ(painterOf("left"), nullptr);
  stack.history().undo();
  waitUntilBuilt();
  EXPECT_NE(painterOf("left"), nullptr);
}

TEST_F(RenderingWindow, ListsModelsAndItemsAndHidesThem)
{
  auto* const tree = window->findChild<QTreeWidget*>("shownModels");
  ASSERT_EQ(tree->topLevelItemCount(), 2);
  tree->topLevelItem(0)->setCheckState(0, Qt::Unchecked);
  EXPECT_TRUE(QTest::qWaitFor([this] { return !painterOf("left")->isVisible(); }));
  EXPECT_TRUE(painterOf("right")->isVisible());
  EXPECT_FALSE(stack.isModified());
  tree->topLevelItem(1)->setExpanded(true);
  ASSERT_EQ(tree->topLevelItem(1)->childCount(), 5);
  EXPECT_NEAR(painterOf("right")->boundingBox().getMaximum()[2], 40, 1e-4);
  tree->topLevelItem(1)->child(4)->setCheckState(0, Qt::Unchecked);
  EXPECT_TRUE(QTest::qWaitFor([this] { return painterOf("right")->boundingBox().getMaximum()[2] < 31; }));
  EXPECT_FALSE(stack.isModified());
  waitUntilBuilt();
  ASSERT_TRUE(tree->topLevelItem(1)->isExpanded()); // also in the list that was made anew
  tree->topLevelItem(1)->setCheckState(0, Qt::Unchecked);
  auto* const note = window->findChild<QLabel*>("emptyNote");
  EXPECT_TRUE(QTest::qWaitFor([note] { return note->isVisible(); }));
  EXPECT_THAT(note->text().toStdString(), testing::HasSubstr("left: it is hidden"));
}

TEST_F(RenderingWindow, TheListStaysWhereItIsWhenTheStackChanges)
{
  for (int i = 0; i < 60; ++i) addModel(stack, "more", MPrimitive::Polygon);
  window->models().rebuild();
  waitUntilBuilt();
  auto* const tree = window->findChild<QTreeWidget*>("shownModels");
  tree->topLevelItem(1)->setExpanded(true);
  tree->setCurrentItem(tree->topLevelItem(1)->child(3));
  tree->verticalScrollBar()->setValue(tree->verticalScrollBar()->maximum());
  const int scrolled = tree->verticalScrollBar()->value();
  ASSERT_GT(scrolled, 0);
  window->models().showItem(item(0, 0), false);
  waitUntilBuilt();
  EXPECT_EQ(tree->verticalScrollBar()->value(), scrolled);
  EXPECT_EQ(tree->currentItem(), tree->topLevelItem(1)->child(3));
}

TEST_F(RenderingWindow, HiddenItemsAreForgottenWithTheirModelsAndSlices)
{
  const ModelItem& ofModel = item(1, 0);
  const ModelItem& ofSlice = item(4, 1);
  window->models().showItem(ofModel, false);
  window->models().showItem(ofSlice, false);
  waitUntilBuilt();
  stack.history().pushStep(std::make_unique<NYXModelDeletionAction>(model(0)));
  stack.history().undo();
  EXPECT_TRUE(window->models().isShown(ofModel)); // as another item at its address would be
  EXPECT_FALSE(window->models().isShown(ofSlice));
  stack.history().pushStep(std::make_unique<NYXSliceInsertionDeletionAction>(*stack.getSlice(4)));
  stack.history().undo();
  EXPECT_TRUE(window->models().isShown(ofSlice));
}

TEST_F(RenderingWindow, StandardViewsHaveKeys)
{
  const float rotations[6][2] = {{0, 180}, {0, 90}, {90, 0}, {0, 0}, {0, -90}, {-90, 0}};
  for (int k = 0; k < 6; ++k)
  {
    QTest::keyClick(&window->canvas(), static_cast<Qt::Key>(Qt::Key_1 + k));
    EXPECT_EQ(window->canvas().getPose().getXRotation(), rotations[k][0]) << "key " << k + 1;
    EXPECT_EQ(window->canvas().getPose().getYRotation(), rotations[k][1]) << "key " << k + 1;
  }
}

TEST_F(RenderingWindow, CentresOnTheSurfaceUnderTheCursor)
{
  ViewerCanvasGL& canvas = window->canvas();
  canvas.setRotation(0, 60, 0);
  const auto wall = canvas.camera().project({-40, 0, 20}, canvas.width(), canvas.height());
  const QPoint point(static_cast<int>(wall[0]), canvas.height() - 1 - static_cast<int>(wall[1]));
  const auto before = canvas.pick(point);
  ASSERT_TRUE(before);
  QTest::mouseMove(&canvas, point);
  EXPECT_TRUE(QTest::qWaitFor([&] { return canvas.mapFromGlobal(QCursor::pos()) == point; }));
  QTest::keyClick(&canvas, Qt::Key_C);
  const auto after = canvas.camera().project(before->point, canvas.width(), canvas.height());
  EXPECT_NEAR(after[0], canvas.width() / 2.0, 1.5);
  EXPECT_NEAR(after[1], canvas.height() / 2.0, 1.5);
}

TEST_F(RenderingWindow, NamesTheModelUnderTheCursorAndMarksLandmarks)
{
  ViewerCanvasGL& canvas = window->canvas();
  canvas.setRotation(0, 60, 0);
  const auto wall = canvas.camera().project({40, 0, 20}, canvas.width(), canvas.height());
  const QPoint point(static_cast<int>(wall[0]), canvas.height() - 1 - static_cast<int>(wall[1]));
  const auto hit = canvas.pick(point);
  ASSERT_TRUE(hit);
  QHelpEvent help(QEvent::ToolTip, point, canvas.mapToGlobal(point));
  QApplication::sendEvent(&canvas, &help);
  EXPECT_EQ(QToolTip::text().toStdString(), hit->painter->getName());
  LandmarksDelegate& landmarks = window->mediator().landmarks();
  QTest::mouseClick(&canvas, Qt::LeftButton, {}, point);
  EXPECT_TRUE(landmarks.getLandmarks().empty());
  window->mediator().landmarksAction().trigger();
  QTest::mouseClick(&canvas, Qt::LeftButton, {}, point);
  QTest::mouseClick(&canvas, Qt::LeftButton, {}, {1, 1}); // beside the models
  ASSERT_EQ(landmarks.getLandmarks().size(), 1u);
  for (std::size_t axis = 0; axis < 3; ++axis) EXPECT_NEAR(landmarks.getLandmarks()[0][axis], hit->point[axis], 1e-6);
  EXPECT_THAT(landmarks.toText("nm").toStdString(),
              testing::StartsWith("Landmark\tX (nm)\tY (nm)\tZ (nm)\tDistance (nm)\n1\t"));
  auto* const table = window->findChild<QTableWidget*>("landmarks");
  EXPECT_EQ(table->horizontalHeaderItem(2)->text(), QString::fromUtf8("Z (µm)"));
}

TEST_F(RenderingWindow, UnitAndLandmarksFollowTheSceneWhenLengthsAreConverted)
{
  ViewerCanvasGL& canvas = window->canvas();
  canvas.setRotation(0, 60, 0);
  const auto wall = canvas.camera().project({40, 0, 20}, canvas.width(), canvas.height());
  window->mediator().landmarksAction().trigger();
  QTest::mouseClick(&canvas, Qt::LeftButton, {},
                    QPoint(static_cast<int>(wall[0]), canvas.height() - 1 - static_cast<int>(wall[1])));
  const LandmarksDelegate& landmarks = window->mediator().landmarks();
  ASSERT_EQ(landmarks.getLandmarks().size(), 1u);
  const ViewerCamera::Point marked = landmarks.getLandmarks()[0];
  auto* const table = window->findChild<QTableWidget*>("landmarks");
  const auto expectShown = [&](const char* unit, double factor)
  {
    EXPECT_EQ(table->horizontalHeaderItem(0)->text(), QString::fromUtf8("X (%1)").arg(QString::fromUtf8(unit)));
    for (std::size_t axis = 0; axis < 3; ++axis)
      EXPECT_NEAR(landmarks.getLandmarks()[0][axis], marked[axis] * factor, 1e-3 * factor) << unit;
  };
  stack.history().pushStep(std::make_unique<NYXLengthUnitAction>(stack, -9));
  expectShown("µm", 1); // as the scene is still
  waitUntilBuilt();
  expectShown("nm", 1000);
  stack.history().undo();
  waitUntilBuilt();
  expectShown("µm", 1);
  NYXStackProperties properties(stack);
  properties.defaultPixelCalibration.setLengthUnit(LengthUnit(-3));
  stack.history().pushStep(std::make_unique<NYXStackPropertiesAction>(stack, properties));
  waitUntilBuilt();
  expectShown("mm", 1); // the numbers stayed, and so do these
}

TEST_F(RenderingWindow, ImagesKeepTheUnitOfTheModelsUntilTheseAreMadeAnew)
{
  const TemporaryFolder folder;
  Image(100, 100, 8).writeFile(folder.file("a.tif"), false);
  stack.getSlice(0)->setImageSource(ImageSourceFile(folder.file("a.tif")));
  window->findChild<QCheckBox*>("showSliceImage")->click();
  const std::string name = stack.getSlice(0)->getName();
  ASSERT_TRUE(QTest::qWaitFor([&] { return painterOf(name.c_str()) != nullptr; }));
  const auto width = [&]
  {
    const auto box = painterOf(name.c_str())->boundingBox();
    return box.getMaximum()[0] - box.getMinimum()[0];
  };
  const float before = width();
  stack.history().pushStep(std::make_unique<NYXLengthUnitAction>(stack, -9));
  window->models().cancel();
  QTest::qWait(100);
  EXPECT_EQ(width(), before);
  window->models().rebuild();
  EXPECT_TRUE(QTest::qWaitFor([&] { return painterOf(name.c_str()) != nullptr && width() > 999 * before; }));
}

TEST_F(RenderingWindow, SavesAppliesAndDeletesPoses)
{
  auto* const poses = window->findChild<NYXPoseList*>();
  window->canvas().setRotation(10, 20, 30);
  window->canvas().setZoom(2);
  EXPECT_TRUE(poses->savePose("oblique"));
  ASSERT_EQ(stack.getNumPoses(), 1);
  EXPECT_EQ(stack.getPose(0)->getName(), "oblique");
  EXPECT_EQ(stack.getPose(0)->getZoom(), 200);
  EXPECT_TRUE(stack.isModified());
  window->canvas().resetPose();
  poses->findChild<QPushButton*>("Apply")->click();
  EXPECT_NEAR(window->canvas().getPose().getZRotation(), 30, 1e-4);
  EXPECT_FALSE(poses->savePose(QString("two\nlines")));
  poses->findChild<QPushButton*>("Delete")->click();
  EXPECT_EQ(stack.getNumPoses(), 0);
  stack.history().undo();
  EXPECT_EQ(poses->findChild<QListWidget*>("poses")->count(), 1);
  EXPECT_EQ(stack.getNumPoses(), 1);
}

TEST_F(RenderingWindow, ClosesWithItsStackAndKeepsItsPlace)
{
  window->move(40, 30);
  window->resize(700, 500);
  EXPECT_TRUE(QTest::qWaitFor([this] { return window->canvas().isVisible() && window->width() == 700; }));
  const QPoint place = window->pos();
  QPointer<NYXRenderingWindow> closed = window;
  window->close();
  EXPECT_TRUE(QTest::qWaitFor([&closed] { return closed.isNull(); }));
  open();
  EXPECT_EQ(window->size(), QSize(700, 500));
  EXPECT_EQ(window->pos(), place);
  EXPECT_EQ(&NYXRenderingWindow::showFor(stack, 0), window); // one for each stack
  closed = window;
  NYXStackServer::server().removeStack(stack);
  EXPECT_TRUE(closed.isNull());
}

TEST_F(RenderingWindow, RemembersProjectionBackgroundAndSurroundings)
{
  window->findChild<QComboBox*>("projectionType")->setCurrentIndex(1);
  window->findChild<QSlider*>("perspectiveStrength")->setValue(45);
  window->findChild<QComboBox*>("backgroundType")->setCurrentIndex(2);
  for (QAction* action : window->mediator().displayActions()) action->trigger();
  window->close();
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  open();
  const ViewerCanvasGL& canvas = window->canvas();
  EXPECT_EQ(canvas.camera().getProjection(), (ProjectionGL{ProjectionGL::Perspective, 4.5F}));
  EXPECT_EQ(canvas.getBackground().type, BackgroundGL::RadialGradient);
  EXPECT_TRUE(canvas.hasBoundingBox());
  EXPECT_FALSE(canvas.hasScaleBar() || canvas.hasAxes());
  EXPECT_EQ(window->findChild<QComboBox*>("projectionType")->currentIndex(), 1);
  EXPECT_TRUE(window->mediator().displayActions()[0]->isChecked());
}

TEST_F(RenderingWindow, CanBeCancelledAndRebuilt)
{
  PainterGL<float>* const left = painterOf("left");
  window->models().rebuild();
  window->models().cancel();
  EXPECT_TRUE(window->models().isStale());
  QTest::qWait(150);
  EXPECT_EQ(painterOf("left"), left); // as it was
  PainterGL<float>* const right = painterOf("right");
  NYXModelProperties curves(model(1));
  curves.properties.setRenderingMode(RenderingMode::Curve);
  stack.history().pushStep(std::make_unique<NYXModelPropertiesAction>(model(1), curves));
  EXPECT_TRUE(QTest::qWaitFor([&] { return painterOf("right") != right; }));
  EXPECT_EQ(painterOf("left"), left); // what was cancelled does not start again with another model's change
  window->models().rebuild();
  waitUntilBuilt();
  EXPECT_NE(painterOf("left"), nullptr);
}

TEST_F(RenderingWindow, ShowsPropertiesThatChangeDuringTheReconstruction)
{
  NYXModelProperties transparent(model(0));
  transparent.properties.setSurfaceOpacity(100);
  bool isChanged = false;
  QObject::connect(&window->models(), &NYXSceneModels::progressChanged, window,
                   [&]
                   {
                     if (std::exchange(isChanged, true)) return;
                     stack.history().pushStep(std::make_unique<NYXModelPropertiesAction>(model(0), transparent));
                   });
  window->models().rebuild();
  EXPECT_TRUE(QTest::qWaitFor([&] { return isChanged; }));
  waitUntilBuilt();
  EXPECT_TRUE(painterOf("left")->isTransparent());
}

TEST_F(RenderingWindow, WritesTheSurfacesThatAreShown)
{
  const QTemporaryDir folder;
  window->models().showModel(model(1), false);
  const auto exportWith = [&](bool isClosed)
  {
    inDialogs(
        [&](QDialog& dialog)
        {
          if (auto* const box = qobject_cast<QMessageBox*>(&dialog)) // the file exists
          {
            for (QAbstractButton* button : box->buttons())
              if (button->text() == "Replace") button->click();
            return;
          }
          dialog.findChild<QLineEdit*>("folder")->setText(folder.path());
          auto* const caps = dialog.findChild<QCheckBox*>("closeSurfaces");
          EXPECT_FALSE(caps->isChecked()); // at first
          EXPECT_EQ(caps->text(), "Close surfaces (caps)");
          caps->setChecked(isClosed);
          dialog.accept();
        },
        [this] { window->exportSurfaces(); });
    QFile file(folder.filePath("tubes-left.stl"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().count("endfacet");
  };
  const int open = exportWith(false), closed = exportWith(true);
  EXPECT_EQ(open, 2 * 100 * 99); // the quad mesh
  EXPECT_EQ(closed, open + 2 * 98);
  EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{"tubes-left.stl"});
}

TEST(SurfaceExportDialog, NeedsAFolderAndMakesItAbsolute)
{
  NYXSurfaceExportDialog dialog(nullptr);
  auto* const folder = dialog.findChild<QLineEdit*>("folder");
  const auto* const accept = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
  folder->setText(" ");
  EXPECT_FALSE(accept->isEnabled());
  EXPECT_FALSE(accept->toolTip().isEmpty());
  folder->setText("surfaces");
  EXPECT_TRUE(accept->isEnabled());
  EXPECT_TRUE(accept->toolTip().isEmpty());
  EXPECT_EQ(dialog.target().directory, QDir::current().filePath("surfaces").toStdString());
}

TEST_F(RenderingWindow, SnapshotsGoToFiles)
{
  const QTemporaryDir folder;
  const QString name = folder.filePath("a $b 'c'.png");
  EXPECT_TRUE(window->saveSnapshot(name, 2, true, false));
  EXPECT_EQ(QImage(name).size(), window->canvas().size() * 2);
  EXPECT_EQ(QImage(name).pixelColor(0, 0).alpha(), 0);
  EXPECT_TRUE(window->saveSnapshot(name, 2, true, true));
  const QSize cropped = QImage(name).size();
  EXPECT_LT(cropped.width(), window->canvas().width() * 2);
  EXPECT_TRUE(window->saveSnapshot(name, 2, false, true)); // whatever the gradient behind
  EXPECT_EQ(QImage(name).size(), cropped);
  QString text;
  inDialogs(
      [&text](QDialog& box)
      {
        text = static_cast<QMessageBox&>(box).text();
        box.accept();
      },
      [&] { EXPECT_FALSE(window->saveSnapshot("/nowhere/a.png", 1, false, false)); });
  EXPECT_THAT(text.toStdString(), testing::HasSubstr("/nowhere/a.png"));
}

TEST_F(RenderingWindow, FileDialogsStartWhereTheLastOneEndedAndKeepTheirSize)
{
  const QTemporaryDir folder;
  const QSize size(733, 411);
  inDialogs(
      [&](QDialog& dialog)
      {
        if (auto* const files = qobject_cast<QFileDialog*>(&dialog))
        {
          files->resize(size);
          files->setDirectory(folder.path());
          files->selectFile("a.png");
        }
        QMetaObject::invokeMethod(&dialog, "accept", Qt::QueuedConnection);
      },
      [this] { window->takeSnapshot(); });
  EXPECT_TRUE(QFileInfo::exists(folder.filePath("a.png")));
  QString directory;
  QSize seen;
  const auto look = [&](QDialog& dialog)
  {
    const auto* const files = qobject_cast<QFileDialog*>(&dialog);
    if (files == nullptr) return dialog.accept();
    directory = files->directory().absolutePath();
    seen = files->size();
    dialog.reject();
  };
  inDialogs(look, [this] { window->takeSnapshot(); });
  EXPECT_EQ(directory, folder.path());
  EXPECT_EQ(seen, size);
  NYXCreateVideoDialog video(nullptr);
  directory.clear();
  inDialogs(look,
            [&video]
            {
              for (QPushButton* button : video.findChildren<QPushButton*>())
                if (button->text() == "Browse...") button->click();
            });
  EXPECT_EQ(directory, folder.path());
}

TEST_F(RenderingWindow, DrawsTheSamePictureAsTheBatchTool)
{
  NYXStack& specimen = openExample();
  NYXRenderingWindow& other = NYXRenderingWindow::showFor(specimen, 0);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
  ASSERT_TRUE(QTest::qWaitFor([&] { return !other.models().isStale() && !other.models().isRunning(); }));
  other.canvas().setRotation(-60, 0, 30);
  const QImage shown = pictureOf(other.canvas());
  const QTemporaryDir folder;
  const QString file = folder.filePath("batch.png");
  const QString size = QString("%1x%2").arg(shown.width()).arg(shown.height());
  qputenv("ASAN_OPTIONS", "detect_leaks=0"); // what the libraries of OpenGL lose when they are unloaded is not ours
  ASSERT_EQ(
      QProcess::execute(MIRELO_BATCH, {"render", MIRELO_EXAMPLE, "--out", file, "--size", size, "--pose=-60,0,30"}), 0);
  const QImage drawn = QImage(file).convertToFormat(QImage::Format_RGB32);
  ASSERT_EQ(drawn.size(), shown.size());
  EXPECT_LT(differences(shown, drawn).second, shown.width() * shown.height() / 1000);
}

TEST_F(RenderingWindow, ShowsImagesOfSlicesInTheirPlace)
{
  NYXStack& specimen = openExample();
  NYXRenderingWindow& other = NYXRenderingWindow::showFor(specimen, 2);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !other.models().isStale() && !other.models().isRunning(); }));
  const std::size_t numPainters = other.canvas().getPainters().size();
  other.images().showPlane(true);
  ASSERT_TRUE(QTest::qWaitFor([&] { return other.canvas().getPainters().size() == numPainters + 1; }));
  PainterGL<float>* const plane = other.canvas().getPainters().back();
  EXPECT_EQ(plane->getName(), specimen.getSlice(2)->getName());
  EXPECT_FLOAT_EQ(plane->boundingBox().getMaximum()[2], specimen.getReconstruction().getZMap()[2]);
  EXPECT_EQ(plane->boundingBox().getMinimum()[2], plane->boundingBox().getMaximum()[2]);
  other.images().showPlane(false);
  EXPECT_EQ(other.canvas().getPainters().size(), numPainters);
  EXPECT_TRUE(other.images().setVolume(NYXSceneImages::Cloud)); // the slices are aligned, each in its way
  EXPECT_EQ(other.canvas().getPainters().size(), numPainters + 1);
  EXPECT_TRUE(other.canvas().getPainters().back()->isTransparent());
  EXPECT_TRUE(other.images().setVolume(NYXSceneImages::OrthogonalSlices));
  const auto& volume = dynamic_cast<VoxelMatrixPainterGL&>(*other.canvas().getPainters().back());
  for (const char axis : {'X', 'Y', 'Z'})
    other.findChild<QSlider*>(QString("volumeSlice") + axis)->setValue(axis == 'X' ? 1000 : 0);
  EXPECT_EQ(volume.getSlices(), (std::array{volume.getSizes()[0] - 1, volume.getSizes()[1] - 1, 0})); // rows go down
  auto* const kind = other.findChild<QComboBox*>("volumeKind");
  EXPECT_EQ(kind->currentIndex(), NYXSceneImages::OrthogonalSlices);
  other.images().setVolume(NYXSceneImages::NoVolume);
  EXPECT_EQ(kind->currentIndex(), NYXSceneImages::NoVolume);
  EXPECT_FALSE(other.findChild<QSlider*>("volumeSliceX")->isEnabled());
  for (int i = 0; i < specimen.getNumModels(); ++i) other.models().showModel(*specimen.getModel(i), false);
  auto* const note = other.findChild<QLabel*>("emptyNote");
  EXPECT_TRUE(note->isVisible());
  other.images().showPlane(true);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !note->isVisible(); })); // the image is something
  EXPECT_FALSE(window->images().setVolume(NYXSceneImages::Cloud));  // there is no image
  EXPECT_EQ(window->images().getVolume(), NYXSceneImages::NoVolume);
}

TEST_F(RenderingWindow, ChangesOfSlicesRebuildWhatTheyMove)
{
  NYXStack& specimen = openExample();
  NYXRenderingWindow& other = NYXRenderingWindow::showFor(specimen, 2);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !other.models().isStale() && !other.models().isRunning(); }));
  ASSERT_TRUE(other.images().setVolume(NYXSceneImages::OrthogonalSlices));
  PainterGL<float>* const volume = other.canvas().getPainters().back();
  StackSlice& slice = *specimen.getSlice(2);
  const auto change = [&](const std::function<void(NYXSliceProperties&)>& edit)
  {
    NYXSliceProperties properties(slice);
    edit(properties);
    specimen.history().pushStep(std::make_unique<NYXSlicePropertiesAction>(slice, properties));
  };
  change([](NYXSliceProperties& properties) { properties.name = "another name"; });
  EXPECT_FALSE(other.models().isStale());
  QTest::qWait(150);
  EXPECT_EQ(other.canvas().getPainters().back(), volume);
  const float top = volume->boundingBox().getMaximum()[2];
  change(
      [](NYXSliceProperties& properties)
      {
        properties.position = NYXSliceProperties::Relative;
        properties.depth = 500;
      });
  EXPECT_TRUE(other.models().isStale());
  const auto isHigher = [&](const PainterGL<float>& painter)
  { return painter.boundingBox().getMaximum()[2] > top + 100; };
  EXPECT_TRUE(QTest::qWaitFor([&] { return isHigher(*other.canvas().getPainters().back()); }, 20000));
  EXPECT_EQ(other.images().getVolume(), NYXSceneImages::OrthogonalSlices); // still shown
}
