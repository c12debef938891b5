#pragma once

#include <sstream>
#include <string>

template <class AnyShape> std::string textOf(const AnyShape& shape)
{
  std::ostringstream stream;
  shape.write(stream);
  return stream.str();
}

template <class AnyShape> void readText(AnyShape& shape, const std::string& text)
{
  std::istringstream stream(text);
  shape.read(stream);
}
