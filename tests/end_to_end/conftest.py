# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Runs pytest as an ordinary user, in separate namespaces, with copies of the programs in a temporary folder ("stage").

"pytest tests/end_to_end" executes scripts/on_virtual_desktop.sh in its place. The script creates the stage, sets
TARN_STAGE, and starts pytest again with the same arguments."""

import fcntl
import os
from pathlib import Path

import pytest

from harness import programs, stage
from harness.processes import all_ended_afterwards

REPOSITORY = Path(__file__).parents[2]
SCRIPT = REPOSITORY / "scripts/on_virtual_desktop.sh"
HAS_STAGE = "TARN_STAGE" in os.environ
BUILT_TARN = "build/{}/src/app/tarn"


def pytest_addoption(parser):
    group = parser.getgroup("tarn")
    group.addoption("--tarn", metavar="PATH", default=os.environ.get("TARN"),
                    help="the program under test; default: TARN, else that of build/asan, build/dev or build/release")
    group.addoption("--release-tarn", metavar="PATH",
                    help="the program for tests marked release_build; default: that of build/release")
    group.addoption("--list-groups", metavar="PATH",
                    help="the program list_groups; default: that of build/asan or build/dev")


@pytest.hookimpl(tryfirst=True)
def pytest_cmdline_main(config):
    if HAS_STAGE:
        distribute(config)
    elif not (config.option.collectonly or config.option.help or config.option.version or config.option.markers
              or config.option.showfixtures or config.option.show_fixtures_per_test):
        execute_script(config)


def execute_script(config):
    """Replaces this process by the script."""
    folder = Path.cwd()
    if not folder.is_relative_to(REPOSITORY):
        raise pytest.UsageError(f"start pytest in {REPOSITORY} or below it")
    command = [SCRIPT, "--tarn", find_program(config, "tarn", "asan", "dev", "release")]
    if release := find_program(config, "release_tarn", "release"):
        command += ["--release-tarn", release]
    if list_groups := config.option.list_groups or next(REPOSITORY.glob("build/*/tests/**/list_groups"), None):
        command += ["--list-groups", list_groups]
    command += ["--results", REPOSITORY / "build/end_to_end", "--directory", folder.relative_to(REPOSITORY),
                "--workers" if getattr(config.option, "numprocesses", None) else "--isolated",
                "-m", "pytest", "-o", "cache_dir=results/cache",
                *(relative_argument(argument, folder) for argument in config.invocation_params.args)]
    config.pluginmanager.getplugin("capturemanager").suspend(in_=True)
    os.execv(SCRIPT, [str(argument) for argument in command])


def find_program(config, option, *presets):
    """The path in `option`, else that of the first preset in `presets` that was built; None if there is none."""
    if path_option := getattr(config.option, option):
        if not Path(path_option).is_file():
            raise pytest.UsageError(f"there is no program {path_option}")
        return Path(path_option).resolve()
    built = [path for preset in presets if (path := REPOSITORY / BUILT_TARN.format(preset)).is_file()]
    if not built and option == "tarn":
        raise pytest.UsageError("build Tarn first, for example: cmake --preset asan && cmake --build --preset asan")
    return next(iter(built), None)


def relative_argument(argument, folder):
    """Makes a path below tests relative to `folder`: relative paths are the same on the stage."""
    text = str(argument)
    return os.path.relpath(text, folder) if text.startswith(f"{REPOSITORY}/tests/") else text


def distribute(config):
    """Starts the workers of option -n, each in separate namespaces."""
    count = getattr(config.option, "numprocesses", None)
    if not count:
        return
    config.option.numprocesses = None
    if python := os.environ.get("TARN_WORKER_PYTHON"):
        config.option.tx = [f"popen//python={python}"] * (pytest_xdist_auto_num_workers() if count == "auto" else count)
        config.option.dist = "loadscope"
    else:
        config.option.dist = "no"


@pytest.hookimpl(optionalhook=True)
def pytest_xdist_auto_num_workers():
    """The number of workers for "-n auto". The tests wait most of the time, but each desktop takes memory."""
    return min(2 * os.cpu_count(), 8)


@pytest.hookimpl(optionalhook=True)
def pytest_xdist_make_scheduler(config, log):
    """The tests of a class share a desktop, so they run in the same worker; functions are distributed one by one."""
    from xdist.scheduler import LoadScopeScheduling

    class ClassScheduling(LoadScopeScheduling):
        def _split_scope(self, nodeid):
            scope, _, _ = nodeid.rpartition("::")
            return scope if "::" in scope else nodeid

    return ClassScheduling(config, log)


def pytest_collection_modifyitems(items):
    """Sorts the tests: "long" first, "machine_wide" last, because these wait until no other test runs."""
    items.sort(key=lambda item: 0 if item.get_closest_marker("long") else
               2 if item.get_closest_marker("machine_wide") else 1)


@pytest.fixture(scope="session", autouse=True)
def processes():
    """Ends all processes that the tests have started."""
    if not HAS_STAGE:
        pytest.exit("pytest must be started with the folder as argument: pytest tests/end_to_end", 2)
    with all_ended_afterwards():
        programs.start_background(os.environ)
        yield


@pytest.fixture(scope="class", autouse=True)
def machine_lock(request):
    """Tests marked machine_wide affect all workers. They run while no other test runs."""
    operation = fcntl.LOCK_EX if request.node.get_closest_marker("machine_wide") else fcntl.LOCK_SH
    with open(stage.STAGE / "work/machine.lock", "ab") as lock:
        fcntl.flock(lock, operation)
        yield


@pytest.fixture(scope="class", autouse=True)
def program(request):
    """Chooses the program under test for a class, or for a test outside of classes."""
    if not request.node.get_closest_marker("release_build"):
        programs.choose_program(stage.TARN)
    elif stage.RELEASE_TARN.exists():
        programs.choose_program(stage.RELEASE_TARN)
    else:
        pytest.skip("NOT TESTED: there is no program without sanitizers; build the release preset, or pass "
                    "its path with --release-tarn")
