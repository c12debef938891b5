#pragma once

#include "numeric/exception.h"

#include <gtest/gtest.h>
#include <string>

/// Expects the action to throw exactly this kind of error, with the text in its message.
template <class Error, class Action> void expectError(const std::string& text, Action action)
{
  try
  {
    action();
    ADD_FAILURE() << "nothing was thrown, expected: " << text;
  }
  catch (const Error& error)
  {
    EXPECT_NE(error.getWhat().find(text), std::string::npos) << "message: " << error.getWhat();
  }
}
