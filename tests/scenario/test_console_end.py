"""How the console with its windows ends when it is told to from outside."""
import os
import pathlib
import signal
import subprocess

from programs import BIN, PATIENCE, Scenario

SESSION = pathlib.Path(__file__).resolve().parents[2] / "packaging" / "session"


class ConsoleEnd(Scenario):
    def start_console(self):
        for file in SESSION.iterdir():
            (self.folder / file.name).write_bytes(file.read_bytes())
        self.write("port.cfg", "1\r\n")
        environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "ECU_PORT_1": self.controller()}
        process = subprocess.Popen([BIN / "ecu-console"], cwd=self.folder, env=environment,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        # Its own handlers are in place once the signals are caught rather than deadly.
        self.wait_for(lambda: self.catches(process.pid, signal.SIGTERM), "the console")
        return process

    @staticmethod
    def catches(pid, number):
        with open(f"/proc/{pid}/status", encoding="ascii") as status:
            caught = next(line for line in status if line.startswith("SigCgt:"))
        return bool(int(caught.split()[1], 16) >> (number - 1) & 1)

    def test_every_polite_signal_is_the_consoles_own_exit(self):
        for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
            process = self.start_console()
            process.send_signal(signal.SIGXFSZ)
            process.send_signal(number)
            self.assertEqual(process.wait(timeout=PATIENCE), 0, number)



class FirstStart(Scenario):
    """From the desktop's menu, with the virtual engine as the remembered choice."""

    def children(self, pid):
        return [int(child) for child in pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text().split()]

    def runs(self, pid):
        try:
            return pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[0] != "Z"
        except FileNotFoundError:
            return False

    def test_the_virtual_engine_ends_with_the_console_however_that_ends(self):
        settings = self.folder / ".config/ecu-console/console.ini"
        settings.parent.mkdir(parents=True)
        settings.write_text("[welcome]\nchoice=1\n")
        environment = {name: value for name, value in os.environ.items() if not name.startswith(("ECU_PORT", "XDG_"))}
        environment |= {"HOME": str(self.folder), "QT_QPA_PLATFORM": "offscreen"}
        for number in (signal.SIGTERM, signal.SIGKILL):
            process = subprocess.Popen([BIN / "ecu-console", "--welcome"], env=environment, stderr=subprocess.DEVNULL)
            self.addCleanup(process.wait)
            self.addCleanup(process.kill)
            self.wait_for(lambda: ConsoleEnd.catches(process.pid, signal.SIGTERM), "the console")
            engine, = self.children(process.pid)
            process.send_signal(number)
            process.wait(timeout=PATIENCE)
            self.wait_for(lambda: not self.runs(engine), f"the end of the engine after {number.name}")
        self.assertTrue((self.folder / "Documents/ECU System Console/port.cfg").exists())
