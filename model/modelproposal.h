#pragma once

#include "model/modelitemproperties.h"

#include <functional>
#include <string>

class Stack;

/// The wished name or, when it is taken, that name followed by the first number from 2 on that makes it free.
std::string freeName(const std::string& wished, const std::function<bool(const std::string&)>& isTaken);

/// A free name for a model that is to come into the stack.
std::string freeModelName(const Stack& stack, const std::string& wished);

/// The colour for a new model: of eight that colour-blind people can tell apart, the first of those that the fewest
/// models of the stack have. Source: Okabe and Ito, "Color Universal Design", 2008.
ModelItemProperties::Color proposedModelColor(const Stack& stack);
