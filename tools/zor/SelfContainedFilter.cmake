# SPDX-License-Identifier: Apache-2.0
#
# zor-filter: one file that runs wherever its processor's instructions do, and that is small enough to be shipped with
# every job. It takes the objects that its kinds need out of an archive of the library, and of ICU's data only that by
# which characters are told apart.
find_library(ZOR_ICUUC_ARCHIVE libicuuc.a)
find_library(ZOR_ICUDATA_ARCHIVE libicudata.a)
find_program(ZOR_ICUPKG icupkg)
find_program(ZOR_GENRB genrb)
if(NOT ZOR_ICUUC_ARCHIVE OR NOT ZOR_ICUDATA_ARCHIVE OR NOT ZOR_ICUPKG OR NOT ZOR_GENRB)
  message(STATUS "zor-filter is left out: it needs ICU's static archives, icupkg and genrb")
  return()
endif()
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize|--coverage")
  return()
endif()

find_package(ICU REQUIRED COMPONENTS uc)
string(REGEX MATCH "^[0-9]+" icu_major "${ICU_VERSION}")
set(package icudt${icu_major}l)
set(directory ${CMAKE_CURRENT_BINARY_DIR}/icu)
file(WRITE ${directory}/items.txt "brkitr/char.brk\nuemoji.icu\nulayout.icu\n")
# ICU's own table of boundaries also asks for those of words and lines.
file(WRITE ${directory}/table/root.txt
  "root{\n  boundaries{ grapheme:process(dependency){\"char.brk\"} }\n}\n")
file(WRITE ${directory}/table.txt "brkitr/root.res\n")
add_custom_command(
  OUTPUT ${directory}/${package}.dat
  COMMAND ${CMAKE_COMMAND} -E make_directory all items
  COMMAND ${CMAKE_AR} x ${ZOR_ICUDATA_ARCHIVE} ${package}_dat.o
  COMMAND ${CMAKE_OBJCOPY} -O binary -j .rodata ${package}_dat.o all/${package}.dat
  COMMAND ${ZOR_ICUPKG} -x items.txt -d items all/${package}.dat
  COMMAND ${ZOR_GENRB} -q -d items/brkitr table/root.txt
  COMMAND ${ZOR_ICUPKG} -a items.txt -s items new all/small.dat
  COMMAND ${ZOR_ICUPKG} -a table.txt -s items all/small.dat ${package}.dat
  COMMAND ${CMAKE_COMMAND} -E rm -r all items ${package}_dat.o
  DEPENDS ${directory}/items.txt ${ZOR_ICUDATA_ARCHIVE}
  WORKING_DIRECTORY ${directory}
  COMMENT "Taking character boundaries out of ICU's data"
  VERBATIM)

set(character_data ${PROJECT_SOURCE_DIR}/ZORPlatform/Foundation/CharacterData.cpp)
set_source_files_properties(${character_data} PROPERTIES
  COMPILE_DEFINITIONS ZOR_CHARACTER_DATA="${directory}/${package}.dat"
  OBJECT_DEPENDS ${directory}/${package}.dat)

add_library(ZORFilterArchive STATIC EXCLUDE_FROM_ALL
  $<TARGET_OBJECTS:ZORPlatformObjects> $<TARGET_OBJECTS:ZORFoundationObjects>)
add_executable(zor-filter main.cpp SelfContainedCommands.cpp SelfContainedKinds.cpp ${character_data})
target_link_libraries(zor-filter PRIVATE ZORCommandObjects ZORFilterArchive ${ZOR_ICUUC_ARCHIVE})
target_link_options(zor-filter PRIVATE -static -Wl,--gc-sections $<$<CONFIG:Release>:-s>)
set_target_properties(zor-filter PROPERTIES CXX_EXTENSIONS OFF)
install(TARGETS zor-filter)
