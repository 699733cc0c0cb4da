# The core: everything that decides, and nothing that sees a window system.
include_guard(GLOBAL)

if(APPLE)
  set(platform_sources common/Dispatch_mac.cpp common/Json_mac.mm common/Text.mm)
else()
  set(platform_sources common/Dispatch_linux.cpp common/Json_linux.cpp)
endif()

add_library(veltrix_core STATIC
  app/DesktopSettings.cpp
  app/SingleInstance.cpp
  app/SmokeTest.cpp
  common/ChildProcess.cpp
  common/Environment.cpp
  common/Fatal.cpp
  common/Files.cpp
  common/Json.cpp
  common/Pipe.cpp
  common/ValidPath.cpp
  operator/ActionJob.cpp
  operator/Commands.cpp
  operator/Confirmations.cpp
  operator/Operator.cpp
  operator/Outcomes.cpp
  operator/PageUrl.cpp
  setup/PublicOrigin.cpp
  setup/SetupActions.cpp
  setup/SetupIPC.cpp
  setup/SetupOutcomes.cpp
  setup/SetupSession.cpp
  ${platform_sources})
target_include_directories(veltrix_core PUBLIC "${PROJECT_SOURCE_DIR}")
target_link_libraries(veltrix_core PUBLIC Threads::Threads PRIVATE veltrix_warnings)
target_precompile_headers(veltrix_core PRIVATE
  <algorithm> <array> <chrono> <functional> <map> <memory> <optional> <string> <string_view>
  <vector>)
if(APPLE)
  target_link_libraries(veltrix_core PRIVATE veltrix_appkit)
else()
  target_link_libraries(veltrix_core PRIVATE nlohmann_json::nlohmann_json)
endif()
