#pragma once

#include "app/nyxstackdialog.h"

class QPlainTextEdit;
class StackSlice;

/// The dialogs "Annotate stack" and "Annotate slice": notes as plain text. Each Apply or OK is one step of the stack's
/// history.
class NYXAnnotationDialog : public NYXStackDialog
{
  Q_OBJECT

public:
  explicit NYXAnnotationDialog(NYXStack& stack, QWidget* parent = nullptr);
  /// On a slice of the stack.
  NYXAnnotationDialog(NYXStack& stack, StackSlice& slice, QWidget* parent = nullptr);

protected:
  void change() override;
  void refresh() override;
  void processSliceAction(NYXSliceAction& action) override;

private:
  NYXAnnotationDialog(NYXStack& stack, StackSlice* slice, const QString& name, const QString& title, QWidget* parent);
  QString annotation() const;
  void noteEdit();

  StackSlice* _slice; // nullptr: the stack
  QPlainTextEdit* _text;
  bool _isChanged = false;
};
