#pragma once

#include <QLabel>

/// A field of a status bar: as wide as a sample text, whatever it says, so that its neighbours stay where they are.
/// It gives way in narrow windows; a text that is too long for it is shortened, and whole in its tool tip.
class NYXStatusField : public QLabel
{
  Q_OBJECT

public:
  NYXStatusField(const QString& name, const QString& toolTip, const QString& sample, QWidget* parent);

  /// Makes narrow windows take the place for the text from other fields.
  void keepText() { _isTextKept = true; }

  /// Takes the width that there is, whatever the text, and sets the text off the edge of the window.
  void fillLine();

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

private:
  int widthOf(const QString& text) const;
  QRect placeOfText() const;

  QString _sample;
  bool _isTextKept = false;
};
