#pragma once

#include "app/nyxplugin.h"

#include <QObject>

/// Names all slices of a stack by their numbers: "01", "02", ..., with as many digits as the last one needs.
class NumberSlices : public QObject, public NYXPlugin
{
  Q_OBJECT
  Q_PLUGIN_METADATA(IID MIRELO_PLUGIN_IID)
  Q_INTERFACES(NYXPlugin)

public:
  QString name() const override { return tr("Number slices"); }
  Change run(const NYXStack& stack, ProgressSubject& progress) override;
};
