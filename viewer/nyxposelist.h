#pragma once

#include "app/core/nyxeventclient.h"

#include <QWidget>

class NYXStack;
class Pose;
class QListWidget;
class QPushButton;
class ViewerCanvasGL;

/// The poses that are saved in a stack: saves the one that is shown, applies and deletes them. Saving and deleting can
/// be undone. Follows the event bus.
class NYXPoseList : public QWidget, public NYXEventClient
{
  Q_OBJECT

public:
  /// Stack and canvas are borrowed.
  NYXPoseList(NYXStack& stack, ViewerCanvasGL& canvas, QWidget* parent);
  ~NYXPoseList() override;

public slots:
  /// Asks for a name and saves the pose that is shown.
  void savePose();
  /// \return false when the name cannot be stored
  bool savePose(const QString& name);
  void applyPose();
  void deletePose();

signals:
  void messageShown(const QString& text);

protected:
  void poseCreateEvent(const NYXPoseCreateEvent& event) override;
  void poseDeleteEvent(const NYXPoseDeleteEvent& event) override;

private:
  QPushButton* addButton(const QString& text, const QString& toolTip, void (NYXPoseList::*slot)());
  void refresh();
  Pose* currentPose() const;
  QString freeName() const;
  void updateButtons();

  NYXStack& _stack;
  ViewerCanvasGL& _canvas;
  QListWidget* _list;
  QPushButton* _apply;
  QPushButton* _delete;
};
