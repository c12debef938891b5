#pragma once

/// How the scene is projected onto the picture.
struct ProjectionGL
{
  enum Type
  {
    Orthographic,
    Perspective
  };
  static constexpr float mostStrength = 5;

  Type type = Orthographic;
  float strength = 3; ///< of the perspective, from 0 to mostStrength: the eye is (7 - strength) scene sizes away

  bool operator==(const ProjectionGL&) const = default;
};
