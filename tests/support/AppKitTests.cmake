# Test programs that use AppKit, on macOS or on a virtual display.
#
#   veltrix_add_appkit_tests(<target> <parts> <source>...)
#
# adds an executable with an entry of its own (AppKitTestMain.mm), the driver and what is supplied
# to GNUstep, and registers it as so many tests, of a share of its tests each: a display for each
# single test would cost more than the tests.
include_guard(GLOBAL)

add_library(veltrix_appkit_driver OBJECT)
veltrix_objcxx_sources(veltrix_appkit_driver
  ../support/AppKitDriver.mm ../support/AppKitTestMain.mm)
target_link_libraries(veltrix_appkit_driver PUBLIC veltrix_appkit veltrix_test_support GTest::gtest)
target_precompile_headers(veltrix_appkit_driver PRIVATE
  ${VELTRIX_TEST_HEADERS} "$<$<COMPILE_LANGUAGE:OBJCXX>:<AppKit/AppKit.h$<ANGLE-R>>")
if(NOT APPLE)
  target_sources(veltrix_appkit_driver PRIVATE
    "${CMAKE_CURRENT_LIST_DIR}/gnustep/IsolatedHome.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/gnustep/OpenPanelDriver.mm"
    "${CMAKE_CURRENT_LIST_DIR}/gnustep/Pointer.cpp")
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(VELTRIX_TEST_XCB REQUIRED IMPORTED_TARGET GLOBAL xcb)
  target_link_libraries(veltrix_appkit_driver PRIVATE PkgConfig::VELTRIX_TEST_XCB)
endif()

function(veltrix_add_appkit_tests target parts)
  add_executable(${target})
  veltrix_objcxx_sources(${target} AT_MOST "${CMAKE_UNITY_BUILD_BATCH_SIZE}" ${ARGN})
  target_link_libraries(${target} PRIVATE veltrix_appkit_driver veltrix_warnings)
  target_precompile_headers(${target} REUSE_FROM veltrix_appkit_driver)
  if(APPLE)
    # One at a time: a Mac has one screen and one pasteboard.
    add_test(NAME ${target} COMMAND ${target})
    set_tests_properties(${target} PROPERTIES TIMEOUT 300 RUN_SERIAL TRUE)
    return()
  endif()
  target_link_libraries(${target} PRIVATE veltrix_gnustep PkgConfig::VELTRIX_TEST_XCB)
  # Elsewhere each has a screen, a pasteboard and a home of its own. They wait more than they
  # compute: in parts, they wait side by side.
  foreach(part RANGE 1 ${parts})
    set(name "${target}_${part}_of_${parts}")
    math(EXPR index "${part} - 1")
    set(environment GTEST_TOTAL_SHARDS=${parts} GTEST_SHARD_INDEX=${index})
    if(VELTRIX_SANITIZER MATCHES "address")
      list(APPEND environment
        "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/gnustep/leaks.supp")
    endif()
    add_test(NAME ${name} COMMAND
      "${PROJECT_SOURCE_DIR}/tests/support/gnustep/on-a-display" $<TARGET_FILE:${target}>)
    set_tests_properties(${name} PROPERTIES
      TIMEOUT 300 COST 10 ENVIRONMENT "${environment}")  # those of high cost start first
  endforeach()
endfunction()
