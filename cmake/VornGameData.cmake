# Run at each build: links in FOLDER/data to what lies in SOURCE/data, and to the shader files of the engine.

cmake_minimum_required(VERSION 3.25)

# A link at `place`, which nothing else takes any more. What is right already is not touched: somebody may watch it.
function(link target place)
  if(NOT place IN_LIST wanted)
    set(now "")
    if(IS_SYMLINK ${place})
      file(READ_SYMLINK ${place} now)
    endif()
    if(NOT now STREQUAL target)
      file(REMOVE_RECURSE ${place})
      file(CREATE_LINK ${target} ${place} SYMBOLIC)
    endif()
    set(wanted ${wanted} ${place} PARENT_SCOPE)
  endif()
endfunction()

# One to each entry of `from`.
function(link_entries from to)
  file(MAKE_DIRECTORY ${to})
  file(GLOB entries LIST_DIRECTORIES true ${from}/*)
  foreach(entry IN LISTS entries)
    get_filename_component(name ${entry} NAME)
    link(${entry} ${to}/${name})
  endforeach()
  set(wanted ${wanted} PARENT_SCOPE)
endfunction()

set(wanted "")
if(IS_DIRECTORY ${SOURCE}/data/shaders)
  if(IS_SYMLINK ${FOLDER}/data/shaders)
    file(REMOVE ${FOLDER}/data/shaders)
  endif()
  list(APPEND wanted ${FOLDER}/data/shaders)
  link_entries(${SOURCE}/data/shaders ${FOLDER}/data/shaders) # the game's own first
  link_entries(${SHADERS} ${FOLDER}/data/shaders)
else()
  file(MAKE_DIRECTORY ${FOLDER}/data)
  link(${SHADERS} ${FOLDER}/data/shaders)
endif()
link_entries(${SOURCE}/data ${FOLDER}/data)

# What nobody names any more goes.
file(GLOB present LIST_DIRECTORIES true ${FOLDER}/data/*)
if(NOT IS_SYMLINK ${FOLDER}/data/shaders)
  file(GLOB shaders ${FOLDER}/data/shaders/*)
  list(APPEND present ${shaders})
endif()
list(REMOVE_ITEM present ${wanted})
foreach(place IN LISTS present)
  file(REMOVE_RECURSE ${place})
endforeach()

# Pads that SDL does not know yet.
if(EXISTS ${SOURCE}/gamecontrollerdb.txt)
  link(${SOURCE}/gamecontrollerdb.txt ${FOLDER}/gamecontrollerdb.txt)
endif()
