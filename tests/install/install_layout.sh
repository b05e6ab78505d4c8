#!/bin/sh
# Installs the build folder $1 into a staging folder and checks the installed tree. The
# expected paths come from the build's configuration in the environment.
set -u
build=$1
stage=$(mktemp -d "${TMPDIR:-/tmp}/install-XXXXXX")
trap 'rm -rf "$stage"' EXIT
failed=0
fail() {
    echo "FAIL: $*"
    failed=1
}

if ! DESTDIR="$stage" cmake --install "$build" >"$stage.log" 2>&1; then
    cat "$stage.log"
    rm -f "$stage.log"
    exit 1
fi
rm -f "$stage.log"

for program in "$LANYX_PROGRAM" "$HOSTSIM_PROGRAM" "$HOSTSIM_TOOL"; do
    [ -x "$stage$program" ] || fail "$program is not installed as a program"
done
for file in "$PAM_SERVICE" "$UNIT_FILE" "$PAM_MODULE"; do
    [ -f "$stage$file" ] || fail "$file is not installed"
done
for page in "$MAN8" "$MAN1"; do
    gzip -t "$stage$page" 2>/dev/null || fail "$page is not a compressed manual page"
done
for stack in auth account password; do
    grep -q "^@include common-$stack\$" "$stage$PAM_SERVICE" ||
        fail "the PAM service does not follow the host's $stack stack"
done

# The installed hostsim finds the installed tool and module, and the root's tools work.
root="$stage/root"
if "$stage$HOSTSIM_PROGRAM" create "$root" >"$stage/create.log" 2>&1; then
    tool=$(sed -n 's/^exec \([^ ]*\) .*/\1/p' "$root/sbin/reboot")
    [ "$tool" = "$stage$HOSTSIM_TOOL" ] || fail "the root's tools run '$tool'"
    module=$(awk 'NR == 2 { print $3 }' "$root/etc/pam.d/lanyx")
    [ "$module" = "$stage$PAM_MODULE" ] || fail "the root's PAM service names '$module'"
    "$root/sbin/reboot" >/dev/null 2>&1 || fail "the root's reboot tool failed"
    "$stage$HOSTSIM_PROGRAM" state "$root" | grep -q '"state": "rebooting"' ||
        fail "the root's reboot tool did not reach the host state"
else
    fail "the installed hostsim cannot make a root: $(cat "$stage/create.log")"
fi

# The unit: in place of the terminal's getty, restarted, on the terminal, given its number.
unit="$stage$UNIT_FILE"
for line in 'Conflicts=getty@%i.service' 'After=getty@%i.service' 'Restart=always' \
    'TTYPath=/dev/%I' 'StandardInput=tty' 'StandardOutput=tty' 'WantedBy=getty.target'; do
    grep -qx "$line" "$unit" || fail "the unit lacks $line"
done
start=$(sed -n 's/^ExecStart=//p' "$unit")
case "$start" in
*"$LANYX_PROGRAM"*)
    stub="$stage/console"
    printf '#!/bin/sh\necho "$@"\n' >"$stub"
    chmod +x "$stub"
    # What systemd runs for lanyx@tty7: "$$" is one "$", %I the instance.
    command=$(printf '%s\n' "$start" | sed -e 's/\$\$/$/g' -e 's/%I/tty7/g' -e "s|$LANYX_PROGRAM|$stub|")
    argument=$(eval "$command")
    [ "$argument" = 7 ] || fail "lanyx@tty7 starts the console with '$argument', not 7"
    ;;
*) fail "the unit does not start $LANYX_PROGRAM: $start" ;;
esac
if command -v systemd-analyze >/dev/null 2>&1; then
    out=$(timeout 60 systemd-analyze verify --man=no "$(dirname "$unit")/lanyx@tty1.service" 2>&1)
    [ -z "$out" ] || fail "systemd-analyze verify: $out"
fi

exit "$failed"
