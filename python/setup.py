"""Builds the package with the libraries that it needs inside: ``pip install --no-build-isolation ./python``."""

import pathlib
import re

from skbuild import setup

here = pathlib.Path(__file__).resolve().parent
root = here.parent
version = re.search(r"project\(esttform VERSION ([0-9.]+)", (root / "CMakeLists.txt").read_text())[1]

setup(
    name="esttform",
    version=version,
    description="Robust estimation of 2-D transformations from matched points",
    python_requires=">=3.9",
    install_requires=["numpy"],
    extras_require={"dask": ["dask", "distributed", "pandas"], "plot": ["matplotlib"], "skimage": ["scikit-image"]},
    packages=["esttform"],
    package_data={"esttform": ["py.typed", "*.pyi"]},
    cmake_source_dir="..",
    cmake_args=["-DESTTFORM_BUILD_TESTS=OFF", "-DESTTFORM_INSTALL=OFF", "-DCMAKE_BUILD_TYPE=Release"],
    cmake_install_target="install_wheel",
    zip_safe=False,
)
