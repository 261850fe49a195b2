# What ./run and ./check ask of the folder that they stand in, before they start: sourced by both.
#   ground_is_good ./run build session      the folders that will be written to, if they exist already
# Says in one sentence what is in the way and what to do about it, and ends the script with status 1.

ground_is_good() {
    local who=$1 folder made_for
    shift
    if [ ! -w . ]; then
        echo "$who: $PWD cannot be written to by $(id -un); copy it to a folder of your own and start there: cp -r '$PWD' ~/ecu-console" >&2
        exit 1
    fi
    for folder in "$@"; do
        [ -e "$folder" ] || continue
        if [ -n "$(find "$folder" ! -writable -print -quit 2>/dev/null)" ]; then
            echo "$who: $folder/ or what is in it belongs to $(stat -c %U "$(find "$folder" ! -writable -print -quit)"); give it back: sudo chown -R $(id -un) '$PWD/$folder'" >&2
            exit 1
        fi
        made_for=$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$folder/CMakeCache.txt" 2>/dev/null || true)
        if [ -n "$made_for" ] && [ ! "$made_for" -ef . ]; then
            echo "$who: $folder/ was built in $made_for, and this folder has moved or was copied since; start afresh: rm -rf '$PWD/$folder'" >&2
            exit 1
        fi
    done
}
