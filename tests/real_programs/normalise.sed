# Replaces what may differ between two runs of the same program, each with its reason. The regular
# expressions are extended ones.

# The time that unittest took.
s/^(Ran [0-9]+ tests? in )[0-9.]+s/\1TIME/
# Addresses of Python objects: the address space has another layout under the launcher.
s/ at 0x[0-9a-f]{6,}/ at ADDRESS/g
# Idents of Python threads are addresses, too.
s/(Thread[^,]*, started (daemon )?)[0-9]+/\1IDENT/g
# The number of the process in bash's message that a signal has ended it.
s/(line [0-9]+: +)[0-9]+ (Killed|Terminated)/\1PID \2/
