#pragma once

#include <QWidget>

class NYXSliceListWidget;
class NYXStackListWidget;

/// The left side of the root window: the list of open stacks above the slices of the current one.
class NYXRootBrowser : public QWidget
{
public:
  explicit NYXRootBrowser(QWidget* parent = nullptr);

  NYXStackListWidget& stackList() const { return *_stackList; }
  NYXSliceListWidget& sliceList() const { return *_sliceList; }

private:
  NYXStackListWidget* _stackList;
  NYXSliceListWidget* _sliceList;
};
