# How a rule is checked and reported. Source scripts/lib/common.sh and scripts/lib/tools.sh too.

passed=0
failed=0

# A rule holds when its command prints nothing and, but for a search, ends well. What it prints is
# where it does not.
rule() { # TEXT COMMAND...
  text=$1
  shift
  if found=$("$@" 2>&1) && [ -z "$found" ]; then
    passed=$((passed + 1))
    say "  ok      $text"
  else
    failed=$((failed + 1))
    say "  FAILED  $text"
    [ -z "$found" ] || printf '%s\n' "$found" | sed 's/^/          /'
  fi
}

left_out() { say "  left out: $1: $2"; } # WHAT WHY

# Lines of our files that match, as FILE:LINE:TEXT. No match is what is hoped for.
lines() { # REGULAR_EXPRESSION PATHSPEC...
  expression=$1
  shift
  git grep --untracked -nE -e "$expression" -- "$@" || [ $? -eq 1 ]
}
