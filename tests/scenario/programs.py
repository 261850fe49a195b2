"""The programs under test: virtual controllers on pseudo-terminals, and the command line that talks to them."""
import os
import pathlib
import subprocess
import tempfile
import time
import unittest

BIN = pathlib.Path(os.environ.get("ECU_BIN", "build/bin"))
PATIENCE = 60  # seconds that anything may take before the test counts as stuck


class Scenario(unittest.TestCase):
    """Each test has a folder of its own, which is the working folder of the command line."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def controller(self, *options):
        """Starts a virtual controller; returns its device. It ends with the test.

        The device stays open here so long: the number of a controller that ended, or pulled its plug, is not given to
        a controller of another test, which the command line would then find in its place.
        """
        process = subprocess.Popen([BIN / "ecu-controller", *options], stdout=subprocess.PIPE, text=True)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.terminate)
        device = process.stdout.readline().strip()
        self.assertTrue(device.startswith("/dev/"), "the controller did not start")
        self.addCleanup(os.close, os.open(device, os.O_RDWR | os.O_NOCTTY))
        return device

    def start(self, *arguments, **kwargs):
        return subprocess.Popen([BIN / "ecu-cli", *arguments], cwd=self.folder, text=True, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, **kwargs)

    def cli(self, *arguments, status=0):
        """Runs the command line without a terminal; returns what it wrote on output and error."""
        process = self.start(*arguments, stdin=subprocess.DEVNULL)
        out, error = process.communicate(timeout=PATIENCE)
        self.assertEqual(process.returncode, status, f"{arguments}: {out}{error}")
        self.assertEqual(len(error.splitlines()), 0 if status in (0, 1) else 1, error)
        return out, error

    def write(self, name, text):
        (self.folder / name).write_bytes(text.encode())

    def read(self, name):
        return (self.folder / name).read_bytes()

    def wait_for(self, condition, what):
        deadline = time.monotonic() + PATIENCE
        while not condition():
            self.assertLess(time.monotonic(), deadline, f"{what} never came")
            time.sleep(0.01)
