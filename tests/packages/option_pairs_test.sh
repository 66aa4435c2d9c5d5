#!/bin/sh
# SPDX-License-Identifier: MIT
# Every two options, in both orders, and a host with each: both have an effect, or the command line is
# refused in a line on stderr, with exit code 2, and nothing is written. Only --help and --version
# ignore the rest. Needs no display.
# Usage: option_pairs_test.sh PROGRAM
set -eu
. "$(dirname "$0")/../support/outside.sh"
program=$1
. "$(dirname "$0")/desktop.sh"
export QT_QPA_PLATFORM=offscreen
store "$home/data/quill" host=plain.example
store "$home/data/quill/profiles/stores" host=stores.example
store "$work/root" host=root.example
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM || :
files() { find "$home" "$work/root" -type f -exec cksum {} + | sort -k 3; }
files >"$work/before"
same_files() { files | cmp -s - "$work/before"; }

# What a row and a column of the table together are:
#   w  a window     2  refused     h  the help     v  the version     l  the list of profiles
#   e  the export of the plain settings     p  of the profile's     r  of the other folder's
columns='--profile --profiles --export --with-passwords --help --version --root --screen --scale --snapshot --text -style HOST ADDRESS'
table='
--profile         2 2 p 2 h v 2 w w w w w w w
--profiles        2 l 2 2 h v 2 2 2 2 2 2 2 2
--export          p 2 e e h v r 2 2 2 2 2 2 2
--with-passwords  2 2 e 2 h v 2 2 2 2 2 2 2 2
--help            h h h h h h h h h h h h h h
--version         v v v v h v v v v v v v v v
--root            2 2 r 2 h v 2 w w w w w w w
--screen          w 2 2 2 h v w 2 w w w w w w
--scale           w 2 2 2 h v w w 2 w w w w w
--snapshot        w 2 2 2 h v w w w 2 w w w w
--text            w 2 2 2 h v w w w w 2 w w w
-style            w 2 2 2 h v w w w w w w w w
HOST              w 2 2 2 h v w w w w w w 2 2
ADDRESS           w 2 2 2 h v w w w w w w 2 2'

# words NAME: as it is on the command line.
words() {
    case $1 in
        --profile) echo --profile stores ;;
        --root) echo --root "$work/root" ;;
        --screen) echo --screen 300x300 ;;
        --scale) echo --scale 2 ;;
        --snapshot) echo --snapshot "$work/picture.png" ;;
        --text) echo --text "$work/text" ;;
        -style) echo -style fusion ;;
        HOST) echo depot.example ;;
        ADDRESS) echo telnet://depot.example ;;
        *) echo "$1" ;;
    esac
}

refused=0
# shows WHAT WORDS...
shows() {
    what=$1
    shift
    case $what in
        w) ends_with 1 'there is no display' "$@" ;;
        2)
            ends_with 2 'quill --help tells more' "$@"
            [ ! -s "$work/out" ] && [ "$(wc -l <"$work/said")" -eq 1 ] ||
                fail "'$*' says: $(cat "$work/out" "$work/said")"
            refused=$((refused + 1))
            ;;
        h) ends_with 0 'usage: quill' "$@" ;;
        v) ends_with 0 '' "$@" && grep -Eqx 'quill [0-9.]+' "$work/out" || fail "'$*' says: $(cat "$work/out")" ;;
        l) ends_with 0 '' "$@" && [ "$(cat "$work/out")" = stores ] || fail "'$*' lists: $(cat "$work/out")" ;;
        e) ends_with 0 'host = "plain.example"' "$@" ;;
        p) ends_with 0 'host = "stores.example"' "$@" ;;
        r) ends_with 0 'host = "root.example"' "$@" ;;
        *) fail "the table has '$what'" ;;
    esac
    same_files && [ ! -e "$work/picture.png" ] && [ ! -e "$work/text" ] || fail "'$*' wrote something"
}

pairs=0
while read -r row cells; do
    [ -n "$row" ] || continue
    set -- $cells
    for column in $columns; do
        what=$1
        shift
        shows "$what" $(words "$row") $(words "$column")
        pairs=$((pairs + 1))
    done
    [ $# -eq 0 ] || fail "the row of $row is too long"
done <<END
$table
END
[ $pairs -eq 196 ] || fail "$pairs pairs"

# What else names one thing twice, and the option that is ignored is the one that is named.
shows 2 --text "$work/both" --snapshot "$work/both"
grep -qF "'--snapshot' and --text both name the same file" "$work/said" || fail "said: $(cat "$work/said")"
shows 2 --profiles --profile stores
grep -qF "'--profile' has no effect with --profiles" "$work/said" || fail "said: $(cat "$work/said")"
shows 2 --text "$work/text" --export
grep -qF "'--text' has no effect with --export" "$work/said" || fail "said: $(cat "$work/said")"
shows 2 --export -style=fusion
grep -qF "'-style=fusion' has no effect with --export" "$work/said" || fail "said: $(cat "$work/said")"
shows 2 --text "$work/text" --text "$work/other"
grep -qF "'--text' is given twice" "$work/said" || fail "said: $(cat "$work/said")"
shows h --help --profile stores --root "$work/root" --with-passwords
echo "$pairs pairs of options, $refused command lines refused"
