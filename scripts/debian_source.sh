# shellcheck shell=bash
# Fetches the source of a Debian package. Sourced by the scripts that build from source; they define "say" and "die".

# fetch_debian_source WORK PACKAGE VERSION FOLDER: downloads the source package and unpacks it into WORK/FOLDER.
fetch_debian_source() {
    local work=$1 package=$2 version=$3 folder=$4 list apt_private
    # Source packages are rarely switched on. A private copy of the machine's list
    # with the type turned into "deb-src" leaves its own configuration alone.
    # Lists of third parties are skipped: they do not carry Debian's packages and
    # often have no source index at all.
    mkdir -p "$work/sources" "$work/lists/partial"
    shopt -s nullglob
    for list in /etc/apt/sources.list.d/*.sources; do
        case $(<"$list") in
            *debian-archive-keyring* | *debian.org*)
                sed 's/^Types:.*/Types: deb-src/' "$list" \
                    >"$work/sources/$(basename "$list")" ;;
        esac
    done
    for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ -e "$list" ] || continue
        case $(<"$list") in
            *debian-archive-keyring* | *debian.org*)
                sed -n -E 's/^deb(-src)?([[:space:]])/deb-src\2/p' "$list" | sort -u \
                    >"$work/sources/$(basename "$list")"
                # A leftover sources.list without entries is no error.
                [ -s "$work/sources/$(basename "$list")" ] \
                    || rm "$work/sources/$(basename "$list")" ;;
        esac
    done
    shopt -u nullglob
    if [ -z "$(ls "$work/sources")" ]; then
        die "there is no Debian package source on this machine"
    fi

    apt_private=(-qq
        -o Dir::Etc::sourcelist=/dev/null
        -o Dir::Etc::sourceparts="$work/sources"
        -o Dir::State::lists="$work/lists"
        -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache=
        -o APT::Sandbox::User=root)

    say "fetching the source of $package $version"
    apt-get "${apt_private[@]}" update || say "not every package list is there, going on"
    (cd "$work" && apt-get "${apt_private[@]}" source --download-only \
        --only-source "$package=$version")
    say "unpacking"
    # apt has checked the hashes against the signed index already.
    (cd "$work" && dpkg-source -q --no-check --extract "$package"_*.dsc "$folder")
    rm -rf "$work/lists" "$work"/*.tar.*
}
