#!/usr/bin/env bash
# Installs the packages of the groups named (see packages.txt) that are not there yet. When nothing
# is missing it needs neither network nor root.
#   scripts/install.sh build test
set -euo pipefail
list=$(dirname "${BASH_SOURCE[0]}")/packages.txt

wanted=()
for group in "$@"; do
    line=$(grep "^$group:" "$list") || { echo "install: no group '$group' in $list" >&2; exit 2; }
    read -ra packages <<<"${line#*:}"
    wanted+=("${packages[@]}")
done

if ! command -v apt-get >/dev/null; then
    echo "install: no apt-get here; please see that the like of these is installed: ${wanted[*]}" >&2
    exit 0
fi

# A package that was removed is still listed, as "not-installed" or "config-files".
installed() { dpkg-query -W -f='${db:Status-Status}\n' "$1" 2>/dev/null | grep -qx installed; }

missing=()
for package in "${wanted[@]}"; do
    installed "${package%\?}" || missing+=("$package")
done
if ((${#missing[@]} == 0)); then exit 0; fi

as_root=()
if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
        echo "install: these packages are missing, and there is neither root nor sudo to" \
            "install them: ${missing[*]%\?}" >&2
        exit 1
    fi
    as_root=(sudo)
fi

quiet=$(dirname "${BASH_SOURCE[0]}")/quiet.sh
"$quiet" "updating the package lists" "${as_root[@]}" apt-get update -q \
    || echo "install: not all lists could be updated, going on" >&2

present=()
for package in "${missing[@]}"; do
    if [[ $package != *\? ]] || [[ -n $(apt-cache search --names-only "^${package%\?}\$") ]]; then
        present+=("${package%\?}")
    fi
done
if ((${#present[@]} == 0)); then exit 0; fi

"$quiet" "installing ${present[*]}" "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -q --no-install-recommends "${present[@]}"
