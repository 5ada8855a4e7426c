#!/usr/bin/env python3
"""Writes the toolkit's SVG icons (light theme, plus dark variants where a colour changes) and
the resource file that lists them together with the themes.

Run from anywhere: python3 src/liolite/tools/generate_icons.py
The generated files are committed; run again after changing a shape or a colour."""

import os

HERE = os.path.dirname(os.path.abspath(__file__))
RES = os.path.join(HERE, "..", "resources")
ICONS = os.path.join(RES, "icons")

STROKE = 'fill="none" stroke="{c}" stroke-width="1.3" stroke-linecap="round" stroke-linejoin="round"'

# Colours per state, per theme.
GREY = {
    "light": {"normal": "#5F6B7F", "hover": "#417FF9", "click": "#2F6AE0", "disable": "#C0C5CE"},
    "dark": {"normal": "#AEB4BF", "hover": "#6C9BFA", "click": "#417FF9", "disable": "#565B66"},
}
ACCENT = {
    "light": {"normal": "#417FF9", "hover": "#5B91FA", "click": "#2F6AE0", "disable": "#B3CCFC"},
    "dark": {"normal": "#5B91FA", "hover": "#7EA6FB", "click": "#417FF9", "disable": "#2C4170"},
}
ON_ACCENT = {
    "light": {"normal": "#FFFFFF", "hover": "#FFFFFF", "click": "#E6EEFF", "disable": "#FFFFFF"},
    "dark": {"normal": "#FFFFFF", "hover": "#FFFFFF", "click": "#E6EEFF", "disable": "#AEB4BF"},
}


def svg(size, body, view=None):
    view = view or size
    return ('<svg xmlns="http://www.w3.org/2000/svg" width="{s}" height="{s}" viewBox="0 0 {v} {v}">\n'
            '{b}\n</svg>\n').format(s=size, v=view, b=body)


def stroke(paths, c):
    return "\n".join('  <path d="{}" {}/>'.format(p, STROKE.format(c=c)) for p in paths)


def dots(points, c, r=1.1):
    return "\n".join('  <circle cx="{}" cy="{}" r="{}" fill="{}"/>'.format(x, y, r, c) for x, y in points)


# 16 px stroke glyphs.
GLYPHS = {
    "addfile": lambda c: stroke(["M9 1.75H4.25a1 1 0 0 0-1 1v10.5a1 1 0 0 0 1 1h7.5a1 1 0 0 0 1-1V5.5z",
                                 "M9 1.75V5.5h3.75", "M8 7.5v5", "M5.5 10h5"], c),
    "clearselect": lambda c: stroke(["M2 4h7", "M2 8h5", "M2 12h4", "M9.5 9l4.5 4.5", "M14 9l-4.5 4.5"], c),
    "delete": lambda c: stroke(["M2.5 4h11", "M6 4V2.5h4V4", "M3.9 4l.8 9.5h6.6l.8-9.5", "M6.6 6.5v4.5",
                                "M9.4 6.5v4.5"], c),
    "drag": lambda c: dots([(6, 3.5), (10, 3.5), (6, 8), (10, 8), (6, 12.5), (10, 12.5)], c),
    "opendir": lambda c: stroke(["M1.75 4v8.25a1 1 0 0 0 1 1h10.5a1 1 0 0 0 1-1V6.25a1 1 0 0 0-1-1H7.75L6.25 3H2.75"
                                 "a1 1 0 0 0-1 1z", "M1.75 7.25h12.5"], c),
    "openfile": lambda c: stroke(["M9 1.75H4.25a1 1 0 0 0-1 1v10.5a1 1 0 0 0 1 1h7.5a1 1 0 0 0 1-1V5.5z",
                                  "M9 1.75V5.5h3.75", "M6 11.5l4-4", "M7 7.5h3v3"], c),
    "reload": lambda c: stroke(["M13 8a5 5 0 1 1-1.46-3.54", "M12.2 1.9v2.8H9.4"], c),
    "more": lambda c: dots([(3.5, 8), (8, 8), (12.5, 8)], c, 1.2),
    "merge": lambda c: stroke(["M2 3.5h2.5l3.5 4.5h6", "M2 12.5h2.5L8 8", "M11.5 5.5L14 8l-2.5 2.5"], c),
    "close": lambda c: stroke(["M4 4l8 8", "M12 4l-8 8"], c),
}

# Icon-set names -> (glyph, colour family, state).
STATEFUL = [
    ("vmaddfile_button", "addfile", ACCENT, ["normal", "hover", "click"]),
    ("vmclear_select_button", "clearselect", GREY, ["normal", "hover", "click", "disable"]),
    ("vmdelete_item", "delete", GREY, ["normal", "hover", "click"]),
    ("vmdrag_item", "drag", GREY, ["normal", "hover", "click"]),
    ("vmopendir_item", "opendir", GREY, ["normal", "hover", "click"]),
    ("vmopenfile_item", "openfile", GREY, ["normal", "hover", "click"]),
    ("vmmore", "more", GREY, ["normal", "hover", "click", "disable"]),
    ("vmstart_merge", "merge", ON_ACCENT, ["normal", "hover", "click", "disable"]),
]


def write(theme, name, text):
    folder = ICONS if theme == "light" else os.path.join(ICONS, theme)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name + ".svg"), "w") as f:
        f.write(text)
    return name


def reload_names(theme):
    # "vmreload_normal" etc. has no "_button" infix.
    out = []
    for state in ["normal", "hover", "click"]:
        out.append(write(theme, "vmreload_" + state, svg(16, GLYPHS["reload"](GREY[theme][state]))))
    return out


def sort_icons(theme):
    up, down = "M5 6.5l3-3 3 3", "M5 9.5l3 3 3-3"
    g, a = GREY[theme], ACCENT[theme]
    variants = {
        "vmsort_button_normal": (g["normal"], g["normal"]),
        "vmsort_button_asce": (a["normal"], g["disable"]),
        "vmsort_button_desc": (g["disable"], a["normal"]),
    }
    for name, (cu, cd) in variants.items():
        write(theme, name, svg(16, stroke([up], cu) + "\n" + stroke([down], cd)))


def checkbox_icons(theme):
    border, fill = ("#C0C5CE", "#FFFFFF") if theme == "light" else ("#565B66", "#26282C")
    accent = ACCENT["light"]["normal"]
    box = '  <rect x="1.5" y="1.5" width="13" height="13" rx="3" fill="{}" stroke="{}" stroke-width="1"/>'
    write(theme, "vmcheckbox_unchecked", svg(16, box.format(fill, border)))
    write(theme, "vmcheckbox_checked", svg(16, box.format(accent, accent) + "\n"
                                          + stroke(["M4.5 8.2L7 10.7l4.5-5.1"], "#FFFFFF").replace("1.3", "1.6")))
    write(theme, "vmcheckbox_partchecked", svg(16, box.format(accent, accent) + "\n"
                                              + stroke(["M4.5 8h7"], "#FFFFFF").replace("1.3", "1.6")))


def home_addfile(theme):
    tints = {"light": ("#EEF3FF", "#E1EBFF", "#D2E1FF"), "dark": ("#2A3244", "#313B52", "#38445F")}
    accents = ACCENT[theme]
    for state, tint, colour in zip(["", "_hover", "_click"], tints[theme],
                                   [accents["normal"], accents["hover"], accents["click"]]):
        body = ('  <circle cx="50" cy="50" r="46" fill="{t}"/>\n'
                '  <path d="M55 26H37a3 3 0 0 0-3 3v42a3 3 0 0 0 3 3h26a3 3 0 0 0 3-3V37z" fill="none" '
                'stroke="{c}" stroke-width="3" stroke-linejoin="round"/>\n'
                '  <path d="M55 26v11h11" fill="none" stroke="{c}" stroke-width="3" stroke-linejoin="round"/>\n'
                '  <circle cx="66" cy="68" r="12" fill="{c}"/>\n'
                '  <path d="M66 62v12M60 68h12" stroke="#FFFFFF" stroke-width="3" stroke-linecap="round"/>'
                ).format(t=tint, c=colour)
        write(theme, "home_addfile" + state, svg(100, body))


def dialog_icons(theme):
    glyphs = {
        "vlite_dlg_info": ("#417FF9", ["M10 9v5"], [(10, 6.2)]),
        "vlite_dlg_question": ("#417FF9", ["M7.6 7.6a2.4 2.4 0 1 1 3.4 2.2c-.6.3-1 .8-1 1.5v.4"], [(10, 14.3)]),
        "vlite_dlg_warning": ("#F5A623", ["M10 5.5v5.5"], [(10, 14.2)]),
        "vlite_dlg_failure": ("#E5484D", ["M7 7l6 6", "M13 7l-6 6"], []),
        "vlite_dlg_success": ("#2DB36A", ["M6 10.3l2.7 2.7L14 7.4"], []),
    }
    for name, (colour, paths, points) in glyphs.items():
        body = '  <circle cx="10" cy="10" r="9" fill="{}"/>\n'.format(colour)
        body += stroke(paths, "#FFFFFF").replace("1.3", "1.8")
        if points:
            body += "\n" + dots(points, "#FFFFFF", 1.1)
        write(theme, name, svg(20, body))


def close_icons(theme):
    colours = {"light": ("#8A93A6", "#36425A", "#36425A"), "dark": ("#8A93A6", "#E4E7EC", "#E4E7EC")}
    for state, c in zip(["", "_hover", "_pressed"], colours[theme]):
        write(theme, "vlite_dlg_close" + state, svg(16, GLYPHS["close"](c)))


def combo_arrows(theme):
    c = GREY[theme]["normal"]
    write(theme, "vlite_combo_arrow", svg(10, stroke(["M2 3.5l3 3 3-3"], c)))
    write(theme, "vlite_combo_arrow_up", svg(10, stroke(["M2 6.5l3-3 3 3"], c)))


def spin_arrows():
    folder = os.path.join(RES, "shared", "icons")
    os.makedirs(folder, exist_ok=True)
    mid = "#8A93A6"
    files = {
        "spinbox_stroke_uparrow_l_8": (["M1.5 5.25L4 2.75l2.5 2.5"], 1.0),
        "spinbox_stroke_uparrow_l_8_disable": (["M1.5 5.25L4 2.75l2.5 2.5"], 0.4),
        "spinbox_stroke_downarrow_l_8": (["M1.5 2.75L4 5.25l2.5-2.5"], 1.0),
        "spinbox_stroke_downarrow_l_8_disable": (["M1.5 2.75L4 5.25l2.5-2.5"], 0.4),
    }
    names = []
    for name, (paths, opacity) in files.items():
        body = stroke(paths, mid).replace("/>", ' opacity="{}"/>'.format(opacity))
        with open(os.path.join(folder, name + ".svg"), "w") as f:
            f.write(svg(8, body))
        names.append("shared/icons/{}.svg".format(name))
    return names


def main():
    for theme in ["light", "dark"]:
        for base, glyph, family, states in STATEFUL:
            for state in states:
                write(theme, "{}_{}".format(base, state), svg(16, GLYPHS[glyph](family[theme][state])))
        reload_names(theme)
        sort_icons(theme)
        checkbox_icons(theme)
        home_addfile(theme)
        dialog_icons(theme)
        close_icons(theme)
        combo_arrows(theme)
    shared = spin_arrows()

    # The dialog icons keep their colours on both themes: drop identical dark copies.
    files = []
    for name in sorted(os.listdir(ICONS)):
        if name.endswith(".svg"):
            files.append("icons/" + name)
    for name in sorted(os.listdir(os.path.join(ICONS, "dark"))):
        dark = os.path.join(ICONS, "dark", name)
        with open(dark) as a, open(os.path.join(ICONS, name)) as b:
            same = a.read() == b.read()
        if same:
            os.remove(dark)
        else:
            files.append("icons/dark/" + name)

    with open(os.path.join(RES, "liolite.qrc"), "w") as f:
        f.write("<!DOCTYPE RCC>\n<RCC version=\"1.0\">\n")
        f.write("  <qresource prefix=\"/liolite\">\n")
        f.write("    <file>themes/light.json</file>\n    <file>themes/dark.json</file>\n")
        for path in files:
            f.write("    <file>{}</file>\n".format(path))
        f.write("  </qresource>\n  <qresource prefix=\"/\">\n")
        for path in shared:
            f.write("    <file>{}</file>\n".format(path))
        f.write("  </qresource>\n</RCC>\n")


if __name__ == "__main__":
    main()
