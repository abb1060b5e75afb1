# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The System tab, compared with what system tools report, and on machines of other kinds."""

import re
import subprocess
import time
from pathlib import Path

import pytest

from harness import fake_machine, proc_reader
from harness.processes import wait_until
from harness.programs import Tarn
from harness.shared_desktop import SharedDesktop, assert_figure
from harness.stage import WORK
from harness.sweeps import SWEEP_THREAD
from harness.texts import BYTES, uptime_text
from harness.virtual_desktop import VirtualDesktop

pytestmark = pytest.mark.desktop

HEADER = "A few things worth knowing."
FOOTNOTE = ("All read locally with no special privileges. Temperature falls back to the system's own reading when no "
            "sensor is available.")
MEASURED = "sensor average, approximate"
EXTRAS = re.compile(r'"/sys/class/(power_supply|hwmon|thermal)|statfs\("/"')


def facts_shown(content):
    return content.tab == "System" and "Uptime" in content.texts


def show_facts(popover):
    """Selects the System tab and waits until it shows values."""
    popover.choose_tab("System")
    return popover.wait_for(facts_shown, "the System tab shows values")


def volume_name():
    """The label of the root file system, else the name of the operating system."""
    label = subprocess.run(["findmnt", "-no", "LABEL", "/"], stdout=subprocess.PIPE, text=True, check=False).stdout
    lines = Path("/etc/os-release").read_text("utf-8").splitlines()
    release = dict(line.split("=", 1) for line in lines if "=" in line)
    return label.strip() or release["NAME"].strip('"')


class TestThisMachine(SharedDesktop):
    """On the machine that runs the tests."""

    def test_storage_agrees_with_df(self):
        texts = show_facts(self.popover).texts
        answer = subprocess.run(["df", "--block-size=1", "--output=size,avail", "/"], check=True,
                                stdout=subprocess.PIPE, text=True).stdout
        total, available = map(int, answer.splitlines()[1].split())
        assert texts[texts.index(HEADER) + 1] == "Storage", texts
        free = next(match for text in texts if (match := re.fullmatch(rf"({BYTES}) free", text)))
        size = next(match for text in texts if (match := re.fullmatch(rf"of ({BYTES}) · (.+)", text)))
        assert_figure(free[1], available, available)
        assert_figure(size[1], total, total, share=0)
        assert size[2] == volume_name()

    def test_uptime_agrees_with_the_monotonic_clock(self):
        before = time.monotonic() - 5  # the values may be as old as that
        texts = show_facts(self.popover).texts
        shown = texts[texts.index("Uptime") + 1]
        assert shown in {uptime_text(before), uptime_text(time.monotonic())}

    def test_the_tab_has_a_header_and_a_footnote(self):
        texts = show_facts(self.popover).texts
        assert HEADER in texts
        assert FOOTNOTE in texts
        assert "Temperature" in texts


def hardware_threads(log):
    """The ids of the threads that opened files of the hardware, in a trace by strace."""
    return {int(line.split()[0]) for line in log.read_text().splitlines() if EXTRAS.search(line)}


def sweeps_after_closing(log, count):
    """Whether memory was read again after the `count`th call of statfs."""
    rest = log.read_text().split("statfs")[count]
    return rest.count('"/proc/swaps"') >= 2


@pytest.mark.long
def test_hardware_is_read_on_the_sweep_thread_and_only_while_the_popover_is_open():
    log = WORK / "calls.log"
    trace = ("/usr/bin/strace", "-D", "-f", "-qq", "-e", "trace=openat,statfs", "-o", log)
    with VirtualDesktop() as desktop:
        # LeakSanitizer does not work in a traced process.
        tarn = Tarn(desktop, trace, {"ASAN_OPTIONS": "detect_leaks=0"})
        sampler = wait_until(lambda: proc_reader.thread_named(tarn.pid, SWEEP_THREAD), "the sweep thread runs")
        wait_until(lambda: '"/proc/swaps"' in log.read_text(), "the first sweep ends")
        assert hardware_threads(log) == set()
        show_facts(tarn.popover)
        assert hardware_threads(log) == {sampler}
        desktop.press_key("Escape")
        tarn.popover.wait_until_closed()
        time.sleep(1)  # a sweep that was running ends
        count = log.read_text().count("statfs")
        wait_until(lambda: sweeps_after_closing(log, count), "a sweep comes while it is closed", timeout=45)
        assert log.read_text().count("statfs") == count


class TestOtherMachines:
    """Tarn with files of other machines in the place of /sys/class."""

    @pytest.fixture(scope="class")
    def desktop(self):
        with VirtualDesktop() as desktop:
            yield desktop

    @pytest.fixture(autouse=True)
    def processes_end(self, desktop):
        self.desktop = desktop
        self.started = []
        yield
        for tarn in self.started:
            tarn.process.kill()
            tarn.process.wait()

    def start(self, machine):
        return self.start_with(fake_machine.lay_out(machine))

    def start_with(self, classes):
        """Starts a Tarn that finds the folder `classes` as /sys/class. Returns its popover."""
        self.started.append(Tarn(self.desktop, fake_machine.with_classes(classes)))
        return self.started[-1].popover

    def facts(self, popover):
        """The texts between storage and uptime."""
        texts = show_facts(popover).texts
        assert "Storage" in texts
        first = min(texts.index(label) for label in ("Battery", "Temperature") if label in texts)
        return texts[first:texts.index("Uptime")]

    def test_a_charging_laptop(self):
        popover = self.start("laptop-charging")
        assert self.facts(popover) == ["Battery", "87 cycles · 95% health", "40% charging",
                                       "Temperature", MEASURED, "51 °C"]
        assert popover.choose_tab("CPU").text_matching(r".* cores in use · Running cool") is not None

    def test_a_laptop_with_two_batteries(self):
        assert self.facts(self.start("laptop-two-packs")) == ["Battery", "471 cycles · 74% health", "50% charging",
                                                              "Temperature", MEASURED, "51 °C"]

    def test_a_laptop_with_a_low_battery(self):
        assert self.facts(self.start("laptop-low")) == ["Battery", "641 cycles · 78% health", "12%",
                                                        "Temperature", MEASURED, "38 °C"]

    def test_a_desktop_machine_has_no_battery(self):
        popover = self.start("desktop")
        assert self.facts(popover) == ["Temperature", MEASURED, "42 °C"]
        assert "Battery" not in popover.read().texts

    def test_a_hot_laptop_without_sensors(self):
        popover = self.start("laptop-hot")
        assert self.facts(popover) == ["Battery", "140 cycles · 95% health", "100%", "Temperature",
                                       "Running hot"]
        assert popover.choose_tab("CPU").text_matching(r".* cores in use · Running hot") is not None

    def test_a_battery_is_removed_and_inserted_while_the_popover_is_open(self):
        classes = fake_machine.lay_out("laptop-low")
        popover = self.start_with(classes)
        show_facts(popover)
        (classes / "power_supply/BAT0").rename(classes.parent / "BAT0")
        popover.wait_for(lambda content: "Battery" not in content.texts, "the battery's row goes", timeout=8)
        (classes.parent / "BAT0").rename(classes / "power_supply/BAT0")
        popover.wait_for(lambda content: "12%" in content.texts, "the battery's row is back", timeout=8)
