#!/usr/bin/env bash
# Installs the packages that packages.txt lists and this machine lacks. Needs Debian 12 and root or sudo.
# Usage: ./setup.sh [FILE...]   (default: packages.txt beside this script)
set -euo pipefail
cd "$(dirname "$0")"

lists=("$@")
[ ${#lists[@]} -gt 0 ] || lists=(packages.txt)

missing=()
while read -r package; do
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
done < <(sed -e 's/#.*//' -e 's/[[:space:]]//g' -e '/^$/d' "${lists[@]}")

[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "setup: installing packages needs root or sudo; missing: ${missing[*]}" >&2; exit 1; }
  as_root=(sudo)
fi
echo "setup: installing ${#missing[@]} packages: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
