"""What must work where nothing but the wheel is installed."""

import pathlib
import subprocess
import sys

import tqx
import tqx._tqx

log = tqx.open(tqx.simulate(duration=10))
assert log.types["PVTGeodetic2"] == 10
assert len(list(log.messages("PVTGeodetic2"))) == 10
assert "PVTGeodetic2" in repr(log)
try:
    log["PVTGeodetic2"].to_arrow()
except ImportError as error:
    assert "pyarrow" in str(error) and "tqx[arrow]" in str(error), error
else:
    raise AssertionError("pyarrow is installed")

libraries = subprocess.run(["ldd", tqx._tqx.__file__], capture_output=True, text=True, check=True)
system = {"linux-vdso.so.1", "libm.so.6", "libc.so.6", "ld-linux-x86-64.so.2", "libpthread.so.0"}
system |= {"libstdc++.so.6", "libgcc_s.so.1"}
folder = pathlib.Path(tqx._tqx.__file__).resolve().parent
for line in libraries.stdout.splitlines():
    words = line.split()
    name = words[0].split("/")[-1]
    inside = len(words) > 2 and pathlib.Path(words[2]).resolve().parent == folder
    assert name in system or inside, line
print(f"Python {sys.version.split()[0]}: the wheel needs nothing else")
