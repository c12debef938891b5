#include "analysis/measures/stackmeasures.h"
#include "batch/commands.h"
#include "batch/json.h"
#include "batch/stackfile.h"
#include "batch/terminalprogress.h"
#include "model/stack.h"
#include "numeric/atomicfile.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iostream>

namespace
{
struct Arguments
{
  std::string stack;
  std::string sheet;
  std::vector<std::string> models;
  bool json = false;
  std::string out;
  bool overwrite = false;
};

std::vector<ModelMeasures> measureModels(const std::vector<const Model*>& models)
{
  std::vector<ModelMeasures> measures;
  for (const Model* model : models)
  {
    measures.push_back(measureOrTell(*model));
    if (!measures.back().remark.empty()) warn(measures.back().remark);
  }
  return measures;
}

MeasureTable measureItems(const Stack& stack, const std::vector<const Model*>& models)
{
  if (models.size() != 1) throw BatchError("--sheet items measures one model; name it by --model");
  TerminalProgress progress;
  ProgressSubject subject;
  subject.addObserver(progress);
  return itemTable(stack, *models[0], subject);
}

MeasureTable measureTable(const StackFile& file, const Arguments& arguments)
{
  const std::vector<const Model*> models = selectModels(file, arguments.models);
  if (arguments.sheet == "items") return measureItems(*file.stack, models);
  if (arguments.sheet == "slices") return sliceTable(*file.stack, models);
  return modelTable(measureModels(models), file.stack->getLengthUnit().symbol());
}

Json cell(const MeasureTable& table, int row, int column)
{
  const double value = table.getValue(row, column);
  switch (table.getColumn(column).kind)
  {
  case MeasureColumn::Text:
    return table.getText(row, column);
  case MeasureColumn::Count:
    return std::isnan(value) ? Json(nullptr) : Json(static_cast<long>(value));
  default:
    return std::isfinite(value) ? Json(value) : Json(nullptr);
  }
}

/// Keys are the names of the columns in lower case; the coordinates of an average are one array, null when there is
/// none.
Json measuresRow(const MeasureTable& table, int row)
{
  Json result = Json::object();
  for (int column = 0; column < table.getNumColumns(); ++column)
  {
    std::string key = table.getColumn(column).name;
    std::transform(key.begin(), key.end(), key.begin(), [](unsigned char c) { return std::tolower(c); });
    const Json value = cell(table, row, column);
    if (!key.starts_with("average"))
      result[key] = value;
    else if (Json& average = result["average"]; !value.is_null())
      average.push_back(value);
  }
  return result;
}

/// Keys are the names of the models; the counts of models of one name are added.
Json countsRow(const MeasureTable& table, int row)
{
  Json counts = Json::object();
  for (int column = 1; column < table.getNumColumns(); ++column)
  {
    Json& count = counts[table.getColumn(column).name];
    count = (count.is_null() ? 0 : count.get<long>()) + static_cast<long>(table.getValue(row, column));
  }
  return {{"slice", table.getText(row, 0)}, {"counts", counts}};
}

Json toJson(const MeasureTable& table, const std::string& sheet)
{
  Json rows = Json::array();
  for (int row = 0; row < table.getNumRows(); ++row)
    rows.push_back(sheet == "slices" ? countsRow(table, row) : measuresRow(table, row));
  return rows;
}

void output(const Arguments& arguments, const std::string& text)
{
  if (arguments.out.empty())
  {
    std::cout << text;
    return;
  }
  AtomicFile file(arguments.out);
  file.write(text);
  file.commit();
}

ExitStatus measure(const Arguments& arguments)
{
  if (!arguments.out.empty()) requireWritable(arguments.out, arguments.overwrite);
  const StackFile file = requireStackFile(arguments.stack);
  const MeasureTable table = measureTable(file, arguments);
  output(arguments, arguments.json ? toText(toJson(table, arguments.sheet)) : table.toCsv());
  return Done;
}
} // namespace

void addMeasureCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command =
      app.add_subcommand("measure", "Print measures of a stack as comma-separated text, NA where there is no value");
  command->add_option("stack", arguments->stack, "stack file")->required();
  command->add_option("--sheet", arguments->sheet, "what is measured")
      ->required()
      ->check(CLI::IsMember({"models", "slices", "items"}));
  command->add_option("--model", arguments->models, "a model to measure, repeatable; by default all. Of items, one")
      ->allow_extra_args(false);
  command->add_flag("--json", arguments->json, "print JSON, null where there is no value");
  command->add_option("--out", arguments->out, "file to write instead of standard output");
  command->add_flag("--overwrite", arguments->overwrite, "replace an existing file");
  command->callback([=, &run] { run = [=] { return measure(*arguments); }; });
}
