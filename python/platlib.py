"""platlib.py PREFIX: prints where the Python of this prefix looks for compiled packages."""

import os
import sys
import sysconfig

prefix = os.path.abspath(sys.argv[1])
schemes = sysconfig.get_scheme_names()

if prefix == sys.prefix and sys.prefix != sys.base_prefix:
    folder = sysconfig.get_path("platlib")  # a virtual environment
elif prefix == "/usr" and "deb_system" in schemes:
    folder = sysconfig.get_path("platlib", "deb_system")
elif prefix == "/usr/local" and "posix_local" in schemes:
    folder = sysconfig.get_path("platlib", "posix_local")
else:
    folder = sysconfig.get_path(
        "platlib", "posix_prefix", {"base": prefix, "platbase": prefix}
    )
print(folder)
