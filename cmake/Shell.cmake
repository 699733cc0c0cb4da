# The shell: everything that touches AppKit, as one OBJECT library that the program and its tests
# share (an archive would lose what only the Objective-C runtime refers to), and the bundle.
include_guard(GLOBAL)

if(NOT APPLE)
  set(shell_on_linux common/MainQueue_linux.mm common/Text.mm)
endif()
add_library(veltrix_shell OBJECT)
veltrix_objcxx_sources(veltrix_shell
  app/DesktopApp.mm
  app/DesktopEnvironment.mm
  app/DesktopShell.mm
  app/MainMenu.mm
  app/SettingsDocumentView.mm
  app/SettingsWindow.mm
  app/SmokeTestRun.mm
  app/StatusMenu.mm
  app/UserDefaultsStore.mm
  common/Form.mm
  common/PathChooser.mm
  common/ResourceFolder.mm
  common/StatusLine.mm
  setup/SetupForm.mm
  setup/SetupWindow.mm
  ${shell_on_linux})
target_link_libraries(veltrix_shell PUBLIC veltrix_core veltrix_appkit PRIVATE veltrix_warnings)

# What an executable with the shell in it links.
add_library(veltrix_shell_parts INTERFACE)
target_link_libraries(veltrix_shell_parts INTERFACE veltrix_core veltrix_appkit)
target_sources(veltrix_shell_parts INTERFACE $<TARGET_OBJECTS:veltrix_shell>)
if(NOT APPLE)
  target_sources(veltrix_shell_parts INTERFACE $<TARGET_OBJECTS:veltrix_gnustep>)
  target_link_libraries(veltrix_shell_parts INTERFACE veltrix_gnustep)
endif()

include(cmake/Bundle.cmake)
