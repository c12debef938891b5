#pragma once

#include <QWidget>

class NYXAutomaticRegistrationPanel;
class NYXRegistrationMediator;
class NYXRegistrationPanel;
class NYXRegistrationStatusBar;
class NYXRegistrationToolBar;
class NYXRegistrationView;
class NYXStack;

/// Aligns the slices of a stack on each other: tool bar, canvas, panels and status bar. Remembers where it was and how
/// large.
class NYXRegistrationWindow : public QWidget
{
  Q_OBJECT

public:
  explicit NYXRegistrationWindow(QWidget* parent = nullptr);
  ~NYXRegistrationWindow() override;

  /// Follows another stack, unless the user would rather keep what is edited; nullptr for none.
  void setStack(NYXStack* stack);

  NYXRegistrationMediator& mediator() const { return *_mediator; }
  NYXRegistrationView& view() const { return *_view; }
  NYXRegistrationPanel& panel() const { return *_panel; }
  NYXAutomaticRegistrationPanel& automaticPanel() const { return *_automaticPanel; }
  NYXRegistrationToolBar& toolBar() const { return *_toolBar; }
  NYXRegistrationStatusBar& statusBar() const { return *_statusBar; }

protected:
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

private:
  void layOut();
  void restoreGeometryFromSettings();
  void showTitle();

  NYXRegistrationToolBar* _toolBar;
  NYXRegistrationView* _view;
  NYXRegistrationPanel* _panel;
  NYXAutomaticRegistrationPanel* _automaticPanel;
  NYXRegistrationStatusBar* _statusBar;
  NYXRegistrationMediator* _mediator;
};
