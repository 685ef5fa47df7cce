# vorn_game(NAME sources...): the program of a game, the folder that it runs in, and what `cmake --install` makes of it
# for other machines. The current folder holds the sources and data/.
#
#   find_package(Vorn REQUIRED)
#   vorn_game(meadow main.cpp)
#
# The build makes game/ in the build folder: the program and data/, whose entries are links to those of the sources, so
# that a changed file needs no build. Shader files of the engine stand in data/shaders but where the game has its own.
#
# `cmake --install BUILD --prefix FOLDER` writes a folder that can be moved to another machine: program, data, the
# libraries that not every machine has, their licences, and a script that starts it.

set(_vorn_game_dir ${CMAKE_CURRENT_LIST_DIR})

function(vorn_game name)
  if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "What the game is built for" FORCE)
  endif()
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/game)

  add_executable(${name} ${ARGN})
  # Vorn::Vorn brings C++20, and -ffp-contract=off: the same world ends in the same state in every build.
  target_link_libraries(${name} PRIVATE Vorn::Vorn)
  # The old kind of run path, which holds for what the libraries need as well.
  target_link_options(${name} PRIVATE -Wl,--disable-new-dtags)
  set_target_properties(${name} PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY $<1:${folder}>
    INSTALL_RPATH "$ORIGIN/lib")

  set(places "-DSOURCE=${CMAKE_CURRENT_SOURCE_DIR}" "-DSHADERS=${Vorn_DATA_DIR}/shaders")
  add_custom_target(${name}-data ALL
    COMMAND ${CMAKE_COMMAND} ${places} -DFOLDER=${folder} -P ${_vorn_game_dir}/VornGameData.cmake
    COMMENT "" VERBATIM)
  add_dependencies(${name} ${name}-data)
  # Where `vorn run` looks.
  file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/vorn-games/${name} CONTENT "$<TARGET_FILE:${name}>\n")

  install(TARGETS ${name} RUNTIME DESTINATION .)
  install(CODE "
    set(name \"${name}\")
    set(program \"$<TARGET_FILE:${name}>\")
    set(source \"${CMAKE_CURRENT_SOURCE_DIR}\")
    set(vorn_data \"${Vorn_DATA_DIR}\")")
  install(SCRIPT ${_vorn_game_dir}/VornGamePackage.cmake)
endfunction()
