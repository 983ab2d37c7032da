#!/bin/sh
# The printer at the end of the queue: keeps each job as job-N.opts, the options as a driver gets them, and job-N.prn,
# the document. The document appears last and whole.
# bracken [JOB USER TITLE COPIES OPTIONS [FILE]]
if [ $# = 0 ]; then
    echo 'direct bracken "Corvanta BrackenXL" "BrackenXL"'
    exit 0
fi
set -eu
name=${0%/bin/backend/*}/printed/job-$1
printf '%s\n' "$5" >"$name.opts"
cat -- "${6--}" >"$name.new"
mv -- "$name.new" "$name.prn"
