"""What pyproject.toml cannot say: the extension that cffi generates."""

from setuptools import setup

setup(cffi_modules=["zebldapcfg/_build.py:ffibuilder"])
