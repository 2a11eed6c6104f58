# What is built besides the core. A part whose packages are missing goes off with a message.

option(VFIL_WERROR "Treat warnings as errors" OFF)
option(VFIL_TRACE "Write each failed check of a processor to standard error" OFF)
option(VFIL_BUILD_HOST "Build the embedded host (needs libpng, libjpeg and libtiff)" ${PROJECT_IS_TOP_LEVEL})
option(VFIL_BUILD_VIDEO "Build clips into the host (needs FFmpeg's libav* and libswscale)"
    ${PROJECT_IS_TOP_LEVEL})
option(VFIL_BUILD_TOOL "Build the catalogue, the engine and the vfil command (needs CLI11, nlohmann-json and toml++)"
    ${PROJECT_IS_TOP_LEVEL})
option(VFIL_BUILD_EXAMPLES "Build the example programs" ${PROJECT_IS_TOP_LEVEL})
option(VFIL_BUILD_TESTS "Build the tests (needs GoogleTest)" ${PROJECT_IS_TOP_LEVEL})
option(VFIL_BUILD_BENCH "Build the benchmarks (needs Google Benchmark)" OFF)

# Turns an option off, for this run of CMake, unless everything named after it holds.
macro(vfil_part_needs option)
    foreach(need ${ARGN})
        if(${option} AND NOT ${need})
            message(STATUS "${option} is off: ${need} is not true here")
            set(${option} OFF)
        endif()
    endforeach()
endmacro()

if(VFIL_BUILD_HOST)
    find_package(PNG QUIET)
    find_package(JPEG QUIET)
    find_package(TIFF QUIET)
endif()
vfil_part_needs(VFIL_BUILD_HOST PNG_FOUND JPEG_FOUND TIFF_FOUND)

if(VFIL_BUILD_VIDEO)
    find_package(PkgConfig QUIET)
    if(PkgConfig_FOUND)
        pkg_check_modules(LIBAV QUIET IMPORTED_TARGET libavformat libavcodec libavutil libswscale)
    endif()
endif()
vfil_part_needs(VFIL_BUILD_VIDEO VFIL_BUILD_HOST LIBAV_FOUND)

if(VFIL_BUILD_TOOL)
    find_package(CLI11 QUIET)
    find_package(nlohmann_json QUIET)
    find_package(tomlplusplus QUIET)
endif()
vfil_part_needs(VFIL_BUILD_TOOL VFIL_BUILD_HOST VFIL_BUILD_VIDEO CLI11_FOUND nlohmann_json_FOUND
    tomlplusplus_FOUND)
vfil_part_needs(VFIL_BUILD_EXAMPLES VFIL_BUILD_HOST)

if(VFIL_BUILD_TESTS)
    find_package(GTest QUIET)
endif()
vfil_part_needs(VFIL_BUILD_TESTS GTest_FOUND VFIL_BUILD_TOOL)

if(VFIL_BUILD_BENCH)
    find_package(benchmark QUIET)
endif()
vfil_part_needs(VFIL_BUILD_BENCH benchmark_FOUND VFIL_BUILD_HOST)
