// The libraries without the programs: reads the example and writes its surfaces to the current folder.
#include "geometry/reconstruction/stackexporter.h"
#include "model/io/stackreader.h"
#include "model/stack.h"
#include "numeric/exception.h"

#include <iostream>

int main()
{
  Stack stack;
  StackReader reader;
  reader.read(stack, "examples/specimen/specimen.sdf");
  if (reader.getNumFatalErrors() > 0) return 1;
  try
  {
    StackExporter().export2AsciiSTL(stack, "", true);
  }
  catch (const Exception& error)
  {
    std::cerr << error.getWhat() << "\n"; // a model that cannot be reconstructed; the others were written
  }
}
