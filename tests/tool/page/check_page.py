"""Checks a page of tqx report in Chromium, through ChromeDriver's own protocol (W3C WebDriver).

usage: check_page.py [--pictures FOLDER] PAGE REPORT_JSON
       check_page.py --self-test PAGE REPORT_JSON

The report is of two logs, the first of which has two antennas. With --self-test it plants a fault
for each thing that is checked into copies of the page, and expects that it is found.
"""

import argparse
import base64
import json
import os
import pathlib
import socket
import subprocess
import sys
import tempfile
import time
import urllib.error
import urllib.request


class Browser:
    def __init__(self, folder):
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            port = probe.getsockname()[1]
        self.driver = subprocess.Popen(["chromedriver", f"--port={port}"], stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
        self.root = f"http://127.0.0.1:{port}"
        for _ in range(100):
            try:
                if self.call("GET", "/status")["ready"]:
                    break
            except OSError:
                pass
            time.sleep(0.1)
        arguments = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                     "--disable-background-networking", "--disable-component-update", "--disable-sync",
                     "--disable-dev-shm-usage", "--window-size=1200,1000", f"--user-data-dir={folder}"]
        capabilities = {"browserName": "chrome", "goog:chromeOptions": {"args": arguments},
                        "goog:loggingPrefs": {"browser": "ALL"}}
        session = self.call("POST", "/session", {"capabilities": {"alwaysMatch": capabilities}})
        self.root += "/session/" + session["sessionId"]

    def call(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.root + path, data, {"Content-Type": "application/json"},
                                         method=method)
        try:
            with urllib.request.urlopen(request, timeout=60) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(error.read().decode()) from error

    def run(self, script, *arguments):
        return self.call("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def devtools(self, command, **parameters):
        return self.call("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def close(self):
        try:
            self.call("DELETE", "")
        finally:
            self.driver.terminate()
            self.driver.wait(timeout=20)


NARROW = 390  # pixels, of a telephone

failures = []
awaited = None  # a part of the failure after which no more need be checked


class Found(Exception):
    pass


def expect(condition, what):
    if not condition:
        failures.append(what)
        if awaited and awaited in what:
            raise Found


def check_cell(cell, value, what):
    """The number that a cell shows and sorts by is the one of --json, to the digits shown."""
    text, exact = cell
    if value is None:
        expect(text == "–" and exact is None, f"{what} is not known: {text}")
        return
    expect(exact is not None and float(exact) == value, f"{what}: {exact} is {value}")
    expect(abs(float(text) - value) <= max(abs(value) * 5e-4, 0.06 if abs(value) >= 100 else 0),
           f"{what}: {text} is about {value}")


def rows_of(browser, table):
    """[(key of the row, [(text, number or None) of a cell])]"""
    return browser.run("return [...document.querySelectorAll(arguments[0] + ' tbody tr')].map(row => "
                       "[row.dataset.key, [...row.children].map(cell => "
                       "[cell.textContent, cell.dataset.value ?? null])])", table)


def check_figures(browser, report):
    rows = rows_of(browser, "#figures")
    keys = list(report["logs"][0]["figures"])
    expect([key for key, _ in rows] == keys, "the table has all figures of --json")
    for key, cells in rows:
        for cell, log in zip(cells[1:-1], report["logs"]):
            check_cell(cell, log["figures"][key], key)


def check_lists(browser, of, suffix):
    """Tables of signals and satellites."""
    for name, first, keys in (
            ("signals", "signal", ["observations", "cn0", "cn0_deviation", "multipath", "slips"]),
            ("satellites", "satellite", ["epochs", "highest", "cn0", "multipath", "slips"])):
        rows = {tuple(text for text, _ in cells[:-len(keys)]): cells[-len(keys):]
                for _, cells in rows_of(browser, f"#{name}{suffix}")}
        expect(len(rows) == len(of[name]), f"{name}{suffix}: {len(rows)} rows")
        for each in of[name]:
            cells = [cells for labels, cells in rows.items() if labels[-1] == each[first]
                     and (name == "satellites" or labels[0] == SYSTEMS[each["system"]])]
            expect(len(cells) == 1, f"{name}{suffix}: {each[first]}")
            for cell, key in zip(cells[0] if cells else [], keys):
                check_cell(cell, each[key], f"{name}{suffix} {each[first]} {key}")


SYSTEMS = {"G": "GPS", "R": "GLONASS", "E": "Galileo", "C": "BeiDou", "J": "QZSS", "I": "NavIC",
           "S": "SBAS"}


def check_antennas(browser, log):
    others = log["other_antennas"]
    rows = rows_of(browser, "#antennas")
    expect([key for key, _ in rows] == (list(others[0]["figures"]) if others else []),
           "figures of the antennas")
    for key, cells in rows:
        for cell, figures in zip(cells[1:], [log["figures"], *(o["figures"] for o in others)]):
            check_cell(cell, figures[key], f"antennas: {key}")
    for other in others:
        check_lists(browser, other, f"_{other['antenna']}")


def check_log(browser, log):
    verdicts = browser.run("return [...document.querySelectorAll('.verdict')].map(card => "
                           "[card.dataset.area, card.querySelector('b').textContent, "
                           "card.querySelector('p').textContent, card.querySelector('small').textContent])")
    expect(verdicts == [[v["area"], v["grade"], v["words"], v["threshold"]] for v in log["verdicts"]],
           "verdicts")
    texts = browser.run("return [...document.querySelectorAll('#findings tbody tr')]"
                        ".map(row => row.lastChild.textContent)")
    expect(texts == [finding["text"] for finding in log["findings"]], f"findings: {texts}")
    shown = dict(browser.run(
        "return [...document.querySelectorAll('.plot[data-plot]')].map(plot => {"
        "const canvas = plot.querySelector('canvas');"
        "const pixels = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;"
        "const colors = new Set(); for (let i = 0; i < pixels.length; i += 4) "
        "colors.add(pixels[i] << 16 | pixels[i + 1] << 8 | pixels[i + 2]);"
        "return [plot.dataset.plot, colors.size]; })"))
    of_antennas = [f"{key}_{other['antenna']}" for other in log["other_antennas"]
                   for key in ("satellites", "cn0", "multipath")]
    for key in ("satellites", "cn0", "multipath", "used", "dop", "agc", "load", "temperature",
                "cn0_by_elevation", *of_antennas):
        expect(shown.get(key, 0) > 5, f"plot {key} is drawn: {shown.get(key)}")
    skies = browser.run("return [...document.querySelectorAll('[data-sky] path')].length")
    expect(skies > 15, f"satellites in the sky plots: {skies}")
    check_lists(browser, log, "")
    check_antennas(browser, log)


def check_sorting(browser):
    """Every column of every table, up and down; texts by their letters, numbers by their values, and
    what is not known at the end."""
    wrong = browser.run("""
        const key = (cell) => cell.dataset.value === undefined ? cell.textContent : Number(cell.dataset.value);
        const wrong = [];
        let columns = 0;
        for (const table of document.querySelectorAll('table[id]')) {
            [...table.querySelectorAll('thead th')].forEach((head, i) => {
                ++columns;
                for (const sign of [1, -1]) {
                    head.click();
                    const keys = [...table.querySelectorAll('tbody tr')].map(row => key(row.children[i]));
                    const rank = (x) => typeof x === 'number' ? 0 : 1;
                    for (let k = 1; k < keys.length; ++k) {
                        const [a, b] = [keys[k - 1], keys[k]];
                        if (rank(a) > rank(b) || (rank(a) === rank(b) && (a < b ? -1 : a > b ? 1 : 0) * sign > 0))
                            wrong.push(table.id + ' ' + head.textContent + ' ' + a + ' ' + b);
                    }
                }
            });
        }
        return [columns, wrong.slice(0, 3)];""")
    expect(wrong[0] > 30 and wrong[1] == [], f"tables sort: {wrong}")


def check_zoom(browser):
    """Dragging over one plot zooms all of them to the same stretch."""
    limits = ("return [...document.querySelectorAll('.plot[data-plot]')].filter(plot => plot.chart)"
              ".map(plot => [plot.chart.scales.x.min, plot.chart.scales.x.max])")
    before = browser.run(limits)
    box = browser.run("const over = document.querySelector('[data-plot=cn0] .u-over');"
                      "if (!over) return null;"
                      "over.scrollIntoView({block: 'center'});"
                      "const box = over.getBoundingClientRect();"
                      "return [Math.round(box.left), Math.round(box.top), Math.round(box.width), Math.round(box.height)]")
    if box is None:
        return expect(False, "there is a plot to zoom")
    left, top, width, height = box
    move = lambda x: {"type": "pointerMove", "x": x, "y": top + height // 2, "duration": 50}
    browser.call("POST", "/actions", {"actions": [
        {"type": "pointer", "id": "mouse", "parameters": {"pointerType": "mouse"}, "actions": [
            move(left + width // 4), {"type": "pointerDown", "button": 0}, move(left + width // 3),
            move(left + width // 2), {"type": "pointerUp", "button": 0}]}]})
    time.sleep(0.3)
    after = browser.run(limits)
    expect(len(before) > 8 and len(set(map(tuple, before))) == 1, "plots begin with the same time axis")
    expect(len(set(map(tuple, after))) == 1, "plots share the time axis when zoomed")
    whole = before[0][1] - before[0][0]
    expect(0.15 * whole < after[0][1] - after[0][0] < 0.4 * whole, f"zoomed to the stretch: {after[0]}")


def emulate(browser, theme, media=""):
    browser.devtools("Emulation.setEmulatedMedia", media=media,
                     features=[{"name": "prefers-color-scheme", "value": theme}])
    time.sleep(0.3)


def luminance(color):
    """Of an rgb() text, relative, as in the guidelines on contrast (WCAG 2.1)."""
    parts = [int(part) / 255 for part in color[4:-1].split(",")]
    parts = [c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4 for c in parts]
    return 0.2126 * parts[0] + 0.7152 * parts[1] + 0.0722 * parts[2]


def contrast(a, b):
    a, b = sorted((luminance(a), luminance(b)))
    return (b + 0.05) / (a + 0.05)


def check_colors(browser, theme, is_dark):
    """Ground, texts that can be read on it, and plots in the colours of the theme."""
    ground, panel, texts, drawn = browser.run("""
        const of = (element, name) => getComputedStyle(element)[name];
        const make = document.createElement('i');
        document.body.append(make);
        make.style.color = 'var(--line)';
        const line = of(make, 'color').match(/\\d+/g).map(Number);
        make.remove();
        const drawn = [...document.querySelectorAll('.plot canvas')].map(canvas => {
            const pixels = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
            for (let i = 0; i < pixels.length; i += 4)
                if (pixels[i] === line[0] && pixels[i + 1] === line[1] && pixels[i + 2] === line[2] && pixels[i + 3] === 255)
                    return true;
            return false;
        });
        const texts = [...document.querySelectorAll('.verdict b, .verdict small, .verdict p, .plot h3, .u-legend th')];
        return [of(document.body, 'backgroundColor'), of(document.querySelector('.verdict'), 'backgroundColor'),
                [of(document.body, 'color'), ...new Set(texts.map(text => of(text, 'color')))], drawn];""")
    for what, color in (("ground", ground), ("panels", panel)):
        expect(luminance(color) < 0.05 if is_dark else luminance(color) > 0.85,
               f"{what} of {theme}: {color}")
    for text in texts:
        expect(contrast(text, panel) >= 4.5, f"{theme}: {text} on {panel} can be read")
    expect(len(drawn) > 8 and all(drawn), f"plots in the colours of {theme}: {drawn}")


def check_overflow(browser, where):
    too_wide = browser.run("return [document.documentElement.scrollWidth, innerWidth]")
    expect(too_wide[0] <= too_wide[1], f"{where}: {too_wide[0]} wide on {too_wide[1]}")


def picture(browser, folder, name):
    if folder:
        image = browser.devtools("Page.captureScreenshot", captureBeyondViewport=True)
        (folder / name).write_bytes(base64.b64decode(image["data"]))


def check_media(browser, folder):
    for theme in ("dark", "light"):
        emulate(browser, theme)
        check_colors(browser, theme, theme == "dark")
        picture(browser, folder, f"{theme}.png")
    check_overflow(browser, "window")
    browser.devtools("Emulation.setDeviceMetricsOverride", width=NARROW, height=800,
                     deviceScaleFactor=1, mobile=False)
    time.sleep(0.5)
    check_overflow(browser, "narrow window")
    picture(browser, folder, "narrow.png")
    browser.devtools("Emulation.clearDeviceMetricsOverride")
    time.sleep(0.5)
    # On paper it is light, whatever the desktop is, and has nothing to press.
    emulate(browser, "dark", "print")
    browser.run("dispatchEvent(new Event('beforeprint'))")
    check_colors(browser, "print", False)
    pressed = browser.run("return [...document.querySelectorAll('button')]"
                          ".filter(button => button.getClientRects().length).length")
    expect(pressed == 0, f"buttons on paper: {pressed}")
    browser.run("dispatchEvent(new Event('afterprint'))")
    emulate(browser, "dark")
    check_colors(browser, "dark after printing", True)
    printed = base64.b64decode(browser.call("POST", "/print", {"background": True}))
    pages = printed.count(b"/Type /Page\n")
    expect(3 <= pages <= 20, f"printed pages: {pages}")
    if folder:
        (folder / "printed.pdf").write_bytes(printed)
    emulate(browser, "light")


def check_file(page):
    size = os.path.getsize(page)
    expect(size < 2e6, f"the page is smaller than 2 MB: {size}")
    for address in ("http://", "https://"):
        expect(f'src="{address}' not in page.read_text(), f"nothing is loaded from {address}")


def check_second(browser, report):
    browser.run("document.querySelectorAll('.tabs button')[1].click()")
    check_log(browser, report["logs"][1])


def check_quiet(browser):
    loaded = browser.run("return performance.getEntriesByType('resource').map(each => each.name)")
    expect(loaded == [], f"the page loads nothing: {loaded}")
    messages = browser.call("POST", "/se/log", {"type": "browser"})
    expect(messages == [], f"messages of the browser: {messages}")


# In this order, on one page.
STEPS = {
    "file": lambda browser, page, report, folder: check_file(page),
    "log": lambda browser, page, report, folder: check_log(browser, report["logs"][0]),
    "figures": lambda browser, page, report, folder: check_figures(browser, report),
    "zoom": lambda browser, page, report, folder: check_zoom(browser),
    "media": lambda browser, page, report, folder: check_media(browser, folder),
    "sorting": lambda browser, page, report, folder: check_sorting(browser),
    "second": lambda browser, page, report, folder: check_second(browser, report),
    "quiet": lambda browser, page, report, folder: check_quiet(browser),
}


def check_page(browser, page, report, folder=None, steps=STEPS):
    """What is wrong with the page."""
    failures.clear()
    browser.call("POST", "/url", {"url": page.resolve().as_uri()})
    for step in steps:
        STEPS[step](browser, page, report, folder)
    return list(failures)


# What is replaced in the page, by what, a part of the failure that must follow, and its step.
FAULTS = [
    ("  show();\n", "  show();\n  console.error('no');\n", "messages of the browser", "quiet"),
    ("  show();\n", "  show();\n  new Image().src = 'http://127.0.0.1:9/';\n", "the page loads nothing", "quiet"),
    ("<noscript>", '<img src="https://localhost:1/"><noscript>', "nothing is loaded from https", "file"),
    ("</body>", "<!--" + " " * 2000000 + "--></body>", "smaller than 2 MB", "file"),
    ("for (const plot of pictures.plots) drawPlot",
     "for (const plot of pictures.plots.slice(1)) drawPlot", "plot satellites is drawn", "log"),
    ("uPlot.join(plot.series.map", "uPlot.join(plot.series.slice(0, 0).map", "is drawn", "log"),
    ('picture.append(line, svg("circle"', 'picture.append(svg("circle"', "sky plots", "log"),
    ("make(\"p\", {}, verdict.words)", "make(\"p\", {}, verdict.area)", "verdicts", "log"),
    ("log.findings.map((finding)", "log.findings.slice(1).map((finding)", "findings", "log"),
    ("isValue ? numberText(cell) : cell)", "isValue ? numberText(cell === null ? null : cell * 1.01) : cell)",
     "is about", "figures"),
    ("td.dataset.value = cell;", "td.dataset.value = Math.round(cell);", "cn0: 44 is", "figures"),
    ("s.cn0_deviation, s.multipath, s.slips])", "s.cn0_deviation, s.slips, s.multipath])", "signals", "log"),
    ("each.figures[figure.key])", "log.figures[figure.key])", "antennas: ", "log"),
    ("(down ? -1 : 1)", "1", "tables sort", "sorting"),
    ("if (isNumber(x) !== isNumber(y)) return", "if (false) return", "tables sort", "sorting"),
    ('sync: {key: "time"', "sync: {key: plot.key", "share the time axis", "zoom"),
    ("drag: {x: true", "drag: {x: false", "zoomed to the stretch", "zoom"),
    ("(prefers-color-scheme: dark) {", "(prefers-color-scheme: none) {", "ground of dark", "media"),
    ('matchMedia("(prefers-color-scheme: dark)").addEventListener("change", show);', "",
     "plots in the colours of dark", "media"),
    ("--faint: #9aa6b5", "--faint: #505a66", "can be read", "media"),
    (".tabs, footer details { display: none; }", "", "buttons on paper", "media"),
    ('document.documentElement.dataset.theme = "light"; show();', "", "panels of print", "media"),
    ("delete document.documentElement.dataset.theme; show();", "", "dark after printing", "media"),
    (".scroll { overflow-x: auto; }", "", "narrow window", "media"),
]


def self_test(browser, page, report, folder):
    global awaited
    whole = page.read_text()
    missed = []
    for old, new, awaited, step in FAULTS:
        if whole.count(old) == 0:
            missed.append(f"{old} is not in the page")
            continue
        faulty = folder / "faulty.html"
        faulty.write_text(whole.replace(old, new))
        try:
            check_page(browser, faulty, report, steps=[step])
            missed.append(f"{old} -> {new[:60]}: not found, but {failures[:3]}")
        except Found:
            browser.devtools("Emulation.clearDeviceMetricsOverride")
            emulate(browser, "light")
    return missed


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--pictures", type=pathlib.Path)
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("page", type=pathlib.Path)
    parser.add_argument("report", type=pathlib.Path)
    arguments = parser.parse_args()
    report = json.loads(arguments.report.read_text())
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        browser = Browser(folder)
        try:
            if arguments.self_test:
                wrong = self_test(browser, arguments.page, report, pathlib.Path(folder))
            else:
                wrong = check_page(browser, arguments.page, report, arguments.pictures)
        finally:
            browser.close()
    for each in wrong:
        print("FAILED:", each, file=sys.stderr)
    what = f"{len(FAULTS)} faults" if arguments.self_test else (
        f"page of {os.path.getsize(arguments.page) / 1e3:.0f} kB")
    print(f"{'failed' if wrong else 'passed'}: {what}")
    return 1 if wrong else 0


sys.exit(main())
