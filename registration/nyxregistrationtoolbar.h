#pragma once

#include <QToolBar>

class QComboBox;

/// The tools of registration in groups, and the list of the slices that can be registered.
class NYXRegistrationToolBar : public QToolBar
{
  Q_OBJECT

public:
  explicit NYXRegistrationToolBar(QWidget* parent = nullptr);

  /// Adds actions, set off from those before.
  void addGroup(const QList<QAction*>& actions);
  /// Adds the list, after the actions added so far.
  void addSliceList();

  void setSliceNames(const QStringList& names);
  /// -1 for none.
  void setCurrentSlice(int index);

signals:
  /// The user has chosen this one of the list.
  void sliceChosen(int index);

private:
  QComboBox* _slices;
};
