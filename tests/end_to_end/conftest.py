# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Runs pytest on a stage: as an ordinary user, in namespaces of its own, see scripts/on_virtual_desktop.sh.

"pytest tests/end_to_end" replaces itself by that script, which starts pytest again with the same arguments. There
TARN_STAGE is set."""

import fcntl
import os
from pathlib import Path

import pytest

from harness import programs, stage
from harness.processes import all_ended_afterwards

REPOSITORY = Path(__file__).parents[2]
SCRIPT = REPOSITORY / "scripts/on_virtual_desktop.sh"
IS_STAGED = "TARN_STAGE" in os.environ
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
    if IS_STAGED:
        distribute(config)
    elif not (config.option.collectonly or config.option.help or config.option.version or config.option.markers
              or config.option.showfixtures or config.option.show_fixtures_per_test):
        enter_stage(config)


def enter_stage(config):
    """Replaces this process by the script, which starts pytest on the stage."""
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
                *(staged_argument(word, folder) for word in config.invocation_params.args)]
    config.pluginmanager.getplugin("capturemanager").suspend(in_=True)
    os.execv(SCRIPT, [str(word) for word in command])


def find_program(config, option, *presets):
    """The path that an option gives, else the first built program; None if there is none."""
    if given := getattr(config.option, option):
        if not Path(given).is_file():
            raise pytest.UsageError(f"there is no program {given}")
        return Path(given).resolve()
    built = [path for preset in presets if (path := REPOSITORY / BUILT_TARN.format(preset)).is_file()]
    if not built and option == "tarn":
        raise pytest.UsageError("build Tarn first, for example: cmake --preset asan && cmake --build --preset asan")
    return next(iter(built), None)


def staged_argument(word, folder):
    """A path in the repository as a relative one, which is the same on the stage."""
    word = str(word)
    return os.path.relpath(word, folder) if word.startswith(f"{REPOSITORY}/tests/") else word


def distribute(config):
    """With -n, starts the workers in namespaces of their own."""
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
    """Long tests first, and those last that wait until no other test runs."""
    items.sort(key=lambda item: 0 if item.get_closest_marker("long") else
               2 if item.get_closest_marker("machine_wide") else 1)


@pytest.fixture(scope="session", autouse=True)
def processes():
    """No process outlives the tests."""
    if not IS_STAGED:
        pytest.exit("Name the folder, so that the tests find their options: pytest tests/end_to_end", 2)
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
        pytest.skip("NOT TESTED: there is no program without sanitizers; build the release preset, or name it by "
                    "--release-tarn")
