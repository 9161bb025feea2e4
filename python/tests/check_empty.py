"""What must work where nothing but the wheel is installed."""

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
names = {line.split()[0].split("/")[-1] for line in libraries.stdout.splitlines()}
system = {"linux-vdso.so.1", "libm.so.6", "libc.so.6", "ld-linux-x86-64.so.2", "libpthread.so.0"}
assert not names - system, names - system
print(f"Python {sys.version.split()[0]}: the wheel needs nothing else")
