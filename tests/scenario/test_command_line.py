"""Whole calibrations between controllers and files."""
import json
import os
import pathlib
import re
import signal

from programs import PATIENCE, Scenario


class Transfers(Scenario):
    def test_a_calibration_moved_to_an_empty_controller_differs_in_the_boost_gains_alone(self):
        first, second = self.controller(), self.controller()
        self.cli("download", "first.set", "--device", first)
        text = self.read("first.set").decode()
        self.assertEqual(text.count("\r\n"), 2126)
        self.write("empty.set", re.sub(r"=( *)-?\d+\r\n", r"=\g<1>0\r\n", text))
        self.cli("upload", "empty.set", "--yes", "--device", second)
        out, _ = self.cli("--json", "diff", "empty.set", "controller", "--device", second)
        self.assertTrue(json.loads(out)["same"])
        self.cli("--device", second, "upload", "--yes", "first.set")
        self.cli("download", "second.set", "--device", second)
        out, _ = self.cli("--json", "diff", "first.set", "second.set", status=1)
        found = json.loads(out)
        self.assertEqual({value["key"] for value in found["changed"]}, {"BO_P"})
        self.assertEqual({value["b"]["raw"] for value in found["changed"]}, {0})
        self.assertEqual((found["missing"], found["unknown"]), ([], []))

    def test_lost_and_corrupted_replies_leave_no_mark_in_the_file(self):
        self.cli("download", "clean.set", "--device", self.controller())
        self.cli("download", "noisy.set", "--device", self.controller("--faults", "lost=0.01,corrupted=0.01"))
        self.assertEqual(self.read("clean.set"), self.read("noisy.set"))

    def test_a_pulled_plug_leaves_the_older_file_and_says_so_in_one_line(self):
        self.write("engine.set", "an older calibration")
        device = self.controller("--faults", "unplug-after=700")
        _, error = self.cli("download", "engine.set", "--device", device, status=3)
        self.assertIn(device, error)
        self.assertEqual([path.name for path in self.folder.iterdir()], ["engine.set"])
        self.assertEqual(self.read("engine.set"), b"an older calibration")

    def test_another_controller_behind_the_lost_port_ends_a_download_and_an_upload(self):
        self.cli("download", "whole.set", "--device", self.controller())
        self.write("engine.set", "an older calibration")
        for number, verb in enumerate((("download", "engine.set"), ("upload", "whole.set", "--yes"))):
            link = str(self.folder / f"port{number}")
            self.controller("--link", link, "--faults", "unplug-after=700,replug-as=55")
            _, error = self.cli(*verb, "--device", link, status=3)
            self.assertIn("the port was lost", error)
        self.assertEqual(self.read("engine.set"), b"an older calibration")

    def test_a_killed_download_leaves_a_part_that_the_next_one_clears_away(self):
        process = self.start("download", "engine.set", "--device", self.controller("--pace", "38400"))
        self.wait_for(lambda: list(self.folder.iterdir()), "the growing file")
        process.kill()
        process.communicate(timeout=PATIENCE)
        self.assertEqual(len(list(self.folder.iterdir())), 1)
        self.cli("download", "other.set", "--device", self.controller())
        self.assertEqual([path.name for path in self.folder.iterdir()], ["other.set"])

    def test_values_that_are_no_numbers_are_not_sent_and_a_cut_file_is_told(self):
        device = self.controller()
        for value in ("nan", "0x10", "", "1e400", "9" * 400):
            self.write("odd.set", f"MAPM[007]=12\r\nACC_SEN = {value}\r\n")
            out, _ = self.cli("check", "odd.set", status=1)
            self.assertIn("odd.set:2: ACC_SEN", out)
            _, error = self.cli("upload", "odd.set", "--yes", "--device", device, status=4)
            self.assertIn("odd.set:2: ACC_SEN", error)
        self.write("cut.set", "MAPM[007]=12\r\nMAPM[008]=1")
        self.assertIn("cut short", self.cli("check", "cut.set")[0])
        self.assertIn("is it whole", self.cli("upload", "cut.set", "--yes", "--device", device)[0])

    def test_control_characters_of_a_file_reach_no_terminal_and_cut_no_message(self):
        self.write("odd.set", "AB\x1b]0;x\x07CD= 1\r\nA\0B\r\n")
        for line in (self.cli("check", "odd.set", status=1)[0] +
                     self.cli("upload", "odd.set", "--yes", "--device", self.controller(), status=4)[1]).splitlines():
            self.assertTrue(line.isprintable(), line)
            self.assertTrue("ends before column 11" in line or "A\\x00B" not in line, line)

    def test_the_end_of_its_terminal_in_a_download_leaves_no_part_of_a_file(self):
        process = self.start("download", "engine.set", "--device", self.controller("--pace", "38400"))
        self.wait_for(lambda: list(self.folder.iterdir()), "the growing file")
        process.send_signal(signal.SIGHUP)
        process.communicate(timeout=PATIENCE)
        self.assertEqual(process.returncode, 130)
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_an_upload_asks_first_and_takes_no_for_an_answer(self):
        device = self.controller()
        self.write("one.set", "MAPM[007]=12\r\n")
        _, error = self.cli("upload", "one.set", "--device", device, status=2)
        self.assertIn("--yes", error)
        for answer, status, changed in ((b"n\n", 1, 1), (None, 130, 1), (b"y\n", 0, 0)):
            keyboard, terminal = os.openpty()
            process = self.start("--json", "upload", "one.set", "--device", device, stdin=terminal)
            while process.stderr.read(1) != "]":
                pass
            if answer:
                os.write(keyboard, answer)
            else:
                state = pathlib.Path(f"/proc/{process.pid}/stat")
                self.wait_for(lambda: state.read_text().rsplit(")")[-1].split()[0] == "S", "its wait for an answer")
                process.send_signal(signal.SIGINT)
            process.communicate(timeout=PATIENCE)
            self.assertEqual(process.returncode, status)
            os.close(keyboard)
            os.close(terminal)
            out, _ = self.cli("--json", "diff", "one.set", "controller", "--device", device, status=1)
            self.assertEqual(len(json.loads(out)["changed"]), changed)

    def test_a_line_that_fits_no_message_is_named_before_anything_is_sent(self):
        device = self.controller()
        self.write("bad.set", "MAPM[007]=12\r\nMAPM[008]=256\r\n")
        _, error = self.cli("upload", "bad.set", "--yes", "--device", device, status=4)
        self.assertIn("bad.set:2: MAPM[008]: 256", error)
        self.write("one.set", "MAPM[007]=12\r\n")
        out, _ = self.cli("--json", "diff", "one.set", "controller", "--device", device, status=1)
        self.assertEqual(len(json.loads(out)["changed"]), 1)


class History(Scenario):
    def test_what_differs_from_a_restore_point_is_sent_alone_and_journaled(self):
        device = self.controller()
        self.cli("restore-point", "make", "--note", "first", "--device", device)
        self.cli("restore-point", "save", "1", "first.set")
        self.write("edited.set", re.sub(r"(MAPM\[00[37]\]=)\d+", r"\g<1>99", self.read("first.set").decode()))
        self.assertIn("2 values differ", self.cli("compare", "@1", "edited.set", status=1)[0])
        edited = ("send-changes", "edited.set", "--device", device)
        out, _ = self.cli(*edited, "--preview", "--json", status=1)
        self.assertEqual([line["state"] for line in json.loads(out)["differences"]], ["not sent"] * 2)
        self.cli(*edited, status=2)  # nobody can be asked
        self.cli(*edited, "--yes", "--only", "MAPM[003]")
        self.assertIn("1 value differs", self.cli("compare", "@1", "controller", "--device", device, status=1)[0])
        self.cli("send-changes", "@1", "--yes", "--device", device)
        self.cli("send-changes", "@1", "--yes", "--device", device)  # nothing differs any more
        self.assertIn("The same", self.cli("compare", "@1", "controller", "--device", device)[0])
        rows = [json.loads(line) for line in self.cli("journal", "--json")[0].splitlines()]
        self.assertEqual([(row["key"], row["index"], row["new"]["raw"], row["taken"]) for row in rows],
                         [("MAPM", 3, 99, True), ("MAPM", 3, rows[0]["old"]["raw"], True)])
        self.assertEqual(rows[0]["place"], "ecu-cli send-changes edited.set")
        self.cli("compare", "@2", "edited.set", status=4)
        self.cli("restore-point", "remove", "2", status=4)

    def test_a_lost_link_ends_the_sending_and_the_same_command_goes_on_from_there(self):
        first = self.controller()
        self.cli("download", "first.set", "--device", first)
        self.write("edited.set", re.sub(r"(IGN3\[\d+\]=)\d+", r"\g<1>99", self.read("first.set").decode()))
        link = str(self.folder / "port")
        for seed in (1000, 2100):  # replies until the plug is pulled, and then another controller sits there
            self.controller("--link", link, "--faults", f"unplug-after={seed},replug-as=55")
            _, error = self.cli("send-changes", "edited.set", "--yes", "--device", link, status=3)
        self.assertIn("the port was lost", error)
        self.cli("send-changes", "edited.set", "--yes", "--device", first)


class Live(Scenario):
    def test_info_monitor_and_log_show_the_running_engine(self):
        device = self.controller("--engine", "idle")
        out, _ = self.cli("--json", "info", "--device", device)
        self.assertEqual(json.loads(out)["firmware"], "V1.02.00")
        out, _ = self.cli("monitor", "--json", "--count", "3", "--interval", "1", "--device", device)
        samples = [json.loads(line) for line in out.splitlines()]
        self.assertEqual(len(samples), 3)
        self.assertGreater(samples[-1]["battery_volts"], 10)
        self.cli("log", "run.csv", "--interval", "1", "--rows", "40", "--device", device)
        lines = self.read("run.csv").split(b"\r\n")
        self.assertEqual(len(lines), 4 + 40 + 1)
        self.assertEqual({line.count(b",") for line in lines[4:-1]}, {36})

    def test_a_killed_log_keeps_its_rows_whole(self):
        process = self.start("log", "run.csv", "--interval", "1", "--device", self.controller())
        log = self.folder / "run.csv"
        self.wait_for(lambda: log.exists() and log.read_bytes().count(b"\r\n") > 20, "a log of 16 rows")
        process.send_signal(signal.SIGKILL)
        process.communicate(timeout=PATIENCE)
        self.assertTrue(log.read_bytes().endswith(b"\r\n"))

    def test_a_monitor_whose_reader_goes_away_ends(self):
        process = self.start("monitor", "--interval", "1", "--device", self.controller())
        process.stdout.readline()
        process.stdout.close()
        process.stderr.close()
        process.wait(timeout=PATIENCE)


class Failures(Scenario):
    def test_every_kind_of_failure_has_its_status_and_one_line_that_says_what_to_do(self):
        for arguments in ([], ["info"], ["info", "--port", "11"], ["upload"], ["monitor", "--interval", "x"],
                          ["diff", "controller", "controller"], ["download", "", "--port", "1"], ["info", "--port", "1", "--remote", "127.0.0.1"]):
            self.cli(*arguments, status=2)
        _, error = self.cli("info", "--device", "/dev/no-such-device", status=3)
        self.assertIn("/dev/no-such-device", error)
        self.cli("info", "--device", self.controller("--faults", "silent"), status=3)
        self.cli("check", "missing.set", status=4)
        self.cli("diff", "missing.set", "missing.set", status=4)
        _, error = self.cli("download", "gone/engine.set", "--device", self.controller(), status=4)
        self.assertIn("gone/engine.set", error)
        _, error = self.cli("log", "gone/run.csv", "--rows", "1", "--device", self.controller(), status=4)
        self.assertIn("gone/run.csv", error)

    def test_the_port_of_the_working_folder_is_used_when_none_is_named(self):
        self.write("port.cfg", "3\r\n")
        process = self.start("info", env={**os.environ, "ECU_PORT_3": self.controller()})
        out, _ = process.communicate(timeout=PATIENCE)
        self.assertEqual(process.returncode, 0)
        self.assertIn("port 3", out)

    def test_check_names_the_lines_it_finds(self):
        self.write("odd.set", "SET_REV = 10000\r\nACC_RATE= 0\r\nSUPM[003]=5\r\n")
        out, _ = self.cli("check", "odd.set", status=1)
        self.assertIn("odd.set:2: ACC_RATE", out)
        self.assertIn("odd.set:3: SUPM[003]", out)
