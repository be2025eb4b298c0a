# Compiler flags: warnings for everything, the numeric rules for everything that computes audio.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

set(ZOQ_WARNINGS -Wall -Wextra -Wconversion -Wdouble-promotion -Wshadow)
# A loop that clang leaves as it is, against a kernel's wish, costs time and nothing else.
list(APPEND ZOQ_WARNINGS $<$<CXX_COMPILER_ID:Clang>:-Wno-pass-failed>)
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

if(ZOQ_CHECK_KERNELS)
  add_compile_definitions(ZOQ_CHECK_KERNELS)
endif()

# Which forms of a kernel the compiler's target has, as dsp/kernel_level.h tells them apart.
include(CheckCXXSourceCompiles)
function(zoq_check_target variable condition)
  set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
  check_cxx_source_compiles("#if !(${condition})\n#error\n#endif\n" ${variable})
endfunction()
zoq_check_target(ZOQ_TARGET_X86_64 "defined(__x86_64__)")
zoq_check_target(ZOQ_TARGET_NEON "defined(__aarch64__) || defined(__ARM_NEON)")

# The lanes for which this target has fast kernels (targets that are neither have the scalar forms alone), and what its
# compiler needs for them beyond the target's base set. GCC fuses products and sums where the target has FMA, so the wide
# kernels go without it; clang, which does not, takes AVX-512 away, too, if it may not have FMA.
set(ZOQ_KERNEL_LANES "")
set(ZOQ_KERNEL_FLAGS_4 "")
if(ZOQ_TARGET_NEON)
  set(ZOQ_KERNEL_LANES 4)
elseif(ZOQ_TARGET_X86_64)
  set(ZOQ_KERNEL_LANES 4 8 16)
  set(ZOQ_KERNEL_FLAGS_8 -mavx2 -mno-fma)
  set(ZOQ_KERNEL_FLAGS_16 -mavx512f -mavx512dq -mavx512bw -mavx512vl -mprefer-vector-width=512
      $<$<CXX_COMPILER_ID:GNU>:-mno-fma>)
endif()

# Long straight code in vectors gains where it is ordered with an eye to the registers, which GCC leaves out on x86.
if(ZOQ_TARGET_X86_64 AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  set(ZOQ_KERNEL_FLAGS -fschedule-insns -fsched-pressure -frename-registers)
endif()

# Three checks of every pointer take clang minutes over wide kernels. The same code has them at 4 lanes; the addresses
# are watched at every level.
if(ZOQ_SANITIZE MATCHES "undefined")
  foreach(lanes 8 16)
    list(APPEND ZOQ_KERNEL_FLAGS_${lanes} -fno-sanitize=null,object-size,pointer-overflow)
  endforeach()
endif()

# Adds to a list of sources each kernel file once per level, as a small file that says the lanes and includes it.
#   zoq_kernels(<list> <name>_lanes.cpp...)
function(zoq_kernels list)
  set(sources ${${list}})
  foreach(file ${ARGN})
    foreach(lanes ${ZOQ_KERNEL_LANES})
      string(REPLACE ".cpp" "${lanes}.cpp" instance "${CMAKE_CURRENT_BINARY_DIR}/${file}")
      file(CONFIGURE OUTPUT "${instance}"
           CONTENT "#define ZOQ_LANES ${lanes}\n#include \"${CMAKE_CURRENT_SOURCE_DIR}/${file}\"\n")
      # Lines alone: describing the vectors of a long kernel takes a third of its compiling.
      set_source_files_properties("${instance}" PROPERTIES COMPILE_OPTIONS
        "${ZOQ_KERNEL_FLAGS};${ZOQ_KERNEL_FLAGS_${lanes}};$<$<CONFIG:RelWithDebInfo>:-g1>")
      list(APPEND sources "${instance}")
    endforeach()
  endforeach()
  set(${list} ${sources} PARENT_SCOPE)
endfunction()

# A room of the engine: a static library of position-independent objects that links only what its line names.
# KERNELS are files built once per level of dsp/lanes.h.
#   zoq_room(<name> SOURCES <file>... [KERNELS <name>_lanes.cpp...] [LINKS <room>...])
function(zoq_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;KERNELS;LINKS" ${ARGN})
  zoq_kernels(ROOM_SOURCES ${ROOM_KERNELS})
  add_library(${name} STATIC ${ROOM_SOURCES})
  target_compile_options(${name} PRIVATE ${ZOQ_WARNINGS} ${ZOQ_NUMERIC_FLAGS} -fno-exceptions -fno-rtti
                                         -fvisibility-inlines-hidden
                                         # refuses flags under which the same source gives other bits
                                         "SHELL:-include ${PROJECT_SOURCE_DIR}/dsp/numerics.h")
  if(NOT ZOQ_SANITIZE)
    # types too, for debuggers and the comparison of interfaces
    target_compile_options(${name} PRIVATE $<$<CONFIG:RelWithDebInfo>:-g>)
  endif()
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PUBLIC ${ROOM_LINKS})
endfunction()
