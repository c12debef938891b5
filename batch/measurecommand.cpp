#include "batch/commands.h"
#include "batch/json.h"
#include "batch/measuretable.h"
#include "batch/stackfile.h"
#include "geometry/reconstruction/modelmorphometry.h"
#include "model/stack.h"
#include "numeric/atomicfile.h"

#include <CLI/CLI.hpp>

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

/// A measure in the table: null where it cannot be computed, which the morphometry says by NaN or a negative value.
Json measure(double value)
{
  return value >= 0 ? Json(value) : Json(nullptr);
}

Json modelRow(const Model& model)
{
  ModelMorphometry morphometry;
  morphometry.setModel(model);
  morphometry.run();
  if (!morphometry.getWarning().empty()) warn(morphometry.getWarning());
  Json average = nullptr;
  if (const Vector<double>& center = morphometry.getIsobarycenter(); center.getSize() == 3 && std::isfinite(center[0]))
    average = {center[0], center[1], center[2]};
  const bool hasContours = model.getGeometry() != MPrimitive::Polypoint;
  return {
      {"model", model.getName()},
      {"primitive", ModelProperties::toString(model.getGeometry())},
      {"vertices", morphometry.getNumVertices()},
      {"average", average},
      {"contours", hasContours ? Json(morphometry.getNumContours()) : Json(nullptr)},
      {"area", measure(morphometry.getArea())},
      {"volume", measure(morphometry.getVolume())},
  };
}

std::string modelsTable(const Json& rows, const std::string& unit)
{
  MeasureTable table({"Model", "Primitive", "Vertices", "AverageX [" + unit + "]", "AverageY [" + unit + "]",
                      "AverageZ [" + unit + "]", "Contours", "Area [" + unit + "^2]", "Volume [" + unit + "^3]"});
  for (const Json& row : rows)
  {
    const Json& average = row["average"];
    const auto coordinate = [&](std::size_t i) { return average.is_null() ? Json(nullptr) : average[i]; };
    table.addRow({row["model"], row["primitive"], row["vertices"], coordinate(0), coordinate(1), coordinate(2),
                  row["contours"], row["area"], row["volume"]});
  }
  return table.text();
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
  Json rows = Json::array();
  for (const Model* model : selectModels(file, arguments.models)) rows.push_back(modelRow(*model));
  output(arguments, arguments.json ? toText(rows) : modelsTable(rows, file.stack->getLengthUnit().symbol()));
  return Done;
}
} // namespace

void addMeasureCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command =
      app.add_subcommand("measure", "Print measures of a stack as comma-separated text, NA where there is no value");
  command->add_option("stack", arguments->stack, "stack file")->required();
  command->add_option("--sheet", arguments->sheet, "what is measured")->required()->check(CLI::IsMember({"models"}));
  command->add_option("--model", arguments->models, "a model to measure, repeatable; by default all")
      ->allow_extra_args(false);
  command->add_flag("--json", arguments->json, "print JSON, null where there is no value");
  command->add_option("--out", arguments->out, "file to write instead of standard output");
  command->add_flag("--overwrite", arguments->overwrite, "replace an existing file");
  command->callback([=, &run] { run = [=] { return measure(*arguments); }; });
}
