# The Debian 12 packages that this project needs: the one list of them. Elsewhere it tells what to
# look for.

# One package a line, and what needs it.
debian_packages() {
  sed -e 's/#.*//' -e 's/ *$//' -e '/^$/d' <<'END'
# building
clang                    # C++20 and Objective-C++; GCC's Objective-C++ knows no literals
g++                      # the C++ library; says where the headers of the next lie
gobjc++                  # the Objective-C runtime and its headers
libgnustep-gui-dev       # AppKit and Foundation
make                     # gnustep-config asks it how to compile against these
libxcb1-dev              # the status bar keeps its place on the screen
libfontconfig-dev        # the theme names a font only if it is installed
pkg-config
nlohmann-json3-dev       # strict JSON
cmake
ninja-build
libgtest-dev
libgmock-dev
libclang-rt-14-dev       # sanitizers
# running
gnustep-back0.29-cairo   # draws the windows
fonts-inter              # what the theme is made for
fonts-dejavu-core        # and what stands in for it
xdg-utils                # opens pages and folders
# testing and photographing
xvfb
xauth                    # xvfb-run
x11-utils                # asks for the state of windows
xdotool                  # presses keys and buttons
imagemagick              # photographs the screen
openssl                  # certificates of the recorder's tests; proves the runtime's hash
procps                   # ps
# keeping the house in order
clang-format
clang-tidy
shellcheck
git                      # lists the files that are ours
END
}

# Needed only where a cross toolchain for macOS lies beside the project.
debian_packages_for_macos_check() {
  printf '%s\n' llvm-14 libxml2-utils zip
}

# Needed by scripts/bench alone: what measures, and whom the companion is measured against.
debian_packages_for_bench() {
  sed -e 's/#.*//' -e 's/ *$//' -e '/^$/d' <<'END'
libbenchmark-dev         # Google Benchmark
qt6-base-dev             # QProcess
libboost-dev             # Boost.Process
libboost-filesystem-dev  # which it needs
libglib2.0-dev           # GSubprocess
libuv1-dev               # uv_spawn
python3                  # subprocess
libxcb-damage0-dev       # tells when a window has been painted
valgrind                 # counts instructions part by part
END
}
