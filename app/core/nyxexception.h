#pragma once

#include "numeric/exception.h"

/// Error of the application layer.
class NYXException : public Exception
{
public:
  explicit NYXException(const std::string& where = "<unknown>",
                        const std::string& what = "Undocumented application error")
    : Exception(where, what)
  {
  }
};
