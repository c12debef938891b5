#pragma once

#include "app/core/actions/nyxstackaction.h"

#include <string>
#include <vector>

/// All slices of a stack get other names. The stack's notes of the last segmented and registered slices follow.
class NumberSlicesAction : public NYXStackAction
{
public:
  /// One name per slice, in the order of the stack.
  NumberSlicesAction(NYXStack& stack, std::vector<std::string> names);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _names == _oldNames; }

private:
  void postEvents() override;
  void rename(const std::vector<std::string>& names);

  std::vector<std::string> _names;
  std::vector<std::string> _oldNames;
};
