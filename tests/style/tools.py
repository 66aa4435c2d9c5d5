# SPDX-License-Identifier: MIT
"""The tools of the style checks, in one fixed version, because other versions give other results."""
import re
import shutil
import subprocess
import sys

VERSION = "14"
SKIPPED = 77  # the runner counts the check as skipped


def tool(name):
    """The command of clang's tool `name` in that version; skips the check if it is missing."""
    for command in (f"{name}-{VERSION}", name):
        if shutil.which(command):
            text = subprocess.run([command, "--version"], capture_output=True, text=True).stdout
            if re.search(rf"version {VERSION}\.", text):
                return command
    print(f"{name} {VERSION} is not here")
    sys.exit(SKIPPED)
