// The libraries without the programs: reads a stack and writes its surfaces to the current folder.
#include "geometry/reconstruction/stackexporter.h"
#include "model/io/stackreader.h"
#include "model/stack.h"
#include "numeric/exception.h"

#include <iostream>

int main(int argc, char** argv)
{
  if (argc != 2 || argv[1][0] == '-')
  {
    std::cout << "export_surfaces " MIRELO_VERSION "\nusage: export_surfaces STACK.sdf\n";
    return argc == 2 ? 0 : 2;
  }
  Stack stack;
  StackReader reader;
  reader.read(stack, argv[1]);
  for (const std::string& line : reader.getLog()) std::cerr << line << "\n";
  if (!reader.hasReadStack()) return 2;
  try
  {
    StackExporter().export2AsciiSTL(stack, "", true);
  }
  catch (const Exception& error)
  {
    std::cerr << error.getWhat() << "\n"; // a model that cannot be reconstructed; the others were written
  }
}
