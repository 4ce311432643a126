"""What several tests use: the tool, and PCs by name."""

import json
import os
import subprocess

import pytest

pytest_plugins = ["pytester"]

MACHINES = ["factory-mbr", "factory-gpt", "winpe-two-disks", "winpe-media"]
# What the class does not give back, as `kestova --ledger` shows.
KEPT_BY_THE_CLASS = ("IVdsAdvancedDisk", "IVdsDisk", "VDS_DISK_PROP string")


def run_tool(*words):
    """What the tool writes to standard output, an object for each line of JSON."""
    outcome = subprocess.run([os.environ["KESTOVA_TOOL"], "--json", *words], stdout=subprocess.PIPE,
                             stderr=subprocess.DEVNULL, text=True)
    return [json.loads(line) for line in outcome.stdout.splitlines()]


def table_of_operations():
    return run_tool("operations")


@pytest.fixture(params=MACHINES)
def machine(request):
    return request.param
