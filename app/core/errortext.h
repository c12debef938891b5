#pragma once

#include <QString>

class Exception;

/// What went wrong, with the name of the file if there is one and the text does not name it.
QString errorText(const Exception& error);

/// The same of the exception that is being handled, which may also be one of the standard library. Any other is thrown
/// on.
QString handledErrorText();
