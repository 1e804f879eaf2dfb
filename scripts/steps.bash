# For the scripts beside it: steps that take long, and say so; the mirror of Debian. Sourced, not run.

trap 'echo "$(basename -- "$0" .sh): interrupted; run it again to go on" >&2; exit 130' INT TERM

# run_step WHO LOG COMMAND ...: runs the command with its output in the log, and says every quarter of a minute how far it
# is. If it fails, shows the end of the log, names it, and ends the script.
run_step() {
    local who=$1 log=$2 status=0 watcher
    shift 2
    : >"$log"
    show_progress "$who" "$log" &
    watcher=$!
    # In a shell of its own, so that what an interruption says does not go to the log.
    ("$@") >"$log" 2>&1 || status=$?
    kill "$watcher" 2>/dev/null || true
    wait "$watcher" 2>/dev/null || true
    [ "$status" -ne 0 ] || return 0
    tail -n 40 "$log" >&2
    echo "$who: FAILED; the whole log is in $log" >&2
    exit 1
}

# The last line of the log, again and again.
show_progress() {
    local who=$1 log=$2 start=$SECONDS
    # A sleep that outlives its script must not hold its output open.
    while sleep 15 >/dev/null 2>&1 && kill -0 $$ 2>/dev/null; do
        echo "$who:   $((SECONDS - start)) s: $(tail -c 400 "$log" | tr -s '\r' '\n' | tail -n 1 | cut -c 1-100)"
    done
}

# The mirror of Debian's archive that this machine uses; nothing if it uses none.
debian_mirror() {
    apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' 'Label: Debian' \
        'Component: main' 2>/dev/null | head -n 1
}
