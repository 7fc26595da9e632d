# Read by the scripts in sh as they begin: the first failure ends them, --help shows the comment at their head, and
# `root` is the root of the project.
set -eu
usage() { sed -n '/^#!/d; /^#/!q; s/^# \{0,1\}//p' "$0"; }
refuse() {
    echo "${0##*/}: $*" >&2
    exit 2
}
case ${1:-} in
--help | -h)
    usage
    exit ;;
esac
root=$(dirname "$0")
[ -e "$root/scripts" ] || root=$root/..
root=$(cd "$root" && pwd)

# keeping ARGUMENT...: `keep` tells whether --keep is there; nothing else may be.
keeping() {
    [ $# -eq 0 ] || [ "$*" = --keep ] || refuse "takes no argument but --keep"
    keep=${1:+yes}
}

# quiet LOG COMMAND...: what a command prints goes to build/LOG.log, and is shown only if the command fails.
quiet() {
    log=$root/build/$1.log
    shift
    mkdir -p "$root/build"
    "$@" >"$log" 2>&1 || { tail -n 200 "$log" >&2; return 1; }
}

# built PRESET [OPTION...]: configures and builds.
built() {
    preset=$1
    shift
    (
        cd "$root"
        quiet "configure-$preset" cmake --preset "$preset" &&
            quiet "build-$preset" cmake --build --preset "$preset" "$@"
    )
}
