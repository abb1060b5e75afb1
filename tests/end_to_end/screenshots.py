# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Shows Tarn on a virtual desktop: opens the popover, visits every tab, opens a row, in light and in dark.

Leaves a picture of each state, and what the popover said, in the folder "pictures" of the stage."""

import sys
import time

from popover import TABS
from processes import adopt_orphans, end_descendants, end_on_signal, wait_until
from programs import STAGE, Tarn, start_burner, start_hog
from virtual_desktop import SIZE, VirtualDesktop

PICTURES = STAGE / "pictures"
SCHEMES = ("light", "dark")
AFTER_A_SWEEP = 7  # seconds: the second sweep of an open popover has shown its processor shares by then


class Tour:
    def __init__(self, desktop):
        self._desktop = desktop
        self._tarn = Tarn(desktop)
        self._summary = []

    def take(self):
        popover = self._tarn.popover
        popover.open()
        print("The popover is open, by a click on the item in the panel.", flush=True)
        time.sleep(AFTER_A_SWEEP)
        for scheme in SCHEMES:
            self._desktop.change_scheme(scheme)
            time.sleep(1.5)
            for tab in TABS:
                self._record(f"{tab.lower()}-{scheme}", popover.choose_tab(tab))
            self._open_a_row(scheme)
        self._desktop.press_key("Escape")
        popover.wait_until_closed()
        (PICTURES / "summary.txt").write_text("\n".join(self._summary), encoding="utf-8")

    def _open_a_row(self, scheme):
        """Opens the row of the first application with several processes, else the first that can be opened."""
        popover = self._tarn.popover
        content = popover.choose_tab("Memory")
        candidates = [row for row in content.rows if row.expanded is False]
        row = next((row for row in candidates if row.name == "Hog"), candidates[0])
        self._record(f"row-open-{scheme}", popover.click_row(row.name))
        popover.click_row(row.name)

    def _record(self, name, content):
        self._desktop.move_pointer((SIZE[0] // 4, SIZE[1] - 60))
        time.sleep(0.4)  # the highlight under the pointer goes
        self._desktop.take_picture(PICTURES / f"{name}.png")
        in_rows = {node.name for row in content.rows for node in row.node.walk()}
        self._summary += [f"== {name}", *(f"  {row.name}: {row.value}" for row in content.rows),
                          *(text for text in content.texts if text not in in_rows), ""]
        print(f"  {name}.png", flush=True)


def main():
    adopt_orphans()
    end_on_signal()
    PICTURES.mkdir(exist_ok=True)
    try:
        with VirtualDesktop(STAGE) as desktop:
            start_hog(desktop, "Hog", child=["sleep", "infinity"])
            start_burner(desktop, "Burner")
            Tour(desktop).take()
    finally:
        end_descendants()


if __name__ == "__main__":
    sys.exit(main())
