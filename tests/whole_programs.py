#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the GoogleTest programs of a build with a few processes for each program, not one for each test.

Usage: whole_programs.py BUILD JOBS LEFT [CTEST OPTIONS...]
The options choose the tests. A process that counts what it runs takes longer to start and to end than most
tests take. LEFT gets a regular expression for the tests that ctest has to run: those of no such program, and
those that failed here or did not end. The last line printed: how many passed, how many were skipped.
"""
import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml

FILTER = "--gtest_filter="
MOST_TESTS = 120  # of a process
MOST_SECONDS = 1800


def all_tests(build, options):
    out = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1", *options], check=True,
                         capture_output=True, text=True).stdout
    return json.loads(out)["tests"]


def property_of(test, name, default):
    return next((each["value"] for each in test.get("properties", []) if each["name"] == name), default)


def groups_of(tests):
    """[(program, environment, folder, {name in the program: name for ctest})]"""
    groups = {}
    for test in tests:
        command = test.get("command", [])
        if len(command) > 1 and command[1].startswith(FILTER):
            key = (command[0], tuple(property_of(test, "ENVIRONMENT", [])),
                   property_of(test, "WORKING_DIRECTORY", "."))
            groups.setdefault(key, {})[command[1][len(FILTER):]] = test["name"]
    for key, names in groups.items():
        rows = list(names.items())
        for at in range(0, len(rows), MOST_TESTS):
            yield *key, dict(rows[at:at + MOST_TESTS])


def run(program, environment, folder, names):
    """The names for ctest of the tests that passed, and of those that were skipped."""
    with tempfile.TemporaryDirectory() as own:
        flags, report = pathlib.Path(own, "flags"), pathlib.Path(own, "report.xml")
        flags.write_text(f"{FILTER}{':'.join(names)}\n--gtest_output=xml:{report}\n")
        with open(os.devnull, "wb") as nowhere:
            try:
                subprocess.run([program, f"--gtest_flagfile={flags}"], cwd=folder, stdout=nowhere, stderr=nowhere,
                               stdin=subprocess.DEVNULL, timeout=MOST_SECONDS,
                               env=os.environ | dict(row.split("=", 1) for row in environment))
            except subprocess.TimeoutExpired:
                pass
        passed, skipped = set(), set()
        cases = xml.parse(report).iter("testcase") if report.exists() else []
        for case in cases:
            name = names.get(f"{case.get('classname')}.{case.get('name')}")
            if name and case.find("failure") is None and case.get("status") == "run":
                (passed if case.find("skipped") is None else skipped).add(name)
        return passed, skipped


def main():
    build, jobs, left, *options = sys.argv[1:]
    tests = all_tests(build, options)
    with concurrent.futures.ThreadPoolExecutor(int(jobs)) as pool:
        results = list(pool.map(lambda group: run(*group), groups_of(tests)))
    passed = set().union(*(result[0] for result in results))
    skipped = set().union(*(result[1] for result in results))
    rest = [test["name"] for test in tests if test["name"] not in passed | skipped]
    escaped = [re.sub(r"([^\w /#=,-])", r"\\\1", name) for name in rest]
    pathlib.Path(left).write_text(f"^({'|'.join(escaped)})$")
    for name in sorted(skipped):
        print(f"    skipped: {name}")
    print(len(passed), len(skipped))


if __name__ == "__main__":
    main()
