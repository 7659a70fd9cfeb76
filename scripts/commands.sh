#!/usr/bin/env bash
# Writes docs/commands.md, the manual's list of commands, from the release build's own table.
#   scripts/commands.sh           writes it
#   scripts/commands.sh --check   fails when it is not up to date
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
page=docs/commands.md

list() {
    cat <<'HEAD'
# All commands

Made from the program's own tables (`polyfab --describe-commands`): do not edit. The number is what
`--command` of [batch mode](manual.md#without-a-window) takes; what is not built yet is greyed in the
menu. Menus, their tool tips, the search (Ctrl+F) and the sheet of keys say the same.

| Number | Menu | Command | Key | What it does |
|---|---|---|---|---|
HEAD
    build/release/polyfab --describe-commands | sed -e 's/&//g' -e 's/[`|*_<]/\\&/g' |
        awk -F '\t' '{ printf "| %s | %s | %s | %s | %s |\n", $1, $2, $3, $4, $5 }'
}

if [[ ${1-} == --check ]]; then
    diff -u "$page" <(list) || { echo "run scripts/commands.sh" >&2; exit 1; }
else
    list >"$page"
fi
