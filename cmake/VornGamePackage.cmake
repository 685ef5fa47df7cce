# Run by `cmake --install` behind the program of a game: data, libraries, licences and the script that starts it.
# `name`, `program`, `source` and `vorn_data` are vorn_game's.

cmake_minimum_required(VERSION 3.25)

set(root "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}")

# The game's own shaders lie over the engine's. Links become files: they do not live in every kind of archive.
function(copy from to)
  if(IS_DIRECTORY ${from})
    execute_process(COMMAND ${CMAKE_COMMAND} -E copy_directory ${from} ${root}/${to} COMMAND_ERROR_IS_FATAL ANY)
  endif()
endfunction()
copy(${vorn_data}/shaders data/shaders)
copy(${source}/data data)
if(EXISTS ${source}/gamecontrollerdb.txt)
  file(INSTALL ${source}/gamecontrollerdb.txt DESTINATION ${root})
endif()

# What stays at home, and all that only it needs. The others go along.
set(of_the_machine
  # Belong to the machine's loader. Taken along they would be older than what its drivers were built with; so a game
  # runs on systems that are as new as the one that packed it.
  "ld-linux.*" "libc\\.so.*" "libm\\.so.*" "libmvec.*" "libdl.*" "libpthread.*" "librt.*" "libresolv.*" "libutil.*"
  "libstdc.*" "libgcc_s.*"
  # The graphics driver and its way to the kernel.
  "libGL.*" "libEGL.*" "libOpenGL.*" "libgbm.*" "libdrm.*"
  # Speak with servers of the machine, by its settings and its plug-ins: windows, sound, messages, devices.
  "libX11.*" "libxcb.*" "libXext.*" "libwayland-.*" "libxkbcommon.*" "libasound.*" "libpulse.*" "libdbus.*"
  "libudev.*" "libsystemd.*"
  # Every desktop has them, and its plug-ins that come into the process (drivers, frames of windows) want their own.
  "libfontconfig.*" "libfreetype.*" "libexpat.*" "libz\\.so.*" "libzstd.*" "libffi.*")
file(GET_RUNTIME_DEPENDENCIES
  EXECUTABLES ${program}
  RESOLVED_DEPENDENCIES_VAR libraries
  UNRESOLVED_DEPENDENCIES_VAR missing
  PRE_EXCLUDE_REGEXES ${of_the_machine})
if(missing)
  message(FATAL_ERROR "${name} needs libraries that are not on this machine: ${missing}")
endif()

# Each under the name that it is asked for.
file(MAKE_DIRECTORY ${root}/lib ${root}/licenses)
foreach(library IN LISTS libraries)
  get_filename_component(soname ${library} NAME)
  file(REAL_PATH ${library} real)
  file(COPY_FILE ${real} ${root}/lib/${soname} ONLY_IF_DIFFERENT)

  # Debian keeps the licence with the package; a library that was built here is found by nobody.
  string(REGEX REPLACE "^/usr/" "/" merged ${real})
  foreach(path ${real} ${merged})
    execute_process(COMMAND dpkg-query -S ${path} OUTPUT_VARIABLE owner ERROR_QUIET RESULT_VARIABLE unknown)
    if(unknown EQUAL 0)
      string(REGEX REPLACE ":.*" "" package "${owner}")
      break()
    endif()
  endforeach()
  if(soname MATCHES "^libVorn\\.")
    file(COPY_FILE ${vorn_data}/../LICENSE ${root}/licenses/vorn.txt ONLY_IF_DIFFERENT)
  elseif(unknown EQUAL 0 AND EXISTS /usr/share/doc/${package}/copyright)
    file(COPY_FILE /usr/share/doc/${package}/copyright ${root}/licenses/${package}.txt ONLY_IF_DIFFERENT)
  else()
    message(WARNING "put the licence of ${soname} into ${root}/licenses: this machine does not say it")
  endif()
endforeach()

file(WRITE ${root}/${name}.sh "#!/bin/sh
# Starts the game in its own folder, where its data lies.
cd \"$(dirname \"$(readlink -f \"$0\")\")\" && exec './${name}' \"$@\"
")
file(CHMOD ${root}/${name}.sh PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
