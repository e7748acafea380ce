# Sourced by the commands here: where the tree is, and how they talk.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
me=script/$(basename "$0")

say() { printf '%s: %s\n' "$me" "$*"; }
fail() {
    printf '%s: %s\n' "$me" "$*" >&2
    exit 1
}

# step TEXT COMMAND...: runs the command and tells how long it took.
step() {
    local text=$1 begin=$EPOCHREALTIME
    shift
    say "$text ..."
    "$@" || return
    say "$(awk -v a="$begin" -v b="$EPOCHREALTIME" -v t="$text" 'BEGIN { printf "%s: %.1f s", t, b - a }')"
}
