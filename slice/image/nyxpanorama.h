#pragma once

#include "app/core/nyxeventclient.h"
#include "slice/image/nyxpanoramagrid.h"
#include "slice/image/nyxpanoramathumbnails.h"

#include <QAbstractScrollArea>
#include <QTimer>

class NYXStack;
class Stack;
class StackSlice;

/// All slices of a stack as thumbnails, labelled by their names if the preferences say so, in rows that follow the
/// width. Thumbnails are loaded as they come into view.
class NYXPanorama : public QAbstractScrollArea, public NYXEventClient
{
  Q_OBJECT

public:
  explicit NYXPanorama(QWidget* parent = nullptr);

  /// nullptr for none. The stack is let go when it closes.
  void setStack(NYXStack* stack);
  /// Marks a slice and scrolls to it; -1 for none.
  void setCurrentSlice(int slice);
  int getCurrentSlice() const { return _current; }

  /// The place of a slice's thumbnail in the viewport.
  QRect thumbnailRect(int slice) const;

signals:
  /// The user has chosen another slice, which is to be made current.
  void sliceSelected(int slice);
  /// The user wants to see the current slice as a whole.
  void sliceOpened();

protected:
  bool event(QEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

  void stackCloseEvent(const NYXStackCloseEvent& event) override;
  void stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event) override;
  void sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event) override;
  void sliceNameEvent(const NYXSliceNameEvent& event) override;
  void sliceLockEvent(const NYXSliceLockEvent& event) override;
  void modelCreateEvent(const NYXModelCreateEvent& event) override;
  void modelDeleteEvent(const NYXModelDeleteEvent& event) override;
  void modelPropertiesEvent(const NYXModelPropertiesEvent& event) override;
  void modelItemCreateEvent(const NYXModelItemCreateEvent& event) override;
  void modelItemDeleteEvent(const NYXModelItemDeleteEvent& event) override;
  void modelItemVertexEvent(const NYXModelItemVertexEvent& event) override;
  void modelItemAttributeEvent(const NYXModelItemAttributeEvent& event) override;
  void modelItemSelectEvent(const NYXModelItemSelectEvent& event) override;
  void modelItemConvertEvent(const NYXModelItemConvertEvent& event) override;
  void preferencesEvent(const NYXPreferencesEvent& event) override;
  void processSliceAction(NYXSliceAction& action) override;

private:
  int numSlices() const;
  int boxSide() const;
  int margin() const;
  QSize cellSize() const;
  int gap() const;
  NYXPanoramaGrid grid() const;
  int scrollPosition() const;
  NYXPanoramaGrid::Range visibleSlices() const;

  void layOut();
  void scrollTo(int slice);
  void setHovered(int slice);
  void askForThumbnails();
  QString toolTipOf(int slice) const;

  void paintCell(QPainter& painter, int slice, const QRect& cell) const;
  void paintThumbnail(QPainter& painter, const StackSlice& slice, const QRect& box) const;
  void paintMark(QPainter& painter, int slice, const QRect& cell) const;
  void paintLock(QPainter& painter, const QRect& box) const;
  void paintLabel(QPainter& painter, const StackSlice& slice, const QRect& cell) const;

  void followItem(const NYXModelItemEvent& event);
  void followModel(const Stack* stack);

  NYXStack* _stack = nullptr;
  NYXPanoramaThumbnails _thumbnails;
  int _current = -1;
  int _hovered = -1;
  bool _hasLabels;
  QTimer _asking; // runs between a change of what is visible and asking for it: who scrolls fast passes most of it
};
