#pragma once

#include "model/io/stackreader.h"
#include "model/io/stackwriter.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <string>
#include <vector>

/// The stack that a text describes, with the reader's log.
struct ReadStack
{
  explicit ReadStack(const std::string& text) { reader.read(stack, folder.write("text.sdf", text)); }

  const std::vector<std::string>& log() const { return reader.getLog(); }

  TemporaryFolder folder;
  Stack stack;
  StackReader reader;
};

/// The text that the writer makes of a stack, beside which its images lie.
inline std::string textOf(const Stack& stack, const TemporaryFolder& folder)
{
  StackWriter().write(stack, folder.file("out.sdf"));
  return contentOf(folder.file("out.sdf"));
}

/// A log line about a statement of calibration, which is kept.
inline auto saysThatACalibrationFailed()
{
  return testing::ContainsRegex(
      "^Error(:| on) (CALIBRATIONCURVE|FIT|SAMPLE|SAMPLECOORDS|SAMPLEVALUE|STANDARDIMAGE)[ :]");
}

/// A stack of one slice, one model and one item, to which statements can be appended.
inline const char* const smallStack = "STACK \"s\";\nSLICE \"a\" \"a.tif\";\nMODEL \"m\";\nMODELITEM \"m\" \"a\";\n";
