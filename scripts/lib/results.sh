# Runs the steps of a test run, counts what they report and sums it up. Source scripts/lib/common.sh
# first; a script that has sourced this ends with summarize.

steps=      # what each step reported, for the summary
omissions=  # what was left out and why, likewise
passed=0
failed=0
results_folder=$(mktemp -d)
trap 'rm -rf -- "$results_folder"' EXIT
trap 'exit 1' HUP INT TERM

# How to read "PASSED FAILED" off the output of each kind of test run.
node_counts() {
  awk '$2 == "pass" { passed = $3 }
       $2 == "fail" { failed = $3 }
       END { print passed + 0, failed + 0 }'
}
# Of CTest's log: a program of many tests counts as so many.
ctest_counts() {
  awk '/^[0-9]+\/[0-9]+ Testing: / { good = 0; bad = 0 }
       /^\[  PASSED  \] [0-9]+ test/ { good = $4 }
       /^\[  FAILED  \] [0-9]+ test/ { bad = $4 }
       /^Test Passed\.$/ { passed += good ? good : 1 }
       /^Test Failed\.$/ { passed += good; failed += bad ? bad : 1 }
       END { print passed + 0, failed + 0 }'
}
# The last line that a script of ours prints.
summary_counts() {
  awk '/^[0-9]+ passed, [0-9]+ failed$/ { passed = $1; failed = $3 }
       END { print passed + 0, failed + 0 }'
}

# What a step says that it left out, and tests that skipped themselves.
omitted() {
  sed -n -e 's/^ *\(left out: .*\)/  \1/p' \
    -e 's/^ *ok [0-9]* - \(.*\) # SKIP.*/  left out: \1: not possible on this machine/p'
}

record() { # NAME PASSED FAILED
  passed=$((passed + $2))
  failed=$((failed + $3))
  steps="$steps$(printf '  %-44s %5s passed, %s failed' "$1" "$2" "$3")
"
}

# Runs a command, shows its output, and counts what it reports; a command that ends badly without
# having reported a failure is a failure of its own, and so is one that tested nothing.
step() { # NAME COUNTER COMMAND...
  name=$1
  counter=$2
  shift 2
  say "== $name"
  status=0
  { "$@" 2>&1 || echo "$?" >"$results_folder/status"; } | tee "$results_folder/output"
  if [ -e "$results_folder/status" ]; then
    status=$(cat "$results_folder/status")
    rm "$results_folder/status"
  fi
  counts=$("$counter" <"$results_folder/output")
  if [ "$status" -ne 0 ] && [ "${counts#* }" -eq 0 ]; then
    say "FAILED: $name ended with status $status"
    counts="${counts% *} 1"
  elif [ "$status" -eq 0 ] && [ "${counts% *}" -eq 0 ]; then
    say "FAILED: $name reported no test"
    counts="0 1"
  fi
  record "$name" "${counts% *}" "${counts#* }"
  omissions="$omissions$(omitted <"$results_folder/output")
"
}

# Runs a command that everything after it needs.
must() { # NAME COMMAND...
  name=$1
  shift
  say "== $name"
  "$@" || {
    record "$name" 0 1
    summarize
  }
}

left_out() { # WHAT WHY
  omissions="$omissions  left out: $1: $2
"
}

# Prints what there was and ends the script.
summarize() {
  say "== summary"
  printf '%s' "$steps"
  printf '%s' "$omissions" | grep . | sort -u
  say "$passed passed, $failed failed"
  [ "$failed" -eq 0 ] && exit 0
  exit 1
}
