"""./run and scripts/install-packages where something is missing, refused or in the way."""
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

from programs import BIN, PATIENCE

TREE = pathlib.Path(__file__).resolve().parents[2]
# A machine on which only g++ is installed, and on which apt-get does what APT tells.
FAKES = {
    "dpkg-query": '[ "${@: -1}" = g++ ] && echo -n installed || exit 1',
    "id": 'if [ "$1" = -un ]; then echo tuner; else echo "${FAKE_UID:-0}"; fi',
    "sudo": 'echo "sudo: a password is required" >&2; exit 1',
    "apt-get": 'echo "$@" >>"$CALLS"; case "$APT" in '
               'offline) echo "E: Temporary failure resolving deb.debian.org" >&2; exit 100;; '
               'locked) if [ "$(wc -l <"$CALLS")" -lt 3 ]; then echo "E: Could not get lock /var/lib" >&2; exit 100; fi;; '
               'old) case "$*" in *install*) for i in $(seq 900); do echo "Hit $i"; done; '
               'echo "E: Unable to locate package libqcustomplot-dev" >&2; exit 100;; esac;; esac',
}


class OnAFreshMachine(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for name, body in FAKES.items():
            path = self.folder / "bin" / name
            path.parent.mkdir(exist_ok=True)
            path.write_text(f"#!/bin/bash\n{body}\n")
            path.chmod(0o755)

    def install(self, apt="", words=("check",), **environment):
        path = f"{self.folder / 'bin'}:{os.environ['PATH']}"
        return subprocess.run([TREE / "scripts/install-packages", *words], capture_output=True, text=True, timeout=PATIENCE,
                              stdin=subprocess.DEVNULL, env={**os.environ, "PATH": path, "APT": apt, "ECU_LOCK_WAIT": "0",
                                                             "CALLS": str(self.folder / "calls"), **environment})

    def calls(self):
        calls = self.folder / "calls"
        return calls.read_text().splitlines() if calls.exists() else []

    def test_missing_packages_are_installed_and_present_ones_left_alone(self):
        for words, wanted in ((("run",), False), (("check",), True)):
            self.assertEqual(self.install(words=words).returncode, 0)
            update, install = self.calls()[-2:]
            self.assertIn("update", update)
            self.assertIn("--no-install-recommends cmake ninja-build", install)
            self.assertNotIn("g++", install.split())
            self.assertEqual("clang-tidy" in install.split(), wanted)
        self.assertEqual(self.install(words=()).returncode, 2)

    def test_failed_installs_end_with_the_reason_and_the_command_that_works(self):
        for apt, environment, reason in (
                ("offline", {}, "cannot be reached"), ("old", {}, "lack libqcustomplot-dev"),
                ("", {"FAKE_UID": "1000"}, "sudo wants a password")):
            result = self.install(apt, **environment)
            self.assertEqual(result.returncode, 1, apt)
            lines = result.stderr.splitlines()
            self.assertEqual((len(lines), len(result.stdout.splitlines())), (2, 0 if environment else 1), result.stderr)
            self.assertEqual(len(self.calls()), {"offline": 1, "old": 3}.get(apt, 3), "nothing is asked in vain")
            self.assertIn(reason, lines[0])
            self.assertIn("apt-get update && apt-get install --no-install-recommends cmake ninja-build", lines[1])

    def test_a_held_lock_is_waited_for(self):
        result = self.install("locked")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout.count("waiting"), 1)
        self.assertEqual(len(self.calls()), 4)


def session_of(leader):
    """The processes of a session that still run."""
    found = []
    for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
        try:
            name, _, fields = stat.read_text().rpartition(")")
        except OSError:
            continue
        state, _, _, session = fields.split()[:4]
        if int(session) == leader and state != "Z":
            found.append(name)
    return found


class Run(unittest.TestCase):
    """A copy of the tree's scripts, whose cmake builds nothing, with the programs under test in its build folder."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name) / "tree"
        (self.tree / "build").mkdir(parents=True)
        (self.tree / "build/bin").symlink_to(BIN.resolve())
        shutil.copy(TREE / "run", self.tree)
        for name in ("scripts", "packaging"):
            shutil.copytree(TREE / name, self.tree / name)
        fakes = pathlib.Path(folder.name) / "bin"
        fakes.mkdir()
        for name, body in (("cmake", "true"), ("dpkg-query", "echo -n installed")):
            (fakes / name).write_text(f"#!/bin/bash\n{body}\n")
            (fakes / name).chmod(0o755)
        self.environment = {**os.environ, "PATH": f"{fakes}:{os.environ['PATH']}", "XDG_STATE_HOME": folder.name}
        for name in ("DISPLAY", "WAYLAND_DISPLAY", "ECU_PORT_3"):
            self.environment.pop(name, None)

    def run_it(self, *words, script=None, **environment):
        return subprocess.run([script or self.tree / "run", *words], capture_output=True, text=True, timeout=2 * PATIENCE,
                              env={**self.environment, **environment})

    def test_words_that_are_not_understood_are_refused_before_anything_is_done(self):
        for words in (["demo", "x"], ["--port"], ["--port", "11"], ["--port", "1", "2"], [""], ["demo", ""], ["test"]):
            self.assertEqual(self.run_it(*words).returncode, 2, words)
        self.assertFalse((self.tree / "session").exists())

    def test_a_folder_that_moved_is_named_with_the_remedy(self):
        (self.tree / "build/CMakeCache.txt").write_text("CMAKE_HOME_DIRECTORY:INTERNAL=/elsewhere/tree\n")
        result = self.run_it("demo")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(len(result.stderr.splitlines()), 1)
        self.assertIn("/elsewhere/tree", result.stderr)
        self.assertIn(f"rm -rf '{self.tree}/build'", result.stderr)

    def test_without_display_and_device_it_tells_what_failed_and_ends(self):
        link = self.tree.parent / "start"
        link.symlink_to(self.tree / "run")
        result = self.run_it("--port", "3", script=link, ECU_PORT_3="/dev/no-such-device")
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
        self.assertIn("No COM port found for COM3", result.stdout)
        self.assertIn("/dev/no-such-device", result.stdout)
        self.assertIn("the start off screen failed", result.stderr)
        self.assertTrue((self.tree / "out/frm_mon.png").exists())

    def test_a_signal_to_it_ends_all_that_it_started(self):
        for end in (signal.SIGTERM, signal.SIGHUP):
            process = subprocess.Popen([self.tree / "run"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                                       env=self.environment, start_new_session=True)
            self.addCleanup(process.stdout.close)
            self.assertIn("Virtual controller on", process.stdout.readline())
            deadline = time.monotonic() + PATIENCE
            while not (self.tree / "out").exists():
                self.assertLess(time.monotonic(), deadline)
                time.sleep(0.01)
            process.send_signal(end)
            self.assertEqual(process.wait(timeout=PATIENCE), 128 + end)
            self.assertEqual(process.stdout.read().count("pictures in"), 0)
            self.assertEqual(session_of(process.pid), [])
            shutil.rmtree(self.tree / "out")


class Words(unittest.TestCase):
    def test_help_and_version_do_what_they_say_and_nothing_else(self):
        with tempfile.TemporaryDirectory() as folder:
            environment = {name: value for name, value in os.environ.items() if name != "QT_QPA_PLATFORM"}
            for program in ("ecu-console", "ecu-controller", "ecu-tour", "ecu-cli"):
                for word in ("--help", "--version"):
                    result = subprocess.run([BIN / program, word], cwd=folder, capture_output=True, text=True,
                                            timeout=PATIENCE, env={**environment, "DISPLAY": ":987"})
                    self.assertEqual((result.returncode, result.stderr), (0, ""), (program, word))
                    self.assertIn(program, result.stdout)
            for program, words in (("ecu-console", []), ("ecu-tour", ["pictures"])):
                result = subprocess.run([BIN / program, *words], cwd=folder, capture_output=True, text=True,
                                        timeout=PATIENCE, env={**environment, "DISPLAY": ":987"})
                self.assertEqual((result.returncode, len(result.stderr.splitlines())), (1, 1), result.stderr)
                self.assertIn(":987", result.stderr)
            self.assertEqual(os.listdir(folder), [])

    def console(self, folder, environment):
        """A console that has come so far that it catches signals, which is after its log was opened."""
        process = subprocess.Popen([BIN / "ecu-console"], cwd=folder, env=environment, stderr=subprocess.DEVNULL)
        status = pathlib.Path(f"/proc/{process.pid}/status")
        deadline = time.monotonic() + PATIENCE
        while not int(status.read_text().split("SigCgt:")[1].split()[0], 16) >> (signal.SIGHUP - 1) & 1:
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.01)
        return process

    def test_what_ended_the_console_stands_in_its_log(self):
        with tempfile.TemporaryDirectory() as folder:
            shutil.copytree(TREE / "packaging/session", f"{folder}/session")
            log = pathlib.Path(folder) / "ecu-console/ecu-console.log"
            environment = {**os.environ, "XDG_STATE_HOME": folder, "QT_QPA_PLATFORM": "offscreen"}
            for end, found in ((signal.SIGTERM, "a signal asks for the end"), (signal.SIGSEGV, "end by signal SIGSEGV"),
                               (signal.SIGKILL, None), (signal.SIGHUP, "no word of an end is left by the run before")):
                process = self.console(f"{folder}/session", environment)
                process.send_signal(end)
                process.wait(timeout=PATIENCE)
                self.assertEqual(process.returncode, 0 if end in (signal.SIGTERM, signal.SIGHUP) else -end)
                self.assertIn(found or "start", log.read_text())
            self.assertEqual(log.read_text().count("no word of an end"), 1)
            log.write_text("x" * 300000)
            process = self.console(f"{folder}/session", environment)
            process.kill()
            process.wait(timeout=PATIENCE)
            self.assertLess(log.stat().st_size, 1000)
            self.assertEqual(log.with_name("ecu-console.1.log").stat().st_size, 300000)
