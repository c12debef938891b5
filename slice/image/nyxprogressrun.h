#pragma once

#include "numeric/progresssubject.h"

#include <QString>

#include <functional>

class QWidget;

/// Runs long work in a thread of its own while the windows stay alive. Work that takes more than a moment shows a
/// dialog over the parent with the share that is done and Cancel, which cancels the subject; until the work has ended,
/// nothing else can be done in the program.
///
/// The observer, if there is one, is told of the subject's steps in the thread of the windows. What the work throws is
/// thrown here. \return false when the user cancelled it, which the work tells by throwing Cancelled
bool runWithProgress(QWidget* parent, const QString& title, ProgressSubject& subject, ProgressObserver* observer,
                     const std::function<void()>& work);
