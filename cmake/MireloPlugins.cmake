# Plug-ins link against nothing but the program that loads them, and so share its event bus, stacks and settings.

# The libraries that a plug-in may use; the program carries the whole of them, not only what it calls itself.
set(MIRELO_PLUGIN_LIBRARIES numeric geometry image model reconstruction spatial appcore)
# Folders of their headers.
set(MIRELO_PLUGIN_HEADER_FOLDERS numeric geometry image model analysis/spatial app/core)

# Where plug-ins are installed, and where the program looks for them: the same place, seen from the program's folder.
set(MIRELO_INSTALLED_PLUGIN_DIR "${CMAKE_INSTALL_LIBDIR}/mirelo/plugins")
file(RELATIVE_PATH MIRELO_PLUGIN_DIR_OF_PROGRAM
  "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}/mirelo/plugins")

# mirelo_load_plugins(program): a program that plug-ins can be loaded into.
function(mirelo_load_plugins program)
  list(TRANSFORM MIRELO_PLUGIN_LIBRARIES PREPEND "mirelo_" OUTPUT_VARIABLE libraries)
  list(JOIN libraries "," libraries)
  set_target_properties(${program} PROPERTIES
    ENABLE_EXPORTS ON
    LINK_LIBRARY_OVERRIDE "WHOLE_ARCHIVE,${libraries}")
endfunction()

# mirelo_install_plugin_interface(program): the headers, and the package that find_package(Mirelo) finds.
function(mirelo_install_plugin_interface program)
  set(headers "${CMAKE_INSTALL_INCLUDEDIR}/mirelo")
  set(package "${CMAKE_INSTALL_LIBDIR}/cmake/Mirelo")
  foreach(folder IN LISTS MIRELO_PLUGIN_HEADER_FOLDERS)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}/" DESTINATION "${headers}/${folder}"
      FILES_MATCHING PATTERN "*.h")
  endforeach()
  install(FILES "${PROJECT_SOURCE_DIR}/app/nyxplugin.h" DESTINATION "${headers}/app")
  install(FILES "${PROJECT_SOURCE_DIR}/docs/plugins.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/plugins/example" DESTINATION "${CMAKE_INSTALL_DOCDIR}/plugins")

  add_library(mirelo_plugin INTERFACE)
  set_target_properties(mirelo_plugin PROPERTIES EXPORT_NAME plugin)
  target_include_directories(mirelo_plugin INTERFACE "$<INSTALL_INTERFACE:${headers}>")
  target_compile_definitions(mirelo_plugin INTERFACE MIRELO_VERSION="${PROJECT_VERSION}" QT_PLUGIN)
  target_compile_features(mirelo_plugin INTERFACE cxx_std_20)
  target_link_libraries(mirelo_plugin INTERFACE ${program} Qt5::Core Qt5::Gui)
  install(TARGETS mirelo_plugin EXPORT MireloTargets)
  install(EXPORT MireloTargets NAMESPACE Mirelo:: DESTINATION "${package}")

  include(CMakePackageConfigHelpers)
  configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/MireloConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/MireloConfig.cmake" INSTALL_DESTINATION "${package}")
  write_basic_package_version_file("${PROJECT_BINARY_DIR}/MireloConfigVersion.cmake" COMPATIBILITY ExactVersion)
  install(FILES "${PROJECT_BINARY_DIR}/MireloConfig.cmake" "${PROJECT_BINARY_DIR}/MireloConfigVersion.cmake"
    DESTINATION "${package}")
endfunction()
