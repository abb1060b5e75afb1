# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Shows the System tab on machines of several kinds, in light and in dark.

Leaves a picture of each in the folder "pictures" of the stage."""

import sys
import time

import machines
from processes import adopt_orphans, end_descendants, end_on_signal
from programs import STAGE, Tarn
from tour import PICTURES, SCHEMES
from virtual_desktop import SIZE, VirtualDesktop

MACHINES = ("laptop-charging", "laptop-low", "desktop", "laptop-hot")


def visit(desktop, machine):
    tarn = Tarn(desktop, machines.class_wrapper(machines.build(machine)))
    tarn.popover.choose_tab("System")
    tarn.popover.wait_for(lambda content: "Uptime" in content.texts, "the System tab tells its facts")
    desktop.move_pointer((SIZE[0] // 4, SIZE[1] - 60))
    for scheme in SCHEMES:
        desktop.change_scheme(scheme)
        time.sleep(1.5)
        desktop.take_picture(PICTURES / f"{machine}-{scheme}.png")
        print(f"  {machine}-{scheme}.png", flush=True)
    tarn.process.kill()
    tarn.process.wait()


def main():
    adopt_orphans()
    end_on_signal()
    PICTURES.mkdir(exist_ok=True)
    try:
        with VirtualDesktop(STAGE) as desktop:
            for machine in MACHINES:
                visit(desktop, machine)
    finally:
        end_descendants()


if __name__ == "__main__":
    sys.exit(main())
