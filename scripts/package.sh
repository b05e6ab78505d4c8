#!/bin/sh
# Builds the Debian packages (cpack) from a Release build of their own, without sanitizers and
# with Debian's hardening flags; unpacks them into a scratch root, checks that every file is
# where a Debian system expects it and that an unpacked hostsim makes a working root, and runs
# lintian when it is installed. LANYX_PACKAGE_BUILD names the build folder (build-package).
set -eu
cd "$(dirname "$0")/.."
BUILD="${LANYX_PACKAGE_BUILD:-build-package}"

eval "$(DEB_BUILD_MAINT_OPTIONS=hardening=+all dpkg-buildflags --export=sh)"
# CMake reads neither CPPFLAGS nor a changed environment after the first run: pass them all.
set -- -DCMAKE_C_FLAGS="$CPPFLAGS $CFLAGS" -DCMAKE_CXX_FLAGS="$CPPFLAGS $CXXFLAGS" \
    -DCMAKE_EXE_LINKER_FLAGS="$LDFLAGS" -DCMAKE_MODULE_LINKER_FLAGS="$LDFLAGS" \
    -DCMAKE_SHARED_LINKER_FLAGS="$LDFLAGS"
if command -v ccache >/dev/null 2>&1; then
    set -- "$@" -DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
cmake -S . -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
    -DLANYX_SANITIZE=OFF "$@" >/dev/null
# Only what the packages hold; scripts/build.sh builds the tests.
cmake --build "$BUILD" -j "$(nproc)" --target lanyx hostsim hostsim-tool pam_hostsim \
    lanyx_man_pages lanyx_changelog
rm -f "$BUILD"/*.deb
if ! (cd "$BUILD" && cpack -G DEB >cpack.log 2>&1); then
    cat "$BUILD/cpack.log"
    exit 1
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0
fail() {
    echo "package: $*" >&2
    failed=1
}

for deb in "$BUILD"/*.deb; do
    dpkg -x "$deb" "$scratch/$(dpkg-deb -f "$deb" Package)"
done
console="$scratch/lanyx"
hostsim="$scratch/lanyx-hostsim"
[ -d "$console" ] || fail "no lanyx package was made"
[ -d "$hostsim" ] || fail "no lanyx-hostsim package was made"

multiarch=$(dpkg-architecture -qDEB_HOST_MULTIARCH)
# One path that exists of the alternatives, in /lib or /usr/lib as the machine keeps them.
expect() {
    tree=$1
    shift
    for candidate in "$@"; do
        if [ -e "$tree/$candidate" ]; then return 0; fi
    done
    fail "$(basename "$tree") lacks $*"
}
expect "$console" usr/sbin/lanyx
expect "$console" etc/pam.d/lanyx
expect "$console" lib/systemd/system/lanyx@.service usr/lib/systemd/system/lanyx@.service
expect "$console" usr/share/man/man8/lanyx.8.gz
expect "$console" usr/share/doc/lanyx/copyright
expect "$console" usr/share/doc/lanyx/changelog.gz
expect "$hostsim" usr/bin/hostsim
expect "$hostsim" usr/libexec/hostsim/hostsim-tool
expect "$hostsim" "lib/$multiarch/security/pam_hostsim.so" \
    "usr/lib/$multiarch/security/pam_hostsim.so"
expect "$hostsim" usr/share/man/man1/hostsim.1.gz
expect "$hostsim" usr/share/doc/lanyx-hostsim/copyright
[ -x "$console/usr/sbin/lanyx" ] || fail "usr/sbin/lanyx is not executable"

# The dependencies of the libraries were found, and the console asks for the simulated host.
depends=$(dpkg-deb -f "$BUILD"/lanyx_*.deb Depends)
for needed in libncursesw6 libpam0g lanyx-hostsim; do
    case "$depends" in
    *"$needed"*) ;;
    *) fail "lanyx does not depend on $needed: $depends" ;;
    esac
done
dpkg-deb --ctrl-tarfile "$BUILD"/lanyx_*.deb | tar -xO ./conffiles | grep -qx /etc/pam.d/lanyx ||
    fail "/etc/pam.d/lanyx is not a conffile"

# The unpacked hostsim finds its tool and its PAM module where the package put them.
if [ -x "$hostsim/usr/bin/hostsim" ]; then
    root="$scratch/root"
    if "$hostsim/usr/bin/hostsim" create "$root" >"$scratch/create.log" 2>&1; then
        tool=$(sed -n 's/^exec \([^ ]*\) .*/\1/p' "$root/bin/helmq")
        [ "$tool" = "$hostsim/usr/libexec/hostsim/hostsim-tool" ] ||
            fail "the root's tools call $tool"
        module=$(awk 'NR == 2 { print $3 }' "$root/etc/pam.d/lanyx")
        [ -f "$module" ] || fail "the root's PAM service names $module, which is not there"
    else
        fail "the unpacked hostsim cannot make a root: $(cat "$scratch/create.log")"
    fi
fi

if command -v lintian >/dev/null 2>&1; then
    lintian --fail-on error,warning --display-info "$BUILD"/*.deb || fail "lintian found problems"
else
    echo "lintian is not installed; the packages were not linted"
fi

if [ "$failed" -ne 0 ]; then exit 1; fi
ls "$BUILD"/*.deb
