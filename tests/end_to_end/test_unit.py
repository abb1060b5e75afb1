# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Tarn as the session manager's unit, which forbids it what it does not need: that it forbids this, and that Tarn says
and does the same as without."""

import json
import os
import signal
import stat
import unittest
from pathlib import Path

import managed_session
import proc_reader
from desktop_test import DesktopTest
from popover import TABS
from processes import wait_until
from programs import HOG, STAGE, foreign_process, start_hog
from sentences import DETAIL
from session_unit import TRACELESS, SessionUnits

PROBE = ("/usr/bin/python3", STAGE / "end_to_end/privilege_probe.py")
ALLOWED = {"a socket to this machine"}


def is_program(pid):
    """Whether a process is there still, and not the kernel's own: those go by the name of what they do just then."""
    try:
        return Path(f"/proc/{pid}/cmdline").read_bytes() != b""
    except OSError:
        return False


@unittest.skipUnless(managed_session.can_be_started(), "NOT TESTED: a session manager takes root, control groups that "
                     "can be written, and mounts of one's own")
class UnitTest(DesktopTest):
    @classmethod
    def start_programs(cls):
        cls.units = SessionUnits(cls.desktop, managed_session.start_manager(cls.desktop))
        cls.hog = start_hog(cls.desktop)
        cls.foreign = foreign_process(cls.desktop)
        wait_until(lambda: cls.desktop.active_window_name() == HOG, "Hog's window has the focus")

    @classmethod
    def start_tarn(cls):
        return cls.units.start_tarn()

    def tearDown(self):
        self.assert_alive()

    def assert_alive(self):
        self.assertEqual(self.units.ask("show", "--property=ActiveState", "--value", "tarn.service").strip(), "active")

    def hog_processes(self):
        return [self.hog.pid, *proc_reader.children(self.hog.pid)]

    def test_every_thread_is_under_the_filter_and_gains_no_privileges(self):
        threads = list(Path(f"/proc/{self.tarn.pid}/task").iterdir())
        self.assertGreater(len(threads), 2)
        for thread in threads:
            status = (thread / "status").read_text(encoding="utf-8")
            self.assertIn("NoNewPrivs:\t1\n", status)
            self.assertIn("Seccomp:\t2\n", status)

    def test_what_is_not_needed_is_refused(self):
        outside = json.loads(self.desktop.run(*PROBE))
        self.assertEqual({name for name, outcome in outside.items() if outcome != "done"}, set(),
                         "it can not be seen here that the unit forbids this")
        within = json.loads(self.units.say_under_settings(*PROBE))
        self.assertEqual({name for name, outcome in within.items() if outcome == "done"}, ALLOWED, within)

    def test_it_tells_every_process_from_every_other_as_it_does_outside(self):
        def groups(said):
            lines = (line.split("\t") for line in said.splitlines())
            return {int(pid): (group, name) for pid, group, name in lines}

        program = STAGE / "bin/list_groups"
        outside = ("env", *(f"{name}={value}" for name, value in TRACELESS.items()), program)
        before = groups(self.desktop.run(*outside))
        within = groups(self.units.say_under_settings(program))
        after = groups(self.desktop.run(*outside))
        lasting = {pid for pid, group in before.items() if after.get(pid) == group and is_program(pid)}
        self.assertLessEqual({*self.hog_processes(), self.foreign, os.getpid()}, lasting)
        self.assertEqual({pid: within.get(pid) for pid in lasting}, {pid: before[pid] for pid in lasting})

    def test_the_popover_shows_what_it_shows_outside(self):
        popover = self.tarn.popover
        content = popover.choose_tab("Memory")
        content = popover.wait_for(lambda content: content.row(HOG), "a row Hog shows")
        self.assert_figure(content.row(HOG).value, *2 * [sum(map(proc_reader.footprint, self.hog_processes()))])
        self.assertIsNotNone(content.text_matching(DETAIL), content.texts)
        self.assertEqual(popover.click_row(HOG).process_lines(), self.hog_processes())
        popover.click_row(HOG)
        for tab in TABS[1:]:
            popover.choose_tab(tab)
        popover.choose_tab("Memory")

    def test_the_kernels_word_of_short_memory_reaches_it(self):
        # A trigger lives as long as its file is open.
        files = [os.readlink(entry) for entry in Path(f"/proc/{self.tarn.pid}/fd").iterdir()]
        expected = 2 if os.access("/proc/pressure/memory", os.W_OK) else 0
        self.assertEqual(files.count("/proc/pressure/memory"), expected, files)

    def test_a_link_opens_through_the_portal(self):
        self.tarn.popover.click_until(lambda content: content.link,
                                      lambda: "opened https://" in self.desktop.log("portal"),
                                      "the portal opens the page")

    def test_the_preference_is_stored_for_the_next_start(self):
        content = self.tarn.popover.choose_tab("Memory")
        self.desktop.click(content.toggle.centre())
        folder = Path(self.desktop.environment["XDG_CONFIG_HOME"], "tarn")
        wait_until((folder / "tarn.conf").exists, "the choice is stored")
        self.assertEqual(stat.S_IMODE(folder.stat().st_mode), 0o700)
        type(self).tarn = self.tarn.restart(self.desktop)
        content = self.tarn.popover.open()
        self.assertIn("checked", content.toggle.states)
        self.desktop.click(content.toggle.centre())

    def test_it_comes_back_after_a_crash(self):
        crashed = self.tarn.pid
        os.kill(crashed, signal.SIGKILL)
        wait_until(lambda: self.tarn.main_process() not in (0, crashed), "another one is there", timeout=20)
        type(self).tarn = self.units.start_tarn()
        self.assertTrue(self.tarn.item.title())
