# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""Panels that show status items: their commands and settings."""

from dataclasses import dataclass, field

PANEL_DEPTH = 28  # pixels; also in the settings below

XFCE_PANEL = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="@DARK@"/>
    <property name="panel-1" type="empty">
      <property name="mode" type="uint" value="@MODE@"/>
      <property name="position" type="string" value="@POSITION@"/>
      <property name="output-name" type="string" value="@OUTPUT@"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="28"/>
      <property name="icon-size" type="uint" value="16"/>
      <property name="enter-opacity" type="uint" value="100"/>
      <property name="plugin-ids" type="array">
        @PLUGINS@
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="tasklist">
      <property name="flat-buttons" type="bool" value="true"/>
      <property name="show-handle" type="bool" value="false"/>
    </property>
    <property name="plugin-2" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-3" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
      <property name="icon-size" type="int" value="18"/>
      <property name="menu-is-primary" type="bool" value="false"/>
    </property>
    <property name="plugin-4" type="string" value="clock">
      <property name="mode" type="uint" value="2"/>
      <property name="digital-layout" type="uint" value="3"/>
      <property name="digital-time-format" type="string" value="  %a %H:%M  "/>
      <property name="digital-time-font" type="string" value="Inter Medium 10"/>
    </property>
  </property>
</channel>
"""
XFCE_SETTINGS = "xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"
XFCE_POSITIONS = {"top": "p=6;x=0;y=0", "bottom": "p=8;x=0;y=0", "left": "p=6;x=0;y=0", "right": "p=2;x=0;y=0"}
# Numbers of the plugins in XFCE_PANEL.
XFCE_TASKS, XFCE_SPACE, XFCE_ITEMS, XFCE_CLOCK = 1, 2, 3, 4

LXQT_PANEL = """[General]
__userfile__=true
panels=panel1

[panel1]
alignment=-1
desktop=0
hidable=false
iconSize=18
lineCount=1
lockPanel=true
panelSize=28
plugins=spacer, statusnotifier
position=Top
reserve-space=true
width=100
width-percent=true

[spacer]
alignment=Left
expandable=true
type=spacer

[statusnotifier]
alignment=Right
type=statusnotifier
"""

MATE_PANEL = """[org/mate/panel/general]
toplevel-id-list=['top']
object-id-list=['notification-area']

[org/mate/panel/toplevels/top]
expand=true
orientation='top'
size=28

[org/mate/panel/objects/notification-area]
object-type='applet'
applet-iid='NotificationAreaAppletFactory::NotificationArea'
toplevel-id='top'
position=0
relative-to-edge='end'
locked=true
"""

WAYBAR_CONFIGURATION = """{
  "layer": "top",
  "position": "top",
  "height": 28,
  "modules-right": ["tray"],
  "tray": {"icon-size": 18, "spacing": 8}
}
"""
WAYBAR_STYLE = """* { font-family: Inter; font-size: 13px; }
window#waybar { background: #f3f3f4; }
#tray { margin: 0 8px; }
"""


@dataclass(frozen=True)
class Host:
    """A panel that shows status items. `settings` are file contents by path below ~/.config, where "@DARK@" becomes
    "true" on a dark desktop. With `has_watcher` items are registered over D-Bus, otherwise they are embedded windows.
    With `keeps_proportions` the panel shows wide icons, so Tarn shows the figure beside the circle."""

    name: str
    command: tuple
    settings: dict = field(default_factory=dict)
    environment: dict = field(default_factory=dict)
    has_watcher: bool = True
    keeps_proportions: bool = False
    edge: str = "top"


def xfce(*plugins, edge="top", output="Automatic", environment=None):
    """xfce4-panel at an edge of a monitor with these plugins, from left to right or from top to bottom."""
    vertical = edge in ("left", "right")
    values = {"@MODE@": str(int(vertical)), "@POSITION@": XFCE_POSITIONS[edge], "@OUTPUT@": output,
              "@PLUGINS@": "".join(f'<value type="int" value="{plugin}"/>' for plugin in plugins)}
    panel = XFCE_PANEL
    for placeholder, value in values.items():
        panel = panel.replace(placeholder, value)
    return Host("xfce4-panel", ("xfce4-panel", "--disable-wm-check"), {XFCE_SETTINGS: panel}, environment or {},
                edge=edge)


XFCE = xfce(XFCE_TASKS, XFCE_SPACE, XFCE_ITEMS, XFCE_CLOCK)
XFCE_ALONE = xfce(XFCE_SPACE, XFCE_ITEMS)
LXQT = Host("lxqt-panel", ("lxqt-panel",), {"lxqt/panel.conf": LXQT_PANEL})
MATE = Host("mate-panel", ("mate-panel",), {"glib-2.0/settings/keyfile": MATE_PANEL}, {"GSETTINGS_BACKEND": "keyfile"},
            keeps_proportions=True)
TRAYER = Host("trayer", ("trayer", "--edge", "top", "--height", str(PANEL_DEPTH), "--SetPartialStrut", "true"),
              has_watcher=False)
WAYBAR = Host("waybar", ("waybar",), {"waybar/config": WAYBAR_CONFIGURATION, "waybar/style.css": WAYBAR_STYLE},
              keeps_proportions=True)
