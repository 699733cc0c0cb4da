"""Python's subprocess, as its documentation captures output. Speaks as measure/Measure.h says."""

import os
import subprocess
import sys
import time

CHILD = sys.argv[1]
ARGUMENTS = sys.argv[2:]
NAMES = os.environ["BENCH_ENVIRONMENT"].split(" ")
ENVIRONMENT = {name: os.environ[name] for name in NAMES if name in os.environ}
EXPECTED = b'{"ok":true,"code":"running"}\n'


def take():
    begin = time.perf_counter_ns()
    done = subprocess.run([CHILD, *ARGUMENTS], input=b"", stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, env=ENVIRONMENT, check=True)
    duration = time.perf_counter_ns() - begin
    if done.stdout != EXPECTED:
        sys.exit("subprocess failed")
    print("peer", duration)


for line in sys.stdin:
    for _ in range(int(line)):
        take()
    print("done", flush=True)
