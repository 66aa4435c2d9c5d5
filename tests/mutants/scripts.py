# SPDX-License-Identifier: MIT
"""The scripts that drive the program from outside: they reach what no test program does, such as the main
program of the desktop. They are those that ctest knows under these labels."""
import json
import pathlib
import subprocess

LABELS = ("packages", "accessibility", "wayland")
SCRIPTS = "scripts"  # stands for all of them, as if they were one test program
TARGETS = ("quill", "quill_demo_host")
NOT_POSSIBLE = 77  # the exit code of a script on a machine that lacks something


def commands(folder):
    """name: command."""
    listed = subprocess.run(["ctest", "--show-only=json-v1"], cwd=folder, capture_output=True, text=True, check=True)
    found = {}
    for test in json.loads(listed.stdout)["tests"]:
        labels = [label for p in test["properties"] if p["name"] == "LABELS" for label in p["value"]]
        command = test.get("command", [""])
        if set(labels) & set(LABELS) and command[0].endswith(".sh"):
            found[test["name"]] = command
    return found


def with_own_folder(command, build, folder):
    """The command with the run's own folder in place of one of the build that it writes to."""
    return [folder if pathlib.Path(word).is_dir() and word.startswith(str(build)) else word for word in command]
