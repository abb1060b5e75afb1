# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""What must not bring Tarn down: floods of messages, nothing left to open files with, names that mean harm."""

import os
import resource
import shutil
import time

import proc_reader
from desktop_test import DesktopTest
from gi.repository import GLib
from proc_reader import descriptors, descriptors_at_rest, keeps_what_was_freed
from processes import wait_until
from programs import STAGE, start_holder
from sentences import DETAIL, tint_for
from sweep_watch import SweepWatch

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


class FloodTest(DesktopTest):
    """Messages that nobody sane would send."""

    def assert_answers(self):
        """A click is still answered, and what is shown is there at once."""
        self.assert_alive()
        if self.popover.read():
            self.desktop.press_key("Escape")
            self.popover.wait_until_closed()
        self.popover.open()
        self.desktop.press_key("Escape")
        self.popover.wait_until_closed()

    def flood(self, count, method, arguments):
        """Sends so many calls; gives the bytes by which the footprint has grown when they are dealt with."""
        before = proc_reader.footprint(self.tarn.pid)
        for _ in range(count):
            self.tarn.item.send(method, arguments)
        self.desktop.session.flush()
        self.tarn.item.title()  # answered in its turn, so all before it are dealt with
        return 0 if keeps_what_was_freed(self.tarn.pid) else proc_reader.footprint(self.tarn.pid) - before

    def test_it_outlives_floods_of_calls_with_absurd_arguments(self):
        self.assert_answers()
        for method, arguments in (("Scroll", GLib.Variant("(is)", (LARGEST, "sideways"))),
                                  ("ContextMenu", GLib.Variant("(ii)", (-LARGEST, LARGEST))),
                                  ("SecondaryActivate", GLib.Variant("(ii)", (LARGEST, -LARGEST))),
                                  ("ProvideXdgActivationToken", GLib.Variant("(s)", ("t" * 10_000,))),
                                  ("NoSuchMethod", GLib.Variant("(s)", ("x" * 1_000,)))):
            with self.subTest(method):
                self.flood(1_000, method, arguments)
                self.assertLess(self.flood(5_000, method, arguments), 4 * proc_reader.MEGABYTE)
        self.assert_answers()

    def test_huge_arguments_are_let_go_again(self):
        self.flood(3, "ProvideXdgActivationToken", GLib.Variant("(s)", ("t" * (16 << 20),)))
        self.assert_answers()
        grown = self.flood(20, "ProvideXdgActivationToken", GLib.Variant("(s)", ("t" * (16 << 20),)))
        self.assertLess(grown, 40 * proc_reader.MEGABYTE)
        self.assert_answers()

    def test_clicks_at_absurd_places_open_it_on_the_screen(self):
        self.assert_answers()
        for across, down in ((LARGEST, LARGEST), (-LARGEST - 1, 0), (5, -LARGEST)):
            self.tarn.item.send("Activate", GLib.Variant("(ii)", (across, down)))
            content = self.popover.wait_for(lambda content: content.rows, "it opens")
            self.assertTrue(all(0 <= place < limit for place, limit in zip(content.quit.centre(), (1280, 800))))
            time.sleep(0.5)  # the next click is another one
            self.tarn.item.send("Activate", GLib.Variant("(ii)", (across, down)))
            self.popover.wait_until_closed()
            time.sleep(0.5)

    def test_properties_that_do_not_exist_are_refused(self):
        for name in ("", "NoSuchProperty", "x" * 100_000):
            with self.assertRaises(GLib.Error):
                self.tarn.item.property(name)
        self.assert_answers()


class ExhaustionTest(DesktopTest):
    def test_without_file_descriptors_it_waits_for_better_times(self):
        self.popover.open()
        before = resource.prlimit(self.tarn.pid, resource.RLIMIT_NOFILE)
        with SweepWatch(self.tarn.pid) as watch:
            resource.prlimit(self.tarn.pid, resource.RLIMIT_NOFILE, (descriptors(self.tarn.pid), before[1]))
            watch.wait_for_sweeps(3, since=time.monotonic(), timeout=30)
            self.assert_alive()
            resource.prlimit(self.tarn.pid, resource.RLIMIT_NOFILE, before)
        self.popover.wait_for(lambda content: len(content.rows) == 9, "the list is filled again")

    def test_it_keeps_no_more_files_open_from_sweep_to_sweep(self):
        self.popover.open()
        with SweepWatch(self.tarn.pid) as watch:
            watch.wait_for_sweeps(2, since=time.monotonic(), timeout=30)
            opened = descriptors_at_rest(self.tarn.pid)
            watch.wait_for_sweeps(4, since=time.monotonic(), timeout=30)
        self.assertLessEqual(descriptors_at_rest(self.tarn.pid), opened)


class NamesTest(DesktopTest):
    """Programs that bear names which want to be something else on the screen."""

    @classmethod
    def commands(cls):
        """What starts each of the programs, by a word for its name."""
        folder = os.fsencode(STAGE / "bin")
        return {key: [os.fsdecode(shutil.copy2(folder + b"/hold_memory", folder + b"/" + name.replace(b"/", b"_"))),
                      MEGABYTES] for key, name in NAMES.items()}

    @classmethod
    def start_programs(cls):
        cls.holders = [start_holder(cls.desktop, f"named-{key}", command) for key, command in cls.commands().items()]

    def test_they_are_inert_text_in_rows_of_one_height(self):
        content = self.popover.choose_tab("Memory")
        content = self.popover.wait_for(lambda content: len(content.rows) == 9, "the list is full")
        footprints = [proc_reader.footprint(holder.pid) for holder in self.holders]
        own = [row for row in content.rows if any(self._shows(row, footprint) for footprint in footprints)]
        self.assertGreaterEqual(len(own), len(self.holders), content.rows)
        for row in own:
            self.assertNotRegex(row.name, "[\\x00-\\x1f\\u202a-\\u202e\\u2066-\\u2069]")
            self.assertEqual([node.name for node in row.node.walk() if node.role == "link"], [])
        self.assertEqual(len({row.node.extents()[3] for row in own}), 1, "rows of one height")
        left, _, width, _ = self._window()
        for row in own:
            row_left, _, row_width, _ = row.node.extents()
            self.assertTrue(left <= row_left and row_left + row_width <= left + width)

    def test_what_the_panel_shows_of_the_item_names_nobody(self):
        sentence, figures = wait_until(lambda: (texts := self.tarn.item.tool_tip())[1] and texts, "it tells figures")
        self.assertIsNotNone(tint_for(sentence), sentence)
        self.assertRegex(figures, rf"\A{DETAIL}\Z")
        self.assertEqual(self.tarn.item.title(), "Tarn")

    def _shows(self, row, footprint):
        try:
            self.assert_figure(row.value, footprint, footprint)
        except AssertionError:
            return False
        return True

    def _window(self):
        return next(node for node in self.desktop.accessibility.tree_of(self.tarn.pid).children
                    if "showing" in node.states).extents()


class LongCommandLinesTest(NamesTest):
    """Programs with command lines as long as the kernel lets them be."""

    @classmethod
    def commands(cls):
        program = STAGE / "bin/hold_memory"
        script = STAGE / "bin/holds.pl"
        script.write_text(HOLDING_SCRIPT, encoding="ascii")
        longest = "<b>" + "n" * (LONGEST_ARGUMENT - 3)
        # The first word of a command line need not be the program.
        renamed = ["bash", "-c", 'exec -a "$0" "$@"', longest]
        return {"first-word": [*renamed, program, MEGABYTES],
                "interpreter": [*renamed, "/usr/bin/perl", script, MEGABYTES, *[longest] * 8],
                "options": ["/usr/bin/perl", *["-I", longest] * 8, script, MEGABYTES]}
