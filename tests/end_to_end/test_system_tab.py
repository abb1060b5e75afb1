# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The System tab, against what the system's own tools say, and on machines of other kinds."""

import re
import subprocess
import time
import unittest
from pathlib import Path

import machines
import proc_reader
from desktop_test import DesktopTest
from figures import BYTES, uptime_text
from processes import wait_until
from programs import STAGE, Tarn
from sweep_watch import SWEEP_THREAD
from virtual_desktop import VirtualDesktop

HEADER = "A few things worth knowing."
FOOTNOTE = ("All read locally with no special privileges. Temperature falls back to the system's own reading when no "
            "sensor is available.")
MEASURED = "sensor average, approximate"
EXTRAS = re.compile(r'"/sys/class/(power_supply|hwmon|thermal)|statfs\("/"')


def facts_shown(content):
    return content.tab == "System" and "Uptime" in content.texts


def show_facts(popover):
    """Chooses the System tab and waits until it tells what was read."""
    popover.choose_tab("System")
    return popover.wait_for(facts_shown, "the System tab tells its facts")


def volume_name():
    """The label of the root's file system, or else the operating system's name."""
    label = subprocess.run(["findmnt", "-no", "LABEL", "/"], stdout=subprocess.PIPE, text=True, check=False).stdout
    release = dict(line.split("=", 1) for line in Path("/etc/os-release").read_text("utf-8").splitlines() if "=" in line)
    return label.strip() or release["NAME"].strip('"')


class ThisMachineTest(DesktopTest):
    def test_storage_agrees_with_df(self):
        texts = show_facts(self.popover).texts
        answer = subprocess.run(["df", "--block-size=1", "--output=size,avail", "/"], check=True,
                                stdout=subprocess.PIPE, text=True).stdout
        total, available = map(int, answer.splitlines()[1].split())
        self.assertEqual(texts[texts.index(HEADER) + 1], "Storage", texts)
        free = next(match for text in texts if (match := re.fullmatch(rf"({BYTES}) free", text)))
        size = next(match for text in texts if (match := re.fullmatch(rf"of ({BYTES}) · (.+)", text)))
        self.assert_figure(free[1], available, available)
        self.assert_figure(size[1], total, total, share=0)
        self.assertEqual(size[2], volume_name())

    def test_uptime_agrees_with_the_monotonic_clock(self):
        before = time.monotonic() - 5  # the last gathering may be as old as that
        texts = show_facts(self.popover).texts
        shown = texts[texts.index("Uptime") + 1]
        self.assertIn(shown, {uptime_text(before), uptime_text(time.monotonic())})

    def test_the_tab_says_what_it_is_about_and_where_its_facts_come_from(self):
        texts = show_facts(self.popover).texts
        self.assertIn(HEADER, texts)
        self.assertIn(FOOTNOTE, texts)
        self.assertIn("Temperature", texts)


class GatheringTest(unittest.TestCase):
    """When, and on which thread, files of the hardware are opened."""

    def test_extras_are_gathered_on_the_sweeps_thread_and_only_while_the_popover_is_open(self):
        log = STAGE / "calls.log"
        trace = ("/usr/bin/strace", "-D", "-f", "-qq", "-e", "trace=openat,statfs", "-o", log)
        with VirtualDesktop(STAGE) as desktop:
            # What looks for leaks at the end cannot do so while another program watches.
            tarn = Tarn(desktop, trace, {"ASAN_OPTIONS": "detect_leaks=0"})
            sampler = wait_until(lambda: proc_reader.thread_named(tarn.pid, SWEEP_THREAD), "the sweeps' thread runs")
            wait_until(lambda: '"/proc/swaps"' in log.read_text(), "the first sweep ends")
            self.assertEqual(self.gatherers(log), set())
            show_facts(tarn.popover)
            self.assertEqual(self.gatherers(log), {sampler})
            desktop.press_key("Escape")
            tarn.popover.wait_until_closed()
            time.sleep(1)  # one that was under way ends
            gathered = log.read_text().count("statfs")
            wait_until(lambda: self.sweeps_after_closing(log, gathered), "a sweep comes while it is closed", timeout=45)
            self.assertEqual(log.read_text().count("statfs"), gathered)

    @staticmethod
    def gatherers(log):
        """The ids of the threads that opened files of the hardware."""
        return {int(line.split()[0]) for line in log.read_text().splitlines() if EXTRAS.search(line)}

    @staticmethod
    def sweeps_after_closing(log, gathered):
        """Whether memory was read again after the last of so many gatherings."""
        rest = log.read_text().split("statfs")[gathered]
        return rest.count('"/proc/swaps"') >= 2


class OtherMachinesTest(unittest.TestCase):
    """Tarn on machines of other kinds, by files in the place of /sys/class."""

    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(VirtualDesktop(STAGE))

    def start(self, machine):
        return self.start_with(machines.build(machine))

    def start_with(self, classes):
        """The popover of a Tarn to which the folder `classes` is /sys/class."""
        tarn = Tarn(self.desktop, machines.class_wrapper(classes))
        self.addCleanup(tarn.process.wait)
        self.addCleanup(tarn.process.kill)
        return tarn.popover

    def facts(self, popover):
        """The texts between those of storage and the footnote."""
        texts = show_facts(popover).texts
        self.assertIn("Storage", texts)
        first = min(texts.index(label) for label in ("Battery", "Temperature") if label in texts)
        return texts[first:texts.index("Uptime")]

    def test_a_laptop_that_charges(self):
        popover = self.start("laptop-charging")
        self.assertEqual(self.facts(popover), ["Battery", "87 cycles · 95% health", "40% charging",
                                               "Temperature", MEASURED, "51 °C"])
        self.assertIsNotNone(popover.choose_tab("CPU").text_matching(r".* cores in use · Running cool"))

    def test_a_laptop_with_two_packs(self):
        self.assertEqual(self.facts(self.start("laptop-two-packs")),
                         ["Battery", "471 cycles · 74% health", "50% charging", "Temperature", MEASURED, "51 °C"])

    def test_a_laptop_on_its_last_energy(self):
        self.assertEqual(self.facts(self.start("laptop-low")),
                         ["Battery", "641 cycles · 78% health", "12%", "Temperature", MEASURED, "38 °C"])

    def test_a_desktop_machine_has_no_battery(self):
        popover = self.start("desktop")
        self.assertEqual(self.facts(popover), ["Temperature", MEASURED, "42 °C"])
        self.assertNotIn("Battery", popover.read().texts)

    def test_a_hot_laptop_without_sensors(self):
        popover = self.start("laptop-hot")
        self.assertEqual(self.facts(popover), ["Battery", "140 cycles · 95% health", "100%", "Temperature",
                                               "Running hot"])
        self.assertIsNotNone(popover.choose_tab("CPU").text_matching(r".* cores in use · Running hot"))

    def test_a_pack_that_comes_and_goes_while_the_popover_is_open(self):
        classes = machines.build("laptop-low")
        popover = self.start_with(classes)
        show_facts(popover)
        (classes / "power_supply/BAT0").rename(classes.parent / "BAT0")
        popover.wait_for(lambda content: "Battery" not in content.texts, "the battery's row goes", timeout=8)
        (classes.parent / "BAT0").rename(classes / "power_supply/BAT0")
        popover.wait_for(lambda content: "12%" in content.texts, "the battery's row is back", timeout=8)
