#!/usr/bin/env bash
# scripts/fresh-machine.sh RELEASE [command]: makes a bare root of that Debian release, clones what is committed here
# into it, and runs the command there; when none is given, the wizard with prepared answers and every test. Needs root,
# debootstrap, 5 GB in /var/tmp (or $TMPDIR), and two hours at the most. Ends with the status of the command.
#
# Everything runs in namespaces of its own: its mounts are seen by nobody else, and they and all its programs are gone
# when it ends, however it ends. The root is removed, unless the command failed.
set -euo pipefail
. "$(dirname "$0")/common.sh"

[ "$#" -gt 0 ] || die "which release of Debian? For example: scripts/fresh-machine.sh trixie"
release=$1
command=${*:2}
[ -n "$command" ] || command='./run --wizard < docs/answers.txt && ./test'

# The mirror that this machine itself uses, when it is one of Debian; otherwise debootstrap knows one.
mirror() {
    # shellcheck disable=SC2016  # apt replaces these names
    apt-get indextargets --format '$(ORIGIN) $(CODENAME) $(SITE)' 'Created-By: Packages' 2>/dev/null |
        awk '$1 == "Debian" && $2 !~ /-/ { print $3; exit }'
}

make_root() {
    local mirror
    mirror=$(mirror)
    timeout 1800 debootstrap --variant=minbase "$release" "$folder" ${mirror:+"$mirror"}
    git clone -q "$root" "$folder/home/ormacon"
    cp --remove-destination /etc/resolv.conf "$folder/etc/"
}

# Runs as the first process of the namespaces; when it ends, the others there are killed.
inside() {
    step "making a bare root of Debian $release" make_root
    mount -t proc proc "$folder/proc"
    mount --rbind /sys "$folder/sys"
    mount --rbind /dev "$folder/dev"
    say "running: $command"
    # shellcheck disable=SC2016  # the inner shell replaces $1
    timeout --foreground -s KILL 7200 chroot "$folder" env -i HOME=/root TERM="${TERM:-dumb}" \
        PATH=/usr/sbin:/usr/bin:/sbin:/bin \
        ${http_proxy:+http_proxy="$http_proxy"} ${https_proxy:+https_proxy="$https_proxy"} \
        bash -c 'cd /home/ormacon && eval "$1"' bash "$command"
}

status=interrupted
finish() {
    pkill -KILL -P $$ || true  # an interrupted script leaves the namespaces behind
    case $status in
        0 | interrupted) rm -rf --one-file-system "$folder" ;;
        *) say "the root is kept in $folder; remove it with rm -rf" ;;
    esac
    say "$release: $([ "$status" = 0 ] && echo passed || echo "failed ($status)") after" \
        "$((SECONDS / 60)) min $((SECONDS % 60)) s"
}

if [ -n "${FRESH_MACHINE_FOLDER-}" ]; then
    folder=$FRESH_MACHINE_FOLDER
    inside
    exit
fi
[ "$(id -u)" = 0 ] || die "making a bare root needs root"
command -v debootstrap >/dev/null || die "debootstrap is missing: apt-get install debootstrap"
folder=$(mktemp -d "${TMPDIR:-/var/tmp}/ormacon-$release-XXXXXX")
chmod 755 "$folder"
trap finish EXIT
ended=0
FRESH_MACHINE_FOLDER=$folder unshare --mount --pid --fork --kill-child "$0" "$@" || ended=$?
status=$ended
exit "$status"
