# The settings that every target of the project shares.

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Programs and libraries of a build tree lie side by side.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

# Language level, warnings and the flags that keep results the same on every machine.
function(vfil_settings target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    # A multiply and an add that fuse on one machine and not on another give other bytes.
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -ffp-contract=off
        # To clang -Wconversion means this one too, to g++ it doesn't.
        -Wno-sign-conversion
        # g++ 12 warns of an overlap inside its own std::string wherever "text" + string is inlined.
        $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
        # Unique symbols would keep the libraries in memory after dlclose.
        $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>
        $<$<BOOL:${VFIL_WERROR}>:-Werror>)
    set_target_properties(${target} PROPERTIES
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
endfunction()
