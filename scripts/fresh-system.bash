#!/usr/bin/env bash
#
# A minimal Debian 12 in a folder, for scripts that source this and try something there.
#
# make_fresh_system PACKAGES [MIRROR] makes one that has PACKAGES besides, a list with commas, and sets
# root to its folder; it goes when the script ends. in_fresh_system FOLDER COMMAND runs a command of bash
# there, as root, in FOLDER. Both call fail, which the script has.
#
# Needs root, mmdebstrap or debootstrap, and a network. Packages come from MIRROR, else from where apt on
# this system gets Debian 12's own. A proxy is that of apt, or that of the environment.

root=

# Runs a command whose mounts nobody else sees, this script and its clean-up included: they go with
# the command's last process, and that goes with this script, however it ends.
alone() {
    setpriv --pdeathsig KILL unshare --mount --pid --fork --kill-child --mount-proc "$@" &
    wait $!
}

remove_fresh_system() {
    kill -KILL "$(jobs -p)" 2>/dev/null || true
    wait
    rm --recursive --force --one-file-system "$root"
}

make_fresh_system() {
    local packages=$1 mirror=${2-} bootstrap proxy=
    ((EUID == 0)) || fail "only root can make a system in a folder"
    bootstrap=$(command -v mmdebstrap || command -v debootstrap) ||
        fail "there is neither mmdebstrap nor debootstrap here; install the package of one of them"
    if [[ -z $mirror ]]; then
        # shellcheck disable=SC2016 # the variable is apt's
        mirror=$(apt-get indextargets --format '$(REPO_URI)' \
            'Created-By: Packages' 'Codename: bookworm' 'Component: main' | head --lines 1)
        [[ -n $mirror ]] || fail "apt knows no mirror of Debian 12 here; name one with --mirror"
    fi
    eval "$(apt-config shell proxy Acquire::http::Proxy)"
    export http_proxy=${proxy:-${http_proxy:-}}

    root=$(mktemp --directory --tmpdir marrowpress-fresh-XXXXXX)
    trap remove_fresh_system EXIT
    trap 'exit 1' HUP INT TERM
    chmod 755 "$root"

    echo "Making a minimal Debian 12 in $root ..."
    if [[ $bootstrap == */mmdebstrap ]]; then
        alone mmdebstrap --quiet --mode=root --variant=minbase \
            --include="$packages" bookworm "$root" "deb $mirror bookworm main"
    else
        alone debootstrap --variant=minbase --include="$packages" \
            bookworm "$root" "$mirror" >"$root.log" || fail "see $root.log"
        rm "$root.log"
    fi
    cp --dereference /etc/resolv.conf /etc/hosts "$root/etc"
}

in_fresh_system() {
    alone --root="$root" --wd="$1" \
        /usr/bin/env --ignore-environment HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin \
        http_proxy="$http_proxy" bash -c "mount --types devpts devpts /dev/pts && $2"
}
