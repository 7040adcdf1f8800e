#!/usr/bin/env bash
# Runs the keychain's tests against a secret service on a session bus of their own, and without any:
#   keychain.sh keychain_tests
# Ends with 77 where there is no such service to be had.
set -euo pipefail
tests=$(readlink -f "$1")
for program in dbus-run-session gnome-keyring-daemon; do
    command -v "$program" >/dev/null || { echo "no $program"; exit 77; }
done
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export HOME=$folder XDG_RUNTIME_DIR=$folder/run XDG_DATA_HOME=$folder/data
mkdir -p -m 700 "$XDG_RUNTIME_DIR"
unset DBUS_SESSION_BUS_ADDRESS DISPLAY
# The line feed is the password: with none at all the daemon would want to ask for one.
timeout 60 dbus-run-session -- bash -c '
    printf "\n" | gnome-keyring-daemon --unlock --components=secrets >/dev/null 2>&1
    "$1" --gtest_filter="AIKeychainWithService.*"' run "$tests"
timeout 60 "$tests" --gtest_filter='AIKeychainWithoutService.*'
