#pragma once

#include "analysis/spatialresults/nyxspatialresult.h"
#include "app/nyxspatialanalysispluginconfig.h"

class NYXSpatialResultWindow;
class NYXStack;
class QWidget;

/// The spatial analysis of a stack, from the question what to compare to the window of the results. It comes with the
/// program and changes nothing in the stack.
class NYXSpatialAnalysisPlugin
{
public:
  explicit NYXSpatialAnalysisPlugin(NYXStack& stack) : _stack(stack) {}

  /// Asks what to compare, compares, and shows the result in a window of its own; nullptr when the user cancelled it.
  NYXSpatialResultWindow* run(QWidget* parent);

  /// Compares a copy of what is needed of the stack, in a thread of its own, while a dialog over the parent shows the
  /// progress with Cancel. \throw Cancelled  by the user   \throw Exception  as StackSpatialAnalysis::run()
  NYXSpatialResult analyse(const NYXSpatialAnalysisPluginConfig& config, QWidget* parent) const;

private:
  NYXStack& _stack;
};
