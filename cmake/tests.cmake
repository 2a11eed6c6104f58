# vfil_add_test(vfil_test_rows a_test.cpp ...): a test program whose cases CTest runs and counts one by one.
#
# Tests link the core as a static library, since they also reach the free functions of its private headers.

include(GoogleTest)

function(vfil_add_test target)
    add_executable(${target} ${ARGN})
    vfil_settings(${target})
    target_compile_definitions(${target} PRIVATE VFIL_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    target_link_libraries(${target} PRIVATE
        vfil_test_support vfil_catalogue vfil_host vfil_private GTest::gmock GTest::gtest_main)
    gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300)
endfunction()
