# Test programs that use AppKit, on macOS or on a virtual display.
#
#   veltrix_add_appkit_tests(<target> <source>...)
#
# adds an executable with an entry of its own (AppKitTestMain.mm), the driver and what is supplied
# to GNUstep, and registers it as one test: a display for each single test would cost more than the
# tests.
include_guard(GLOBAL)

add_library(veltrix_appkit_driver OBJECT
  "${CMAKE_CURRENT_LIST_DIR}/AppKitDriver.mm"
  "${CMAKE_CURRENT_LIST_DIR}/AppKitTestMain.mm")
target_link_libraries(veltrix_appkit_driver PUBLIC veltrix_appkit veltrix_test_support GTest::gtest)
if(NOT APPLE)
  find_program(VELTRIX_XVFB_RUN xvfb-run REQUIRED)
  target_sources(veltrix_appkit_driver PRIVATE
    "${CMAKE_CURRENT_LIST_DIR}/gnustep/IsolatedHome.cpp"
    "${CMAKE_CURRENT_LIST_DIR}/gnustep/OpenPanelDriver.mm"
    "${CMAKE_CURRENT_LIST_DIR}/gnustep/Pointer.cpp")
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(VELTRIX_TEST_XCB REQUIRED IMPORTED_TARGET GLOBAL xcb)
  target_link_libraries(veltrix_appkit_driver PRIVATE PkgConfig::VELTRIX_TEST_XCB)
endif()

function(veltrix_add_appkit_tests target)
  add_executable(${target} ${ARGN})
  target_link_libraries(${target} PRIVATE veltrix_appkit_driver veltrix_warnings)
  if(APPLE)
    add_test(NAME ${target} COMMAND ${target})
  else()
    target_link_libraries(${target} PRIVATE veltrix_gnustep PkgConfig::VELTRIX_TEST_XCB)
    add_test(NAME ${target} COMMAND
      "${VELTRIX_XVFB_RUN}" -a -s "-screen 0 1280x960x24 -nolisten tcp" $<TARGET_FILE:${target}>)
  endif()
  # One at a time: the pasteboard is the machine's, and a program that ends takes its server along.
  set_tests_properties(${target} PROPERTIES TIMEOUT 300 RUN_SERIAL TRUE)
  if(VELTRIX_SANITIZER MATCHES "address" AND NOT APPLE)
    set_tests_properties(${target} PROPERTIES ENVIRONMENT
      "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/gnustep/leaks.supp")
  endif()
endfunction()
