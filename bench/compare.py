# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""compare.py [--quick]: measures Tarn and other monitors, prints which goals are met, and writes all measured values to
build/bench/report.json. Each round measures both sides of a ratio, one after the other. A ratio is the median of the
ratios of all rounds."""

import json
import subprocess
import sys
from pathlib import Path
from statistics import median

import goals
import terminal_monitors

REPOSITORY = Path(__file__).resolve().parent.parent
BUILD = REPOSITORY / "build/bench"
PROGRAMS = BUILD / "bench"
MONITORS = ("mate-system-monitor", "lxtask", "xfce4-taskmanager", "gnome-system-monitor", "conky")
MEGABYTE = 1 << 20
TERMINAL_ROUND_SWEEP = "sweep in the rounds of the terminal monitors, s"


class Measurements:
    """The measured values of each figure, by its name."""

    def __init__(self):
        self.values = {}

    def add(self, name, value):
        self.values.setdefault(name, []).append(value)

    def median(self, name):
        return median(self.values[name]) if name in self.values else None

    def ratio(self, numerator, denominator):
        """The median of the ratios of all rounds; None if a figure was not measured."""
        if numerator not in self.values or denominator not in self.values:
            return None
        return median(cost / reference for cost, reference in zip(self.values[numerator], self.values[denominator]))


def run(*command, **options):
    return subprocess.run([str(argument) for argument in command], check=True, stdout=subprocess.PIPE, text=True,
                          **options).stdout


def run_microbenchmarks(measured, quick):
    seconds = "0.05" if quick else "0.5"
    for name in ("sampling_benchmark", "applications_benchmark", "view_benchmark"):
        report = json.loads(run(PROGRAMS / name, "--benchmark_format=json", f"--benchmark_min_time={seconds}",
                                stderr=subprocess.DEVNULL))
        scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3}
        for benchmark in report["benchmarks"]:
            if benchmark.get("aggregate_name", "median") != "median":
                continue
            measured.add(f"benchmark {benchmark['run_name']}, s",
                         benchmark["cpu_time"] * scale[benchmark["time_unit"]])
            if "KB" in benchmark:
                measured.add(f"benchmark {benchmark['run_name']}, KB", benchmark["KB"])


def sweep_and_floor(processes, rounds):
    """Returns the number of processes, the cost of a sweep and of the floor (reading every process without
    parsing) in microseconds, their ratio, and the ratio for a sweep in which every process has run since the last
    sweep."""
    return [float(number) for number in run(PROGRAMS / "sweep_against_floor", processes, rounds).split()]


def measure_sweeps(measured, quick):
    for processes in (1_000,) if quick else (100, 1_000, 5_000, 10_000):
        count, sweep, floor, ratio, busy_ratio = sweep_and_floor(processes, 9 if quick else 21)
        measured.add(f"sweep per process, {processes:,} processes, s", sweep / count / 1e6)
        measured.add(f"floor per process, {processes:,} processes, s", floor / count / 1e6)
        measured.add(f"sweep ÷ floor, {processes:,} processes", ratio)
        measured.add(f"sweep ÷ floor, {processes:,} processes that all ran", busy_ratio)


def measure_terminal_monitors(measured, rounds, processes=1_000):
    with subprocess.Popen([PROGRAMS / "idle_processes", str(processes)], stdout=subprocess.PIPE) as idle:
        try:
            idle.stdout.readline()
            for _ in range(rounds):
                measured.add(TERMINAL_ROUND_SWEEP, sweep_and_floor(0, 5)[1] / 1e6)
                for name, refresh in terminal_monitors.REFRESH.items():
                    measured.add(f"refresh of {name}, s", refresh())
        finally:
            idle.terminate()


def measure_desktop(measured, rounds, idle_seconds, monitors):
    results = BUILD / "desktop"
    command = [REPOSITORY / "scripts/on_virtual_desktop.sh", "--tarn", BUILD / "src/app/tarn", "--results", results,
               "--with", REPOSITORY / "bench/desktop/desktop_costs.py"]
    for name in ("bare_tray_program", "first_frame", "idle_processes"):
        command += ["--with", PROGRAMS / name]
    command += ["desktop_costs.py", rounds, idle_seconds, *monitors]
    subprocess.run([str(argument) for argument in command], check=True)
    for name, values in json.loads((results / "figures.json").read_text()).items():
        for value in values:
            measured.add(name, value)


def goal_values(measured):
    """Returns the value of each measured goal, by its name."""
    values = {goal.name: measured.median(goal.name) for goal in goals.SWEEP}
    small, large = (measured.median(f"sweep per process, {count} processes, s") for count in ("1,000", "10,000"))
    values["sweep per process, 10,000 ÷ 1,000 processes"] = large / small if small and large else None
    for name in ("top", "htop", "btop"):
        values[f"sweep ÷ refresh of {name}"] = measured.ratio(TERMINAL_ROUND_SWEEP, f"refresh of {name}, s")
    values["sweep ÷ ps -eo pid,ppid,uid,rss,cputimes,comm"] = measured.ratio(TERMINAL_ROUND_SWEEP, "refresh of ps, s")
    index_benchmark = "benchmark buildIndexOf500Files/iterations:1/repeats:9"
    values["index of 500 desktop files, ms"] = scaled(measured.median(f"{index_benchmark}, s"), 1e3)
    values["index of 500 desktop files, KB"] = measured.median(f"{index_benchmark}, KB")
    for state in ("closed", "open", "closed again"):
        values[f"footprint {state} ÷ bare tray program"] = measured.ratio(f"tarn {state}, B", "bare, B")
    for name in ("mate-system-monitor", "lxtask"):
        values[f"footprint open ÷ {name}"] = measured.ratio("tarn open, B", f"{name}, B")
    values["start until the item is shown ÷ bare tray program"] = measured.ratio("start of tarn, s", "start of bare, s")
    values["voluntary switches per minute, idle"] = measured.median("switches per minute, idle")
    values["share of a core, idle, 300 processes"] = measured.median("share of a core, idle")
    snapshots = measured.values.get("main thread per snapshot, s")
    values["main thread per snapshot, popover open, ms"] = scaled(snapshots and median(snapshots), 1e3)
    values["main thread per snapshot, longest, ms"] = scaled(snapshots and max(snapshots), 1e3)
    values["click to first frame, ms"] = scaled(measured.median("click to first frame, s"), 1e3)
    first_frame_share = measured.median("share of the colours in the first frame")
    missing_share = None if first_frame_share is None else max(0.0, 1 - first_frame_share)
    values["share of the colours missing in the first frame"] = missing_share
    return {name: value for name, value in values.items() if value is not None}


def scaled(value, factor):
    return None if value is None else value * factor


def print_table(values):
    """Prints each goal with the measured value. Returns the names of the missed goals."""
    print(f"\n{'':60} {'measured':>10} {'at most':>9}")
    missed = []
    for goal in (*goals.SWEEP, *goals.DESKTOP):
        maximum = goal.number_format.format(goal.maximum)
        if goal.name not in values:
            print(f"{goal.name:60} {'—':>10} {maximum:>9}")
            continue
        is_met = values[goal.name] <= goal.maximum
        missed += [] if is_met else [goal.name]
        value = goal.number_format.format(values[goal.name])
        print(f"{goal.name:60} {value:>10} {maximum:>9}{'' if is_met else '   missed'}")
    return missed


def print_other_monitors(measured):
    print("\nother monitors: median footprint in MB, and share of a core while the window is shown")
    for name in MONITORS:
        footprint, share = measured.median(f"{name}, B"), measured.median(f"{name}, share of a core")
        if footprint is not None:
            print(f"  {name:24} {footprint / MEGABYTE:6.1f} {share:9.5f}")
    for state in ("closed", "open", "closed again"):
        print(f"  {'tarn, ' + state:24} {measured.median(f'tarn {state}, B') / MEGABYTE:6.1f}")


def main():
    quick = "--quick" in sys.argv[1:]
    measured = Measurements()
    run_microbenchmarks(measured, quick)
    measure_sweeps(measured, quick)
    measure_terminal_monitors(measured, 1 if quick else 9)
    if not quick:
        measured.add("growth over 10,000 sweeps, 50 new processes per sweep, KB",
                     float(run(PROGRAMS / "sweep_growth", 10_000, 50)))
    measure_desktop(measured, 1 if quick else 9, 0 if quick else 180, () if quick else MONITORS)
    values = goal_values(measured)
    missed = print_table(values)
    print_other_monitors(measured)
    (BUILD / "report.json").write_text(json.dumps({"goals": values, "missed": missed, "measured": measured.values},
                                                  indent=1, ensure_ascii=False), encoding="utf-8")
    print(f"\nAll measured values: {BUILD / 'report.json'}")
    print("Every measured goal is met." if not missed else f"Missed: {'; '.join(missed)}")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
