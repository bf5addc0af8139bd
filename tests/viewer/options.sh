#!/bin/sh
# The viewer's options: --page takes a page's title in English and in the
# language shown (German here), and a numeric option that is no number ends
# the viewer with exit code 2 and a one-line reason naming the option.
#   options.sh VIEWER MODEL.xml
viewer=$1
model=$2
export QT_QPA_PLATFORM=offscreen LANG=de_DE.UTF-8 XDG_CONFIG_HOME=$(mktemp -d)
trap 'rm -rf "$XDG_CONFIG_HOME"' EXIT
failed=0
check() { # expected code, what stderr must say (a line of its own for code 2), viewer arguments...
    code=$1 says=$2
    shift 2
    "$viewer" --camera "fake:$model" "$@" >/dev/null 2>"$XDG_CONFIG_HOME/err"
    got=$?
    errors=$(grep '^triggerio-viewer: ' "$XDG_CONFIG_HOME/err" | grep -v 'Kamera .* geöffnet$')
    if [ "$got" != "$code" ] || { [ "$code" = 2 ] && { [ "$(printf '%s\n' "$errors" | wc -l)" != 1 ] ||
        ! printf '%s\n' "$errors" | grep -q -- "$says"; }; }; then
        echo "FAIL: $* exits $got (expected $code), says: $errors"
        tail -n 40 "$XDG_CONFIG_HOME/err" # a sanitizer's report, if that is what ended it
        failed=1
    else
        echo "PASS: $* exits $got"
    fi
}
shot=$XDG_CONFIG_HOME/shot.png
check 0 "" --page "I/O Monitor" --screenshot "$shot" --after 100
check 0 "" --page "E/A-Monitor" --screenshot "$shot" --after 100
check 2 "no page\|keine Seite" --page "No such page" --screenshot "$shot" --after 100
check 2 "--acquire-after" --acquire-after abc --screenshot "$shot"
check 2 "--after" --screenshot "$shot" --after 12x
exit $failed
