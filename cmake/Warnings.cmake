# What every source of ours is compiled with: warnings are errors.
include_guard(GLOBAL)

add_library(veltrix_warnings INTERFACE)
target_compile_options(veltrix_warnings INTERFACE
  -Wall -Wextra -Werror -Wshadow -Wnon-virtual-dtor
  # Objective-C pointers convert by nothing but the old style.
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
  # Delegate methods and actions have parameters that most of them do not need.
  $<$<COMPILE_LANGUAGE:OBJCXX>:-Wno-unused-parameter -Wundeclared-selector>)
