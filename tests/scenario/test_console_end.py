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

