# Builds Qt from Debian's source package into the cache folder. Sourced by the
# scripts/build_qt_* scripts, which call these in turn:
#
#   qt_begin NAME               Progress goes to stderr from here on.
#   qt_install_packages PACKAGE ...
#   qt_build COMPILER_VERSION   Prints the prefix, the only line on stdout.
#
# qt_build reads three arrays:
#
#   qt_options              CMake options; a change of one builds Qt again
#   qt_configure_arguments  further arguments of the configuring cmake
#   qt_install_arguments    arguments of cmake --install
#
# and calls qt_finish_prefix FOLDER, which may add files to what was installed.
#
# The source is Debian's own package of the same version as the host's Qt: moc
# of the host has to match the headers of the target. The result is kept in
# $TARN_CACHE_DIR (default: tarn-service in the user's cache folder), outside
# of any build tree, and is built again only if the Qt version, the options or
# the compiler change.

# shellcheck source=scripts/debian_source.sh
source "$(dirname "${BASH_SOURCE[0]}")/debian_source.sh"

say() { printf '[qt-%s %3ds] %s\n' "$qt_name" $((SECONDS - qt_started)) "$*"; }
die() { printf 'build_qt_%s: %s\n' "$qt_name" "$*"; exit 1; }

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo -n "$@"; fi
}

qt_begin() {
    qt_name=$1
    qt_started=$SECONDS
    # The last line of stdout is the result, so nothing else may write there.
    exec 3>&1 1>&2
    qt_cache=${TARN_CACHE_DIR:-${XDG_CACHE_HOME:-$HOME/.cache}/tarn-service}
    mkdir -p "$qt_cache"
    qt_cache=$(cd "$qt_cache" && pwd)
}

# Installs the given packages and those that every build needs.
qt_install_packages() {
    local packages=("$@" dpkg-dev cmake ninja-build
        qt6-base-dev qt6-base-dev-tools perl xz-utils patch)
    local missing=() installed package
    installed=" $(dpkg-query -W -f '${db:Status-Abbrev}${Package} ' "${packages[@]}" \
        2>/dev/null || true)"
    for package in "${packages[@]}"; do
        case $installed in
            *" ii $package "* | *" hi $package "*) ;;
            *) missing+=("$package") ;;
        esac
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    say "installing ${missing[*]}"
    # The machine's package lists may be absent or too old.
    qt_apt_install "${missing[@]}" || { as_root apt-get update -qq && qt_apt_install "${missing[@]}"; }
}

qt_apt_install() {
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "$@"
}

# Everything the service does not use is off, because each feature costs build
# time and size. Local sockets, processes, settings, the command line parser
# and thread pools are in Qt's default set.
qt_options=(
    -DCMAKE_BUILD_TYPE=Release
    -DBUILD_SHARED_LIBS=ON
    -DQT_BUILD_EXAMPLES=OFF
    -DQT_BUILD_TESTS=OFF
    -DQT_BUILD_TOOLS_WHEN_CROSSCOMPILING=OFF
    -DBUILD_WITH_PCH=ON
    # Modules.
    -DFEATURE_concurrent=ON
    -DFEATURE_network=ON
    -DFEATURE_testlib=ON
    -DFEATURE_gui=OFF
    -DFEATURE_widgets=OFF
    -DFEATURE_sql=OFF
    -DFEATURE_xml=OFF
    -DFEATURE_dbus=OFF
    -DFEATURE_printsupport=OFF
    # Libraries: the bundled copies, none of the compiler's root folder.
    -DFEATURE_system_zlib=OFF
    -DFEATURE_system_pcre2=OFF
    -DFEATURE_system_doubleconversion=OFF
    -DFEATURE_zstd=OFF
    -DFEATURE_glib=OFF
    -DFEATURE_icu=OFF
    -DFEATURE_brotli=OFF
    # Encryption and the rest of the web side of Qt Network.
    -DFEATURE_ssl=OFF
    -DFEATURE_openssl=OFF
    -DFEATURE_schannel=OFF
    -DFEATURE_gssapi=OFF
    -DFEATURE_sspi=OFF
    -DFEATURE_libproxy=OFF
    -DFEATURE_networklistmanager=OFF
    -DFEATURE_dnslookup=OFF
    -DFEATURE_http=OFF
    -DFEATURE_networkdiskcache=OFF
    -DFEATURE_networkproxy=OFF
    -DFEATURE_socks5=OFF
    # Parts of Core and Test that only a GUI wants.
    -DFEATURE_itemmodel=OFF
    -DFEATURE_itemmodeltester=OFF
    -DFEATURE_animation=OFF
    -DFEATURE_easingcurve=OFF
    -DFEATURE_hijricalendar=OFF
    -DFEATURE_islamiccivilcalendar=OFF
    -DFEATURE_jalalicalendar=OFF
    # Programs.
    -DFEATURE_androiddeployqt=OFF
    -DFEATURE_macdeployqt=OFF
    -DFEATURE_windeployqt=OFF
    -DFEATURE_qmake=OFF
)
qt_configure_arguments=()
qt_install_arguments=()
qt_finish_prefix() { :; }

# Downloads and unpacks the source package into $1/qt.
qt_fetch_source() {
    fetch_debian_source "$1" qt6-base "$2" qt
    rm -rf "$1/qt/tests" "$1/qt/examples"
}

qt_compile() {
    local work=$1 prefix=$2 multiarch
    local launcher=()
    if command -v ccache >/dev/null; then
        launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
        # Without these a precompiled header is never cached. "Depend" spares the
        # separate preprocessor run, which costs more than it finds here.
        export CCACHE_SLOPPINESS=pch_defines,time_macros
        export CCACHE_DEPEND=1
    fi

    say "configuring"
    multiarch=$(dpkg-architecture -qDEB_HOST_MULTIARCH)
    cmake -S "$work/qt" -B "$work/build" -G Ninja -Wno-dev \
        -DCMAKE_INSTALL_PREFIX="$prefix" \
        -DQT_HOST_PATH=/usr \
        -DQT_HOST_PATH_CMAKE_DIR="/usr/lib/$multiarch/cmake" \
        "${qt_configure_arguments[@]}" "${launcher[@]}" "${qt_options[@]}" >"$work/configure.log" 2>&1 \
        || { tail -n 40 "$work/configure.log"; die "Qt cannot be configured"; }

    say "compiling"
    if ! ninja -C "$work/build" 9>&- | tee "$work/build.log" \
        | awk 'match($0, /^\[[0-9]+\/[0-9]+\]/) && ++lines % 50 == 0 {
            print "  " substr($0, RSTART, RLENGTH); fflush() }'; then
        tail -n 40 "$work/build.log"
        die "Qt does not compile"
    fi

    say "installing"
    DESTDIR=$work/dest cmake --install "$work/build" "${qt_install_arguments[@]}" >"$work/install.log" 2>&1 \
        || { tail -n 40 "$work/install.log"; die "Qt cannot be installed"; }
    rm -rf "$work/dest$prefix/doc"
}

qt_build() {
    local source_version qt_version prefix key
    # For example "6.4.2+dfsg-10"; the upstream part is what Qt itself reports.
    source_version=$(dpkg-query -W -f '${source:Version}' qt6-base-dev)
    qt_version=${source_version%%[+~-]*}
    prefix=$qt_cache/qt-$qt_name-$qt_version
    key="$source_version $1 ${qt_options[*]}"

    if ! qt_is_complete "$prefix" "$key"; then
        # Two builds at the same time would write into the same folders. The one
        # that waited finds the work done.
        exec 9>"$qt_cache/.qt-$qt_name.lock"
        flock 9
        # Not "||": the shell would no longer stop at errors inside the function.
        if ! qt_is_complete "$prefix" "$key"; then
            qt_build_now "$source_version" "$prefix" "$key"
        fi
    fi
    echo "$prefix" >&3
}

qt_is_complete() {
    [ -e "$1/.complete" ] && [ "$(<"$1/.complete")" = "$2" ]
}

qt_build_now() {
    local source_version=$1 prefix=$2 key=$3
    # Next to the result, not in /tmp: the trees take about 1 GiB for a while. The
    # name is always the same, so that the paths in the compiler's command lines are
    # too and ccache finds what it has seen before.
    qt_work=$qt_cache/qt-$qt_name-build
    rm -rf "$qt_work"
    mkdir "$qt_work"
    trap 'rm -rf "$qt_work"' EXIT

    qt_fetch_source "$qt_work" "$source_version"
    qt_compile "$qt_work" "$prefix"
    qt_finish_prefix "$qt_work/dest$prefix"

    rm -rf "$prefix"
    mv "$qt_work/dest$prefix" "$prefix"
    # Last, because it says that everything else is there.
    printf '%s' "$key" >"$prefix/.complete"
    say "done: $(du -sh "$prefix" | cut -f1) in $prefix"
}
