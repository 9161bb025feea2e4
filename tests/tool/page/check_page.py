"""Checks a page of tqx report in Chromium, through ChromeDriver's own protocol (W3C WebDriver).

usage: check_page.py [--pictures FOLDER] PAGE REPORT_JSON
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


failures = []


def expect(condition, what):
    if not condition:
        failures.append(what)
        print("FAILED:", what, file=sys.stderr)


def check_figures(browser, report):
    """Every number in the table of figures is the one of --json, to the digits shown."""
    rows = browser.run("return [...document.querySelectorAll('#figures tbody tr')].map(row => "
                       "[row.dataset.key, ...[...row.children].slice(1, -1).map(cell => "
                       "[cell.textContent, cell.dataset.value ?? null])])")
    keys = list(report["logs"][0]["figures"])
    expect([row[0] for row in rows] == keys, "the table has all figures of --json")
    for key, *cells in rows:
        for (text, exact), log in zip(cells, report["logs"]):
            value = log["figures"][key]
            if value is None:
                expect(text == "–" and exact is None, f"{key} is not known")
            else:
                expect(exact is not None and float(exact) == value, f"{key}: {exact} is {value}")
                expect(abs(float(text) - value) <= max(abs(value) * 5e-4, 0.06 if abs(value) >= 100 else 0),
                       f"{key}: {text} is about {value}")


def check_log(browser, log):
    verdicts = browser.run("return [...document.querySelectorAll('.verdict')].map(card => "
                           "[card.dataset.area, card.querySelector('b').textContent, "
                           "card.querySelector('p').textContent, card.querySelector('small').textContent])")
    expect(verdicts == [[v["area"], v["grade"], v["words"], v["threshold"]] for v in log["verdicts"]],
           "verdicts")
    texts = browser.run("return [...document.querySelectorAll('#findings tbody tr')]"
                        ".map(row => row.lastChild.textContent)")
    expect(texts == [finding["text"] for finding in log["findings"]], f"findings: {texts}")
    plots = browser.run("return [...document.querySelectorAll('.plot[data-plot]')].map(plot => {"
                        "const canvas = plot.querySelector('canvas');"
                        "const pixels = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;"
                        "const colors = new Set(); for (let i = 0; i < pixels.length; i += 4) "
                        "colors.add(pixels[i] << 16 | pixels[i + 1] << 8 | pixels[i + 2]);"
                        "return [plot.dataset.plot, colors.size]; })")
    shown = dict(plots)
    for key in ("satellites", "cn0", "multipath", "used", "dop", "agc", "load", "temperature",
                "cn0_by_elevation"):
        expect(shown.get(key, 0) > 5, f"plot {key} is drawn: {shown.get(key)}")
    skies = browser.run("return [...document.querySelectorAll('[data-sky] path')].length")
    expect(skies > 15, f"satellites in the sky plots: {skies}")


def check_sorting(browser):
    column = ("return [...document.querySelectorAll('#satellites tbody tr')]"
              ".map(row => Number(row.children[3].dataset.value))")
    click = "document.querySelectorAll('#satellites th')[3].click()"
    browser.run(click)
    first = browser.run(column)
    browser.run(click)
    second = browser.run(column)
    expect(len(first) > 10 and first == sorted(first), "sorting ascends")
    expect(second == sorted(first, reverse=True) and second != first, "sorting descends")


def check_zoom(browser):
    """Dragging over one plot zooms all of them to the same stretch."""
    limits = ("return [...document.querySelectorAll('.plot[data-plot]')].filter(plot => plot.chart)"
              ".map(plot => [plot.chart.scales.x.min, plot.chart.scales.x.max])")
    before = browser.run(limits)
    box = browser.run("const over = document.querySelector('[data-plot=cn0] .u-over');"
                      "over.scrollIntoView({block: 'center'});"
                      "const box = over.getBoundingClientRect();"
                      "return [Math.round(box.left), Math.round(box.top), Math.round(box.width), Math.round(box.height)]")
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


def take_pictures(browser, folder):
    for theme in ("light", "dark"):
        browser.devtools("Emulation.setEmulatedMedia",
                         features=[{"name": "prefers-color-scheme", "value": theme}])
        time.sleep(0.5)
        picture = browser.devtools("Page.captureScreenshot", captureBeyondViewport=True)
        (folder / f"{theme}.png").write_bytes(base64.b64decode(picture["data"]))
    printed = browser.call("POST", "/print", {"background": True})
    (folder / "printed.pdf").write_bytes(base64.b64decode(printed))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--pictures", type=pathlib.Path)
    parser.add_argument("page", type=pathlib.Path)
    parser.add_argument("report", type=pathlib.Path)
    arguments = parser.parse_args()
    report = json.loads(arguments.report.read_text())
    expect(os.path.getsize(arguments.page) < 2e6, "the page is smaller than 2 MB")
    for address in ("http://", "https://"):
        expect(f'src="{address}' not in arguments.page.read_text(), f"nothing is loaded from {address}")
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        browser = Browser(folder)
        try:
            browser.call("POST", "/url", {"url": arguments.page.resolve().as_uri()})
            check_log(browser, report["logs"][0])
            check_figures(browser, report)
            check_sorting(browser)
            check_zoom(browser)
            if arguments.pictures:
                take_pictures(browser, arguments.pictures)
            browser.run("document.querySelectorAll('.tabs button')[1].click()")
            check_log(browser, report["logs"][1])
            loaded = browser.run("return performance.getEntriesByType('resource').map(each => each.name)")
            expect(loaded == [], f"the page loads nothing: {loaded}")
            messages = browser.call("POST", "/se/log", {"type": "browser"})
            expect(messages == [], f"messages of the browser: {messages}")
        finally:
            browser.close()
    print(f"{'failed' if failures else 'passed'}: page of {os.path.getsize(arguments.page) / 1e3:.0f} kB")
    return 1 if failures else 0


sys.exit(main())
