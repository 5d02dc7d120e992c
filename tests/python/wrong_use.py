"""Each of these lines is an error that mypy sees: the comment has its code."""

import dravo

pair = dravo.read(4)  # [arg-type]
pair = dravo.read("dimer.xyz", split=6.5)  # [arg-type]
pair = dravo.read("dimer.xyz", splt=6)  # [call-arg]
dravo.Pair(["He"], None, split="auto", check=False).identfy()  # [attr-defined]
placer = dravo.Placer("dimer.xyz")  # [arg-type]
placer.positions([[4, 90, 0, 0, 30, 0]], threads="all")  # [arg-type]
placer.placed_pair(r=[4])  # [arg-type]
placer.survey((4, 90)).contact  # [arg-type, attr-defined]
length: int = dravo.random(10, r=4)[0].r  # [assignment]
dravo.random("10", r=4)  # [arg-type]
dravo.scan(placer, [], contacts=True)  # [arg-type]
word: str = dravo.energies(pair, []).energy  # [assignment]
dravo.dock(pair, starts="many")  # [arg-type]
dravo.Method("command", charges=0)  # [arg-type]
dravo.identify_many("a.xyz", split=6, threads=None)  # [arg-type]
