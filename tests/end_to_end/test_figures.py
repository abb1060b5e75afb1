# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Tarn on a real panel, used with real clicks, against what the kernel says at the same time."""

import os
import re
import tempfile
import time
import unittest
from pathlib import Path

import proc_reader
from desktop_test import DesktopTest
from figures import BYTES, parse_bytes, parse_percent
from menu_bar import MenuBarItem, status_area_centre
from processes import wait_until
from programs import BURNER, HOG, STAGE, Tarn, foreign_process, start_bare, start_burner, start_hog
from sentences import DETAIL, MEMORY_SENTENCES
from sweep_watch import SweepWatch
from virtual_desktop import SIZE, VirtualDesktop

SWEEP_SECONDS_OPEN = 3
NO_SESSION_BUS = {"DBUS_SESSION_BUS_ADDRESS": f"unix:path={STAGE}/no-bus"}
SETTLED_SWEEPS = 7  # smoothing has then covered 97 % of the way

CPU_SENTENCES = (
    (0.15, "Your Mac's processor is mostly idle."),
    (0.5, "Your Mac's processor is doing light work."),
    (0.85, "Your Mac's processor is working hard."),
    (float("inf"), "Your Mac's processor is running flat out."),
)
MEMORY_EXPLAINER = "Cached files are free space macOS is borrowing — it gives them back instantly."
CPU_EXPLAINER = "CPU is shown as a share of one core, like Activity Monitor — a busy app can pass 100%."
PHRASES = "Running cool|Warming up|Running hot|Overheating|Temperature unknown"


def end(process):
    process.kill()
    process.wait()


class FiguresTest(DesktopTest):
    """The figures of programs whose use is known."""

    @classmethod
    def start_programs(cls):
        cls.hog = start_hog(cls.desktop)
        cls.burner = start_burner(cls.desktop)
        cls.foreign = foreign_process(cls.desktop)
        wait_until(lambda: cls.desktop.active_window_name() == HOG, "Hog's window has the focus")

    def hog_footprint(self):
        return sum(map(proc_reader.footprint, [self.hog.pid, *proc_reader.children(self.hog.pid)]))

    def test_an_application_shows_the_memory_that_its_processes_hold(self):
        content = self.popover.choose_tab("Memory")
        row = content.row(HOG)
        self.assertIsNotNone(row, content.texts)
        self.assert_figure(row.value, self.hog_footprint(), self.hog_footprint())
        self.assertIn("2 background processes", content.texts)

    def test_a_row_opens_to_its_processes_and_closes_again(self):
        self.popover.choose_tab("Memory")
        processes = [self.hog.pid, *proc_reader.children(self.hog.pid)]
        opened = self.popover.click_row(HOG)
        self.assertTrue(opened.row(HOG).expanded)
        self.assertEqual(opened.process_lines(), processes)
        closed = self.popover.click_row(HOG)
        self.assertFalse(closed.row(HOG).expanded)
        self.assertEqual(closed.process_lines(), [])

    def test_the_list_is_ordered_by_memory_and_ends_with_everything_else(self):
        rows = self.popover.choose_tab("Memory").rows
        self.assertEqual(len(rows), 9)
        values = [parse_bytes(row.value).value for row in rows[:-1]]
        self.assertEqual(values, sorted(values, reverse=True))
        self.assertEqual(rows[-1].name, "Everything else")
        self.assertIsNone(rows[-1].expanded)

    def test_a_process_of_another_user_shows_its_kernel_name(self):
        with self.assertRaises(PermissionError):
            os.readlink(f"/proc/{self.foreign}/exe")
        command = Path(f"/proc/{self.foreign}/cmdline").read_bytes().split(b"\0")[0].decode()
        row = self.popover.choose_tab("Memory").row(Path(command).name)
        self.assertIsNotNone(row, command)
        footprint = proc_reader.footprint(self.foreign)
        self.assert_figure(row.value, footprint, footprint)

    def test_a_busy_core_shows_its_share_once_smoothing_has_settled(self):
        self.popover.choose_tab("Memory")
        with SweepWatch(self.tarn.pid, self.burner.pid) as watch:
            content = self.popover.choose_tab("CPU")
            watch.wait_for_sweeps(SETTLED_SWEEPS + 1, since=0, timeout=60)
            time.sleep(1)  # the figures of the last sweep reach the screen
            content = self.popover.read()
            expected = watch.smoothed_share()
        self.assertGreater(expected, 5, "the load got no processor time to speak of")
        row = content.row(BURNER)
        self.assertIsNotNone(row, content.rows)
        self.assertAlmostEqual(parse_percent(row.value), expected, delta=10)

    def test_the_processor_line_and_sentence_agree(self):
        content = self.popover.choose_tab("CPU")
        line = content.text_matching(rf"([\d,]+%) of (\d+) cores in use · ({PHRASES})")
        self.assertIsNotNone(line, content.texts)
        cores = int(line[2])
        self.assertEqual(cores, os.sysconf("SC_NPROCESSORS_ONLN"))
        # The percentage is rounded: either neighbour's class will do.
        loads = [(parse_percent(line[1]) + offset) / (cores * 100) for offset in (-0.5, 0.5)]
        sentences = {next(text for bound, text in CPU_SENTENCES if load < bound) for load in loads}
        self.assertTrue(sentences & set(content.texts), content.texts)
        self.assertIn(CPU_EXPLAINER, content.texts)

    def test_the_memory_line_agrees_with_the_kernel(self):
        self.popover.choose_tab("Memory")
        with SweepWatch(self.tarn.pid) as watch:
            watch.wait_for_sweeps(2, since=0, timeout=20)
            time.sleep(1)
            content = self.popover.read()
            ranges = watch.memory_range(seconds=2 * SWEEP_SECONDS_OPEN)
        line = content.text_matching(DETAIL)
        self.assertIsNotNone(line, content.texts)
        for text, (low, high) in zip(line.groups(), ranges.values()):
            self.assert_figure(text, low, high)
        self.assertIn(MEMORY_EXPLAINER, content.texts)

    def test_the_memory_sentence_fits_the_machine(self):
        content = self.popover.choose_tab("Memory")
        expected = {"swapping" if proc_reader.system_memory()["Swap"] > 0 else "normal"}
        if proc_reader.available_share() < 0.5:
            # From here on the kernel's stall figures have a say, and they change by the second.
            expected |= {"warning", "critical"}
        self.assertTrue({MEMORY_SENTENCES[name] for name in expected} & set(content.texts), content.texts)

    def test_the_about_line_names_the_maker_and_the_version(self):
        self.assertRegex("".join(self.popover.open().texts), r"Made with ❤️ by \S+ · v\d+\.\d+")

    def test_the_circle_in_the_panel_has_the_colour_of_the_memory_state(self):
        content = self.popover.choose_tab("Memory")
        self.popover.wait_for(lambda content: content.tab == "Memory", "the memory tab shows")
        calm = MEMORY_SENTENCES["normal"] in content.texts

        def is_tint(colour):
            red, green, blue = colour
            return green > red + 60 and green > blue + 20 if calm else red > green + 60 and red > blue + 60

        self.assertGreater(sum(map(is_tint, self.tarn.item.colours())), 20)

    def test_the_toggle_shows_the_frontmost_footprint_at_once_and_is_remembered(self):
        content = self.popover.choose_tab("Memory")
        self.assertNotIn("checked", content.toggle.states)
        self.assertNotRegex(self.tarn.item.title(), BYTES)
        self.desktop.click(content.toggle.centre())
        figure = wait_until(self._figure_in_title, "the item's title bears a figure", timeout=2)
        self.assert_figure(figure, self.hog_footprint(), self.hog_footprint())
        self.assertIn("checked", self.popover.read().toggle.states)
        self._assert_stored("true")
        self.desktop.click(content.toggle.centre())
        wait_until(lambda: not self._figure_in_title(), "the item's title bears no figure", timeout=2)
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


class ClicksTest(DesktopTest):
    """What opens and closes the popover."""

    def test_a_second_click_on_the_item_closes_it_for_good(self):
        self.popover.open()
        self.desktop.click(self.tarn.item.position())
        self.popover.wait_until_closed()
        time.sleep(1)  # a late message from the panel must not open it again
        self.assertIsNone(self.popover.read())

    def test_it_opens_again_after_it_was_closed_by_a_click(self):
        self.popover.open()
        self.desktop.click(self.tarn.item.position())
        self.popover.wait_until_closed()
        time.sleep(1)
        self.popover.open()

    def test_escape_closes_it(self):
        self.popover.open()
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()

    def test_a_click_elsewhere_closes_it(self):
        self.popover.open()
        self.desktop.click((SIZE[0] // 4, SIZE[1] // 2))
        self.popover.wait_until_closed()

    def test_going_to_another_workspace_closes_it(self):
        self.desktop.run("xdotool", "set_num_desktops", "2")
        self.popover.open()
        self.desktop.run("xdotool", "set_desktop", "1")
        self.popover.wait_until_closed()
        self.desktop.run("xdotool", "set_desktop", "0")

    def test_it_is_320_wide_and_hangs_below_the_item(self):
        content = self.popover.open()
        window = next(node for node in self.desktop.accessibility.tree_of(self.tarn.pid).children
                      if "showing" in node.states)
        left, top, width, _ = window.extents()
        across, down = self.tarn.item.position()
        self.assertEqual(width, 320)
        self.assertTrue(left <= across <= left + width, (left, width, across))
        self.assertTrue(down <= top < 100, top)
        self.assertLess(content.quit.extents()[0], SIZE[0])

    def test_tab_and_open_rows_are_kept_while_it_is_closed(self):
        self.popover.choose_tab("CPU")
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()
        self.assertEqual(self.popover.open().tab, "CPU")
        self.popover.choose_tab("Memory")


class SecondStartTest(DesktopTest):
    """Starting Tarn again is the way to it where its item is hidden."""

    def test_a_second_start_opens_the_popover_of_the_first(self):
        second = start_bare(self.desktop.environment, STAGE / "second.log")
        self.addCleanup(end, second)
        self.popover.wait_for(lambda content: content.rows, "the running Tarn opens its popover")
        self.assertEqual(second.wait(timeout=10), 0)
        self.assert_alive()


class RhythmTest(DesktopTest):
    """When Tarn sweeps, seen from outside."""

    def test_it_sweeps_every_3_seconds_while_open_and_every_30_while_closed(self):
        self.popover.open()
        with SweepWatch(self.tarn.pid) as watch:
            opened = time.monotonic()
            sweeps = watch.wait_for_sweeps(5, since=opened, timeout=30)
            for earlier, later in zip(sweeps, sweeps[1:]):
                self.assertAlmostEqual(later.time - earlier.time, 3, delta=0.4)
            self.desktop.press_key("Escape")
            self.popover.wait_until_closed()
            closed = time.monotonic()
            # One that was under way while the popover closed may still show; the rhythm starts at the closing.
            time.sleep(1.5)
            switches = proc_reader.all_voluntary_switches(self.tarn.pid)
            moments = [closed] + [sweep.time for sweep in
                                  watch.wait_for_sweeps(2, since=closed + 1.5, timeout=75)]
            for earlier, later in zip(moments, moments[1:]):
                self.assertAlmostEqual(later - earlier, 30, delta=1.5)
            switches = proc_reader.all_voluntary_switches(self.tarn.pid) - switches
        # In a minute: four looks at the available memory, and two sweeps, each of which wakes the timer's thread, its own,
        # the timer's again, waits for the window system, and may have the panel ask for a new tooltip.
        self.assertLessEqual(switches, 4 + 2 * (4 + 5))
        self.assert_alive()


class EndingTest(DesktopTest):
    def test_quit_ends_the_process_with_success(self):
        content = self.popover.open()
        self.desktop.click(content.quit.centre())
        self.assertEqual(self.tarn.process.wait(timeout=30), 0, self.desktop.log("tarn"))


class MissingPiecesTest(unittest.TestCase):
    """Starts where something is missing: a word on standard error, never a crash or an unreachable process."""

    def setUp(self):
        self.log = tempfile.NamedTemporaryFile(dir=STAGE, prefix="bare.", suffix=".log")
        self.addCleanup(self.log.close)

    def said(self):
        with open(self.log.name, encoding="utf-8") as log:
            return [line for line in log.read().splitlines() if line.strip()]

    def start(self, environment):
        process = start_bare(environment, self.log.name)
        self.addCleanup(end, process)
        return process

    def window_of(self, desktop, process):
        """The id of the first window that a process shows."""

        def search():
            self.assertIsNone(process.poll(), self.said())
            return desktop.windows_of(process.pid)

        return wait_until(search, "Tarn shows a window", timeout=20, interval=0.5)[0]

    def assert_shows_a_window_and_says_so(self, desktop, environment):
        process = self.start(environment)
        description = desktop.run("xwininfo", "-id", self.window_of(desktop, process))
        self.assertRegex(description, r"Width: 320\n")
        self.assertIn("Override Redirect State: no", description)
        time.sleep(2)  # once, not again and again
        self.assertEqual(len(self.said()), 1, self.said())
        self.assertIsNone(process.poll())

    def test_without_a_display_it_says_so_and_ends(self):
        with VirtualDesktop(STAGE, panel=False) as desktop:
            environment = {name: value for name, value in desktop.environment.items() if name != "DISPLAY"}
            process = self.start(environment)
            self.assertGreater(process.wait(timeout=20), 0, "it ended with success or by a signal")
        self.assertEqual(len(self.said()), 1, self.said())

    def test_without_a_panel_it_shows_an_ordinary_window(self):
        with VirtualDesktop(STAGE, panel=False) as desktop:
            self.assert_shows_a_window_and_says_so(desktop, desktop.environment)

    def test_without_a_session_bus_and_a_panel_it_shows_an_ordinary_window(self):
        with VirtualDesktop(STAGE, panel=False) as desktop:
            self.assert_shows_a_window_and_says_so(desktop, desktop.environment | NO_SESSION_BUS)

    def test_without_a_session_bus_it_goes_to_the_panel_over_x11(self):
        with VirtualDesktop(STAGE) as desktop:
            process = self.start(desktop.environment | NO_SESSION_BUS)
            icon = self.window_of(desktop, process)
            desktop.click(wait_until(lambda: status_area_centre(desktop), "the panel shows Tarn's icon"))
            popover = wait_until(lambda: set(desktop.windows_of(process.pid)) - {icon}, "the popover shows")
            self.assertRegex(desktop.run("xwininfo", "-id", *popover), r"Width: 320\n")
            self.assertEqual(self.said(), [])

    def test_it_moves_to_a_panel_that_comes_later(self):
        with VirtualDesktop(STAGE, panel=False) as desktop:
            process = self.start(desktop.environment)
            self.window_of(desktop, process)
            desktop.start_panel()
            item = MenuBarItem(desktop, process.pid)
            self.assertIsNone(process.poll())
            self.assertTrue(item.title())
