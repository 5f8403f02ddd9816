#!/bin/sh
# Converts 100 MB of real text with velnls and with iconv and compares the results byte for byte.
#   big.sh VELNLS to|from PAGE ICONV-NAME MAN-FOLDER...
# The text is the manual pages of the given languages and the Unicode names list, without the characters that the page
# cannot hold, repeated. Prints both times. Exit code 77 (skipped) when the system has no such text.
set -eu

velnls=$1
direction=$2
page=$3
iconv_name=$4
shift 4

folder=$(mktemp -d "${TMPDIR:-/tmp}/velnls-big.XXXXXX")
trap 'rm -rf "$folder"' EXIT
trap 'exit 1' HUP INT TERM

: > "$folder/text"
for language in "$@"; do
    if [ -d "/usr/share/man/$language" ]; then
        find "/usr/share/man/$language" -type f -name '*.gz' | LC_ALL=C sort | xargs zcat >> "$folder/text"
    fi
done
# The names list adds a few characters of everything; it is small beside the text of a language.
if [ -s "$folder/text" ] && [ -r /usr/share/unicode/NamesList.txt ]; then
    cat /usr/share/unicode/NamesList.txt >> "$folder/text"
fi
if [ ! -s "$folder/text" ]; then
    echo "no manual pages for: $*"
    exit 77
fi
# Some releases of iconv tell by the exit code of -c that something was left out.
iconv -c -f UTF-8 -t UTF-8 "$folder/text" > "$folder/clean" || true
iconv -c -f UTF-8 -t "$iconv_name" "$folder/clean" > "$folder/page" || true
iconv -f "$iconv_name" -t UTF-8 "$folder/page" > "$folder/utf8"
if [ "$direction" = to ]; then
    piece="$folder/utf8"
    from=UTF-8 to=$page iconv_from=UTF-8 iconv_to=$iconv_name
else
    piece="$folder/page"
    from=$page to=UTF-8 iconv_from=$iconv_name iconv_to=UTF-8
fi
size=$(wc -c < "$piece")
: > "$folder/input"
written=0
while [ "$written" -lt 100000000 ]; do
    cat "$piece" >> "$folder/input"
    written=$((written + size))
done
rm "$folder/text" "$folder/clean" "$folder/page" "$folder/utf8"

# In seconds, with the fraction where the system tells it.
now() {
    date +%s.%N
}
start=$(now)
"$velnls" convert -f "$from" -t "$to" -o "$folder/ours" "$folder/input"
middle=$(now)
iconv -f "$iconv_from" -t "$iconv_to" -o "$folder/theirs" "$folder/input"
end=$(now)
echo "$start $middle $end $written" | awk -v what="$from to $to" '{
    printf "%s, %.0f MB: velnls %.2f s, iconv %.2f s\n", what, $4 / 1e6, $2 - $1, $3 - $2 }'
cmp "$folder/ours" "$folder/theirs"
