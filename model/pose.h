#pragma once

#include "model/keptstatements.h"

#include <string>

class Stack;

/// Saved 3D viewpoint of a stack: rotation in degrees, translation and zoom of the view, strengths of its lights.
class Pose : public KeptStatements
{
public:
  explicit Pose(Stack* stack = nullptr) : _stack(stack) {}

  /// Predefined views; all other fields are at their defaults.
  static Pose canonicalPose1(); ///< turned by 180 degrees about Y
  static Pose canonicalPose2(); ///< turned by 90 degrees about Y
  static Pose canonicalPose3(); ///< turned by 90 degrees about X
  static Pose reverseCanonicalPose1() { return Pose(); }
  static Pose reverseCanonicalPose2(); ///< turned by -90 degrees about Y
  static Pose reverseCanonicalPose3(); ///< turned by -90 degrees about X

  const std::string& getName() const { return _name; }
  /// \throw ValueError  the name cannot be stored
  void setName(const std::string& name);
  Stack* getStack() const { return _stack; }
  void setStack(Stack* stack) { _stack = stack; }

  float getXRotation() const { return _xRotation; }
  float getYRotation() const { return _yRotation; }
  float getZRotation() const { return _zRotation; }
  void setXRotation(float degrees) { _xRotation = degrees; }
  void setYRotation(float degrees) { _yRotation = degrees; }
  void setZRotation(float degrees) { _zRotation = degrees; }
  void setXRotation(int degrees) { _xRotation = static_cast<float>(degrees); }
  void setYRotation(int degrees) { _yRotation = static_cast<float>(degrees); }
  void setZRotation(int degrees) { _zRotation = static_cast<float>(degrees); }

  int getXTranslation() const { return _xTranslation; }
  int getYTranslation() const { return _yTranslation; }
  void setXTranslation(int shift) { _xTranslation = shift; }
  void setYTranslation(int shift) { _yTranslation = shift; }
  int getZoom() const { return _zoom; }
  void setZoom(int percent) { _zoom = percent; }
  int getAmbientLight() const { return _ambientLight; }
  int getDiffuseLight() const { return _diffuseLight; }
  int getSpecularLight() const { return _specularLight; }
  void setAmbientLight(int light) { _ambientLight = light; }
  void setDiffuseLight(int light) { _diffuseLight = light; }
  void setSpecularLight(int light) { _specularLight = light; }

  /// Adds this pose, made by new, to its stack, which deletes the poses it holds.
  void attach();
  /// Takes this pose off its stack; it belongs to the caller then.
  void detach();

private:
  std::string _name;
  Stack* _stack;
  float _xRotation = 0;
  float _yRotation = 0;
  float _zRotation = 0;
  int _xTranslation = 0;
  int _yTranslation = 0;
  int _zoom = 100;
  int _ambientLight = 0;
  int _diffuseLight = 0;
  int _specularLight = 0;
};
