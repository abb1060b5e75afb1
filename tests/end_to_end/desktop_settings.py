# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The settings files of the virtual desktop: one panel at the top, a status area and a clock at its right end."""

PANEL = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="{dark}"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="28"/>
      <property name="icon-size" type="uint" value="16"/>
      <property name="enter-opacity" type="uint" value="100"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
        <value type="int" value="3"/>
        <value type="int" value="4"/>
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

WINDOW_MANAGER = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfwm4" version="1.0">
  <property name="general" type="empty">
    <property name="title_font" type="string" value="Inter Semi-Bold 9"/>
    <property name="theme" type="string" value="Default"/>
    <property name="workspace_count" type="int" value="1"/>
    <property name="placement_mode" type="string" value="center"/>
  </property>
</channel>
"""

TOOLKIT = """[Settings]
gtk-theme-name=Adwaita
gtk-icon-theme-name=Adwaita
gtk-font-name=Inter 10
"""

FONTS = """<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
  <include ignore_missing="yes">/etc/fonts/fonts.conf</include>
  <alias binding="same">
    <family>sans-serif</family>
    <prefer><family>Inter</family><family>Noto Color Emoji</family></prefer>
  </alias>
</fontconfig>
"""

WALLPAPER = {"light": "gradient:#d6e0ec-#b9c8d9", "dark": "gradient:#26313f-#151c26"}


def write_settings(configuration, scheme):
    """Writes the files below `configuration`, a folder that stands for ~/.config."""
    panel = PANEL.format(dark="true" if scheme == "dark" else "false")
    files = {"xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml": panel,
             "xfce4/xfconf/xfce-perchannel-xml/xfwm4.xml": WINDOW_MANAGER,
             "gtk-3.0/settings.ini": TOOLKIT,
             "fontconfig/fonts.conf": FONTS}
    for name, text in files.items():
        path = configuration / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
