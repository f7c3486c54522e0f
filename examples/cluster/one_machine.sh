#!/bin/bash
# The same split on one big machine with GNU parallel: 8 processes, parts 0..7.
#   one_machine.sh FOLDER
mkdir -p out
parallel --halt now,fail=1 voxmill -macro=smooth_folder.macro -parallel.part={} -parallel.total=8 +exitcode "$1" ::: $(seq 0 7)
