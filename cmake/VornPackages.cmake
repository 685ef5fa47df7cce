# What `cpack` makes of the build: a Debian package of the library, one of what hosts are built with, one of the
# author's command with the starter and the schemas. scripts/package calls it.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vorn)
set(CPACK_PACKAGE_VENDOR "The developers of Vorn")
set(CPACK_PACKAGE_CONTACT "The developers of Vorn <vorn@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE gzip) # Debian's xz takes a minute for a build with debug information
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The command needs the library, which no package that is installed yet has.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/vorn)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(version "${PROJECT_VERSION}-1")

set(CPACK_COMPONENTS_ALL library dev)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libvorn${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "libgl1-mesa-dri | libgl1-nvidia-glvnd-glx, libegl1")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS "fonts-liberation")
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "The library that games are linked with: scenes out of data files, physics,
triggers, pictures, sound and input.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libvorn-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "libvorn${PROJECT_VERSION_MAJOR} (= ${version}), libjsoncpp-dev, cmake (>= 3.25), g++ | c++-compiler, make | ninja-build")
set(CPACK_DEBIAN_DEV_PACKAGE_SUGGESTS "libimgui-dev, libsdl2-dev") # of Vorn::Dev
set(CPACK_COMPONENT_DEV_DESCRIPTION "What games are built with: headers, the CMake package with the target
Vorn::Vorn and the function vorn_game, and the shader files that games start
from.")

if(VORN_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME vorn-tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION devel)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libvorn-dev (= ${version})")
  set(CPACK_COMPONENT_TOOLS_DESCRIPTION "The command of who makes games: starts, runs and packs them, imports models,
 shows files, checks shaders and data.")
endif()

# As Debian wants it of each package.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} key)
  install(FILES LICENSE RENAME copyright COMPONENT ${component}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${key}_PACKAGE_NAME})
endforeach()
include(CPack)
