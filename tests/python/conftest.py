"""Each test runs in a directory of its own, with a copy of the sample file."""

import os
import pathlib
import shutil

import pytest


@pytest.fixture(autouse=True)
def directory(tmp_path, monkeypatch):
    shutil.copy(os.environ["SAMPLE"], tmp_path / "zebslapd.conf")
    monkeypatch.chdir(tmp_path)
    return pathlib.Path(".")
