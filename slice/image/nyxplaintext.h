#pragma once

#include <QString>
#include <QTextDocument>

/// A text as tool tips and dialogs show it word for word: one that they would take for markup is escaped.
inline QString plainText(const QString& text)
{
  return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}
