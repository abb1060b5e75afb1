# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The figures that the popover and the panel show, compared with what the kernel reports at the same time."""

import os
import re
import time
from pathlib import Path

import pytest

from harness import proc_reader
from harness.processes import wait_until
from harness.programs import BURNER, HOG, foreign_process, start_burner, start_hog
from harness.shared_desktop import SharedDesktop, assert_figure
from harness.sweeps import SweepWatch
from harness.texts import BYTES, DETAIL, MEMORY_SENTENCES, parse_bytes, parse_percent

pytestmark = pytest.mark.desktop

SWEEP_SECONDS_OPEN = 3
SETTLED_SWEEPS = 7  # exponential smoothing has covered 97 % of a step by then

CPU_SENTENCES = (
    (0.15, "Your Mac's processor is mostly idle."),
    (0.5, "Your Mac's processor is doing light work."),
    (0.85, "Your Mac's processor is working hard."),
    (float("inf"), "Your Mac's processor is running flat out."),
)
MEMORY_EXPLAINER = "Cached files are free space macOS is borrowing — it gives them back instantly."
CPU_EXPLAINER = "CPU is shown as a share of one core, like Activity Monitor — a busy app can pass 100%."
PHRASES = "Running cool|Warming up|Running hot|Overheating|Temperature unknown"


@pytest.mark.long
class TestFigures(SharedDesktop):
    """Figures of programs with a known use of memory and processor."""

    @pytest.fixture(scope="class")
    def programs(self, request, desktop):
        request.cls.hog = start_hog(desktop)
        request.cls.burner = start_burner(desktop)
        request.cls.foreign = foreign_process(desktop)
        wait_until(lambda: desktop.active_window_name() == HOG, "Hog's window has the focus")

    def hog_footprint(self):
        return sum(map(proc_reader.footprint, [self.hog.pid, *proc_reader.children(self.hog.pid)]))

    def test_an_application_shows_the_memory_that_its_processes_hold(self):
        content = self.popover.choose_tab("Memory")
        row = content.row(HOG)
        assert row is not None, content.texts
        assert_figure(row.value, self.hog_footprint(), self.hog_footprint())
        assert "2 background processes" in content.texts

    def test_a_row_opens_to_its_processes_and_closes_again(self):
        self.popover.choose_tab("Memory")
        processes = [self.hog.pid, *proc_reader.children(self.hog.pid)]
        opened = self.popover.click_row(HOG)
        assert opened.row(HOG).expanded
        assert opened.process_lines() == processes
        closed = self.popover.click_row(HOG)
        assert not closed.row(HOG).expanded
        assert closed.process_lines() == []

    def test_the_list_is_ordered_by_memory_and_ends_with_everything_else(self):
        rows = self.popover.choose_tab("Memory").rows
        assert len(rows) == 9
        values = [parse_bytes(row.value).value for row in rows[:-1]]
        assert values == sorted(values, reverse=True)
        assert rows[-1].name == "Everything else"
        assert rows[-1].expanded is None

    def test_a_process_of_another_user_shows_its_kernel_name(self):
        with pytest.raises(PermissionError):
            os.readlink(f"/proc/{self.foreign}/exe")
        command = Path(f"/proc/{self.foreign}/cmdline").read_bytes().split(b"\0")[0].decode()
        row = self.popover.choose_tab("Memory").row(Path(command).name)
        assert row is not None, command
        footprint = proc_reader.footprint(self.foreign)
        assert_figure(row.value, footprint, footprint)

    def test_a_busy_core_shows_its_share_once_smoothing_has_settled(self):
        self.popover.choose_tab("Memory")
        with SweepWatch(self.tarn.pid, self.burner.pid) as watch:
            content = self.popover.choose_tab("CPU")
            watch.wait_for_sweeps(SETTLED_SWEEPS + 1, since=0, timeout=60)
            time.sleep(1)  # the figures of the last sweep reach the screen
            content = self.popover.read()
            expected = watch.smoothed_share()
        assert expected > 5, "the load got too little processor time"
        row = content.row(BURNER)
        assert row is not None, content.rows
        assert parse_percent(row.value) == pytest.approx(expected, abs=10)

    def test_the_processor_line_and_sentence_agree(self):
        content = self.popover.choose_tab("CPU")
        line = content.text_matching(rf"([\d,]+%) of (\d+) cores in use · ({PHRASES})")
        assert line is not None, content.texts
        cores = int(line[2])
        assert cores == os.sysconf("SC_NPROCESSORS_ONLN")
        # The percentage is rounded, so the sentence of either neighbour is correct.
        loads = [(parse_percent(line[1]) + offset) / (cores * 100) for offset in (-0.5, 0.5)]
        sentences = {next(text for bound, text in CPU_SENTENCES if load < bound) for load in loads}
        assert sentences & set(content.texts), content.texts
        assert CPU_EXPLAINER in content.texts

    def test_the_memory_line_agrees_with_the_kernel(self):
        self.popover.choose_tab("Memory")
        with SweepWatch(self.tarn.pid) as watch:
            watch.wait_for_sweeps(2, since=0, timeout=20)
            time.sleep(1)
            content = self.popover.read()
            ranges = watch.memory_range(seconds=2 * SWEEP_SECONDS_OPEN)
        line = content.text_matching(DETAIL)
        assert line is not None, content.texts
        for text, (low, high) in zip(line.groups(), ranges.values()):
            assert_figure(text, low, high)
        assert MEMORY_EXPLAINER in content.texts

    def test_the_memory_sentence_fits_the_machine(self):
        content = self.popover.choose_tab("Memory")
        expected = {"swapping" if proc_reader.system_memory()["Swap"] > 0 else "normal"}
        if proc_reader.available_share() < 0.5:
            # Below this share memory pressure decides too, and it changes from second to second.
            expected |= {"warning", "critical"}
        assert {MEMORY_SENTENCES[name] for name in expected} & set(content.texts), content.texts

    def test_the_about_line_names_the_vendor_and_the_version(self):
        assert re.search(r"Made with ❤️ by \S+ · v\d+\.\d+", "".join(self.popover.open().texts))

    def test_the_circle_in_the_panel_has_the_colour_of_the_memory_state(self):
        content = self.popover.choose_tab("Memory")
        self.popover.wait_for(lambda content: content.tab == "Memory", "the memory tab shows")
        is_normal = MEMORY_SENTENCES["normal"] in content.texts

        def is_tint(colour):
            red, green, blue = colour
            return green > red + 60 and green > blue + 20 if is_normal else red > green + 60 and red > blue + 60

        assert sum(map(is_tint, self.tarn.item.colours())) > 20

    def test_the_toggle_shows_the_frontmost_footprint_at_once_and_is_remembered(self):
        content = self.popover.choose_tab("Memory")
        assert "checked" not in content.toggle.states
        assert not re.search(BYTES, self.tarn.item.title())
        self.desktop.click(content.toggle.centre())
        figure = wait_until(self._figure_in_title, "the item's title contains a figure", timeout=2)
        assert_figure(figure, self.hog_footprint(), self.hog_footprint())
        assert "checked" in self.popover.read().toggle.states
        self._assert_stored("true")
        self.desktop.click(content.toggle.centre())
        wait_until(lambda: not self._figure_in_title(), "the item's title contains no figure", timeout=2)
        self._assert_stored("false")

    def _figure_in_title(self):
        match = re.search(BYTES, self.tarn.item.title())
        return match and match[0]

    def _assert_stored(self, value):
        home = self.desktop.environment["XDG_CONFIG_HOME"]
        wait_until(lambda: self._stored(home) == value, f"the choice is stored as {value}", timeout=5)

    @staticmethod
    def _stored(home):
        for folder, _, names in os.walk(home):
            for name in names:
                with open(os.path.join(folder, name), encoding="utf-8", errors="replace") as settings:
                    for line in settings:
                        key, _, value = line.strip().partition("=")
                        if key == "showFrontmostFootprint":
                            return value
        return None


@pytest.mark.release_build
class TestFiguresOfReleaseBuild(TestFigures):
    """The same without sanitizers, which slow down what is measured."""
