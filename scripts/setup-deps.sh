#!/bin/sh
# Installs what the build, the console, the packages and the tests need on Debian 12, only when
# missing.
set -eu

PACKAGES="cmake ninja-build g++ clang libclang-rt-14-dev pkg-config make
libncurses-dev ncurses-term libpam0g-dev libboost-regex-dev libboost-filesystem-dev
libboost-system-dev nlohmann-json3-dev libgtest-dev libgmock-dev libbenchmark-dev libvterm-dev
faketime libfaketime locales openssl openssh-client less libcrypt-dev procps clang-format
dpkg-dev file lintian groff-base man-db valgrind ccache strace"

missing=""
for p in $PACKAGES; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing="$missing $p"
    fi
done

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi

if [ -n "$missing" ]; then
    echo "Installing:$missing"
    $SUDO env DEBIAN_FRONTEND=noninteractive apt-get update -qq
    # shellcheck disable=SC2086
    $SUDO env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
fi

# The console sets its locale to en_US.UTF-8; it exists only once generated.
if ! locale -a 2>/dev/null | grep -qi '^en_US\.utf-\?8$'; then
    echo "Generating the en_US.UTF-8 locale"
    if ! grep -q '^en_US.UTF-8 UTF-8' /etc/locale.gen 2>/dev/null; then
        echo 'en_US.UTF-8 UTF-8' | $SUDO tee -a /etc/locale.gen >/dev/null
    fi
    $SUDO locale-gen >/dev/null
fi
