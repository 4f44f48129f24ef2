"""qrx_host: drive a robot controller from Python (over the qrx_host library)."""
from setuptools import setup

setup(
    name="qrx_host",
    version="0.1.0",
    description="Drive a robot controller (or qrx-sim) from Python through the qrx_host library",
    packages=["qrx_host"],
    package_data={"qrx_host": ["py.typed"]},
    python_requires=">=3.9",
    zip_safe=False,
)
