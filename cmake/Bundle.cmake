# The application bundle, where each system's bundle class looks for it:
#   macOS     Veltrix Home DVR.app/Contents/{MacOS,Resources,Info.plist}
#   GNUstep   Veltrix Home DVR.app/{Veltrix Home DVR,Resources/Info-gnustep.plist}
# Its resources are the recorder's scripts and server and, if VELTRIX_NODE names one, a Node
# runtime.
include_guard(GLOBAL)

set(VELTRIX_NODE "" CACHE FILEPATH "The Node executable (22 or later) to put into the bundle")
set(VELTRIX_PRODUCT "Veltrix Home DVR")
set(VELTRIX_BUNDLE_IDENTIFIER "example.veltrix.homedvr.desktop")

add_executable(veltrix_desktop app/main.mm)
target_link_libraries(veltrix_desktop PRIVATE veltrix_shell_parts veltrix_warnings)
set_target_properties(veltrix_desktop PROPERTIES OUTPUT_NAME "${VELTRIX_PRODUCT}")

# A release carries no symbol that nobody needs.
function(veltrix_strip_release target)
  if(NOT CMAKE_BUILD_TYPE STREQUAL "Release")
    return()
  endif()
  if(APPLE)
    target_link_options(${target} PRIVATE -Wl,-dead_strip)
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND "${CMAKE_STRIP}" -x "$<TARGET_FILE:${target}>" VERBATIM)
  else()
    # Class descriptions are full of pointers; packed, their relocations cost next to nothing.
    target_link_options(${target} PRIVATE -s -Wl,-z,pack-relative-relocs)
  endif()
endfunction()
veltrix_strip_release(veltrix_desktop)

set(bundle "${CMAKE_BINARY_DIR}/${VELTRIX_PRODUCT}.app")
if(APPLE)
  set_target_properties(veltrix_desktop PROPERTIES
    MACOSX_BUNDLE TRUE
    MACOSX_BUNDLE_INFO_PLIST "${PROJECT_SOURCE_DIR}/app/Info.plist.in")
  set(resources "${bundle}/Contents/Resources")
else()
  set_target_properties(veltrix_desktop PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${bundle}")
  set(resources "${bundle}/Resources")
  configure_file(app/Info-gnustep.plist.in "${resources}/Info-gnustep.plist" @ONLY)
endif()

# The icon is drawn by a script, so a Node that runs here is needed; without one there is none.
if(VELTRIX_NODE AND NOT CMAKE_CROSSCOMPILING)
  set(VELTRIX_HOST_NODE "${VELTRIX_NODE}")
else()
  find_program(VELTRIX_HOST_NODE NAMES node DOC "A Node (22 or later) for scripts at build time")
endif()
if(VELTRIX_HOST_NODE)
  execute_process(COMMAND "${VELTRIX_HOST_NODE}" --version
    OUTPUT_VARIABLE host_node_version OUTPUT_STRIP_TRAILING_WHITESPACE)
endif()
if(host_node_version MATCHES "^v([0-9]+)" AND CMAKE_MATCH_1 GREATER_EQUAL 22)
  file(GLOB icon_scripts CONFIGURE_DEPENDS app/icon/*.mjs)
  if(APPLE)
    set(icon "${CMAKE_BINARY_DIR}/icon/AppIcon.icns")
  else()
    set(icon "${CMAKE_BINARY_DIR}/icon/AppIcon.png")
  endif()
  add_custom_command(
    OUTPUT "${icon}"
    COMMAND "${VELTRIX_HOST_NODE}" "${PROJECT_SOURCE_DIR}/app/icon/draw-icon.mjs" "${icon}"
    DEPENDS ${icon_scripts}
    COMMENT "Drawing the icon"
    VERBATIM)
  set(copy_icon COMMAND "${CMAKE_COMMAND}" -E copy_if_different "${icon}" "${resources}")
else()
  message(STATUS "No Node 22 to run scripts with: the application gets no icon")
endif()

# The runtime is big: resources are staged again only when something in them has changed.
file(GLOB_RECURSE recorder_files CONFIGURE_DEPENDS recorder/desktop/* recorder/server/*)
set(stage "${PROJECT_SOURCE_DIR}/recorder/scripts/stage-resources")
add_custom_command(
  OUTPUT "${CMAKE_BINARY_DIR}/resources.stamp"
  COMMAND "${stage}" "${resources}" "${VELTRIX_NODE}" "${PROJECT_VERSION}"
  ${copy_icon}
  COMMAND "${CMAKE_COMMAND}" -E touch "${CMAKE_BINARY_DIR}/resources.stamp"
  DEPENDS ${recorder_files} "${stage}" ${VELTRIX_NODE} ${icon} VERSION
  COMMENT "Staging the bundle's resources"
  VERBATIM)
add_custom_target(veltrix_resources ALL DEPENDS "${CMAKE_BINARY_DIR}/resources.stamp")
