# Counts the instructions of calls, for gdb: how many a call takes from its first one to its return, over
# calls in the middle of a row. script/instructions runs it. Stepping knows every instruction set.
import os

import gdb

FUNCTION = os.environ["VELNLS_COUNT"]
SKIPPED = int(os.environ.get("VELNLS_SKIP", "150000"))  # what a row checks before it takes the time
CALLS = int(os.environ.get("VELNLS_CALLS", "60"))


def register(name):
    return int(gdb.parse_and_eval("(unsigned long)$" + name))


def count_to_return():
    stack = register("sp")
    to = int(gdb.parse_and_eval("*(unsigned long *)$sp"))
    steps = 0
    while True:
        gdb.execute("stepi", to_string=True)
        steps += 1
        if register("pc") == to and register("sp") > stack:
            return steps


gdb.execute("set confirm off")
gdb.execute("break main", to_string=True)
gdb.execute("run", to_string=True)
# At the very first instruction, where the place to return to lies on top of the stack.
gdb.execute("break *" + FUNCTION, to_string=True)
gdb.breakpoints()[-1].ignore_count = SKIPPED
counts = []
try:
    for _ in range(CALLS):
        gdb.execute("continue", to_string=True)
        counts.append(count_to_return())
except gdb.error:
    print("%s: the row ended after %d of %d calls" % (FUNCTION, SKIPPED + len(counts), SKIPPED + CALLS))
    gdb.execute("quit 1")
counts.sort()
print("%s: %.0f instructions a call on average, %d to %d, over %d calls"
      % (FUNCTION, sum(counts) / len(counts), counts[0], counts[-1], len(counts)))
gdb.execute("kill", to_string=True)
