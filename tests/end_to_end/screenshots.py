# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""screenshots.py [--machines]: takes screenshots of Tarn on a virtual desktop, in light and in dark: every tab and an
expanded row, with a summary of the texts. With --machines: the System tab on several kinds of machines."""

import sys
import time

from harness import fake_machine
from harness.popover import TABS
from harness.processes import all_ended_afterwards
from harness.programs import Tarn, start_burner, start_hog
from harness.stage import RESULTS
from harness.virtual_desktop import SIZE, VirtualDesktop

MACHINES = ("laptop-charging", "laptop-low", "desktop", "laptop-hot")
SCHEMES = ("light", "dark")
AFTER_A_SWEEP = 7  # seconds until the open popover shows the processor shares of its second sweep


class Tour:
    def __init__(self, desktop):
        self._desktop = desktop
        self._tarn = Tarn(desktop)
        self._summary = []

    def take(self):
        popover = self._tarn.popover
        popover.open()
        print("A click on the item in the panel has opened the popover.", flush=True)
        time.sleep(AFTER_A_SWEEP)
        for scheme in SCHEMES:
            self._desktop.change_scheme(scheme)
            time.sleep(1.5)
            for tab in TABS:
                self._record(f"{tab.lower()}-{scheme}", popover.choose_tab(tab))
            self._expand_a_row(scheme)
        self._desktop.press_key("Escape")
        popover.wait_until_closed()
        (RESULTS / "summary.txt").write_text("\n".join(self._summary), encoding="utf-8")

    def _expand_a_row(self, scheme):
        """Expands the row of the application with several processes, else the first row."""
        popover = self._tarn.popover
        content = popover.choose_tab("Memory")
        candidates = [row for row in content.rows if row.expanded is False]
        row = next((row for row in candidates if row.name == "Hog"), candidates[0])
        self._record(f"row-open-{scheme}", popover.click_row(row.name))
        popover.click_row(row.name)

    def _record(self, name, content):
        self._desktop.move_pointer((SIZE[0] // 4, SIZE[1] - 60))
        time.sleep(0.4)  # the highlight under the pointer disappears
        self._desktop.take_screenshot(RESULTS / f"{name}.png")
        in_rows = {node.name for row in content.rows for node in row.node.walk()}
        self._summary += [f"== {name}", *(f"  {row.name}: {row.value}" for row in content.rows),
                          *(text for text in content.texts if text not in in_rows), ""]
        print(f"  {name}.png", flush=True)


def show_machine(desktop, machine):
    tarn = Tarn(desktop, fake_machine.with_classes(fake_machine.write_files(machine)))
    tarn.popover.choose_tab("System")
    tarn.popover.wait_for(lambda content: "Uptime" in content.texts, "the System tab shows values")
    desktop.move_pointer((SIZE[0] // 4, SIZE[1] - 60))
    for scheme in SCHEMES:
        desktop.change_scheme(scheme)
        time.sleep(1.5)
        desktop.take_screenshot(RESULTS / f"{machine}-{scheme}.png")
        print(f"  {machine}-{scheme}.png", flush=True)
    tarn.process.kill()
    tarn.process.wait()


def main():
    with all_ended_afterwards(), VirtualDesktop() as desktop:
        if sys.argv[1:] == ["--machines"]:
            for machine in MACHINES:
                show_machine(desktop, machine)
        else:
            start_hog(desktop, "Hog", child=["sleep", "infinity"])
            start_burner(desktop, "Burner")
            Tour(desktop).take()


if __name__ == "__main__":
    main()
