#include "analysis/spatialresults/nyxspatialresult.h"

#include "model/stackslice.h"

#include <QLocale>

namespace
{
/// The shortest text that reads back as the same number.
QString number(double value)
{
  return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString line(const QStringList& fields)
{
  return fields.join('\t') + '\n';
}
} // namespace

NYXSpatialResult::NYXSpatialResult(const StackSpatialAnalysis& analysis, const QString& stack,
                                   const QString& lengthUnit)
  : stackName(stack), unit(lengthUnit), combinations(analysis.combinations())
{
  for (const StackSpatialAnalysis::SliceResult& result : analysis.getResults())
    slices.push_back({QString::fromStdString(result.slice->getName()), result.numObjects, result.functions});
  for (const std::string& message : analysis.getMessages()) messages.append(QString::fromStdString(message));
}

std::string NYXSpatialResult::functions() const
{
  std::string letters;
  for (const StackSpatialAnalysis::Combination& combination : combinations) letters += combination.function;
  return letters;
}

QString NYXSpatialResult::tableText() const
{
  QStringList names("Slice");
  for (const char function : functions()) names.append(columnName(function));
  QString text = line(names);
  for (const Slice& slice : slices)
  {
    QStringList fields(slice.name);
    for (const StackSpatialAnalysis::FunctionResult& result : slice.functions)
      fields.append(result.evaluation ? number(result.evaluation->pValue) : "NA");
    text += line(fields);
  }
  return text;
}

QString NYXSpatialResult::curvesText(std::size_t function) const
{
  QString text = line({"slice", "grid", "observed", "average", "lower", "upper"});
  for (const Slice& slice : slices)
    if (const auto& curves = slice.functions[function].evaluation)
      for (int j = 0; j < curves->grid.getSize(); ++j)
        text += line({slice.name, number(curves->grid[j]), number(curves->observed[j]), number(curves->average[j]),
                      number(curves->lower[j]), number(curves->upper[j])});
  return text;
}

QString columnName(char function)
{
  return QChar::fromLatin1(function) + QString("-SDI");
}
