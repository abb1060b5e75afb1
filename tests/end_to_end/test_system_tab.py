# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The System tab, compared with the output of system tools, and with the sysfs files of other machines."""

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
SENSOR_NOTE = "sensor average, approximate"
HARDWARE_CALL = re.compile(r'"/sys/class/(power_supply|hwmon|thermal)|statfs\("/"')


def shows_values(content):
    return content.tab == "System" and "Uptime" in content.texts


def open_system_tab(popover):
    """Selects the System tab and waits until it shows values."""
    popover.choose_tab("System")
    return popover.wait_for(shows_values, "the System tab shows values")


def volume_name():
    """The label of the root file system, else the name of the operating system."""
    label = subprocess.run(["findmnt", "-no", "LABEL", "/"], stdout=subprocess.PIPE, text=True, check=False).stdout
    lines = Path("/etc/os-release").read_text("utf-8").splitlines()
    release = dict(line.split("=", 1) for line in lines if "=" in line)
    return label.strip() or release["NAME"].strip('"')


class TestThisMachine(SharedDesktop):
    """Tests of the figures of the machine that runs the tests."""

    def test_storage_agrees_with_df(self):
        texts = open_system_tab(self.popover).texts
        output = subprocess.run(["df", "--block-size=1", "--output=size,avail", "/"], check=True,
                                stdout=subprocess.PIPE, text=True).stdout
        total, available = map(int, output.splitlines()[1].split())
        assert texts[texts.index(HEADER) + 1] == "Storage", texts
        free = next(match for text in texts if (match := re.fullmatch(rf"({BYTES}) free", text)))
        size = next(match for text in texts if (match := re.fullmatch(rf"of ({BYTES}) · (.+)", text)))
        assert_figure(free[1], available, available)
        assert_figure(size[1], total, total, share=0)
        assert size[2] == volume_name()

    def test_uptime_agrees_with_the_monotonic_clock(self):
        before = time.monotonic() - 5  # the values may be 5 s old
        texts = open_system_tab(self.popover).texts
        shown = texts[texts.index("Uptime") + 1]
        assert shown in {uptime_text(before), uptime_text(time.monotonic())}

    def test_the_tab_has_a_header_and_a_footnote(self):
        texts = open_system_tab(self.popover).texts
        assert HEADER in texts
        assert FOOTNOTE in texts
        assert "Temperature" in texts


def hardware_threads(log):
    """The ids of the threads that read hardware files, according to a log of strace."""
    return {int(line.split()[0]) for line in log.read_text().splitlines() if HARDWARE_CALL.search(line)}


def sweeps_after_closing(log, count):
    """Whether two sweeps read memory after the `count`th call of statfs."""
    later = log.read_text().split("statfs")[count]
    return later.count('"/proc/swaps"') >= 2


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
        open_system_tab(tarn.popover)
        assert hardware_threads(log) == {sampler}
        desktop.press_key("Escape")
        tarn.popover.wait_until_closed()
        time.sleep(1)  # a running sweep ends
        count = log.read_text().count("statfs")
        wait_until(lambda: sweeps_after_closing(log, count), "a sweep runs while the popover is closed", timeout=45)
        assert log.read_text().count("statfs") == count


class TestOtherMachines:
    """Tarn with the files of another machine mounted at /sys/class."""

    @pytest.fixture(scope="class")
    def desktop(self):
        with VirtualDesktop() as desktop:
            yield desktop

    @pytest.fixture(autouse=True)
    def kill_started(self, desktop):
        self.desktop = desktop
        self.started = []
        yield
        for tarn in self.started:
            tarn.process.kill()
            tarn.process.wait()

    def start(self, machine):
        return self.start_with(fake_machine.write_files(machine))

    def start_with(self, classes):
        """Starts a Tarn whose /sys/class is the folder `classes`. Returns its popover."""
        self.started.append(Tarn(self.desktop, fake_machine.with_classes(classes)))
        return self.started[-1].popover

    def hardware_texts(self, popover):
        """The texts between storage and uptime."""
        texts = open_system_tab(popover).texts
        assert "Storage" in texts
        first = min(texts.index(label) for label in ("Battery", "Temperature") if label in texts)
        return texts[first:texts.index("Uptime")]

    def test_a_charging_laptop(self):
        popover = self.start("laptop-charging")
        assert self.hardware_texts(popover) == [
            "Battery", "87 cycles · 95% health", "40% charging", "Temperature", SENSOR_NOTE, "51 °C"]
        assert popover.choose_tab("CPU").text_matching(r".* cores in use · Running cool") is not None

    def test_a_laptop_with_two_batteries(self):
        assert self.hardware_texts(self.start("laptop-two-packs")) == [
            "Battery", "471 cycles · 74% health", "50% charging", "Temperature", SENSOR_NOTE, "51 °C"]

    def test_a_laptop_with_a_low_battery(self):
        assert self.hardware_texts(self.start("laptop-low")) == [
            "Battery", "641 cycles · 78% health", "12%", "Temperature", SENSOR_NOTE, "38 °C"]

    def test_a_desktop_machine_has_no_battery(self):
        popover = self.start("desktop")
        assert self.hardware_texts(popover) == ["Temperature", SENSOR_NOTE, "42 °C"]
        assert "Battery" not in popover.read().texts

    def test_a_hot_laptop_without_sensors(self):
        popover = self.start("laptop-hot")
        assert self.hardware_texts(popover) == [
            "Battery", "140 cycles · 95% health", "100%", "Temperature", "Running hot"]
        assert popover.choose_tab("CPU").text_matching(r".* cores in use · Running hot") is not None

    def test_a_battery_is_removed_and_inserted_while_the_popover_is_open(self):
        classes = fake_machine.write_files("laptop-low")
        popover = self.start_with(classes)
        open_system_tab(popover)
        (classes / "power_supply/BAT0").rename(classes.parent / "BAT0")
        popover.wait_for(lambda content: "Battery" not in content.texts, "the battery's row disappears", timeout=8)
        (classes.parent / "BAT0").rename(classes / "power_supply/BAT0")
        popover.wait_for(lambda content: "12%" in content.texts, "the battery's row appears again", timeout=8)
