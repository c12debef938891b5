#pragma once

#include "app/core/actions/nyxstackaction.h"
#include "model/registration.h"

#include <string>
#include <vector>

class StackSlice;

/// Slices of a stack are aligned anew, one or all in one; the last of them counts as the last one registered.
class NYXRegistrationAction : public NYXStackAction
{
public:
  /// A slice and the alignment that it gets.
  struct Alignment
  {
    StackSlice* slice;
    Registration registration;

    bool operator==(const Alignment& other) const = default;
  };

  /// \throw UsageError  there is no slice, or the first is not one of an open stack
  explicit NYXRegistrationAction(std::vector<Alignment> alignments);
  NYXRegistrationAction(StackSlice& slice, const Registration& registration);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override;

private:
  bool changes(const StackSlice& slice) const override;
  void postEvents() override;
  bool isEqual(const NYXAction& other) const override;
  void change(const std::vector<Alignment>& alignments);

  std::vector<Alignment> _oldAlignments;
  std::vector<Alignment> _alignments;
  std::string _otherLastRegisteredSlice; // that of the stack in the other state
};
