#pragma once

class QWidget;

/// Lets Ctrl+W close a window that has no menu for it.
void addCloseAction(QWidget& window);
