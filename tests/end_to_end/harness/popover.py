# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Reads Tarn's popover through its accessible objects, and operates it with pointer and keys."""

import re
from dataclasses import dataclass

from harness.accessibility import Node
from harness.texts import BYTES, PERCENT
from harness.processes import wait_until

TABS = ("Memory", "CPU", "System")
TOGGLE = "Show frontmost app in menu bar"
ROW = re.compile(rf"(?P<name>.+), (?P<value>{BYTES}|{PERCENT})", re.DOTALL)
PROCESS = re.compile(r"·\s*PID (?P<pid>\d+)")
BUTTONS = {"push button", "toggle button", "button"}
TEXTS = {"label", "static", "text", "paragraph", "link"}


@dataclass(frozen=True)
class Row:
    """A row of the list. `expanded` is None if the row cannot be expanded."""

    name: str
    value: str
    expanded: bool | None
    node: Node


@dataclass(frozen=True)
class Content:
    """The content of the popover at one moment."""

    texts: list
    rows: list
    tabs: dict
    toggle: Node
    quit: Node
    link: Node

    @property
    def tab(self):
        """The name of the selected tab."""
        return next((name for name, node in self.tabs.items() if node.states & {"selected", "checked"}), None)

    def row(self, name):
        return next((row for row in self.rows if row.name == name), None)

    def process_lines(self):
        """The pids of the processes in expanded rows, from top to bottom."""
        return [int(match["pid"]) for text in self.texts if (match := PROCESS.search(text))]

    def text_matching(self, pattern):
        """The match of the first text that matches `pattern` completely; None if there is none."""
        return next((match for text in self.texts if (match := re.fullmatch(pattern, text, re.DOTALL))), None)


def _expanded(states):
    if "expanded" in states:
        return True
    return False if states & {"expandable", "collapsed"} else None


def content_of(tree):
    """The content of the popover in a tree of accessible objects; None while it is closed."""
    shown = [node for node in tree.walk() if "showing" in node.states] if tree else []
    quit_button = next((node for node in shown if node.name == "Quit" and node.role in BUTTONS), None)
    toggle = next((node for node in shown if node.name == TOGGLE), None)
    if not quit_button or not toggle:
        return None
    rows = [Row(match["name"], match["value"], _expanded(node.states), node) for node in shown
            if node.role in BUTTONS and (match := ROW.fullmatch(node.name))]
    rows.sort(key=lambda row: row.node.extents()[1])
    tabs = {node.name: node for node in shown if node.name in TABS and node.role not in TEXTS}
    texts = [node.name for node in shown if node.role in TEXTS and node.name]
    link = next((node for node in shown if node.role == "link"), None)
    return Content(texts, rows, tabs, toggle, quit_button, link)


class Popover:
    """The popover of the Tarn process `pid`, opened and closed by clicks on `item`."""

    def __init__(self, desktop, pid, item):
        self._desktop = desktop
        self._pid = pid
        self._item = item

    def read(self):
        """The content of the popover; None while the popover is closed."""
        return content_of(self._desktop.accessibility.tree_of(self._pid))

    def shows(self, condition):
        """Whether the popover is open and `condition` holds for its content."""
        content = self.read()
        return content is not None and condition(content)

    def wait_for(self, condition, what, timeout=15.0):
        """Waits for content for which `condition` holds and returns it. `what` is for the error message."""

        def matching():
            content = self.read()
            return content if content and condition(content) else None

        return wait_until(matching, what, timeout, interval=0.1)

    def open(self):
        """Opens the popover if it is closed. Waits for the first figures and returns the content."""
        if not self.read():
            self._desktop.click(self._item.position())
        return self.wait_for(lambda content: content.rows or content.tab == "System", "the popover is filled")

    def wait_until_closed(self):
        wait_until(lambda: self.read() is None, "the popover is closed", timeout=5)

    def choose_tab(self, name):
        """Clicks on a tab, waits until it shows, and returns the content."""
        content = self.open()
        if content.tab != name:
            self._desktop.click(content.tabs[name].centre())
        return self.wait_for(lambda content: content.tab == name, f"the tab {name} shows", timeout=5)

    def click_until(self, find, outcome, what):
        """Clicks on the node that `find` returns until `outcome()` holds. Repeats the click, because the node moves
        if the list is reordered before the click. `what` is for the error message."""
        for attempt in range(3):
            self._desktop.click(self._desktop.on_screen(self._pid, find(self.open()).centre()))
            try:
                return wait_until(outcome, what, timeout=8)
            except TimeoutError:
                if attempt == 2:
                    raise

    def click_row(self, name):
        """Clicks on the row `name`, waits until it is expanded or collapsed, and returns the content."""
        for _ in range(3):
            before = self.wait_for(lambda content: content.row(name), f"a row {name} shows")
            expanded = before.row(name).expanded
            self._desktop.click(before.row(name).node.centre())
            try:
                return self.wait_for(lambda content: content.row(name) and content.row(name).expanded != expanded,
                                     f"the row {name} reacts to a click", timeout=2)
            except TimeoutError:
                # The list was reordered before the click, so another row was expanded. Collapse that row and try again.
                self._collapse_rows_expanded_since(before)
        raise TimeoutError(f"the row {name} does not react to clicks")

    def _collapse_rows_expanded_since(self, before):
        for row in self.open().rows:
            earlier = before.row(row.name)
            if row.expanded and earlier and not earlier.expanded:
                self._desktop.click(row.node.centre())
