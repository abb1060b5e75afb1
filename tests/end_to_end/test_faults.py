# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Floods of messages, missing file descriptors, and misleading process names."""

import os
import re
import resource
import shutil
import time

import pytest
from gi.repository import GLib

from harness import proc_reader
from harness.proc_reader import descriptors, descriptors_at_rest, is_sanitized
from harness.processes import wait_until
from harness.programs import start_holder
from harness.shared_desktop import SharedDesktop, assert_figure
from harness.stage import BIN, WORK
from harness.sweeps import SweepWatch
from harness.texts import DETAIL, tint_for

pytestmark = pytest.mark.faults

MEGABYTES = 340
LARGEST = 2**31 - 1
NAMES = {"markup": b"<b>x</b><a href='http://tarn.example'>", "newlines": b"one\ntwo\r\n\tthree",
         "overrides": "safe‮exe.gnp⁦x".encode(), "stacks": ("Z" + "͑̾̂" * 30).encode(),
         "bytes": b"\xff\xfe\xc3(\xf0\x28\x8c\xbc", "cut": "fifteen bytes ü".encode()[:15], "long": b"n" * 200}
LONGEST_ARGUMENT = 128 * 1024 - 1
HOLDING_SCRIPT = """$| = 1;
my $held = "x" x ($ARGV[0] << 20);
print "ready\\n";
sleep;
"""


class TestFlood(SharedDesktop):
    """Many messages, and messages with invalid arguments."""

    def assert_answers(self):
        """Tarn runs and opens its popover after a click."""
        self.assert_alive()
        if self.popover.read():
            self.desktop.press_key("Escape")
            self.popover.wait_until_closed()
        self.popover.open()
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()

    def flood(self, count, method, arguments):
        """Sends `count` calls. Returns the growth of the footprint in bytes after all are handled."""
        before = proc_reader.footprint(self.tarn.pid)
        for _ in range(count):
            self.tarn.item.send(method, arguments)
        self.desktop.session.flush()
        self.tarn.item.title()  # calls are handled in order, so this reply comes after all others are handled
        return 0 if is_sanitized(self.tarn.pid) else proc_reader.footprint(self.tarn.pid) - before

    @pytest.mark.parametrize("method, arguments", (
        pytest.param("Scroll", GLib.Variant("(is)", (LARGEST, "sideways")), id="Scroll"),
        pytest.param("ContextMenu", GLib.Variant("(ii)", (-LARGEST, LARGEST)), id="ContextMenu"),
        pytest.param("SecondaryActivate", GLib.Variant("(ii)", (LARGEST, -LARGEST)), id="SecondaryActivate"),
        pytest.param("ProvideXdgActivationToken", GLib.Variant("(s)", ("t" * 10_000,)), id="ProvideXdgActivationToken"),
        pytest.param("NoSuchMethod", GLib.Variant("(s)", ("x" * 1_000,)), id="NoSuchMethod")))
    def test_it_survives_floods_of_calls_with_absurd_arguments(self, method, arguments):
        self.assert_answers()
        self.flood(1_000, method, arguments)
        assert self.flood(5_000, method, arguments) < 4 * proc_reader.MEGABYTE
        self.assert_answers()

    def test_the_memory_of_huge_arguments_is_released(self):
        self.flood(3, "ProvideXdgActivationToken", GLib.Variant("(s)", ("t" * (16 << 20),)))
        self.assert_answers()
        growth = self.flood(20, "ProvideXdgActivationToken", GLib.Variant("(s)", ("t" * (16 << 20),)))
        assert growth < 40 * proc_reader.MEGABYTE
        self.assert_answers()

    def test_clicks_at_absurd_positions_open_it_on_the_screen(self):
        self.assert_answers()
        for x, y in ((LARGEST, LARGEST), (-LARGEST - 1, 0), (5, -LARGEST)):
            self.tarn.item.send("Activate", GLib.Variant("(ii)", (x, y)))
            content = self.popover.wait_for(lambda content: content.rows, "the popover opens")
            assert all(0 <= place < limit for place, limit in zip(content.quit.centre(), (1280, 800)))
            time.sleep(0.5)  # Tarn ignores clicks that follow sooner
            self.tarn.item.send("Activate", GLib.Variant("(ii)", (x, y)))
            self.popover.wait_until_closed()
            time.sleep(0.5)

    def test_properties_that_do_not_exist_are_refused(self):
        for name in ("", "NoSuchProperty", "x" * 100_000):
            with pytest.raises(GLib.Error):
                self.tarn.item.property(name)
        self.assert_answers()


class TestFileDescriptorLeaks(SharedDesktop):
    def test_it_leaks_no_file_descriptors_in_sweeps(self):
        self.popover.open()
        with SweepWatch(self.tarn.pid) as watch:
            watch.wait_for_sweeps(2, since=time.monotonic(), timeout=30)
            opened = descriptors_at_rest(self.tarn.pid)
            watch.wait_for_sweeps(4, since=time.monotonic(), timeout=30)
        assert descriptors_at_rest(self.tarn.pid) <= opened


@pytest.mark.release_build  # UBSan's check of object types opens a pipe, and reports an error if it cannot
class TestFileDescriptorExhaustion(SharedDesktop):
    def test_without_file_descriptors_it_runs_on_and_recovers(self):
        self.popover.open()
        before = resource.prlimit(self.tarn.pid, resource.RLIMIT_NOFILE)
        with SweepWatch(self.tarn.pid) as watch:
            resource.prlimit(self.tarn.pid, resource.RLIMIT_NOFILE, (descriptors(self.tarn.pid), before[1]))
            watch.wait_for_sweeps(3, since=time.monotonic(), timeout=30)
            self.assert_alive()
            resource.prlimit(self.tarn.pid, resource.RLIMIT_NOFILE, before)
        self.popover.wait_for(lambda content: len(content.rows) == 9, "the list is filled again")


class TestNames(SharedDesktop):
    """Programs whose names contain markup, control characters or invalid UTF-8."""

    @staticmethod
    def commands():
        """The command of each program by a short description of its name."""
        folder = os.fsencode(WORK)
        return {key: [os.fsdecode(shutil.copy2(BIN / "hold_memory", folder + b"/" + name.replace(b"/", b"_"))),
                      MEGABYTES] for key, name in NAMES.items()}

    @pytest.fixture(scope="class")
    def programs(self, request, desktop):
        request.cls.holders = [start_holder(desktop, f"named-{key}", command)
                               for key, command in self.commands().items()]

    def test_they_are_plain_text_in_rows_of_equal_height(self):
        content = self.popover.choose_tab("Memory")
        content = self.popover.wait_for(lambda content: len(content.rows) == 9, "the list is full")
        footprints = [proc_reader.footprint(holder.pid) for holder in self.holders]
        # The sum of all other applications may be close to the footprint of one of these programs.
        named_rows = [row for row in content.rows if row.name != "Everything else"
                      and any(self._shows(row, footprint) for footprint in footprints)]
        assert len(named_rows) >= len(self.holders), content.rows
        for row in named_rows:
            assert not re.search("[\\x00-\\x1f\\u202a-\\u202e\\u2066-\\u2069]", row.name)
            assert [node.name for node in row.node.walk() if node.role == "link"] == []
        assert len({row.node.extents()[3] for row in named_rows}) == 1, "rows of equal height"
        left, _, width, _ = self._window()
        for row in named_rows:
            row_left, _, row_width, _ = row.node.extents()
            assert left <= row_left and row_left + row_width <= left + width

    def test_the_item_in_the_panel_contains_no_process_names(self):
        sentence, figures = wait_until(lambda: (texts := self.tarn.item.tool_tip())[1] and texts,
                                       "the tooltip has figures")
        assert tint_for(sentence) is not None, sentence
        assert re.search(rf"\A{DETAIL}\Z", figures)
        assert self.tarn.item.title() == "Tarn"

    def _shows(self, row, footprint):
        try:
            assert_figure(row.value, footprint, footprint)
        except AssertionError:
            return False
        return True

    def _window(self):
        return next(node for node in self.desktop.accessibility.tree_of(self.tarn.pid).children
                    if "showing" in node.states).extents()


class TestLongCommandLines(TestNames):
    """Programs with the longest command lines that the kernel allows."""

    @staticmethod
    def commands():
        program = BIN / "hold_memory"
        script = WORK / "holds.pl"
        script.write_text(HOLDING_SCRIPT, encoding="ascii")
        longest = "<b>" + "n" * (LONGEST_ARGUMENT - 3)
        # The first argument need not be the name of the program.
        renamed = ["bash", "-c", 'exec -a "$0" "$@"', longest]
        return {"first-word": [*renamed, program, MEGABYTES],
                "interpreter": [*renamed, "/usr/bin/perl", script, MEGABYTES, *[longest] * 8],
                "options": ["/usr/bin/perl", *["-I", longest] * 8, script, MEGABYTES]}
