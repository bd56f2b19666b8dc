#!/bin/sh
# Runs programs of the Windows target by Wine, without a display.
#
# usage: wine.sh PREFIX PROGRAM [ARGUMENT...]   runs PROGRAM; makes PREFIX and starts its server when there is none
#        wine.sh PREFIX --start                 that alone, and a desktop that stays for an hour or until --stop
#        wine.sh PREFIX --stop                  ends the server and everything that runs in PREFIX
#
# The server and the services that come with it keep the standard streams of whoever started them. So they are started
# by themselves, with none, and not by the first program, whose reader would wait for them.
set -eu

prefix=$1
shift
# The overrides keep Wine from asking for what it would like to install, and from writing to the user's menus.
export WINEPREFIX="$prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe=d"
unset DISPLAY
# Without a server of its own it ends by itself: so long after the last program.
seconds_without_programs=60

quietly() { "$@" </dev/null >/dev/null 2>&1; }
is_up() { quietly wineserver -k0; }

make_prefix() {
    rm -rf "$prefix"
    mkdir -p "$prefix/home"
    (
        export HOME="$prefix/home" LC_ALL=C.UTF-8
        quietly wine wineboot -i
        # Windows that nobody sees: what has to do with them works without a display.
        quietly wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
        quietly wineserver -w
    ) || { echo "wine.sh: cannot make $prefix" >&2; exit 1; }
    : >"$prefix/is-made"
}

start() {
    mkdir -p "$(dirname "$prefix")"
    (
        flock 9
        [ -e "$prefix/is-made" ] || make_prefix 9>&-
        if ! is_up; then
            # Somebody else's may have come meanwhile: what counts is that there is one.
            quietly wineserver "-p$seconds_without_programs" 9>&- || true
            quietly wine wineboot 9>&- || true
            is_up || { echo "wine.sh: no server for $prefix" >&2; exit 1; }
        fi
    ) 9>"$prefix.lock"
}

# Windows live on a desktop, whose process starts with the first program that has one and ends with the last. Two
# programs that meet while it does either may wait for it for ever. So something with a window is there all the time.
keep_desktop() {
    setsid timeout 3600 wine notepad </dev/null >/dev/null 2>&1 &
    sleep 3
}

case ${1-} in
    --start)
        start
        keep_desktop
        ;;
    --stop) if [ -d "$prefix" ] && is_up; then quietly wineserver -k; fi ;;
    *)
        { [ -e "$prefix/is-made" ] && is_up; } || start
        exec wine "$@"
        ;;
esac
