// The parts of the window of the 3D view: tool bar, panel, status bar, and where they are.
#include "app/core/errortext.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "numeric/progresssubject.h"
#include "slice/image/nyxcloseaction.h"
#include "slice/image/nyxintegerbox.h"
#include "slice/image/nyxprogressrun.h"
#include "slice/image/nyxstatusfield.h"
#include "viewer/landmarksdelegate.h"
#include "viewer/nyxposelist.h"
#include "viewer/nyxrenderingvideo.h"
#include "viewer/nyxrenderingwindow.h"
#include "viewer/nyxsceneimages.h"
#include "viewer/nyxscenemodels.h"
#include "viewer/nyxshownmodelstree.h"
#include "viewer/nyxsurfaceexportdialog.h"
#include "viewer/viewercanvasgl.h"
#include "viewer/viewermediator.h"
#include "viewer/viewerposepanel.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QSplitter>
#include <QStatusBar>
#include <QTabBar>
#include <QTableWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace
{
/// A canvas with the projection, the background and the surroundings that were shown last.
ViewerCanvasGL* createCanvas(QWidget* parent)
{
  auto* const canvas = new ViewerCanvasGL(parent);
  QSettings store;
  store.beginGroup("renderingWindow");
  ProjectionGL projection;
  if (store.value("projection").toInt() == ProjectionGL::Perspective) projection.type = ProjectionGL::Perspective;
  projection.strength = store.value("perspectiveStrength", projection.strength).toFloat();
  canvas->setProjection(projection);
  BackgroundGL background;
  const int type = store.value("background", background.type).toInt();
  background.type =
      static_cast<BackgroundGL::Type>(qBound<int>(BackgroundGL::Uniform, type, BackgroundGL::RadialGradient));
  if (const QColor color(store.value("backgroundColor").toString()); color.isValid())
    background.color = {color.red(), color.green(), color.blue()};
  canvas->setBackground(background);
  if (store.value("boundingBox", canvas->hasBoundingBox()).toBool() != canvas->hasBoundingBox())
    canvas->toggleBoundingBox();
  canvas->setScaleBar(store.value("scaleBar", canvas->hasScaleBar()).toBool());
  if (store.value("axes", canvas->hasAxes()).toBool() != canvas->hasAxes()) canvas->toggleAxes();
  return canvas;
}

void storeView(const ViewerCanvasGL& canvas)
{
  QSettings store;
  store.beginGroup("renderingWindow");
  const ProjectionGL& projection = canvas.camera().getProjection();
  store.setValue("projection", static_cast<int>(projection.type));
  store.setValue("perspectiveStrength", static_cast<double>(projection.strength));
  const BackgroundGL& background = canvas.getBackground();
  store.setValue("background", static_cast<int>(background.type));
  store.setValue("backgroundColor", QColor(background.color[0], background.color[1], background.color[2]).name());
  store.setValue("boundingBox", canvas.hasBoundingBox());
  store.setValue("scaleBar", canvas.hasScaleBar());
  store.setValue("axes", canvas.hasAxes());
}
} // namespace

NYXRenderingWindow::NYXRenderingWindow(NYXStack& stack, int slice)
  : _stack(stack),
    _canvas(createCanvas(this)),
    _posePanel(new ViewerPosePanel(this)),
    _mediator(new ViewerMediator(*_canvas, *_posePanel, this)),
    _models(new NYXSceneModels(stack, *_canvas, nullptr)),
    _images(new NYXSceneImages(stack, *_canvas, nullptr)),
    _video(new NYXRenderingVideo(*_canvas, _mediator->spinningMotion(), nullptr)),
    _toolBar(new QToolBar(this)),
    _panel(new QTabWidget(this)),
    _statusBar(new QStatusBar(this)),
    _emptyNote(new QLabel(_canvas))
{
  setObjectName("renderingWindow");
  _canvas->setUnit(unit());
  _emptyNote->setObjectName("emptyNote");
  _emptyNote->setTextFormat(Qt::PlainText);
  _emptyNote->setAttribute(Qt::WA_TransparentForMouseEvents);
  _emptyNote->setStyleSheet("color: white; background: rgba(0, 0, 0, 120); padding: 8px");
  _emptyNote->hide();
  createStatusBar();
  createToolBar();
  createPanel();
  layOut();
  followModels();
  const auto keepView = [this] { storeView(*_canvas); };
  connect(_posePanel, &ViewerPosePanel::projectionChanged, this, keepView);
  connect(_posePanel, &ViewerPosePanel::backgroundChanged, this, keepView);
  for (QAction* action : _mediator->displayActions()) connect(action, &QAction::triggered, this, keepView);
  connect(_mediator, &ViewerMediator::messageShown, this, &NYXRenderingWindow::showMessage);
  connect(_images, &NYXSceneImages::messageShown, this, &NYXRenderingWindow::showMessage);
  setCurrentSlice(slice);
  showTitle();
  restoreGeometryFromSettings();
  NYXEventServer::attach(*this);
  _canvas->setFocus();
}

QAction* NYXRenderingWindow::addToolAction(const QString& text, const QString& toolTip, const char* icon,
                                           void (NYXRenderingWindow::*slot)())
{
  auto* const action = new QAction(QIcon(QString(":/icons/%1.svg").arg(icon)), text, this);
  action->setObjectName(text);
  action->setToolTip(toolTip);
  action->setStatusTip(toolTip);
  connect(action, &QAction::triggered, this, slot);
  _toolBar->addAction(action);
  return action;
}

void NYXRenderingWindow::createToolBar()
{
  _toolBar->setObjectName("renderingToolBar");
  const int side = _toolBar->fontMetrics().height() * 5 / 4;
  _toolBar->setIconSize({side, side});
  addToolAction(tr("Rebuild"), tr("Reconstruct all models anew"), "rebuild", &NYXRenderingWindow::rebuild);
  addToolAction(tr("Snapshot..."), tr("Save the picture to a PNG file"), "snapshot", &NYXRenderingWindow::takeSnapshot);
  _record = addToolAction(tr("Record video..."), tr("Record what is shown as a video; once more to stop"), "video",
                          &NYXRenderingWindow::recordVideo);
  _record->setCheckable(true);
  addToolAction(tr("Export surfaces..."), tr("Write the surfaces that are shown to STL, PLY or OBJ files"),
                "exportsurface", &NYXRenderingWindow::exportSurfaces);
  _toolBar->addSeparator();
  auto* const views = new QToolButton(this);
  views->setObjectName("viewsButton");
  views->setIcon(QIcon(":/icons/views.svg"));
  views->setToolTip(tr("Standard views (1 to 6)"));
  views->setPopupMode(QToolButton::InstantPopup);
  auto* const menu = new QMenu(views);
  menu->addActions(_mediator->poseActions());
  menu->addSeparator();
  menu->addAction(&_mediator->centerAction());
  views->setMenu(menu);
  _toolBar->addWidget(views);
  _toolBar->addAction(_mediator->poseActions().last());
  _toolBar->addSeparator();
  _toolBar->addActions(_mediator->displayActions());
  _toolBar->addSeparator();
  _toolBar->addActions(_mediator->motionActions().mid(0, 2));
  auto* const motion = new QToolButton(this);
  motion->setText(tr("Motion"));
  motion->setToolTip(tr("How fast motions turn the scene"));
  motion->setPopupMode(QToolButton::InstantPopup);
  motion->setMenu(new QMenu(motion));
  motion->menu()->addActions(_mediator->motionActions().mid(2));
  _toolBar->addWidget(motion);
  _toolBar->addSeparator();
  _toolBar->addAction(&_mediator->landmarksAction());
  QWidget::addActions(_mediator->poseActions());
  QWidget::addAction(&_mediator->centerAction());
  addCloseAction(*this);
  connect(_video, &NYXRenderingVideo::recordingChanged, _record, &QAction::setChecked);
  connect(_video, &NYXRenderingVideo::frameRecorded, this,
          [this](int numFrames)
          { _statusBar->showMessage(tr("Recording: %n frames; click the button again to stop", nullptr, numFrames)); });
  connect(_video, &NYXRenderingVideo::videoMade, this,
          [this](const QString& output) { showMessage(tr("Saved %1").arg(output)); });
}

void NYXRenderingWindow::createStatusBar()
{
  _progress = new QProgressBar(this);
  _progress->setObjectName("reconstructionProgress");
  _progress->setRange(0, 1000);
  _progress->setMaximumWidth(fontMetrics().averageCharWidth() * 30);
  _cancel = new QPushButton(tr("Cancel"), this);
  _cancel->setObjectName("cancelReconstruction");
  _cancel->setToolTip(tr("Stop the reconstruction; the models stay as they are shown"));
  auto* const hint = new NYXStatusField("hint", tr("What a drag does"), {}, this);
  hint->setText(tr("Drag to turn, Shift: about the viewing axis, Ctrl or wheel: zoom, Alt: pan"));
  hint->fillLine();
  _statusBar->setSizeGripEnabled(false);
  _statusBar->addWidget(hint, 1);
  _statusBar->addPermanentWidget(_progress);
  _statusBar->addPermanentWidget(_cancel);
  _progress->hide();
  _cancel->hide();
}

void NYXRenderingWindow::createPanel()
{
  _panel->setObjectName("renderingPanel");
  _tree = new NYXShownModelsTree(*_models, this);
  _poses = new NYXPoseList(_stack, *_canvas, this);
  connect(_poses, &NYXPoseList::messageShown, this, &NYXRenderingWindow::showMessage);
  const auto scrolled = [this](QWidget* page)
  {
    auto* const area = new QScrollArea(this);
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setMinimumWidth(page->minimumSizeHint().width() + area->verticalScrollBar()->sizeHint().width());
    return area;
  };
  _panel->addTab(_tree, tr("Models"));
  _panel->addTab(scrolled(_posePanel), tr("View"));
  _panel->addTab(_poses, tr("Poses"));
  _panel->addTab(scrolled(createImagesPage()), tr("Images"));
  _panel->addTab(createLandmarksPage(), tr("Landmarks"));
  _panel->setMinimumWidth(_panel->tabBar()->sizeHint().width()); // no tab is cut off
}

QWidget* NYXRenderingWindow::createImagesPage()
{
  auto* const page = new QWidget(this);
  auto* const plane = new QGroupBox(tr("Slice"), page);
  auto* const planeForm = new QFormLayout(plane);
  auto* const isShown = new QCheckBox(tr("Show the image of a slice"), plane);
  isShown->setObjectName("showSliceImage");
  _slice = new NYXIntegerBox(plane);
  _slice->setObjectName("sliceNumber");
  _slice->setRange(1, qMax(1, _stack.getNumSlices()));
  _slice->setToolTip(tr("Number of the slice; follows the main window"));
  const auto createOpacity = [this](QWidget* parent, const char* name, int value)
  {
    auto* const slider = new QSlider(Qt::Horizontal, parent);
    slider->setObjectName(name);
    slider->setRange(0, 100);
    slider->setValue(value);
    slider->setToolTip(tr("Opacity"));
    return slider;
  };
  QSlider* const planeOpacity = createOpacity(plane, "sliceOpacity", 100);
  planeForm->addRow(isShown);
  planeForm->addRow(tr("Slice"), _slice);
  planeForm->addRow(tr("Opacity"), planeOpacity);
  auto* const volume = new QGroupBox(tr("All images"), page);
  auto* const volumeForm = new QFormLayout(volume);
  auto* const kind = new QComboBox(volume);
  kind->setObjectName("volumeKind");
  kind->addItems({tr("Hidden"), tr("Three slices"), tr("Cloud")});
  kind->setToolTip(tr("Show all images as a volume"));
  QSlider* const cloudOpacity = createOpacity(volume, "cloudOpacity", 25);
  volumeForm->addRow(tr("Volume"), kind);
  volumeForm->addRow(tr("Density"), cloudOpacity);
  constexpr int steps = 1000;
  QList<QSlider*> places;
  for (int axis = 0; axis < 3; ++axis)
  {
    auto* const place = new QSlider(Qt::Horizontal, volume);
    place->setObjectName(QString("volumeSlice") + "XYZ"[axis]);
    place->setRange(0, steps);
    place->setValue(steps / 2);
    place->setToolTip(tr("Place of one of the three slices"));
    places.append(place);
    volumeForm->addRow(tr("Slice at %1").arg("XYZ"[axis]), place);
    connect(place, &QSlider::valueChanged, _images,
            [this, axis](int value) { _images->setVolumeSlice(axis, static_cast<double>(value) / steps); });
  }
  auto* const layout = new QVBoxLayout(page);
  layout->addWidget(plane);
  layout->addWidget(volume);
  layout->addStretch();
  connect(isShown, &QCheckBox::toggled, _images, &NYXSceneImages::showPlane);
  connect(_slice, qOverload<int>(&QSpinBox::valueChanged), _images,
          [this](int number) { _images->setSlice(number - 1); });
  connect(planeOpacity, &QSlider::valueChanged, _images, &NYXSceneImages::setPlaneOpacity);
  connect(cloudOpacity, &QSlider::valueChanged, _images, &NYXSceneImages::setCloudOpacity);
  const auto showKind = [this, kind, cloudOpacity, places]
  {
    kind->setCurrentIndex(_images->getVolume());
    cloudOpacity->setEnabled(_images->getVolume() == NYXSceneImages::Cloud);
    for (QSlider* place : places) place->setEnabled(_images->getVolume() == NYXSceneImages::OrthogonalSlices);
  };
  showKind();
  connect(kind, qOverload<int>(&QComboBox::activated), _images,
          [this, showKind](int index)
          {
            _images->setVolume(static_cast<NYXSceneImages::Volume>(index));
            showKind();
          });
  connect(_images, &NYXSceneImages::imagesChanged, kind, showKind);
  return page;
}

QWidget* NYXRenderingWindow::createLandmarksPage()
{
  auto* const page = new QWidget(this);
  LandmarksDelegate& delegate = _mediator->landmarks();
  _landmarks = new QTableWidget(0, 3, page);
  _landmarks->setObjectName("landmarks");
  _landmarks->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  _landmarks->setSelectionBehavior(QAbstractItemView::SelectRows);
  _landmarks->setEditTriggers(QAbstractItemView::NoEditTriggers);
  auto* const hint = new QLabel(tr("Switch \"Landmarks\" on in the tool bar, then click on surfaces."), page);
  hint->setWordWrap(true);
  const auto addButton = [page](const QString& text, const QString& toolTip)
  {
    auto* const button = new QPushButton(text, page);
    button->setToolTip(toolTip);
    return button;
  };
  QPushButton* const copy = addButton(tr("Copy"), tr("Copy the table with the distances between landmarks"));
  QPushButton* const remove = addButton(tr("Delete"), tr("Delete the selected landmark"));
  QPushButton* const clear = addButton(tr("Clear"), tr("Delete all landmarks"));
  auto* const buttons = new QHBoxLayout;
  for (QPushButton* button : {copy, remove, clear}) buttons->addWidget(button);
  auto* const layout = new QVBoxLayout(page);
  layout->addWidget(hint);
  layout->addWidget(_landmarks, 1);
  layout->addLayout(buttons);
  connect(copy, &QPushButton::clicked, this,
          [this, &delegate] { QApplication::clipboard()->setText(delegate.toText(unit())); });
  connect(remove, &QPushButton::clicked, this,
          [this, &delegate]
          {
            if (_landmarks->currentRow() >= 0) delegate.remove(_landmarks->currentRow());
          });
  connect(clear, &QPushButton::clicked, &delegate, &LandmarksDelegate::clear);
  const auto enableButtons = [this, copy, remove, clear]
  {
    const bool hasLandmarks = _landmarks->rowCount() > 0;
    copy->setEnabled(hasLandmarks);
    clear->setEnabled(hasLandmarks);
    remove->setEnabled(_landmarks->selectionModel()->hasSelection());
  };
  connect(&delegate, &LandmarksDelegate::landmarksChanged, this, &NYXRenderingWindow::showLandmarks);
  connect(&delegate, &LandmarksDelegate::landmarksChanged, page, enableButtons);
  connect(_landmarks, &QTableWidget::itemSelectionChanged, page, enableButtons);
  showLandmarks();
  enableButtons();
  return page;
}

QString NYXRenderingWindow::unit() const
{
  return _models->unit();
}

void NYXRenderingWindow::showLandmarks()
{
  const QString title("%1 (" + unit() + ")");
  _landmarks->setHorizontalHeaderLabels({title.arg("X"), title.arg("Y"), title.arg("Z")});
  const auto& points = _mediator->landmarks().getLandmarks();
  _landmarks->setRowCount(static_cast<int>(points.size()));
  for (int i = 0; i < _landmarks->rowCount(); ++i)
    for (int axis = 0; axis < 3; ++axis)
    {
      const double coordinate = points[static_cast<std::size_t>(i)][static_cast<std::size_t>(axis)];
      auto* const cell = new QTableWidgetItem(QString::number(coordinate, 'g', 6));
      cell->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
      _landmarks->setItem(i, axis, cell);
    }
}

void NYXRenderingWindow::layOut()
{
  auto* const splitter = new QSplitter(this);
  splitter->setObjectName("renderingSplitter");
  splitter->addWidget(_canvas);
  splitter->addWidget(_panel);
  splitter->setStretchFactor(0, 1);
  splitter->setChildrenCollapsible(false);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(_toolBar);
  layout->addWidget(splitter, 1);
  layout->addWidget(_statusBar);
  splitter->restoreState(QSettings().value("renderingWindow/splitter").toByteArray());
  connect(splitter, &QSplitter::splitterMoved, this,
          [splitter] { QSettings().setValue("renderingWindow/splitter", splitter->saveState()); });
}

/// At first two thirds of the screen.
void NYXRenderingWindow::restoreGeometryFromSettings()
{
  const QSettings store;
  const QRect available = screen()->availableGeometry();
  resize(store.value("renderingWindow/size", available.size() * 2 / 3).toSize());
  const QPoint position = store.value("renderingWindow/pos").toPoint();
  if (store.contains("renderingWindow/pos") && available.intersects({position, size()})) move(position);
  _isPlaced = true;
}

void NYXRenderingWindow::exportSurfaces()
{
  NYXSurfaceExportDialog dialog(this);
  if (dialog.exec() != QDialog::Accepted) return;
  SurfaceExport target = dialog.target();
  target.prefix = _stack.getName();
  const ShownStack shown =
      copyShown(_stack, _models->shownModels(), [this](const ModelItem& item) { return _models->isShown(item); });
  try
  {
    const std::vector<std::string> existing = existingTargets(shown, target);
    target.overwrite = !existing.empty();
    if (target.overwrite && !confirmOverwrite(existing)) return;
    exportTo(target, shown);
  }
  catch (...)
  {
    warn(tr("Export surfaces"), handledErrorText());
  }
}

void NYXRenderingWindow::exportTo(const SurfaceExport& target, const ShownStack& shown)
{
  ProgressSubject subject;
  ExportedSurfaces exported;
  if (!runWithProgress(this, tr("Export surfaces"), subject, nullptr,
                       [&] { exported = ::exportSurfaces(shown, target, subject); }))
    return;
  const auto numFiles = static_cast<int>(exported.filenames.size());
  const auto numLeftOut = static_cast<int>(exported.warnings.size());
  QString text = tr("%n files written", nullptr, numFiles);
  if (numLeftOut > 0)
    text += "; " + tr("%n models left out: ", nullptr, numLeftOut) + QString::fromStdString(exported.warnings.front());
  showMessage(text);
}
