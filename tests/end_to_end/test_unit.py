# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Tarn as a systemd user unit: the unit forbids what Tarn does not need, and Tarn behaves as without the unit."""

import json
import os
import signal
import stat
from pathlib import Path

import pytest

from harness import proc_reader, systemd_user
from harness.popover import TABS
from harness.processes import wait_until
from harness.programs import HOG, foreign_process, start_hog
from harness.shared_desktop import SharedDesktop, assert_figure
from harness.stage import LIST_GROUPS, PROGRAMS
from harness.systemd_user import WITHOUT_LEAK_CHECK, UserUnits
from harness.texts import DETAIL

pytestmark = [pytest.mark.unit, pytest.mark.release_build]

PROBE = ("/usr/bin/python3", PROGRAMS / "privilege_probe.py")
ALLOWED = {"AF_UNIX socket"}


def is_program(pid):
    """Whether a process exists and is not a kernel thread. Kernel threads change their names."""
    try:
        return Path(f"/proc/{pid}/cmdline").read_bytes() != b""
    except OSError:
        return False


class TestUnit(SharedDesktop):
    @pytest.fixture(scope="class")
    def programs(self, request, desktop):
        if not systemd_user.can_be_started():
            pytest.skip("NOT TESTED: a systemd user instance needs root, writable cgroups and mounts")
        request.cls.units = UserUnits(desktop, systemd_user.start_instance(desktop))
        request.cls.hog = start_hog(desktop)
        request.cls.foreign = foreign_process(desktop)
        wait_until(lambda: desktop.active_window_name() == HOG, "Hog's window has the focus")

    @pytest.fixture(scope="class")
    def tarn(self, request, desktop, programs):
        return request.cls.units.start_tarn()

    @pytest.fixture(autouse=True)
    def alive_afterwards(self, shared):
        yield
        self.assert_alive()

    def assert_alive(self):
        assert self.units.systemctl("show", "--property=ActiveState", "--value", "tarn.service").strip() == "active"

    def hog_processes(self):
        return [self.hog.pid, *proc_reader.children(self.hog.pid)]

    def test_every_thread_has_the_seccomp_filter_and_no_new_privileges(self):
        threads = list(Path(f"/proc/{self.tarn.pid}/task").iterdir())
        assert len(threads) > 2
        for thread in threads:
            status = (thread / "status").read_text(encoding="utf-8")
            assert "NoNewPrivs:\t1\n" in status
            assert "Seccomp:\t2\n" in status

    def test_the_unit_refuses_what_tarn_does_not_need(self):
        ordinary = json.loads(self.desktop.run(*PROBE))
        assert {name for name, outcome in ordinary.items() if outcome != "done"} == set(), "refused without the unit"
        inside = json.loads(self.units.run_restricted(*PROBE))
        assert {name for name, outcome in inside.items() if outcome == "done"} == ALLOWED, inside

    def test_every_process_is_in_the_same_group_as_without_the_unit(self):
        def groups(output):
            lines = (line.split("\t") for line in output.splitlines())
            return {int(pid): (group, name) for pid, group, name in lines}

        if not LIST_GROUPS.exists():
            pytest.skip("NOT TESTED: there is no program list_groups; build the tests in C++")
        outside = ("env", *(f"{name}={value}" for name, value in WITHOUT_LEAK_CHECK.items()), LIST_GROUPS)
        before = groups(self.desktop.run(*outside))
        inside = groups(self.units.run_restricted(LIST_GROUPS))
        after = groups(self.desktop.run(*outside))
        unchanged = {pid for pid, group in before.items() if after.get(pid) == group and is_program(pid)}
        assert {*self.hog_processes(), self.foreign, os.getpid()} <= unchanged
        assert {pid: inside.get(pid) for pid in unchanged} == {pid: before[pid] for pid in unchanged}

    def test_the_popover_shows_the_same_as_without_the_unit(self):
        popover = self.tarn.popover
        content = popover.choose_tab("Memory")
        content = popover.wait_for(lambda content: content.row(HOG), "a row Hog shows")
        assert_figure(content.row(HOG).value, *2 * [sum(map(proc_reader.footprint, self.hog_processes()))])
        assert content.text_matching(DETAIL) is not None, content.texts
        assert popover.click_row(HOG).process_lines() == self.hog_processes()
        popover.click_row(HOG)
        for tab in TABS[1:]:
            popover.choose_tab(tab)
        popover.choose_tab("Memory")

    def test_it_has_psi_triggers(self):
        # A PSI trigger exists as long as its file is open.
        files = [os.readlink(entry) for entry in Path(f"/proc/{self.tarn.pid}/fd").iterdir()]
        expected = 2 if os.access("/proc/pressure/memory", os.W_OK) else 0
        assert files.count("/proc/pressure/memory") == expected, files

    def test_a_link_opens_through_the_portal(self):
        self.tarn.popover.click_until(lambda content: content.link,
                                      lambda: "opened https://" in self.desktop.log("portal"),
                                      "the portal opens the page")

    def test_the_preference_is_restored_at_the_next_start(self):
        content = self.tarn.popover.choose_tab("Memory")
        self.desktop.click(content.toggle.centre())
        folder = Path(self.desktop.environment["XDG_CONFIG_HOME"], "tarn")
        wait_until((folder / "tarn.conf").exists, "the choice is stored")
        assert stat.S_IMODE(folder.stat().st_mode) == 0o700
        type(self).tarn = self.tarn.restart(self.desktop)
        content = self.tarn.popover.open()
        assert "checked" in content.toggle.states
        self.desktop.click(content.toggle.centre())

    def test_it_is_restarted_after_a_crash(self):
        crashed = self.tarn.pid
        os.kill(crashed, signal.SIGKILL)
        wait_until(lambda: self.tarn.main_pid() not in (0, crashed), "systemd has restarted it", timeout=20)
        type(self).tarn = self.units.start_tarn()
        assert self.tarn.item.title()
