# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""compare.py [--quick]: measures Tarn and other monitors, prints which goals are met, and writes all measured values to
build/bench/report.json. A ratio is the median of the ratios of all rounds; in a round both sides run in turn."""

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


class Measurements:
    """The measured values of each figure, by its name."""

    def __init__(self):
        self.values = {}

    def add(self, name, value):
        self.values.setdefault(name, []).append(value)

    def median(self, name):
        return median(self.values[name]) if name in self.values else None

    def ratio(self, over, under):
        """The median of the ratios of all rounds; None if a figure was not measured."""
        if over not in self.values or under not in self.values:
            return None
        return median(one / other for one, other in zip(self.values[over], self.values[under]))


def run(*command, **options):
    return subprocess.run([str(word) for word in command], check=True, stdout=subprocess.PIPE, text=True,
                          **options).stdout


def run_microbenchmarks(found, quick):
    seconds = "0.05" if quick else "0.5"
    for name in ("sampling_benchmark", "applications_benchmark", "view_benchmark"):
        report = json.loads(run(PROGRAMS / name, "--benchmark_format=json", f"--benchmark_min_time={seconds}",
                                stderr=subprocess.DEVNULL))
        scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3}
        for benchmark in report["benchmarks"]:
            if benchmark.get("aggregate_name", "median") != "median":
                continue
            found.add(f"benchmark {benchmark['run_name']}, s",
                      benchmark["cpu_time"] * scale[benchmark["time_unit"]])
            if "KB" in benchmark:
                found.add(f"benchmark {benchmark['run_name']}, KB", benchmark["KB"])


def sweep_and_floor(processes, rounds):
    """Returns the number of processes, the cost of a sweep and of the floor (its lower bound) in microseconds, their
    ratio, and the ratio for a sweep in which every process has run since the last one."""
    return [float(word) for word in run(PROGRAMS / "sweep_against_floor", processes, rounds).split()]


def measure_sweeps(found, quick):
    for processes in (1_000,) if quick else (100, 1_000, 5_000, 10_000):
        count, sweep, floor, ratio, busy_ratio = sweep_and_floor(processes, 9 if quick else 21)
        found.add(f"sweep per process, {processes:,} processes, s", sweep / count / 1e6)
        found.add(f"floor per process, {processes:,} processes, s", floor / count / 1e6)
        found.add(f"sweep ÷ floor, {processes:,} processes", ratio)
        found.add(f"sweep ÷ floor, {processes:,} processes that all ran", busy_ratio)


def measure_terminal_monitors(found, rounds, processes=1_000):
    with subprocess.Popen([PROGRAMS / "idle_processes", str(processes)], stdout=subprocess.PIPE) as idle:
        try:
            idle.stdout.readline()
            for _ in range(rounds):
                found.add("sweep beside monitors, s", sweep_and_floor(0, 5)[1] / 1e6)
                for name, refresh in terminal_monitors.REFRESH.items():
                    found.add(f"refresh of {name}, s", refresh())
        finally:
            idle.terminate()


def measure_desktop(found, rounds, rest_seconds, monitors):
    results = BUILD / "desktop"
    command = [REPOSITORY / "scripts/on_virtual_desktop.sh", "--tarn", BUILD / "src/app/tarn", "--results", results,
               "--with", REPOSITORY / "bench/desktop/desktop_costs.py"]
    for name in ("bare_tray_program", "first_frame", "idle_processes"):
        command += ["--with", PROGRAMS / name]
    command += ["desktop_costs.py", rounds, rest_seconds, *monitors]
    subprocess.run([str(word) for word in command], check=True)
    for name, values in json.loads((results / "figures.json").read_text()).items():
        for value in values:
            found.add(name, value)


def results_of(found):
    """Returns the value of each measured goal, by its name."""
    values = {goal.name: found.median(goal.name) for goal in goals.SWEEP}
    small, large = (found.median(f"sweep per process, {count} processes, s") for count in ("1,000", "10,000"))
    values["sweep per process, 10,000 ÷ 1,000 processes"] = large / small if small and large else None
    for name in ("top", "htop", "btop"):
        values[f"sweep ÷ refresh of {name}"] = found.ratio("sweep beside monitors, s", f"refresh of {name}, s")
    values["sweep ÷ ps -eo pid,ppid,uid,rss,cputimes,comm"] = found.ratio("sweep beside monitors, s",
                                                                          "refresh of ps, s")
    index = "benchmark buildIndexOf500Files/iterations:1/repeats:9"
    values["index of 500 desktop files, ms"] = scaled(found.median(f"{index}, s"), 1e3)
    values["index of 500 desktop files, KB"] = found.median(f"{index}, KB")
    for state in ("closed", "open", "closed again"):
        values[f"footprint {state} ÷ bare tray program"] = found.ratio(f"tarn {state}, B", "bare, B")
    for name in ("mate-system-monitor", "lxtask"):
        values[f"footprint open ÷ {name}"] = found.ratio("tarn open, B", f"{name}, B")
    values["start to item ÷ bare tray program"] = found.ratio("start of tarn, s", "start of bare, s")
    values["voluntary switches per minute at rest"] = found.median("switches per minute at rest")
    values["share of a core at rest, 300 processes"] = found.median("share of a core at rest")
    snapshots = found.values.get("main thread per snapshot, s")
    values["main thread per snapshot, popover open, ms"] = scaled(snapshots and median(snapshots), 1e3)
    values["longest main thread for a snapshot, ms"] = scaled(snapshots and max(snapshots), 1e3)
    values["click to first frame, ms"] = scaled(found.median("click to first frame, s"), 1e3)
    complete = found.median("share of the colours in the first frame")
    values["colours that the first frame lacks, share"] = None if complete is None else max(0.0, 1 - complete)
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


def print_peers(found):
    print("\nother monitors: median footprint in MB, and share of a core while the window is shown")
    for name in MONITORS:
        footprint, share = found.median(f"{name}, B"), found.median(f"{name}, share of a core")
        if footprint is not None:
            print(f"  {name:24} {footprint / MEGABYTE:6.1f} {share:9.5f}")
    for state in ("closed", "open", "closed again"):
        print(f"  {'tarn, ' + state:24} {found.median(f'tarn {state}, B') / MEGABYTE:6.1f}")


def main():
    quick = "--quick" in sys.argv[1:]
    found = Measurements()
    run_microbenchmarks(found, quick)
    measure_sweeps(found, quick)
    measure_terminal_monitors(found, 1 if quick else 9)
    if not quick:
        found.add("growth over 10,000 sweeps among 50 that come and go, KB",
                  float(run(PROGRAMS / "sweep_growth", 10_000, 50)))
    measure_desktop(found, 1 if quick else 9, 0 if quick else 180, () if quick else MONITORS)
    values = results_of(found)
    missed = print_table(values)
    print_peers(found)
    (BUILD / "report.json").write_text(json.dumps({"goals": values, "missed": missed, "measured": found.values},
                                                  indent=1, ensure_ascii=False), encoding="utf-8")
    print(f"\nAll measured values: {BUILD / 'report.json'}")
    print("Every measured goal is met." if not missed else f"Missed: {'; '.join(missed)}")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
