# What every target of the project is built with.

add_library(vorn_options INTERFACE)
target_compile_features(vorn_options INTERFACE cxx_std_20)
target_compile_options(vorn_options INTERFACE
  -Wall -Wextra -Wpedantic
  # Whoever only builds it may have a compiler that warns of more.
  $<$<BOOL:${VORN_DEVELOPER}>:-Werror>
  -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-align
  -Woverloaded-virtual -Wdouble-promotion -Wformat=2 -Wextra-semi
  # The same world ends in the same state in every build: no fused multiply-add behind our back.
  -ffp-contract=off
  # Nobody asks it, and without it a root is one instruction.
  -fno-math-errno
  # Nobody replaces a function of the library from outside, so its own calls may be direct and inlined.
  -fno-semantic-interposition)

# In a source made of several, unnamed namespaces meet.
if(VORN_UNITY)
  target_compile_options(vorn_options INTERFACE -Wno-shadow $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>)
endif()

# gcc 12 sees overlaps in std::string's own code: https://gcc.gnu.org/bugzilla/show_bug.cgi?id=105651
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(vorn_options INTERFACE -Wno-restrict)
endif()

if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64" AND VORN_ARCH)
  target_compile_options(vorn_options INTERFACE -march=${VORN_ARCH})
endif()

if(VORN_SANITIZE)
  target_compile_options(vorn_options INTERFACE
    -fsanitize=${VORN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(vorn_options INTERFACE -fsanitize=${VORN_SANITIZE})
endif()

if(VORN_FUZZ)
  target_compile_options(vorn_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# vorn_program(name sources...): a program of ours beside the library: the repository is its include root.
function(vorn_program name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE Vorn::Vorn vorn_options)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  if(VORN_SANITIZE MATCHES address)
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/leaks.cpp)
  endif()
endfunction()

# vorn_apart(sources...): with VORN_UNITY each compiles alone, since other sources of its target have names of its unnamed
# namespace too.
function(vorn_apart)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
