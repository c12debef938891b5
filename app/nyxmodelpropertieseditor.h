#pragma once

#include "app/core/actions/nyxmodelpropertiesaction.h"
#include "app/nyxpropertyform.h"

#include <QWidget>

#include <vector>

class Model;
class NYXActionStep;
class NYXNameEdit;
class QComboBox;
class QFormLayout;

/// The properties of one or several models of a stack.
class NYXModelPropertiesEditor : public QWidget
{
  Q_OBJECT

public:
  explicit NYXModelPropertiesEditor(QWidget* parent = nullptr);

  /// Shows other models; changes that were not applied are forgotten.
  void setModels(std::vector<Model*> models);
  const std::vector<Model*>& getModels() const { return _models; }
  /// Shows the models as they are now; what the user has changed stays.
  void refresh();
  /// A model ceases to exist.
  void forget(const Model& model);

  bool isChanged() const { return _form.isTouched(); }
  void forgetChanges() { _form.forgetChanges(); }
  /// Why the changes cannot be applied, or empty.
  QString refusal() const;
  /// Makes the changes and forgets them. \throw Exception  they cannot be made
  void apply(NYXActionStep& step);

signals:
  /// The user has changed a property.
  void edited();

private:
  QWidget* createModelGroup();
  QWidget* createItemsGroup();
  QWidget* createSurfaceGroup();
  template <class Get, class Set>
  void addNumber(QFormLayout& form, const char* name, const QString& label, const QString& toolTip, Get get, Set set);
  template <class Get, class Set> void addWholeNumber(QFormLayout& form, const char* name, const QString& label,
                                                      const QString& toolTip, Get get, Set set, int least,
                                                      int greatest);
  template <class Get, class Set>
  void addFlag(QFormLayout& form, const char* name, const QString& label, const QString& toolTip, Get get, Set set);
  QComboBox* createChoice(QFormLayout& form, const char* name, const QString& label, const QString& toolTip,
                          const QStringList& entries);
  std::vector<NYXModelProperties> propertiesOfModels() const;
  QString refusalOf(const QString& name) const;

  NYXPropertyForm<NYXModelProperties> _form;
  std::vector<Model*> _models;
  NYXNameEdit* _name = nullptr;
  QComboBox* _geometry = nullptr;
};

/// Why a model of the stack cannot have this name, or empty.
QString refusalOfModelName(const Model& model, const QString& name);
