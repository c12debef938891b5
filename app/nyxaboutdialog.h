#pragma once

#include <QDialog>

/// Name, version, licence and credits.
class NYXAboutDialog : public QDialog
{
public:
  explicit NYXAboutDialog(QWidget* parent = nullptr);
};
