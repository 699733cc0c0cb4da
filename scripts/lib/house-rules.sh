# The house rules that a search can check. Sourced by scripts/lint, after scripts/lib/rules.sh.

include='^ *# *(include|import) +'

# An include only ever points down.
rule "operator/ includes nothing beside or above itself" \
  lines "$include\"(app|setup|gnustep)/" operator
rule "setup/ includes nothing beside or above itself" \
  lines "$include\"(app|operator|gnustep)/" setup
rule "common/ includes common/ only" \
  lines "$include\"(app|operator|setup|gnustep)/" common
product_in_gnustep() {
  lines "$include\"(app|operator|setup|common)/" gnustep | grep -vF '"common/RetainPtr.h"' || true
}
rule "gnustep/ knows nothing of the product" product_in_gnustep
rule "nobody outside gnustep/ includes it by name" \
  lines "$include\"gnustep/" '*.h' '*.cpp' '*.mm' ':!gnustep' ':!tests/gnustep'
rule "includes are named from the top of the tree" \
  lines "$include\"\.\.?/" '*.h' '*.cpp' '*.mm'

# Who sees the window system.
apple_header='<(AppKit|Foundation|Cocoa|CoreFoundation|objc)/'
rule "a .cpp file never sees AppKit or Foundation" \
  lines "$include$apple_header" '*.cpp' ':!tests/support/MainLoop_mac.cpp'
headers_of_cpp_files() {
  files '*.h' | while read -r header; do
    [ ! -f "${header%.h}.cpp" ] || grep -HnE "$include$apple_header" "$header" || true
  done
}
rule "nor does the header of a .cpp file" headers_of_cpp_files
other_headers_in_the_shell() {
  lines "$include<[A-Z]" 'app/*' 'common/*' 'operator/*' 'setup/*' |
    grep -vE '<(AppKit/AppKit|Foundation/Foundation)\.h>' || true
}
rule "the shell says <AppKit/AppKit.h> and nothing more special" other_headers_in_the_shell

# The dialect that Apple's runtime and GCC's share.
rule "no C++ try or catch in a .mm file: they would not catch" \
  lines '(^|[^@[:alnum:]_])(try *\{|catch *\()' '*.mm'
rule "RetainPtr owns; nobody sends retain, release or autorelease" \
  lines '[ ]((auto)?release|retain)\]' '*.mm' '*.h' ':!common/RetainPtr.h'
rule "no blocks" \
  lines '\^ *\{|\^\(|\(\^' '*.mm' '*.h'
rule "@(YES) and @(NO), not @YES and @NO" \
  lines '@(YES|NO)([^[:alnum:]_]|$)' '*.mm' '*.h'

# Tests wait for something, with a deadline. What does so for them, what plays a slow program and
# what sends signals in a storm have to pause.
rule "no test sleeps" \
  lines 'sleep_(for|until)|usleep|nanosleep|[^[:alnum:]_]sleep *\(' tests \
  ':!tests/support/WaitFor.cpp' ':!tests/support/SignalStorm.cpp' ':!tests/child/Streams.cpp'
rule "no test is switched off" \
  lines 'DISABLED_|GTEST_SKIP|[.](skip|todo|only)\(|(skip|todo|only): true' tests recorder/tests

# Files that can be taken in at a glance.
longer_than() { # LIMIT PATHSPEC...
  limit=$1
  shift
  files "$@" | while read -r file; do
    length=$(wc -l <"$file")
    if [ "$length" -gt "$limit" ]; then echo "$file: $length lines"; fi
  done
}
rule "no file is longer than 400 lines" \
  longer_than 400 '*.cpp' '*.mm' '*.h' '*.mjs' '*.cmake' '*CMakeLists.txt' scripts \
  ':!tests' ':!recorder/tests'
rule "no file of a test is longer than 600 lines" \
  longer_than 600 tests recorder/tests
rule "no line is wider than 100 columns" \
  lines '.{101}' '*.mjs' '*.cmake' '*CMakeLists.txt' .ci scripts ':!scripts/node-version'
careless_headers() {
  files '*.h' | while read -r header; do
    head -n 1 "$header" | grep -q '^//' || echo "$header: begins with no comment"
    grep -qx '#pragma once' "$header" || echo "$header: has no #pragma once"
  done
}
rule "a header begins with what it is for, and is read once" careless_headers

# Nothing but Node, and nothing of one machine.
packages_in_scripts() {
  lines '(^| )(from|import) "' '*.mjs' | grep -vE '(from|import) "(node:|\.)' || true
}
rule "the recorder's scripts need nothing but Node" packages_in_scripts
rule "no path of one machine, no registry's host" \
  lines '/roo[t]/|/wor[k]/|regist[r]y\.[a-z]+js|de[b]\.debian\.' .

# What docs/reliability.md promises is held by tests that exist.
names_of_tests() {
  files 'tests/*.cpp' 'tests/*.mm' | xargs cat | tr '\n' ' ' |
    grep -oE 'TEST(_F|_P)?\( *[[:alnum:]_]+, *[[:alnum:]_]+' | sed -E 's/^.*\( *//; s/, */./'
}
untrue_rows() {
  tests=$(names_of_tests)
  awk -F ' *[|] *' '/^\| *[0-9]/ { print $2 "|" $(NF - 1); rows++ }
                   END { if (!rows) print "1|" }' docs/reliability.md |
    while IFS='|' read -r row named; do
      names=$(printf '%s\n' "$named" | grep -oE "\`[^\`]+\`" | tr -d "\`" || true)
      [ -n "$names" ] || echo "docs/reliability.md: row $row names no test"
      for name in $names; do
        case $name in
          fuzz/*) [ -f "tests/fuzz/${name#fuzz/}Target.cpp" ] ;;
          */*) [ -f "$name" ] ;;
          *) printf '%s\n' "$tests" | grep -qxF "$name" ;;
        esac || echo "docs/reliability.md: row $row names $name, which is no test"
      done
    done
}
rule "every test that docs/reliability.md names exists" untrue_rows
