# Warnings are errors on our own code; third-party headers come in as system headers.
add_library(house_options INTERFACE)
target_compile_options(house_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Werror
  $<$<COMPILE_LANGUAGE:CXX>:-Wshadow -Wnon-virtual-dtor>)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_FLAGS MATCHES "-fsanitize=")
  # GCC 12 takes what the sanitizers instrument for uninitialised (its bug 105562); the plain builds still
  # refuse the warning.
  target_compile_options(house_options INTERFACE -Wno-maybe-uninitialized)
endif()
target_include_directories(house_options INTERFACE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR})
target_compile_definitions(house_options INTERFACE AUTOACTIVATION_VERSION="${PROJECT_VERSION}")

# A room: the object library of one folder (its linux/ half included), named room_<folder>.
function(add_room name)
  cmake_parse_arguments(ROOM "" "" "LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS
    ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/${name}/linux/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_library(room_${name} OBJECT ${sources})
  target_link_libraries(room_${name} PRIVATE house_options ${ROOM_LIBS})
endfunction()

# Adds the objects of the named rooms, as far as they have any, to a library.
function(target_rooms target)
  foreach(name IN LISTS ARGN)
    if(TARGET room_${name})
      target_sources(${target} PRIVATE $<TARGET_OBJECTS:room_${name}>)
    endif()
  endforeach()
endfunction()

# A bundle X.plugin or X.framework around a module:
# <dir>/X.ext/Contents/{Info.plist,Linux/X}; only the symbols of EXPORTS leave it.
function(add_bundle target)
  cmake_parse_arguments(BUNDLE "" "NAME;EXTENSION;IDENTIFIER;EXPORTS;DIRECTORY;HOSTAPP" "" ${ARGN})
  set(contents ${BUNDLE_DIRECTORY}/${BUNDLE_NAME}.${BUNDLE_EXTENSION}/Contents)
  set_target_properties(${target} PROPERTIES
    PREFIX "" SUFFIX "" OUTPUT_NAME ${BUNDLE_NAME}
    LIBRARY_OUTPUT_DIRECTORY ${contents}/Linux
    LINK_DEPENDS ${BUNDLE_EXPORTS})
  target_link_options(${target} PRIVATE -Wl,--version-script=${BUNDLE_EXPORTS})
  set(BUNDLE_VERSION ${PROJECT_VERSION})
  set(BUNDLE_HOSTAPP_ENTRY "")
  if(BUNDLE_HOSTAPP)
    set(BUNDLE_HOSTAPP_ENTRY "  <key>HostApp</key>\n  <string>${BUNDLE_HOSTAPP}</string>\n")
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/Info.plist.in ${contents}/Info.plist @ONLY)
endfunction()
