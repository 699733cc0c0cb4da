# Which files are ours, and the formatter that lays them out. Source scripts/lib/common.sh first.

# Our files that match the patterns, those not yet committed included.
files() {
  git ls-files --cached --others --exclude-standard --deduplicate -- "$@" |
    while read -r file; do [ ! -f "$file" ] || echo "$file"; done
}

# Each version of clang-format lays some things out differently.
clang_format_version=14
clang_format_of_profile() {
  for name in clang-format-$clang_format_version clang-format; do
    if have "$name" && "$name" --version | grep -q "version $clang_format_version\."; then
      echo "$name"
      return
    fi
  done
  return 1
}
