# SPDX-License-Identifier: Apache-2.0
#
# The library is compiled once, into one object library a layer. The shared library and the white-box tests
# link the same objects, so a test reaches what the shared library hides.

foreach(layer ZORPlatform ZORFoundation)
  add_library(${layer}Objects OBJECT)
  target_compile_features(${layer}Objects PUBLIC cxx_std_20)
  target_include_directories(${layer}Objects PUBLIC ${PROJECT_SOURCE_DIR})
  set_target_properties(${layer}Objects PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endforeach()

add_library(ZORFoundation SHARED)
add_library(ZORFoundation::ZORFoundation ALIAS ZORFoundation)

# zor_layer_sources(<layer> SOURCES <file>... HEADERS <public header>...)
#
# Called once in each folder of a layer. Headers that no public signature needs are simply not listed.
function(zor_layer_sources layer)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;HEADERS")
  list(TRANSFORM arg_SOURCES PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  list(TRANSFORM arg_HEADERS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  target_sources(${layer}Objects PRIVATE ${arg_SOURCES})
  if(arg_HEADERS)
    target_sources(ZORFoundation PUBLIC
      FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${arg_HEADERS})
  endif()
endfunction()

# Called after both layers have listed their sources.
function(zor_add_shared_library)
  target_link_libraries(ZORFoundation PRIVATE ZORPlatformObjects ZORFoundationObjects)
  target_compile_features(ZORFoundation PUBLIC cxx_std_20)
  # Objects of the library may be reached from atexit handlers and thread-exit code of the application, so it
  # stays mapped once loaded.
  target_link_options(ZORFoundation PRIVATE
    -Wl,-z,nodelete -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map)
  if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    target_link_options(ZORFoundation PRIVATE -Wl,-z,defs)
  endif()
  set_target_properties(ZORFoundation PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${ZORFOUNDATION_INTERFACE_VERSION}
    LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map
    LINKER_LANGUAGE CXX
    VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()
