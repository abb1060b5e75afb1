# SPDX-FileCopyrightText: 2026 The Tarn authors
# SPDX-License-Identifier: MIT
"""The settings files of the virtual desktop."""

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


def desktop_settings(host, scheme):
    """The texts of the settings files, by their names below ~/.config."""
    panel = {name: text.replace("@DARK@", "true" if scheme == "dark" else "false")
             for name, text in host.settings.items()}
    return panel | {"xfce4/xfconf/xfce-perchannel-xml/xfwm4.xml": WINDOW_MANAGER,
                    "gtk-3.0/settings.ini": TOOLKIT,
                    "fontconfig/fonts.conf": FONTS}
