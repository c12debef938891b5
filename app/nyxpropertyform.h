#pragma once

#include "app/nyxcontrols.h"

#include <functional>
#include <optional>
#include <utility>
#include <vector>

/// Binds controls to properties of one or several objects, of which Properties is a copy.
///
/// A control shows what the objects have in common, or that they differ. What the user has changed is kept until it is
/// forgotten, also when the objects change meanwhile, and only that is written.
template <class Properties> class NYXPropertyForm
{
public:
  /// `edited` is called when the user has changed a control.
  explicit NYXPropertyForm(std::function<void()> edited) : _edited(std::move(edited)) {}
  NYXPropertyForm(const NYXPropertyForm&) = delete;
  NYXPropertyForm& operator=(const NYXPropertyForm&) = delete;

  /// get(properties) gives what the control shows, set(properties, value) takes it back; see nyxcontrols.h for values.
  template <class Control, class Get, class Set> void bind(Control& control, Get get, Set set)
  {
    const std::size_t i = _fields.size();
    _fields.push_back({[&control, get](const std::vector<Properties>& objects)
                       { showValue(control, commonValue(objects, get)); },
                       [&control, set](Properties& properties) { set(properties, valueOf(control)); }});
    whenEdited(control,
               [this, i]
               {
                 _fields[i].isTouched = true;
                 _edited();
               });
  }

  /// Shows the objects in the controls that the user has not changed.
  void show(const std::vector<Properties>& objects)
  {
    for (Field& field : _fields)
      if (!field.isTouched) field.show(objects);
  }

  /// Puts what the user has changed into the properties.
  void write(Properties& properties) const
  {
    for (const Field& field : _fields)
      if (field.isTouched) field.write(properties);
  }

  bool isTouched() const
  {
    for (const Field& field : _fields)
      if (field.isTouched) return true;
    return false;
  }

  void forgetChanges()
  {
    for (Field& field : _fields) field.isTouched = false;
  }

private:
  struct Field
  {
    std::function<void(const std::vector<Properties>&)> show;
    std::function<void(Properties&)> write;
    bool isTouched = false;
  };

  template <class Get> static auto commonValue(const std::vector<Properties>& objects, const Get& get)
  {
    std::optional<decltype(get(objects.front()))> value;
    for (const Properties& object : objects)
    {
      if (value && *value != get(object)) return decltype(value)();
      value = get(object);
    }
    return value;
  }

  std::function<void()> _edited;
  std::vector<Field> _fields;
};
