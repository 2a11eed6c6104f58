# Vector sources are compiled once for each instruction level; the program chooses among them at first use.

set(VFIL_LEVELS "")
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$" AND CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(VFIL_LEVELS sse2 avx2 avx512)
endif()
set(VFIL_LEVEL_FLAGS_sse2 -msse2)
set(VFIL_LEVEL_FLAGS_avx2 -mavx2)
set(VFIL_LEVEL_FLAGS_avx512 -mavx512f -mavx512bw -mavx512vl -mavx512dq -mprefer-vector-width=512)

# vfil_add_levels(layer comprows_simd.cpp ...): adds the sources of a family to the library, once a level.
function(vfil_add_levels family)
    foreach(level ${VFIL_LEVELS})
        set(target vfil_rows_${family}_${level})
        add_library(${target} OBJECT ${ARGN})
        vfil_settings(${target})
        target_compile_definitions(${target} PRIVATE VFIL_LEVEL=${level})
        target_compile_options(${target} PRIVATE ${VFIL_LEVEL_FLAGS_${level}})
        target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
        target_sources(vfil PRIVATE $<TARGET_OBJECTS:${target}>)
        target_sources(vfil_private PRIVATE $<TARGET_OBJECTS:${target}>)
    endforeach()
endfunction()
