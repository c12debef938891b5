#pragma once

/// What the automatic registration is to do.
struct NYXAutomaticRegistrationConfig
{
  bool isForAllSlices = false; ///< every slice in turn, else the current one
  bool isSpecimenDark = false; ///< the specimen is darker than its background
};
