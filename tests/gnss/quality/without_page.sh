#!/bin/sh
# A program built without npm writes text and JSON, and refuses pages with a message.
# usage: without_page.sh PROGRAM, in a folder for its files
set -eu
"$1" simulate --duration 2 -o without_page.tqx
"$1" report without_page.tqx | grep -q '^  good     Completeness '
"$1" report --json without_page.tqx | grep -q '^{"report":1,'
status=0
"$1" report -o without_page.html without_page.tqx 2>without_page.err || status=$?
test "$status" = 1
grep -q 'built without npm and cannot write pages; text and --json work' without_page.err
test ! -e without_page.html
