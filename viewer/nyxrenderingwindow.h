#pragma once

#include "app/core/nyxeventclient.h"

#include <QWidget>

#include <string>
#include <vector>

class LandmarksDelegate;
class NYXPoseList;
class NYXRenderingVideo;
class NYXSceneImages;
class NYXSceneModels;
class NYXShownModelsTree;
class NYXStack;
class QAction;
class QLabel;
class QProgressBar;
class QPushButton;
class QSpinBox;
class QStatusBar;
class QTableWidget;
class QTabWidget;
class QToolBar;
class ViewerCanvasGL;
class ViewerMediator;
class ViewerPosePanel;
struct ShownStack;
struct SurfaceExport;

/// The 3D view of a stack: its models, images and poses. Follows the event bus; closes with its stack.
///
/// Remembers its place in the settings. Deletes itself when it is closed.
class NYXRenderingWindow : public QWidget, public NYXEventClient
{
  Q_OBJECT

public:
  /// Shows the window of a stack, made when there is none yet.
  static NYXRenderingWindow& showFor(NYXStack& stack, int slice);
  /// The window of a stack, nullptr when there is none.
  static NYXRenderingWindow* find(const NYXStack& stack);

  ~NYXRenderingWindow() override;

  ViewerCanvasGL& canvas() const { return *_canvas; }
  ViewerMediator& mediator() const { return *_mediator; }
  NYXSceneModels& models() const { return *_models; }
  NYXSceneImages& images() const { return *_images; }
  NYXRenderingVideo& video() const { return *_video; }

  /// Shows the image of another slice, if one is shown.
  void setCurrentSlice(int slice);

  /// Writes a picture to a PNG file beside it first. \return false with a message when that fails
  bool saveSnapshot(const QString& filename, int scale, bool isTransparent, bool isCropped);

public slots:
  void takeSnapshot();
  void recordVideo();
  void exportSurfaces();

protected:
  void stackCloseEvent(const NYXStackCloseEvent& event) override;
  void stackNameEvent(const NYXStackNameEvent& event) override;
  void stackFileNameEvent(const NYXStackFileNameEvent& event) override;
  void stackRegistrationEvent(const NYXStackRegistrationEvent& event) override;
  void stackSliceSpacingEvent(const NYXStackSliceSpacingEvent& event) override;
  void stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event) override;
  void sliceSpacingEvent(const NYXSliceSpacingEvent& event) override;
  void sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event) override;
  void sliceNameEvent(const NYXSliceNameEvent& event) override;
  void processSliceAction(NYXSliceAction& action) override;
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

private:
  NYXRenderingWindow(NYXStack& stack, int slice);

  QAction* addToolAction(const QString& text, const QString& toolTip, const char* icon,
                         void (NYXRenderingWindow::*slot)());
  void createToolBar();
  void createStatusBar();
  void createPanel();
  QWidget* createImagesPage();
  QWidget* createLandmarksPage();
  void layOut();
  void restoreGeometryFromSettings();
  void followModels();
  void showTitle();
  void showEmptyNote();
  void showProblems(const QString& error);
  /// The symbol of the unit of length.
  QString unit() const;
  void showLandmarks();
  void showMessage(const QString& text);
  void warn(const QString& title, const QString& text);
  void refreshImages(const Stack* stack);
  void rebuild();
  void exportTo(const SurfaceExport& target, const ShownStack& shown);
  bool confirmOverwrite(const std::vector<std::string>& filenames);

  NYXStack& _stack;
  ViewerCanvasGL* _canvas;
  ViewerPosePanel* _posePanel;
  ViewerMediator* _mediator;
  NYXSceneModels* _models;
  NYXSceneImages* _images;
  NYXRenderingVideo* _video;
  NYXShownModelsTree* _tree = nullptr;
  NYXPoseList* _poses = nullptr;
  QToolBar* _toolBar;
  QTabWidget* _panel;
  QStatusBar* _statusBar;
  QProgressBar* _progress = nullptr;
  QPushButton* _cancel = nullptr;
  QLabel* _emptyNote;
  QSpinBox* _slice = nullptr;
  QTableWidget* _landmarks = nullptr;
  QAction* _record = nullptr;
  bool _isPlaced = false;
  bool _isClosed = false; // and about to be deleted
};
