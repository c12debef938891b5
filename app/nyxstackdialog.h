#pragma once

#include "app/core/nyxeventclient.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QTimer>

#include <functional>

class NYXStack;
class QLabel;

/// Base of the dialogs that change an open stack: buttons, a line for messages, the dialog's size from the last time,
/// and what is shown follows the event bus. It closes when the stack does.
///
/// Changes are made by apply(), in one step of the stack's history.
class NYXStackDialog : public QDialog, public NYXEventClient
{
  Q_OBJECT

public:
  ~NYXStackDialog() override;

  NYXStack& stack() const { return *_stack; }

  /// Puts the dialog's changes into effect. \return whether it could; if not, the line for messages says why
  bool apply();

signals:
  /// Tells what was done, as for a status bar.
  void messageShown(const QString& message);

protected:
  /// The dialog is remembered under its object name. Without a parent it is a window of its own.
  NYXStackDialog(NYXStack& stack, const QString& name, const QString& title, QWidget* parent);

  /// Puts the content over the line for messages and the buttons. To be called once, before finish().
  void layOut(QWidget& content, QDialogButtonBox::StandardButtons buttons);
  /// To be called at the end of the constructor: shows everything and follows the event bus from now on. The size, in
  /// average characters and lines, is that of the first time.
  void finish(int numCharacters, int numLines);

  /// The button, which layOut() has made.
  QPushButton& button(QDialogButtonBox::StandardButton button) const;
  /// OK and Apply.
  void enableApplying(bool canApply, bool isChanged);
  void showMessage(const QString& message);
  /// Runs what may throw; an error becomes the message. \return whether it did not throw
  bool attempt(const std::function<void()>& work);

  /// Makes the changes, in one step of the stack's history. \throw Exception  they cannot be made; none is
  virtual void change() = 0;
  /// Shows the stack as it is now. Called after any change to it, once control returns to the window.
  virtual void refresh() = 0;
  /// Whether an event of this stack matters.
  virtual bool concerns(const Stack* stack) const;
  void refreshSoon() { _refresh.start(); }
  bool isStackOpen() const { return _isStackOpen; }

  void stackOpenEvent(const NYXStackOpenEvent& event) override;
  void stackCloseEvent(const NYXStackCloseEvent& event) override;
  void stackNameEvent(const NYXStackNameEvent& event) override { note(event); }
  void stackFileNameEvent(const NYXStackFileNameEvent& event) override { note(event); }
  void stackSliceSpacingEvent(const NYXStackSliceSpacingEvent& event) override { note(event); }
  void stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event) override { note(event); }
  void sliceAnnotationEvent(const NYXSliceAnnotationEvent& event) override { note(event); }
  void sliceNameEvent(const NYXSliceNameEvent& event) override { note(event); }
  void sliceSpacingEvent(const NYXSliceSpacingEvent& event) override { note(event); }
  void sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event) override { note(event); }
  void modelCreateEvent(const NYXModelCreateEvent& event) override { note(event); }
  void modelDeleteEvent(const NYXModelDeleteEvent& event) override { note(event); }
  void modelPropertiesEvent(const NYXModelPropertiesEvent& event) override { note(event); }
  void modelItemCreateEvent(const NYXModelItemCreateEvent& event) override { note(event); }
  void modelItemDeleteEvent(const NYXModelItemDeleteEvent& event) override { note(event); }
  void modelItemVertexEvent(const NYXModelItemVertexEvent& event) override { note(event); }
  void modelItemConvertEvent(const NYXModelItemConvertEvent& event) override { note(event); }
  void processSliceAction(NYXSliceAction& action) override;

private:
  void note(const NYXStackEvent& event);
  void note(const NYXSliceEvent& event);
  void note(const NYXModelEvent& event);
  void note(const NYXModelItemEvent& event);

  NYXStack* _stack;
  bool _isStackOpen = true;
  QTimer _refresh;
  QLabel* _message = nullptr;
  QDialogButtonBox* _buttons = nullptr;
};
