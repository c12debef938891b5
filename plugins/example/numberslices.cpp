#include "numberslices.h"

#include "numberslicesaction.h"

#include <string>
#include <vector>

NYXPlugin::Change NumberSlices::run(const NYXStack& stack, ProgressSubject& progress)
{
  const int numSlices = stack.getNumSlices();
  const auto numDigits = static_cast<int>(std::to_string(numSlices).size());
  const ProgressStep step(progress, "Numbering slices", numSlices);
  std::vector<std::string> names;
  for (int i = 0; i < numSlices; ++i)
  {
    progress.throwIfCancelled("NYXPlugin::Change NumberSlices::run(const NYXStack&, ProgressSubject&)");
    names.push_back(QString("%1").arg(i + 1, numDigits, 10, QChar('0')).toStdString());
    progress.progress(i + 1);
  }
  return [names](NYXStack& changed, NYXActionStep& history)
  { history.push(std::make_unique<NumberSlicesAction>(changed, names)); };
}
