# Compiler flags: warnings for everything, the numeric rules for everything that computes audio.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

set(ZOQ_WARNINGS -Wall -Wextra -Wconversion -Wdouble-promotion -Wshadow)
if(ZOQ_WERROR)
  list(APPEND ZOQ_WARNINGS -Werror)
endif()

if(ZOQ_SANITIZE)
  add_compile_options(-fsanitize=${ZOQ_SANITIZE} -fno-sanitize=vptr -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZOQ_SANITIZE})
endif()

# The order of operations is part of the design: no fused multiply-add, no reassociation. -fno-math-errno
# changes no value; it lets a square root be one instruction.
set(ZOQ_NUMERIC_FLAGS -ffp-contract=off -fno-fast-math -fno-math-errno)

# A room of the engine: a static library of position-independent objects that links only what its line names.
#   zoq_room(<name> SOURCES <file>... [LINKS <room>...])
function(zoq_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ROOM_SOURCES})
  target_compile_options(${name} PRIVATE ${ZOQ_WARNINGS} ${ZOQ_NUMERIC_FLAGS} -fno-exceptions -fno-rtti
                                         -fvisibility-inlines-hidden
                                         # types too, for debuggers and the comparison of interfaces
                                         $<$<CONFIG:RelWithDebInfo>:-g>
                                         # refuses flags under which the same source gives other bits
                                         "SHELL:-include ${PROJECT_SOURCE_DIR}/dsp/numerics.h")
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PUBLIC ${ROOM_LINKS})
endfunction()
