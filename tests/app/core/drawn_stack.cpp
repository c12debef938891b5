#include "drawn_stack.h"

#include <iomanip>
#include <regex>
#include <sstream>

RLEItemSet disc(int x, int y, int radius)
{
  RLEItemSet set;
  set.setBall(Vector<int>{x, y}, radius);
  return set;
}

DrawnStack::DrawnStack()
{
  _stack.setName("cells");
  _stack.setDefaultRelativePosition(2);
  for (int i = 0; i < 3; ++i) addSlice(_stack, 100, 80);
  slice(1).setRelativePosition(3.1f);
  Model& cells = addModel(_stack, "cells", MPrimitive::Polygon);
  Model& fibres = addModel(_stack, "fibres", MPrimitive::Polyline);
  Model& spots = addModel(_stack, "spots", MPrimitive::Polypoint);
  Model& tissue = addModel(_stack, "tissue", MPrimitive::Region);
  addModel(_stack, "nuclei", MPrimitive::Polygon);
  for (int i = 0; i < 6; ++i)
    addItem(cells, slice(i % 3), {{10 * i, 10}, {10 * i + 8, 10}, {10 * i + 8, 19}, {10 * i, 18}});
  addItem(fibres, slice(0), {{1, 1}, {50, 40}, {90, 70}});
  addItem(spots, slice(0), {{5, 5}, {6, 7}, {50, 50}, {70, 20}});
  ModelItem::create(tissue, slice(0)).setRLEItemSet(disc(40, 40, 9));
  item("cells", 1).getProperties().setLineWidth(3);
  auto pose = std::make_unique<Pose>(&_stack);
  pose->setName("front");
  pose.release()->attach();
  _stack.setLastSegmentedSlice("slice 1");
  _stack.setModified(false);
}

std::string DrawnStack::state()
{
  std::ostringstream text;
  text << textOf(_stack, _folder) << std::hexfloat << _stack.getDefaultSliceThickness() << ' '
       << _stack.getDefaultRelativePosition() << ' ' << _stack.getDefaultPixelCalibration().getPixelWidth() << ' '
       << _stack.getImagesPath() << '\n';
  for (int i = 0; i < _stack.getNumSlices(); ++i)
  {
    const StackSlice& s = slice(i);
    text << s.getThickness() << ' ' << s.getAbsolutePosition() << ' ' << s.getPixelCalibration().getPixelWidth() << ' '
         << s.useDefaultRelativePosition() << ':';
    for (const ModelItem* item : s.getItems()) text << ' ' << item << ' ' << item->getSelection().getNumVertices();
    text << '\n';
  }
  return text.str();
}

std::string DrawnStack::selections()
{
  std::ostringstream text;
  for (int i = 0; i < _stack.getNumSlices(); ++i)
    for (const ModelItem* item : slice(i).getItems()) text << item << ' ' << item->getSelection().getSize() << '\n';
  return text.str();
}

std::string DrawnStack::stateWithoutBookmarks()
{
  return std::regex_replace(state(), std::regex("LAST(SEGMENTED|REGISTERED)SLICE[^;]*;"), "");
}
